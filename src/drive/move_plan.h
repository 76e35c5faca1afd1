// move_plan.h: the speeds of one move, worked out before its first step.
//
// The one place of these rules. The step engine runs by the plan, the estimate adds up its time,
// and the machine check names setups that a plan cannot serve; so a rule that changes here changes
// in all of them.
//
// A move makes two half steps ("iterations") for each step of its longest axis. The speed (IPM:
// units of the setup per minute along the X scale, or along that of the leading axis with the
// correction `Axis_Scale_Delay`) changes by `Increment` from one to the next:
//
//   Cruise        ______________
//                /              \            iteration < Ramp_Up: faster
//   Start       /                \           iteration > Ramp_Down: slower
//   End                           \          both hold independently; never above Cruise
//               1    Ramp_Up   Ramp_Down   2 x Major
//
// Ramps that do not fit are cut by rule: a way up that is longer than the whole move ends in its
// middle; a way down that would begin before iteration Major - Ramp_Up begins at Ramp_Up.
#pragma once

#include "core/indexed.h"

namespace norvik {

// No half step is timed slower or faster than this, IPM.
inline constexpr double Slowest_IPM = 0.001, Fastest_IPM = 2000;

// What a plan takes from the setup.
struct Move_Rules {
  Indexed<float, 1, 4> Axis_Max;  // IPM
  bool Ramping = false;
  // Hundredths of an IPM in each iteration; with `One_Acceleration` hertz in each step of the
  // leading axis, as the feed pass reckons.
  double Ramp_Rate = 0;
  bool One_Acceleration = false;
  Indexed<float, 1, 4> Scale;  // steps per unit
};
Move_Rules Rules_Of_Setup();

struct Move_Plan {
  double Major = 0;  // steps of the longest axis
  // The cruise speed: an axis that would exceed its own limit holds the whole move to the number of
  // that limit (the limit itself, not scaled to the move).
  double Cruise = 0;
  double Start = 0, End = 0;
  double Low = 0;                    // floor of the ramps
  double Increment = 0;              // IPM in an iteration; 0: the whole move runs at Cruise
  float Ramp_Up = 0, Ramp_Down = 0;  // iterations
};

// Steps of each axis, not negative, one of them above 0; speeds as asked for. Raises an overflow
// fault when a ramp is too long for a single.
Move_Plan Plan_Move(const Move_Rules& rules, const Indexed<double, 1, 4>& steps, double start,
                    double run, double end);

// The axis with the most steps; of several the last, as the feed pass takes it.
int Leading_Axis(const Indexed<double, 1, 4>& steps);
// The axis by whose scale the half steps of a move are timed that `leading` leads: X, or with the
// correction `Axis_Scale_Delay` the leading one.
int Timing_Axis(int leading);

// Change of the speed in an iteration, IPM, without `One_Acceleration`.
constexpr double Ramp_Increment(double ramp_rate) {
  return ramp_rate / 100;
}

// Microseconds of a half step at `scale` steps per unit and `ipm`, which is held to the two bounds
// above. Infinite when the scale is 0.
double Half_Period(double scale, double ipm);

}  // namespace norvik
