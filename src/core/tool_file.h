// tool_file.h: reading a tool file into `Tools`.
//
// A tool file (.tol) is text: 200 lines, one for each tool from 1, with diameter and offset parted
// by a comma, in units of the setup, with a point as decimal sign:
//
//   0.125,0
//   0.0625,-0.5
#pragma once

#include <string>

namespace norvik {

// Fills both tables; what the file does not give is 0. A missing file or an empty name clears them.
// Lines that are no two numbers are logged and count as 0. False when there was nothing to read.
bool Read_Tool_File(const std::string& path);

}  // namespace norvik
