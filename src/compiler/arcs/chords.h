// chords.h: the walk of an arc as a chain of chords.
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

#include "core/indexed.h"
#include "core/nullable.h"

#include <cstdint>
#include <optional>

namespace norvik {

// Emits the chords of one arc through `EmitWireLine`. `start`, `end`: X, Y, Z, A. `first`,
// `second`: the record's centre words, of the first and second axis of the plane. `direction`: 0
// clockwise, 1 counter-clockwise. An arc shorter than 0.0001 makes no chord, a plane that is none
// neither. Any fault, an absent coordinate of the plane included, is logged as "Nist_Arc Error";
// the chords emitted so far stand.
void Nist_Arc(const Indexed<Nullable, 1, 4>& start, const Indexed<Nullable, 1, 4>& end,
              Nullable first, Nullable second, std::optional<std::int16_t> direction);

}  // namespace norvik
