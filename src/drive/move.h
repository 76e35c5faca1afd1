// move.h: one straight move, as every drive takes it, and how it ended.
#pragma once

#include "core/axes.h"
#include "core/indexed.h"

#include <cstdint>

namespace norvik {

// What a move is asked to do. Speeds in units of the setup per minute ("IPM").
struct Step_Request {
  Indexed<std::int32_t, 1, 4> Steps;                 // not negative; 0: the axis does not move
  Indexed<bool, 1, 4> Negative;                      // direction, also given for resting axes
  double Start = 0, Run = 0, End = 0;                // IPM at the start, cruising, at the end
  bool No_Rate_Check = false;                        // the move may end early at any speed (jogs)
  bool Is_Arc = false;                               // a chord of an arc
  Indexed<std::int16_t, 0, 4> Out{{1, 1, 1, 1, 1}};  // outputs 1..5: 0 off, 2 on, else unchanged
};

// Why a move ended. `Done` means that every step was made, or that a drive with a queue has taken
// the move over; the position counts what was made and is right in every case.
enum class Move_End { Done, No_Steps, Limit, Released, EStop, Escape, Stopped, Failed };

}  // namespace norvik
