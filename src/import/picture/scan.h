// scan.h: a picture sampled along sway lines into the thirteen-field line file.
//
//   sway along Y, Cols 3, Rows 4          the cutter goes up on even lines and down on odd ones;
//
//   Y Rows +---+   +---+                  a link joins the ends of neighbouring lines at the height
//     |    |   |   |   |                  where the cutter stands
//     0    o   +---+   +
//          0   1   2   3  Cols  X
//
// The material is divided into Cols by Rows equal steps; each of the (Cols + 1) * (Rows + 1) points
// takes the colour of the pixel below it as Z: the 24-bit number blue * 65536 + green * 256 + red
// over 16777215, times the material's height. White is the top surface, black is 0. Runs of equal Z
// become one record. Lengths in units of the setup.
//
// With `BMAP_Passes_to_Depth` below 2 the offset in Z is added to all heights. With 2 or more the
// picture is scanned once for each pass, the depth below the top taken by an equal share more in
// each, so that the last pass reaches the full depth; a noisy picture gives millions of records,
// which are cheaper to make again than to keep.
#pragma once

#include "platform/platform.h"

#include <cstdint>
#include <string>

namespace norvik {

inline constexpr std::string_view Bitmap_Fault_Name = "Bitmap Line File to GCode Error";

struct Bitmap_Grid {
  double Step_X = 0, Step_Y = 0;
  std::int32_t Cols = 0, Rows = 0;  // steps; points are one more
  std::int64_t Samples() const { return (std::int64_t{Cols} + 1) * (std::int64_t{Rows} + 1); }
};

// The grid of the setup: Int(size / increment) steps on each axis, computed in singles. Raises a
// fault, worded for the operator, where the settings give no grid or more than 25 million points.
Bitmap_Grid Bitmap_Grid_Of_Setup();

// Writes the records of all passes over `picture`, which must not be empty, to `line_file`, offsets
// added. The first point of a pass is entered from the travel height above it. Yields every 200
// points; ESC ends the scan. Raises file faults, and overflow faults where a height does not fit a
// single.
void Bitmap_Scan(const Picture& picture, const Bitmap_Grid& grid, const std::string& line_file);

}  // namespace norvik
