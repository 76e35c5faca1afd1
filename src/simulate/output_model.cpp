#include "simulate/output_model.h"

#include "simulate/carriage_watch.h"
#include "simulate/findings.h"
#include "simulate/simulated_machine.h"
#include "simulate/trail.h"

#include <algorithm>
#include <cmath>

namespace norvik {

namespace {

constexpr int Clockwise = 1, Counter_Clockwise = 2, Mist = 3, Flood = 4;
constexpr double Standstill = 0.01;  // of full speed

// Speed that the outputs ask for.
double Wanted_Speed() {
  const auto& outputs = Simulated_Machine.Outputs;
  if (outputs[Clockwise].On == outputs[Counter_Clockwise].On) return 0;
  return outputs[Clockwise].On ? 1 : -1;
}

void Check_Spindle(int n, std::int64_t time) {
  const auto& outputs = Simulated_Machine.Outputs;
  if (outputs[Clockwise].On && outputs[Counter_Clockwise].On) {
    if (Count_Finding(Finding_Kind::Both_Spindle_Directions, 0, time)) {
      Word_Finding("Both spindle directions are on");
    }
  }
  const double speed = Simulated_Machine.Spindle.Speed;
  const double asked = n == Clockwise ? 1 : -1;
  if (outputs[n].On && speed * asked < -Standstill &&
      Count_Finding(Finding_Kind::Spindle_Reversed, 0, time)) {
    Word_Finding("The spindle was reversed before it stood still");
  }
}

void Check_Coolant(std::int64_t time) {
  const auto& outputs = Simulated_Machine.Outputs;
  if (outputs[Clockwise].On || outputs[Counter_Clockwise].On) return;
  if (Count_Finding(Finding_Kind::Coolant_Without_Spindle, 0, time)) {
    Word_Finding("Coolant was switched on with the spindle off");
  }
}

}  // namespace

bool Spindle_Asked() {
  return Wanted_Speed() != 0;
}

double Spindle_Speed(std::int64_t time) {
  const Simulated_Spindle& spindle = Simulated_Machine.Spindle;
  const double wanted = Wanted_Speed();
  const double ramp = std::abs(wanted) > std::abs(spindle.Speed) ? spindle.Run_Up : spindle.Coast;
  if (ramp <= 0) return wanted;
  const double change = static_cast<double>(time - spindle.Time) / 1e9 / ramp;
  return wanted > spindle.Speed ? std::min(spindle.Speed + change, wanted)
                                : std::max(spindle.Speed - change, wanted);
}

void Output_Changed(int n, bool on, std::int64_t time) {
  Simulated_Output& output = Simulated_Machine.Outputs[n];
  if (output.On == on) return;
  if (n <= Counter_Clockwise) Note_Trail_Point(Spindle_Asked());
  Simulated_Spindle& spindle = Simulated_Machine.Spindle;
  spindle.Speed = Spindle_Speed(time);
  spindle.Time = time;
  if (!on) output.On_Time += time - output.Since;
  output.On = on;
  output.Since = time;
  ++output.Switchings;
  if (n <= Counter_Clockwise) {
    Check_Spindle(n, time);
    Watch_Spindle();
  }
  if (on && (n == Mist || n == Flood)) Check_Coolant(time);
}

}  // namespace norvik
