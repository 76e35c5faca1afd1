// measure.h: a line drawn with the mouse: its length, and the element of the program it crosses.
//
// The search looks at X and Y of the wires as they are, without the projection: it means something
// in the Top view only.
#pragma once

#include "compiler/state/tables.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>

namespace norvik {

// Where the lines through a1-a2 (the mouse) and b1-b2 (the element) meet. True when the point lies
// on the mouse line, ends included, and on the element, its far end not included, so that a line
// through a shared end meets the following element. Parallel lines give false and leave `x` and
// `y`; every other pair sets them.
bool Segments_Cross(double ax1, double ay1, double ax2, double ay2, double bx1, double by1,
                    double bx2, double by2, double& x, double& y);

struct Measurement {
  std::string Text;                 // for panel 1
  std::optional<std::size_t> Wire;  // the first element crossed, from 0
};
// The report of a line in plot coordinates; with `highlight` the G-code window selects the block of
// the element crossed.
Measurement Plot_Measure(double x1, double y1, double x2, double y2, bool highlight);

}  // namespace norvik
