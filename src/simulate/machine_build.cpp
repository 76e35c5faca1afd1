#include "core/application.h"
#include "core/setup.h"
#include "platform/platform.h"
#include "simulate/carriage_watch.h"
#include "simulate/input_model.h"
#include "simulate/output_model.h"
#include "simulate/port_access.h"
#include "simulate/port_space.h"
#include "simulate/simulated_machine.h"
#include "simulate/simulation_settings.h"
#include "simulate/trail.h"
#include "simulate/virtual_clock.h"

#include <algorithm>
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
  Clear_Trail();
  Simulated_Machine = {};
  Simulated_Machine.Loaded = true;
  Simulated_Machine.Master = Slave_Master();
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
  Straighten_Gantry();
}

// Changes what the motors' power depends on.
template <class Change>
void Change_Power(Change&& change) {
  const std::int64_t now = Machine_Time();
  for (int axis = 1; axis <= Axes; ++axis) Let_Sink(axis, now);
  change();
  for (int axis = 1; axis <= Axes; ++axis) {
    Note_Hold(axis, now);
    Refresh_Input(axis, now);
  }
}

double Held_By_Stops(int axis, double position) {
  const Simulated_Axis_Settings& s = Simulated_Machine.Axes[axis].Settings;
  if (!s.Limited || s.Travel_High < s.Travel_Low) return position;
  return std::clamp(position, s.Travel_Low - s.Overtravel, s.Travel_High + s.Overtravel);
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
  if (Slave_Master() != Simulated_Machine.Master) Straighten_Gantry();
}

void Open_Table_Ends() {
  for (int axis = 1; axis <= Axes; ++axis) {
    Simulated_Machine.Axes[axis].Settings.Limited = false;
    Simulated_Machine.Inputs[axis].Zones = {};
    Settings_Changed(axis);
  }
}

void Settings_Changed(int axis) {
  Carriage_Moved(axis, Machine_Time());
  Set_Quiet_Range(axis);
  Watch_Spindle();
  Input_Changed(axis);
}

void Input_Changed(int input) {
  Refresh_Input(input, Machine_Time());
}

bool Power_Is_Cut() {
  return Simulated_Machine.EStop_Cuts_Power && Simulated_Machine.Inputs[EStop].Pressed;
}

void Clear_Findings() {
  std::erase_if(Findings.List,
                [](const Finding& finding) { return finding.Kind != Finding_Kind::Setup; });
  // What still goes on is found again.
  Simulated_Machine.Askew = Simulated_Machine.Cuts_Dry = false;
  for (int axis = 1; axis <= Axes; ++axis) {
    Simulated_Machine.Axes[axis].Sinking_Told = false;
    Set_Quiet_Range(axis);
  }
  Watch_Spindle();
}

// --- The operator's hands ------------------------------------------------------------------------

void Press_EStop(bool pressed) {
  Change_Power([&] { Simulated_Machine.Inputs[EStop].Pressed = pressed; });
  Input_Changed(EStop);
}

void Set_EStop_Cuts_Power(bool cuts) {
  Change_Power([&] { Simulated_Machine.EStop_Cuts_Power = cuts; });
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

void Set_Input_Bounce(int input, bool on) {
  Simulated_Machine.Inputs[input].Bounce = on ? 5'000'000 : 0;
  Input_Changed(input);
}

void Set_Input_Noise(int input, bool on) {
  Simulated_Machine.Inputs[input].Noise_Period = on ? 50'000'000 : 0;
  Simulated_Machine.Inputs[input].Noise_Width = on ? 200'000 : 0;
  Input_Changed(input);
}

void Place_Carriage(int axis, double position) {
  Simulated_Axis& a = Simulated_Machine.Axes[axis];
  a.Start = Held_By_Stops(axis, position);
  a.Carriage = a.Slack = 0;
  a.Commanded = a.Motor = 0;
  a.Sunk = 0;
  a.Was_Held = false;
  Note_Hold(axis, Machine_Time());
  Jump_Trail();
  Settings_Changed(axis);
}

void Place_Where_Believed() {
  for (int axis = 1; axis <= Axes; ++axis) {
    const double position = Machine.Position[axis] - Simulated_Machine.Axes[axis].Shift;
    if (std::isfinite(position)) Place_Carriage(axis, position);
  }
  Straighten_Gantry();
}

void Align_With_Application() {
  for (int axis = 1; axis <= Axes; ++axis) {
    Simulated_Machine.Axes[axis].Shift = Machine.Position[axis] - True_Position(axis);
    Set_Quiet_Range(axis);  // the top of the material goes with the application's coordinates
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

double Gantry_Skew() {
  const Simulated_Machine_State& m = Simulated_Machine;
  if (m.Master == 0) return 0;
  const double apart = True_Position(4) - True_Position(m.Master) - m.Skew_Origin;
  return apart * m.Axes[4].Scale;
}

}  // namespace norvik
