// What a panel shows of the machine.
#include "core/application.h"
#include "simulate/carriage_watch.h"
#include "simulate/input_model.h"
#include "simulate/output_model.h"
#include "simulate/port_space.h"
#include "simulate/simulated_machine.h"
#include "simulate/virtual_clock.h"

#include <algorithm>
#include <cmath>

namespace norvik {

namespace {

constexpr std::int64_t Busy_Moment = 50'000'000;  // ns

Simulated_Axis_View View_Axis(int axis, std::int64_t now) {
  Let_Sink(axis, now);
  const Simulated_Axis& a = Simulated_Machine.Axes[axis];
  Simulated_Axis_View view;
  view.Position = True_Position(axis);
  view.Commanded = Commanded_Position(axis);
  view.Application_Position = Machine.Position[axis];
  const double apart = view.Application_Position - a.Shift - view.Position;
  view.Steps_Apart = std::llround(apart * a.Scale);
  // At rest once the next step is late, later than what a busy moment of the program explains.
  const bool moving = a.Interval > 0 && now - a.Rise_Time < std::max(4 * a.Interval, Busy_Moment);
  if (moving) view.Rate = 60e9 / static_cast<double>(a.Interval) / a.Scale;
  view.Negative = a.Negative;
  view.Enabled = a.Enabled;
  view.Stalled = a.Stalled;
  view.Travel_Low = a.Settings.Travel_Low;
  view.Travel_High = a.Settings.Travel_High;
  view.Overtravel = a.Settings.Overtravel;
  view.Limited = a.Settings.Limited;
  view.Sinking = Is_Sinking(axis);
  if (Wiring().Inputs[axis].Mask != 0) view.Zones = Simulated_Machine.Inputs[axis].Zones;
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
  view.Bounces = input.Bounce > 0;
  view.Noisy = input.Noise_Period > 0;
  return view;
}

Simulated_Output_View View_Output(int n, std::int64_t now) {
  const Simulated_Output& output = Simulated_Machine.Outputs[n];
  const std::int64_t on_time = output.On_Time + (output.On ? now - output.Since : 0);
  return {Wiring().Outputs[12 + n].Mask != 0, output.On, static_cast<double>(on_time) / 1e9,
          output.Switchings};
}

}  // namespace

std::string Words_Of_Faults(const Simulated_Input_View& view) {
  std::string words;
  const auto add = [&](bool given, const char* word) {
    if (given) words += (words.empty() ? "" : ", ") + std::string(word);
  };
  add(view.Force == Input_Force::On, "held on");
  add(view.Force == Input_Force::Off, "held off");
  add(view.Fault == Input_Fault::Stuck_On, "stuck on");
  add(view.Fault == Input_Fault::Stuck_Off, "stuck off");
  add(view.Fault == Input_Fault::Wire_Broken, "wire broken");
  add(view.Bounces, "bounces");
  add(view.Noisy, "noise");
  return words;
}

Simulated_Machine_View View_Simulated_Machine() {
  Follow_Setup();
  const std::int64_t now = Machine_Time();
  Simulated_Machine_View view;
  view.Seconds = static_cast<double>(now) / 1e9;
  for (int axis = 1; axis <= 4; ++axis) view.Axes[axis] = View_Axis(axis, now);
  for (int input = 0; input <= 5; ++input) view.Inputs[input] = View_Input(input, now);
  for (int n = 1; n <= 5; ++n) view.Outputs[n] = View_Output(n, now);
  view.Spindle_Speed = Spindle_Speed(now);
  view.EStop_Cuts_Power = Simulated_Machine.EStop_Cuts_Power;
  view.Power_Cut = Power_Is_Cut();
  view.Skew = std::llround(Gantry_Skew());
  if (Simulated_Machine.Material_Top) {
    view.Material_Top = *Simulated_Machine.Material_Top - Simulated_Machine.Axes[3].Shift;
  }
  view.Virtual_Time = Virtual_Clock.Installed;
  view.Speed_Factor = Virtual_Clock.Installed ? Virtual_Clock.Speed_Factor : 1;
  view.Findings = Findings_Text();
  return view;
}

}  // namespace norvik
