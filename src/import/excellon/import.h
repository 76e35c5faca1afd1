// import.h: drill files to G-code; the tables are described in import/excellon/table.h.
#pragma once

#include <string>

namespace norvik {

// False when the file does not exist, after a beep.
bool Import_Excellon_File(const std::string& path);

// With `Excellon_Sort_Location`: orders the holes of each tool by nearest neighbour; the position
// starts at (0, 0) and carries over from tool to tool.
void Excellon_Sort_Step();

// Prints the working G-code file. True when the program is complete.
bool Excellon_Write_GCode();

}  // namespace norvik
