// port_check.h: what a machine file asks of the parallel port that an operator may not expect.
#pragma once

#include "drive/finding.h"

#include <vector>

namespace norvik {

// Looks at wiring, scales, speeds, ramps and timing of `MachineSetup` and appends what it finds.
// Changes nothing.
void Check_Port_Setup(std::vector<Machine_Finding>& findings);

}  // namespace norvik
