// arc_chords.h: the walk of an arc as a chain of chords.
//
//   a0 = direction of the start, a1 = direction of the end, both seen from the centre
//   G3: span = a1 - a0 (counter-clockwise), G2: the negative span; a0 = a1 is a full turn
//
//            p2 .--------. p1
//             /    step   \        chords N = radius x resolution, whatever the angle swept,
//        end o      a1     \       at least 3, at most Arc_Max_Segments
//                   +   a0  o start
//                 centre
//
// Points 1 .. count - 1 lie on the circle, the last chord ends on the programmed end: a wrong
// radius shows as a straight closing line. Z and A advance by the same amount with each chord.
// Plane and distance mode are those of the program's end.
#pragma once

#include "core/nullable.h"

#include <cstdint>

namespace norvik {

struct Arc_Ends {
  Nullable X, Y, Z, A;
};

// Emits the chords of one arc through `EmitWireLine`. `first`, `second`: the record's centre words,
// of the first and second axis of the plane. `direction`: 0 clockwise, 1 counter-clockwise. An arc
// shorter than 0.0001 makes no chord. Any fault is logged as "Nist_Arc Error"; the chords emitted
// so far stand.
void Nist_Arc(const Arc_Ends& start, const Arc_Ends& end, Nullable first, Nullable second,
              std::int16_t direction);

}  // namespace norvik
