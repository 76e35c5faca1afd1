// drill_cycles.h: G81, G82 and G83, written out as lines.
//
//   Z
//   ^   current   o- - - ->o  1 travel to X Y, at the higher of current Z and R
//   |                      |
//   |   R plane   - - - - -|- - -o- - - -  3 travel back up, then the next hole
//   |                      |     ^
//   |   bottom             o-----'         2 feed down (G82: dwell here)
//
// G83 goes down in pecks: R, R - Q, R - 2Q ... as long as the depth is not below the bottom, each
// followed by a travel move up to the R plane. The pecks start from the last R word, also in G91.
//
// In G91 a cycle counts X, Y and R from the current position and Z from the R plane, and steps on
// by X and Y with each of L repeats. Words that the block leaves out come from the cycle memories,
// X and Y after that from their sticky values. A value that is nowhere counts as 0.
#pragma once

#include "compiler/text/block.h"

#include <cstdint>

namespace norvik {

// Runs cycle 81, 82 or 83; it is then the motion in force, and G0 of the same block does nothing.
// Without Z, R and one of X and Y nothing moves, but words and mode are remembered. Otherwise
// raises, before anything moves, a type fault for G82 when no P, and for G83 when no Q was ever
// read, and a call fault for a Q that is not above 0 or makes more pecks than the table of records
// takes.
void Run_Drill_Cycle(Block& block, std::int16_t code);

}  // namespace norvik
