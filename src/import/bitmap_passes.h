// bitmap_passes.h: from the scan's heights to those of each pass.
#pragma once

#include <string>

namespace norvik {

// Rewrites `line_file` with the heights of the program. With `BMAP_Passes_to_Depth` below 2 the
// offset in Z is added; with 2 or more all records are written once for each pass, the depth below
// the top taken by an equal share more in each, so that the last pass reaches the full depth.
// Needs no memory for the records. ESC ends it.
void Bitmap_Add_Passes(const std::string& line_file);

}  // namespace norvik
