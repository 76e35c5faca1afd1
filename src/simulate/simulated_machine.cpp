#include "simulate/simulated_machine.h"

#include "core/application.h"
#include "core/setup.h"
#include "platform/platform.h"
#include "simulate/axis_model.h"
#include "simulate/input_model.h"
#include "simulate/output_model.h"
#include "simulate/port_space.h"
#include "simulate/simulation_settings.h"
#include "simulate/virtual_clock.h"

#include <cmath>

namespace norvik {

Simulated_Machine_State Simulated_Machine;

namespace {

constexpr int EStop = 0, Auxiliary = 5;
constexpr int Axes = 4;

double Scale_Of(int axis) {
  const double scale = MachineSetup.Axis_SPI[axis];
  return std::isfinite(scale) && scale > 0 ? scale : 1;
}

// Drivers and outputs as their pins stand at the moment of wiring.
void Take_Pin_Levels() {
  for (int axis = 1; axis <= Axes; ++axis) {
    Simulated_Axis& a = Simulated_Machine.Axes[axis];
    const bool wired = Wiring().Outputs[3 * axis].Mask != 0;
    a.Step_High = Latched_High(3 * axis - 2);
    a.Negative = Latched_High(3 * axis - 1) != Wiring().Outputs[3 * axis - 1].Invert;
    // A driver without a wired enable is always on.
    a.Enabled = !wired || Latched_High(3 * axis) != Wiring().Outputs[3 * axis].Invert;
  }
  for (int n = 1; n <= 5; ++n) {
    const Wired_Pin& pin = Wiring().Outputs[12 + n];
    Output_Changed(n, pin.Mask != 0 && Latched_High(12 + n) != pin.Invert, Machine_Time());
  }
}

void Wire_And_Check() {
  const Wired_Map map = Read_Wired_Map();
  Wire_Ports(map);
  std::erase_if(Findings.List,
                [](const Finding& finding) { return finding.Kind == Finding_Kind::Setup; });
  for (const std::string& text : Check_Wired_Map(map)) Add_Setup_Finding(text);
  Take_Pin_Levels();
  for (int input = 0; input <= 5; ++input) Refresh_Input(input, Machine_Time());
}

void Build_Machine() {
  Findings = {};
  Simulated_Machine = {};
  const Wired_Map nothing;
  Wire_Ports(nothing);  // forgets the latches
  for (int axis = 1; axis <= Axes; ++axis) {
    Simulated_Axis& a = Simulated_Machine.Axes[axis];
    a.Scale = Scale_Of(axis);
    a.Start = Machine.Position[axis];
  }
  Default_Simulation_Settings();
}

void Start_Machine() {
  Wire_And_Check();
  for (int axis = 1; axis <= Axes; ++axis) Settings_Changed(axis);
}

}  // namespace

void Reset_Simulated_Machine() {
  Build_Machine();
  Start_Machine();
}

void Load_Simulated_Machine() {
  Build_Machine();
  Load_Simulation_Settings();
  Start_Machine();
}

void Install_Simulated_Machine() {
  Platform.Port_Read = Simulated_Port_Read;
  Platform.Port_Write = Simulated_Port_Write;
}

void Follow_Setup() {
  for (int axis = 1; axis <= Axes; ++axis) {
    if (Scale_Of(axis) == Simulated_Machine.Axes[axis].Scale) continue;
    const double position = True_Position(axis);
    Simulated_Machine.Axes[axis].Scale = Scale_Of(axis);
    Place_Carriage(axis, position);
  }
  if (Read_Wired_Map() != Wiring()) Wire_And_Check();
}

void Settings_Changed(int axis) {
  Carriage_Moved(axis, Machine_Time());
  Set_Quiet_Range(axis);
}

void Input_Changed(int input) {
  Refresh_Input(input, Machine_Time());
}

void Press_EStop(bool pressed) {
  Simulated_Machine.Inputs[EStop].Pressed = pressed;
  Input_Changed(EStop);
}

void Press_Auxiliary(bool pressed) {
  Simulated_Machine.Inputs[Auxiliary].Pressed = pressed;
  Input_Changed(Auxiliary);
}

void Force_Input(int input, Input_Force force) {
  Simulated_Machine.Inputs[input].Force = force;
  Input_Changed(input);
}

void Set_Input_Fault(int input, Input_Fault fault) {
  Simulated_Machine.Inputs[input].Fault = fault;
  Input_Changed(input);
}

void Place_Carriage(int axis, double position) {
  Simulated_Axis& a = Simulated_Machine.Axes[axis];
  a.Start = position;
  a.Carriage = a.Slack = 0;
  a.Commanded = a.Motor = 0;
  Settings_Changed(axis);
}

void Align_With_Application() {
  for (int axis = 1; axis <= Axes; ++axis) {
    Simulated_Machine.Axes[axis].Shift = Machine.Position[axis] - True_Position(axis);
  }
}

double True_Position(int axis) {
  const Simulated_Axis& a = Simulated_Machine.Axes[axis];
  return a.Start + a.Carriage / a.Scale;
}

double Commanded_Position(int axis) {
  const Simulated_Axis& a = Simulated_Machine.Axes[axis];
  return a.Start + static_cast<double>(a.Commanded) / a.Scale;
}

namespace {

Simulated_Axis_View View_Axis(int axis, std::int64_t now) {
  const Simulated_Axis& a = Simulated_Machine.Axes[axis];
  Simulated_Axis_View view;
  view.Position = True_Position(axis);
  view.Commanded = Commanded_Position(axis);
  view.Application_Position = Machine.Position[axis];
  const double apart = view.Application_Position - a.Shift - view.Position;
  view.Steps_Apart = std::llround(apart * a.Scale);
  // At rest once the next step is late.
  const bool moving = a.Interval > 0 && now - a.Rise_Time < 4 * a.Interval;
  if (moving) view.Rate = 60e9 / static_cast<double>(a.Interval) / a.Scale;
  view.Negative = a.Negative;
  view.Enabled = a.Enabled;
  view.Stalled = a.Stalled;
  view.Travel_Low = a.Settings.Travel_Low;
  view.Travel_High = a.Settings.Travel_High;
  view.Lost = a.Lost;
  return view;
}

Simulated_Input_View View_Input(int number, std::int64_t now) {
  const Simulated_Input& input = Simulated_Machine.Inputs[number];
  const Wired_Pin& pin = Wiring().Inputs[number];
  Simulated_Input_View view;
  view.Used = pin.Mask != 0;
  view.High = Input_High(number, now);
  view.On = view.Used && view.High == pin.Invert;
  view.Pressed = input.Pressed;
  view.Force = input.Force;
  view.Fault = input.Fault;
  return view;
}

Simulated_Output_View View_Output(int n, std::int64_t now) {
  const Simulated_Output& output = Simulated_Machine.Outputs[n];
  const std::int64_t on_time = output.On_Time + (output.On ? now - output.Since : 0);
  return {Wiring().Outputs[12 + n].Mask != 0, output.On, static_cast<double>(on_time) / 1e9,
          output.Switchings};
}

}  // namespace

Simulated_Machine_View View_Simulated_Machine() {
  Follow_Setup();
  const std::int64_t now = Machine_Time();
  Simulated_Machine_View view;
  view.Seconds = static_cast<double>(now) / 1e9;
  for (int axis = 1; axis <= Axes; ++axis) view.Axes[axis] = View_Axis(axis, now);
  for (int input = 0; input <= 5; ++input) view.Inputs[input] = View_Input(input, now);
  for (int n = 1; n <= 5; ++n) view.Outputs[n] = View_Output(n, now);
  view.Spindle_Speed = Spindle_Speed(now);
  view.Power_Cut = Simulated_Machine.EStop_Cuts_Power && Simulated_Machine.Inputs[EStop].Pressed;
  view.Virtual_Time = Virtual_Clock.Installed;
  view.Speed_Factor = Virtual_Clock.Installed ? Virtual_Clock.Speed_Factor : 1;
  view.Findings = Findings_Text();
  return view;
}

}  // namespace norvik
