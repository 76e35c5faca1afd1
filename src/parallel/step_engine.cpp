#include "parallel/step_engine.h"

#include "core/application.h"
#include "core/axes.h"
#include "core/error_log.h"
#include "core/format.h"
#include "core/operation.h"
#include "core/rounding.h"
#include "core/setup.h"
#include "drive/drive_host.h"
#include "drive/drive_status.h"
#include "drive/move_plan.h"
#include "drive/stops.h"
#include "parallel/backlash.h"
#include "parallel/pin_map.h"
#include "parallel/timing.h"
#include "platform/platform.h"

#include <algorithm>
#include <cmath>

namespace norvik {

Step_Engine_State Step_Engine;

namespace {

// --- Set-up --------------------------------------------------------------------------------------

void Switch_Outputs(const Step_Request& request) {
  for (int n = 1; n <= 5; ++n) {
    if (request.Out[n - 1] == 2) Output_On(n);
    if (request.Out[n - 1] == 0) Output_Off(n);
  }
}

// Steps of an axis without a usable scale could not be counted, nor half steps be timed by it. Such
// a move is refused before a pin moves.
void Check_Scales(const Step_Request& request) {
  for (int axis = 1; axis <= Axis_Count; ++axis) {
    const double scale = MachineSetup.Axis_SPI[axis];
    const bool needed = axis == Step_Engine.Timed_By || request.Steps[axis] > 0;
    if (!needed || (std::isfinite(scale) && scale > 0)) continue;
    throw Fault(Fault_Number::Division_By_Zero,
                "Axis_SPI_" + std::to_string(axis) + " is " + std::to_string(scale) +
                    ": set the steps per unit of the axis to a number above 0");
  }
  for (const std::int32_t steps : request.Steps) {
    if (steps >= 0) continue;
    throw Fault(Fault_Number::Invalid_Call,
                "A move was asked for " + std::to_string(steps) + " steps");
  }
}

void Set_Step_Distribution(const Step_Request& request) {
  Step_Engine_State& e = Step_Engine;
  for (int axis = 1; axis <= Axis_Count; ++axis) {
    const std::int32_t steps = request.Steps[axis];
    e.Moving[axis] = steps > 0;
    e.StepSkip[axis] = steps > 0 ? static_cast<double>(e.MaxSteps) / steps : 2.0 * e.MaxSteps + 1;
  }
  e.Accumulator.Fill(0);
}

// The speeds that the move runs with, in the words of the diagnostics.
void Take_Speeds(const Move_Plan& plan) {
  Step_Engine_State& e = Step_Engine;
  e.Rn_Limit = e.IPM_Rn = plan.Cruise;
  e.IPM_St = plan.Start;
  e.IPM_En = plan.End;
  e.IPM_Low = plan.Low;
  e.RampInc = plan.Increment;
  e.RampUp_Val = plan.Ramp_Up;
  e.RampDN_Val = plan.Ramp_Down;
  e.Current_IPM = std::min(e.IPM_St, e.Rn_Limit);
}

Indexed<double, 1, 4> Steps_Of(const Step_Request& request) {
  Indexed<double, 1, 4> steps;
  for (int axis = 1; axis <= Axis_Count; ++axis) steps[axis] = request.Steps[axis];
  return steps;
}

Move_Plan Plan_Of(const Step_Request& request) {
  const Move_Rules rules = Rules_Of_Setup();
  if (rules.Ramping && rules.Ramp_Rate <= 0) {
    throw Fault(Fault_Number::Division_By_Zero,
                "Axis_Ramp_Rate is " + std::to_string(MachineSetup.Axis_Ramp_Rate) +
                    ": choose a ramp rate of 1 to 15, or switch ramping off");
  }
  return Plan_Move(rules, Steps_Of(request), request.Start, request.Run, request.End);
}

// All directions before all enables: drivers want a direction to rest for some microseconds before
// the first step.
void Begin_Stepping(const Step_Request& request) {
  for (int axis = 1; axis <= Axis_Count; ++axis) {
    if (Step_Engine.Moving[axis]) Set_Direction(axis, request.Negative[axis]);
  }
  for (int axis = 1; axis <= Axis_Count; ++axis) {
    if (!Step_Engine.Moving[axis]) continue;
    Motor_Enable(axis);
    Pins.Axis_Stepping[axis] = true;
  }
  Step_Engine.Stepping_Began = true;
}

// All that a move has to know before its first step. A request that is refused here has moved no
// pin.
void Prepare_Move(const Step_Request& request) {
  Step_Engine_State& e = Step_Engine;
  e.Timed_By = Timing_Axis(Leading_Axis(Steps_Of(request)));
  Check_Scales(request);
  Set_Step_Distribution(request);
  Take_Speeds(Plan_Of(request));
  e.Iteration = 0;
  e.Phase = false;
}

// --- One iteration -------------------------------------------------------------------------------

// An axis that meets its switch may only go back. No setting says on which side the switch is, so
// the guard goes by what it saw: `Safe_Dir` holds the direction against the one in which the axis
// was going when its switch was last off. With the switch on, the axis may move that way only.
// False: an axis is blocked, the move ends.
//
// A switch that bounces while the axis backs off it reads off for a moment. Taken for the end of
// the switch, that would turn the free direction round: the retreat is refused, and the way through
// the switch is free. With `Limit_Filter_Steps` the switch counts as left only after the axis
// itself has made so many half steps with the switch off.
bool Limit_Guard(const Step_Request& request) {
  Step_Engine_State& e = Step_Engine;
  if (MachineSetup.LimitSwitchDisable == 1) return true;
  Read_Limits();
  bool free = true;
  for (int axis = 1; axis <= Axis_Count; ++axis) {
    const bool towards = e.Safe_Dir[axis] != request.Negative[axis];
    const bool blocked = !Drive_Status.Home_Safety_Off && e.Moving[axis] && towards &&
                         Drive_Status.Limit_State[axis];
    if (!blocked) continue;
    e.Axis_Enabled[axis] = free = false;
    Drive_Status.Free_Negative[axis] = e.Safe_Dir[axis];
    if (!Machine.Jog_Stop_Request) Drive_Host.Stop_Run();
  }
  for (int axis = 1; axis <= Axis_Count; ++axis) {
    if (Drive_Status.Limit_State[axis]) {
      e.Off_Toggles[axis] = 0;
    } else if (e.Off_Toggles[axis] >= MachineSetup.Limit_Filter_Steps) {
      e.Safe_Dir[axis] = !request.Negative[axis];
    }
  }
  return free;
}

// An axis with half as many steps as the longest toggles in every second iteration. Each iteration
// adds the steps of the axis to its sum, and a toggle is due when the sum reaches MaxSteps: whole
// numbers, so that no rounding adds up over a long move.
void Toggle_Due_Axes(const Step_Request& request) {
  Step_Engine_State& e = Step_Engine;
  for (int axis = 1; axis <= Axis_Count; ++axis) {
    std::int64_t& sum = e.Accumulator[axis];
    sum += request.Steps[axis];
    if (sum < e.MaxSteps) continue;
    sum -= e.MaxSteps;
    Toggle_Step(axis, request.Negative[axis], e.Axis_Enabled[axis], false);
    ++e.Off_Toggles[axis];
  }
}

void Ramp_Speed() {
  Step_Engine_State& e = Step_Engine;
  const auto count = static_cast<double>(e.Iteration);
  if (MachineSetup.Axis_Ramping) {
    if (count < e.RampUp_Val) e.Current_IPM += e.RampInc;
    if (count > e.RampDN_Val) e.Current_IPM -= e.RampInc;
    e.Current_IPM = std::max(std::min(e.Current_IPM, e.IPM_Rn), e.IPM_Low);
  } else {
    const auto live = Drive_Host.Live_Feed();
    if (live && *live != e.IPM_Rn) e.IPM_Rn = e.Current_IPM = *live;
  }
  e.Current_IPM = std::min(e.Current_IPM, e.Rn_Limit);
}

// One half step. Returns why the move ends here; absent: it goes on.
std::optional<Move_End> Half_Step(const Step_Request& request) {
  Step_Engine_State& e = Step_Engine;
  e.Axis_Enabled.Fill(true);
  if (!Limit_Guard(request)) return Move_End::Limit;
  if (!Machine.Jog_Stop_Request && e.Phase) {
    Machine.Jog_Stop_Request = true;
    return Move_End::Released;
  }
  if (EStop_Met(EStop_Input_On)) return Move_End::EStop;
  if (Application.Closing_Program) return Move_End::Stopped;
  Toggle_Due_Axes(request);
  Delay_Half_Step(e.Timed_By, e.Current_IPM * Drive_Status.Feed_Override);
  ++e.Iteration;
  Ramp_Speed();
  if (e.Phase) {
    Feed_Monitor(e.Timed_By, e.Current_IPM);
    e.Phase = false;
  } else {
    e.Phase = true;
    if (Escape_Met()) return Move_End::Escape;
  }
  return std::nullopt;
}

Move_End Step_Loop(const Step_Request& request) {
  const std::int64_t iterations = 2 * static_cast<std::int64_t>(Step_Engine.MaxSteps);
  while (Step_Engine.Iteration < iterations) {
    if (const auto end = Half_Step(request)) return *end;
  }
  return Move_End::Done;
}

// --- End -----------------------------------------------------------------------------------------

void Check_End_Rate() {
  if (std::abs(Step_Engine.Current_IPM - Step_Engine.IPM_En) <= 1.5) return;
  Platform.Beep();
  Drive_Host.Mark_Rate_Error();
  ErrorLogWrite("Step Rate Error!");
}

// Runs after a failure too, so each part that may fail is trapped for itself, and motors and marks
// are put right before the rest.
void Finish_Move(const Step_Request& request) {
  Step_Engine_State& e = Step_Engine;
  Trap("Step_Engine_Move_Error", [&] { Feed_Monitor(e.Timed_By, e.Current_IPM); });
  if (e.Stepping_Began && !request.No_Rate_Check) Trap("Step_Engine_Move_Error", Check_End_Rate);
  Pins.Axis_Stepping.Fill(false);
  if (MachineSetup.Parallel_MotorEnable_Option == 0) {
    for (int axis = 1; axis <= Axis_Count; ++axis) Motor_Disable(axis);
  }
  Trap("Step_Engine_Move_Error", [&] {
    Store_Time_Constant();
    Drive_Host.Set_Panel_Interval(250);
    Feed_Monitor(e.Timed_By, e.Current_IPM);
  });
  if (!e.Stepping_Began) return;
  for (int axis = 1; axis <= Axis_Count; ++axis) {
    if (!e.Moving[axis]) continue;
    e.Last_Dir[axis] = request.Negative[axis];
    e.Take_Up_Left[axis].reset();
  }
}

Move_End Run_Move(const Step_Request& request) {
  Step_Engine_State& e = Step_Engine;
  e.Request = request;
  Switch_Outputs(request);
  Timing.Settle_Count = 0;
  Drive_Status.Free_Negative.Fill(std::nullopt);
  e.Moving.Fill(false);
  e.Stepping_Began = false;
  e.MaxSteps = *std::max_element(request.Steps.begin(), request.Steps.end());
  if (e.MaxSteps == 0) return Move_End::No_Steps;
  Prepare_Move(request);
  const auto cut_short = Take_Up_Backlash(request);
  if (cut_short) return *cut_short;
  Begin_Stepping(request);
  return Step_Loop(request);
}

}  // namespace

Move_End Step_Engine_Move(const Step_Request& request) noexcept {
  if (Runs(Operation::Move)) {
    Trap("Step_Engine_Move_Error",
         [] { throw Fault(Fault_Number::Invalid_Call, "A move cannot begin inside another one"); });
    return Move_End::Failed;
  }
  const Operation_Scope move(Operation::Move);
  Begin_Watching_Stops();
  Move_End end = Move_End::Failed;
  Trap("Step_Engine_Move_Error", [&] { end = Run_Move(request); });
  if (end != Move_End::No_Steps) Finish_Move(request);
  return end;
}

void Forget_Driven_Machine() {
  Pins = {};
  Drive_Status = {};
  Step_Engine = {};
  Step_Engine.Stored_Time_Constant = MachineSetup.Parallel_Time_Constant;
  Step_Engine.Stored_In = Application.MachineFile;
}

std::string Diagnostics_Text() {
  const Step_Engine_State& e = Step_Engine;
  std::string text = "MaxSteps=" + std::to_string(e.MaxSteps);
  const auto line = [&](const std::string& name, const std::string& value) {
    text += "\r\n" + name + "=" + value;
  };
  for (int axis = 1; axis <= Axis_Count; ++axis) {
    line(std::string(1, Axis_Letter(axis)) + "Steps", std::to_string(e.Request.Steps[axis]));
  }
  for (int axis = 1; axis <= Axis_Count; ++axis) {
    line("StepSkip(" + std::to_string(axis) + ")", Shortest_Text(e.StepSkip[axis]));
  }
  line("RampUp_Val", Shortest_Text(e.RampUp_Val));
  line("RampDN_Val", Shortest_Text(e.RampDN_Val));
  line("IPM_St", Shortest_Text(e.IPM_St));
  line("IPM_Rn", Shortest_Text(e.IPM_Rn));
  line("IPM_En", Shortest_Text(e.IPM_En));
  return text;
}

}  // namespace norvik
