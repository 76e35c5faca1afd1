// records.h: arcs of the program, as records.
//
// A block with G2 or G3 becomes one record that holds start, end and the two centre words of its
// plane (planes.h) as they stand; the wire pass walks the arc later.
//
// Words that a block leaves out: X, Y and A take their sticky values (not the current position), Z
// takes the current height, and the centre words are sticky too, over compiles; one that was never
// seen is 0.
//
// Centre from a radius (R above 0, no I and no J), always in X and Y, with d the distance from
// start to end and h the height of the centre over the chord's middle:
//
//               centre                 h  = sqrt(r^2 - (d/2)^2)
//                 +                    cx = (x0 + x1)/2 - h (y0 - y1)/d
//              r /|\ r                 cy = (y0 + y1)/2 - h (x1 - x0)/d
//               / |h\                                                                            .
//        start o--+--o end             G2 and G3 take this same solution
//
// In G90 the centre becomes I and J as it is, in G91 its distance from the start.
#pragma once

#include "compiler/arcs/planes.h"
#include "compiler/text/block.h"
#include "core/nullable.h"

#include <array>
#include <cstdint>
#include <optional>

namespace norvik {

// Positions of X, Y, Z and A.
using Arc_Point = std::array<Nullable, 4>;

// Clockwise and counter-clockwise. Raise a type fault for an arc whose start or end in the plane is
// not known, a call fault for a radius smaller than half the chord, and a division fault for a
// radius with no chord.
void ArcG2(Block& block);
void ArcG3(Block& block);

// Appends the record and moves to its end. In G91 the start is added to the end and centre of the
// plane's two axes only.
void AddArcRecord(const Arc_Point& start, const Arc_Point& end, double i, double j, double k,
                  std::int16_t direction);

}  // namespace norvik
