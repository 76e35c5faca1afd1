// serial_setup.h: what a setup asks of a serial board that may surprise.
#pragma once

#include "drive/finding.h"

#include <vector>

namespace norvik {

void Check_Serial_Setup(std::vector<Machine_Finding>& findings);

}  // namespace norvik
