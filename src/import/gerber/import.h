// import.h: board artwork to G-code.
#pragma once

#include <string>

namespace norvik {

// False when the file does not exist, after a beep.
bool Import_Gerber_File(const std::string& path);

}  // namespace norvik
