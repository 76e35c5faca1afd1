// machine_check.h: what a machine file asks for that an operator may not expect.
//
// The drive does what its settings say, hazards included. This list looks at a loaded setup and
// says in plain words where that may surprise someone beside the machine, with the key to change
// where one exists. It changes nothing.
#pragma once

#include <string>
#include <vector>

namespace norvik {

struct Machine_Finding {
  std::string Text;
  std::string Key;  // of the machine file; empty: no setting changes it
  bool operator==(const Machine_Finding&) const = default;
};

// Looks at `MachineSetup`; an empty list when nothing was found. Only a setup for the parallel port
// is looked at for its pins and its timing.
std::vector<Machine_Finding> Machine_Check();

}  // namespace norvik
