// gcode.h: depth passes and G-code of a DXF drawing.
//
// Without `DXF_Ingore_Depth` every row is written once with its own depths. With it the depths come
// from the multi-depth table: the row of a group's layer gives Start, End and Passes, and the whole
// group is written once for each pass, the first at Start - step and the last at End, with
// step = (Start - End) / Passes. A layer that the table does not name takes the row found last.
#pragma once

#include <string>

namespace norvik {

// Writes `DXF_Entity` to the ten-field line file `line_file`, import offsets added. ESC ends it.
void DXF_Add_Passes(const std::string& line_file);

// Reads `line_file` and prints the working G-code file. True when the program is complete.
bool DXF_Write_GCode(const std::string& line_file);

}  // namespace norvik
