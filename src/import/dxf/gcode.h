// gcode.h: depth passes and G-code of a DXF drawing.
//
// With `DXF_Ingore_Depth` off every entity is written once, at the Z of the drawing. With it on the
// depths come from the table of layers in the setup: Start, End and Passes. All entities of a layer
// are written once for each pass, each pass lower by (Start - End) / Passes, so that the last one
// is at End. A layer that the table does not name takes the row that was used last, at first row 0.
#pragma once

#include <string>

namespace norvik {

// Writes the entities of the drawing (`DXF_Entity`) to `line_file`, ten fields a line, with the
// offsets of the setup added. ESC ends it early.
void DXF_Add_Passes(const std::string& line_file);

// Makes the G-code program out of `line_file`. True when it is complete.
bool DXF_Write_GCode(const std::string& line_file);

}  // namespace norvik
