// gcode.h: the G-code of an isolated board.
#pragma once

#include <string>

namespace norvik {

// Reads the four-field `line_file` (a missing one holds nothing) and prints the working G-code
// file. Cuts that continue where the one before ended join without a lift. True when the program is
// complete.
bool Gerber_Write_GCode(const std::string& line_file);

}  // namespace norvik
