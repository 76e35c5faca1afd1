// file_steps.h: what is done to the line file "Graftmp.txt" as a whole.
//
// Each pass of the artwork import appends its outlines and then runs these steps over everything
// that the file holds, the outlines of earlier passes included. A failure goes to the error log and
// leaves the file as it was.
#pragma once

#include "import/gerber/table.h"

#include <cstddef>
#include <string>
#include <vector>

namespace norvik {

// Records that are cleaned at a time; a record never meets one of another load.
inline constexpr std::size_t File_Clean_Load = 100'000;

// Rounds to 8 decimals, drops records of no length and joins records that lie along one another
// (import/gerber/clean.h). Slopes that differ by less than 0.1 count as one, so that a slight bend
// is cut straight. ESC keeps what is joined so far.
void File_Clean(const std::string& line_file, int pass);

// Orders the records by nearest end from (0, 0) (path_sort.h). A record that starts where the tool
// stands ends the search for the next. ESC leaves the rest in its order.
void File_Sort(const std::string& line_file, int pass);

// Appends thin lines; those of no length are left out.
void Write_Thin_Lines(const std::vector<Thin_Line>& lines, const std::string& line_file, int pass);

}  // namespace norvik
