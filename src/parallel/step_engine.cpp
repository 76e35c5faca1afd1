#include "parallel/step_engine.h"

#include "core/application.h"
#include "core/error_log.h"
#include "core/format.h"
#include "core/operation.h"
#include "core/rounding.h"
#include "core/setup.h"
#include "parallel/backlash.h"
#include "parallel/drive_host.h"
#include "parallel/pin_map.h"
#include "parallel/stops.h"
#include "parallel/timing.h"
#include "platform/platform.h"

#include <algorithm>
#include <cmath>

namespace norvik {

Step_Engine_State Step_Engine;
Drive_Host_Operations Drive_Host;

namespace {

// --- Set-up --------------------------------------------------------------------------------------

void Switch_Outputs(const Step_Request& request) {
  for (int n = 1; n <= 5; ++n) {
    if (request.Out[n - 1] == 2) Output_On(n);
    if (request.Out[n - 1] == 0) Output_Off(n);
  }
}

// A move with a scale that cannot be timed or counted is refused before a pin moves. The scale of X
// times every move.
void Check_Scales(const Step_Request& request) {
  for (int axis = 1; axis <= Axis_Count; ++axis) {
    const double scale = MachineSetup.Axis_SPI[axis];
    const bool needed = axis == 1 || request.Steps[axis] > 0;
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

// The cruise ceiling: an axis that would exceed its own limit holds the whole move to the number of
// that limit (the limit itself, not scaled to the move).
double Axis_Limited_Run(const Step_Request& request) {
  double limit = request.Run;
  for (int axis = 1; axis <= Axis_Count; ++axis) {
    const double axis_ipm =
        static_cast<double>(request.Steps[axis]) / Step_Engine.MaxSteps * request.Run;
    const double axis_max = MachineSetup.Axis_Max_Feed_Rate[axis];
    if (axis_max < limit && axis_ipm > axis_max) limit = axis_max;
  }
  return limit;
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

void Set_Speeds(const Step_Request& request) {
  Step_Engine_State& e = Step_Engine;
  const bool ramping = MachineSetup.Axis_Ramping;
  e.RampInc = MachineSetup.Axis_Ramp_Rate / 100.0;
  if (ramping && e.RampInc <= 0) {
    throw Fault(Fault_Number::Division_By_Zero,
                "Axis_Ramp_Rate is " + std::to_string(MachineSetup.Axis_Ramp_Rate) +
                    ": choose a ramp rate of 1 to 15, or switch ramping off");
  }
  const double cruise = std::min(request.Run, e.Rn_Limit);
  e.IPM_St = ramping ? request.Start : cruise;
  e.IPM_Rn = cruise;
  e.IPM_En = ramping ? request.End : cruise;
  e.Current_IPM = std::min(e.IPM_St, e.Rn_Limit);
}

// Iterations of the ramps, drawn in the header. Ramps that do not fit are cut by rule.
void Set_Ramps() {
  Step_Engine_State& e = Step_Engine;
  const double iterations = 2.0 * e.MaxSteps;
  const auto ramp = [&](double difference) {
    return difference == 0 ? 0.0 : difference / e.RampInc;
  };
  e.RampUp_Val = To_Single(ramp(e.IPM_Rn - e.IPM_St));
  if (e.RampUp_Val > iterations) e.RampUp_Val = To_Single(e.MaxSteps);
  const double down = ramp(e.IPM_Rn - e.IPM_En);
  e.RampDN_Val = To_Single(iterations - down);
  if (e.RampDN_Val < static_cast<double>(e.MaxSteps) - e.RampUp_Val) e.RampDN_Val = e.RampUp_Val;
}

// Directions of all axes first, so that they are settled before the first step edge.
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

// What the move reads from the request and the setup; moves no pin.
void Plan_Move(const Step_Request& request) {
  Step_Engine_State& e = Step_Engine;
  Check_Scales(request);
  e.Rn_Limit = Axis_Limited_Run(request);
  Set_Step_Distribution(request);
  Set_Speeds(request);
  Set_Ramps();
  e.Iteration = 0;
  e.Phase = false;
}

// --- One iteration -------------------------------------------------------------------------------

// Blocks the moving axes whose switch is on and that travel the way they went when it was last off,
// and notes the free direction of the others. False: an axis is blocked, the move ends.
bool Limit_Guard(const Step_Request& request) {
  Step_Engine_State& e = Step_Engine;
  if (MachineSetup.LimitSwitchDisable == 1) return true;
  Read_Limits();
  bool free = true;
  for (int axis = 1; axis <= Axis_Count; ++axis) {
    const bool towards = e.Safe_Dir[axis] != request.Negative[axis];
    const bool blocked =
        !Pins.Home_Safety_Off && e.Moving[axis] && towards && Pins.Limit_State[axis];
    if (!blocked) continue;
    e.Axis_Enabled[axis] = free = false;
    if (!Machine.Jog_Stop_Request) Drive_Host.Stop_Run();
  }
  for (int axis = 1; axis <= Axis_Count; ++axis) {
    if (!Pins.Limit_State[axis]) e.Safe_Dir[axis] = !request.Negative[axis];
  }
  return free;
}

// Adds 1 / StepSkip of a toggle to each axis, in units of 1 / MaxSteps so that nothing is lost.
void Toggle_Due_Axes(const Step_Request& request) {
  Step_Engine_State& e = Step_Engine;
  for (int axis = 1; axis <= Axis_Count; ++axis) {
    std::int64_t& sum = e.Accumulator[axis];
    sum += request.Steps[axis];
    if (sum < e.MaxSteps) continue;
    sum -= e.MaxSteps;
    Toggle_Step(axis, request.Negative[axis], e.Axis_Enabled[axis], false);
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

// One half step. Answers why the move ends here, absent when it goes on.
std::optional<Move_End> Half_Step(const Step_Request& request) {
  Step_Engine_State& e = Step_Engine;
  e.Axis_Enabled.Fill(true);
  if (!Limit_Guard(request)) return Move_End::Limit;
  if (!Machine.Jog_Stop_Request && e.Phase) {
    Machine.Jog_Stop_Request = true;
    return Move_End::Released;
  }
  if (EStop_Met()) return Move_End::EStop;
  if (Application.Closing_Program) return Move_End::Stopped;
  Toggle_Due_Axes(request);
  Delay_Half_Step(1, e.Current_IPM * Timing.Feed_Override);
  ++e.Iteration;
  Ramp_Speed();
  if (e.Phase) {
    Feed_Monitor(1, e.Current_IPM);
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
  Drive_Host.Mark_Plot("X");
  ErrorLogWrite("Step Rate Error!");
}

// Also after a failure: motors and marks are put right before anything that might fail again.
void Finish_Move(const Step_Request& request) {
  Step_Engine_State& e = Step_Engine;
  Trap("Step_Engine_Move_Error", [&] { Feed_Monitor(1, e.Current_IPM); });
  if (e.Stepping_Began && !request.No_Rate_Check) Trap("Step_Engine_Move_Error", Check_End_Rate);
  Pins.Axis_Stepping.Fill(false);
  if (MachineSetup.Parallel_MotorEnable_Option == 0) {
    for (int axis = 1; axis <= Axis_Count; ++axis) Motor_Disable(axis);
  }
  Trap("Step_Engine_Move_Error", [&] {
    Store_Time_Constant();
    Drive_Host.Set_Panel_Interval(250);
    Feed_Monitor(1, e.Current_IPM);
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
  e.IPM_Low = std::min({99999.0, request.Start, request.Run, request.End});
  Switch_Outputs(request);
  Timing.Settle_Count = 0;
  e.Moving.Fill(false);
  e.Stepping_Began = false;
  e.MaxSteps = *std::max_element(request.Steps.begin(), request.Steps.end());
  if (e.MaxSteps == 0) return Move_End::No_Steps;
  Plan_Move(request);
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
    line(std::string(1, " XYZA"[axis]) + "Steps", std::to_string(e.Request.Steps[axis]));
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

void Show_Diagnostics() {
  Platform.Message_Box("Diagnostics", Diagnostics_Text(), Box_Buttons::Ok);
}

}  // namespace norvik
