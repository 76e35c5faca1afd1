// backlash.h: moving an axis across its mechanical play before it moves on the other way.
//
//   carriage   |<- play = Axis_Backlash ->|
//   nut        |#                         |   after a move to the left: left flank bears
//   nut        |                         #|   after the take-up: right flank bears
//
// The play is n = Axis_SPI x Axis_Backlash steps in single precision, unrounded. The take-up makes
// a toggle for each j = 0, 1, .. <= 2n, that is 2n + 1 toggles for a whole 2n, at the panel's live
// feed without a ramp. Positions do not change. With the correction `Backlash_Even` it makes 2n
// toggles, n rounded to the nearest whole step: the step pin ends at the level that it had.
//
// A take-up that is cut short by a stop is remembered: the nut lies somewhere in the play, and the
// next move of the axis finishes the way there or back.
#pragma once

#include "parallel/step_engine.h"

#include <optional>

namespace norvik {

// Toggles of a whole take-up of the axis.
std::int64_t Backlash_Toggles(int axis);

// Takes the backlash up for each axis of the move that reverses, in the order X, Y, Z, A, when
// `Axis_Backlash_Enable` is set. Yields as a move does, and looks for ESC, the E-stop and Stop
// after each toggle. Answers why the move must not begin; absent when all is taken up.
std::optional<Move_End> Take_Up_Backlash(const Step_Request& request);

}  // namespace norvik
