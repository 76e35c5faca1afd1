#include "core/setup.h"
#include "parallel/pin_map.h"
#include "parallel/step_engine.h"
#include "platform/platform.h"

#include <algorithm>

namespace norvik {

namespace {

// Seconds since the last tick, held to 0..1.
double Tick_Interval() {
  const std::int64_t now = Platform.Monotonic_Clock();
  const std::int64_t last = Pins.Motor_Tick_Time.value_or(now);
  Pins.Motor_Tick_Time = now;
  return std::clamp(static_cast<double>(now - last) / 1e9, 0.0, 1.0);
}

void Supervise(int axis, double interval) {
  const std::int16_t option = MachineSetup.Parallel_MotorEnable_Option;
  const bool resting = !Pins.Axis_Stepping[axis];
  float& left = Pins.Motor_Enable_Timer[axis];
  if (resting) {
    left = static_cast<float>(left - interval);
  } else {
    Pins.Motor_Timed_Off[axis] = false;
  }
  if (left <= 0) {
    left = 0;
    if (option == 2 && resting) {
      Motor_Disable(axis);
      Pins.Motor_Timed_Off[axis] = true;
    }
  }
  const bool blocked = !Step_Engine.Axis_Enabled[axis];
  if (option == 0 && resting && !blocked) Motor_Disable(axis);
}

}  // namespace

void Motor_Timer_Tick() {
  const double interval = Tick_Interval();
  for (int axis = 1; axis <= Axis_Count; ++axis) Supervise(axis, interval);
}

}  // namespace norvik
