#include "drive/move_plan.h"

#include "core/rounding.h"
#include "core/setup.h"

#include <algorithm>

namespace norvik {

namespace {

double Cruise_Speed(const Move_Rules& rules, const Indexed<double, 1, 4>& steps, double major,
                    double run) {
  double limit = run;
  for (int axis = 1; axis <= 4; ++axis) {
    const double axis_ipm = steps[axis] / major * run;
    const double axis_max = rules.Axis_Max[axis];
    if (axis_max < limit && axis_ipm > axis_max) limit = axis_max;
  }
  return limit;
}

// A rate in hertz a step changes the speed of an axis by 60 x rate / scale IPM in each step, which
// is two iterations.
double Increment_Of(const Move_Rules& rules, const Indexed<double, 1, 4>& steps) {
  if (!rules.Ramping) return 0;
  if (!rules.One_Acceleration) return std::max(Ramp_Increment(rules.Ramp_Rate), 0.0);
  const double scale = rules.Scale[Leading_Axis(steps)];
  return scale > 0 ? std::max(30 * rules.Ramp_Rate / scale, 0.0) : 0;
}

void Set_Ramps(Move_Plan& plan) {
  const double iterations = 2.0 * plan.Major;
  const auto ramp = [&](double difference) {
    return difference == 0 ? 0.0 : difference / plan.Increment;
  };
  plan.Ramp_Up = To_Single(ramp(plan.Cruise - plan.Start));
  if (plan.Ramp_Up > iterations) plan.Ramp_Up = To_Single(plan.Major);
  plan.Ramp_Down = To_Single(iterations - ramp(plan.Cruise - plan.End));
  if (plan.Ramp_Down < plan.Major - plan.Ramp_Up) plan.Ramp_Down = plan.Ramp_Up;
}

}  // namespace

Move_Rules Rules_Of_Setup() {
  return {MachineSetup.Axis_Max_Feed_Rate, MachineSetup.Axis_Ramping,
          static_cast<double>(MachineSetup.Axis_Ramp_Rate), MachineSetup.One_Acceleration,
          MachineSetup.Axis_SPI};
}

int Leading_Axis(const Indexed<double, 1, 4>& steps) {
  int leading = 1;
  for (int axis = 2; axis <= 4; ++axis) {
    if (steps[axis] >= steps[leading]) leading = axis;
  }
  return leading;
}

int Timing_Axis(int leading) {
  return MachineSetup.Axis_Scale_Delay ? leading : 1;
}

Move_Plan Plan_Move(const Move_Rules& rules, const Indexed<double, 1, 4>& steps, double start,
                    double run, double end) {
  Move_Plan plan;
  plan.Major = *std::max_element(steps.begin(), steps.end());
  plan.Cruise = Cruise_Speed(rules, steps, plan.Major, run);
  plan.Low = std::min({99999.0, start, run, end});
  plan.Increment = Increment_Of(rules, steps);
  const bool ramps = plan.Increment > 0;
  plan.Start = ramps ? start : plan.Cruise;
  plan.End = ramps ? end : plan.Cruise;
  Set_Ramps(plan);
  return plan;
}

double Half_Period(double scale, double ipm) {
  const double rate = scale * std::clamp(ipm, Slowest_IPM, Fastest_IPM) / 60;
  return 1'000'000 * (1 / rate) / 2;
}

}  // namespace norvik
