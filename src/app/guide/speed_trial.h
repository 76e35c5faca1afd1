// speed_trial.h: how fast an axis may go, found by going.
//
// The axis moves between two points, a little faster each time, until the operator has heard or
// seen it lose steps. Two thirds of the last speed that went well are kept: a motor that just
// manages today does not with a heavier tool or a cold morning.
//
//   Begin -> move -> Went_Well -> move, a fifth faster -> ... -> Went_Wrong -> Result
#pragma once

#include <optional>

namespace norvik {

struct Speed_Trial {
  int Axis = 1;
  double Present = 0;    // units per minute of the next move
  double Last_Good = 0;  // 0: none yet
  bool Over = false;
};

// From the speed where the axis surely goes, units per minute.
Speed_Trial Begin_Speed_Trial(int axis, double first);
// The move at `Present` went well. The trial is over when no faster move can be timed.
void Went_Well(Speed_Trial& trial);
// It lost steps, or the operator has heard enough.
void Went_Wrong(Speed_Trial& trial);
// Two thirds of the fastest speed that went well; absent when none did.
std::optional<double> Kept_Speed(const Speed_Trial& trial);

}  // namespace norvik
