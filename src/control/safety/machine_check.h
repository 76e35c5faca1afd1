// machine_check.h: what a machine file asks for that an operator may not expect.
//
// The drive does what its settings say, hazards included. This list looks at a loaded setup and
// says in plain words where that may surprise someone beside the machine, with the key to change
// where one exists. It changes nothing.
#pragma once

#include "drive/finding.h"

#include <vector>

namespace norvik {

// Looks at `MachineSetup`; an empty list when nothing was found. What the
// chosen drive adds of pins and timing stands behind what holds for every drive.
std::vector<Machine_Finding> Machine_Check();

}  // namespace norvik
