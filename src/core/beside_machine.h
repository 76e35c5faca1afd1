// beside_machine.h: files that the machine file names.
#pragma once

#include <string>

namespace norvik {

// Where a file that the machine file names (a macro, a tool file) is read: `name` itself when it is
// empty, a full path or there in the present folder; otherwise beside the machine file, if it is
// there. A name that is nowhere stays as it is.
std::string Beside_Machine_File(const std::string& name);

}  // namespace norvik
