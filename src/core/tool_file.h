// tool_file.h: tool files, and the table `Tools` that they fill.
//
// A tool file (.tol) is text: 200 lines, one for each tool from 1, with diameter and offset parted
// by a comma, in units of the setup, with a point as decimal sign:
//
//   0.125,0
//   0.0625,-0.5
//
// What other systems write is taken too: a semicolon between the two, and decimal commas where both
// numbers have one ("0,125,-0,5").
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace norvik {

// Fills both tables; what the file does not give is 0. A missing file or an empty name clears them.
// Lines that are no two numbers are logged and count as 0. False when there was nothing to read.
bool Read_Tool_File(const std::string& path);

// What an operator should know of a tool file.
struct Tool_Findings {
  std::vector<std::string> Lines;  // that are no two numbers: "line 3: ..."
  std::string Rows;                // missing or too many; empty: 200
};
// Fills both tables from the text of a tool file.
Tool_Findings Take_Tool_Text(std::string_view text);
// The table as the text of a tool file; its numbers read back equal.
std::string Tool_Text();

}  // namespace norvik
