// serial_setup.h: what a setup asks of a serial board that may surprise.
#pragma once

#include "drive/finding.h"

#include <vector>

namespace norvik {

// Of the board that the loaded machine file names: 0 the first, 1 the second.
int Generation_Of_Setup();
void Check_Serial_Setup(std::vector<Machine_Finding>& findings);

}  // namespace norvik
