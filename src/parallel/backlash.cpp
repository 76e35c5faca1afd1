#include "parallel/backlash.h"

#include "core/application.h"
#include "core/setup.h"
#include "drive/drive_host.h"
#include "drive/move_plan.h"
#include "drive/stops.h"
#include "parallel/pin_map.h"
#include "parallel/timing.h"

#include <algorithm>
#include <cmath>

namespace norvik {

namespace {

// Toggles that the axis needs before it may move in this direction; 0: none.
std::int64_t Toggles_Needed(int axis, bool negative) {
  const auto& left = Step_Engine.Take_Up_Left[axis];
  const std::int64_t whole = Backlash_Toggles(axis);
  if (Step_Engine.Last_Dir[axis] != negative) return std::min(left.value_or(whole), whole);
  return left ? std::max<std::int64_t>(whole - *left, 0) : 0;
}

// ESC, the E-stop, a closing program, or Stop pressed in a yield (the run mode has fallen to
// stopped).
std::optional<Move_End> Stop_Met(std::int16_t mode_before) {
  if (EStop_Met(EStop_Input_On)) return Move_End::EStop;
  if (Escape_Met()) return Move_End::Escape;
  if (Application.Closing_Program) return Move_End::Stopped;
  if (mode_before != CNC_Stopped && Machine.CNCMode == CNC_Stopped) return Move_End::Stopped;
  return std::nullopt;
}

double Take_Up_Feed() {
  return Drive_Host.Live_Feed().value_or(Step_Engine.IPM_Rn);
}

std::optional<Move_End> Make_Toggles(int axis, bool negative, std::int64_t toggles) {
  const std::int16_t mode_before = Machine.CNCMode;
  for (std::int64_t made = 0; made < toggles; ++made) {
    if (const auto end = Stop_Met(mode_before)) {
      // Counted along the new direction, whichever way this take-up went.
      const bool forward = Step_Engine.Last_Dir[axis] != negative;
      const std::int64_t rest = toggles - made;
      Step_Engine.Take_Up_Left[axis] = forward ? rest : Backlash_Toggles(axis) - rest;
      return end;
    }
    Toggle_Step(axis, negative, true, true);
    Delay_Half_Step(Timing_Axis(axis), Take_Up_Feed());
    Feed_Monitor(Timing_Axis(axis), Take_Up_Feed());
  }
  Step_Engine.Take_Up_Left[axis].reset();
  Step_Engine.Last_Dir[axis] = negative;
  return std::nullopt;
}

std::optional<Move_End> Take_Backlash(int axis, bool negative, std::int64_t toggles) {
  Set_Direction(axis, negative);
  Motor_Enable(axis);
  // The motor timer, which runs in a yield, would take the axis for one at rest and switch it off.
  Pins.Axis_Stepping[axis] = true;
  const auto end = Make_Toggles(axis, negative, toggles);
  Pins.Axis_Stepping[axis] = false;
  if (MachineSetup.Parallel_MotorEnable_Option == 0) Motor_Disable(axis);
  return end;
}

}  // namespace

std::int64_t Backlash_Toggles(int axis) {
  const float steps = MachineSetup.Axis_SPI[axis] * MachineSetup.Axis_Backlash[axis];
  if (MachineSetup.Backlash_Even) {
    return steps > 0 ? 2 * std::llround(std::min<double>(steps, 2e9)) : 0;
  }
  const double last = 2.0 * steps;
  if (!(last >= 0)) return 0;
  return static_cast<std::int64_t>(std::min(last, 4e9)) + 1;
}

std::optional<Move_End> Take_Up_Backlash(const Step_Request& request) {
  if (!MachineSetup.Axis_Backlash_Enable) return std::nullopt;
  for (int axis = 1; axis <= Axis_Count; ++axis) {
    if (!Step_Engine.Moving[axis]) continue;
    const bool negative = request.Negative[axis];
    const bool reverses =
        Step_Engine.Last_Dir[axis] != negative || Step_Engine.Take_Up_Left[axis].has_value();
    if (!reverses) continue;
    if (const auto end = Take_Backlash(axis, negative, Toggles_Needed(axis, negative))) return end;
  }
  return std::nullopt;
}

}  // namespace norvik
