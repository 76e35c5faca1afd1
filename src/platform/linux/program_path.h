// program_path.h: where the running program lies, for the commands in messages.
#pragma once

#include <string>

namespace norvik {

// Full path of the program; "<program>" when the system does not say.
std::string Program_Path();

}  // namespace norvik
