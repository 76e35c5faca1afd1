#include "simulate/input_model.h"

#include "simulate/carriage_watch.h"
#include "simulate/port_space.h"
#include "simulate/simulated_machine.h"

namespace norvik {

namespace {

// A bouncing contact changes so often before it rests; odd, so that it ends where it should.
constexpr std::int64_t Bounce_Changes = 5;

bool Normally_Closed(int input) {
  const Contact wiring = Simulated_Machine.Inputs[input].Wiring;
  if (wiring == Contact::Matches_Setup) return Wiring().Inputs[input].Invert;
  return wiring == Contact::Normally_Closed;
}

// What the wire reports: pressed, with the operator's finger and the faults.
bool Reported(const Simulated_Input& input) {
  if (input.Fault == Input_Fault::Stuck_On) return true;
  if (input.Fault == Input_Fault::Stuck_Off) return false;
  if (input.Force != Input_Force::Automatic) return input.Force == Input_Force::On;
  return input.Pressed;
}

bool Bouncing(const Simulated_Input& input, std::int64_t time) {
  return time - input.Changed < input.Bounce;
}

// In the bounce the contact changes at even intervals, beginning with the new state.
bool Turned_By_Bounce(const Simulated_Input& input, std::int64_t time) {
  if (!Bouncing(input, time)) return false;
  const std::int64_t part = (time - input.Changed) * Bounce_Changes / input.Bounce;
  return part % 2 != 0;
}

bool In_Noise_Pulse(const Simulated_Input& input, std::int64_t time) {
  return input.Noise_Period > 0 && time % input.Noise_Period < input.Noise_Width;
}

bool Has_Carriage(int number) {
  return number >= 1 && number <= 4;
}

bool In_Zone(const Switch_Zone& zone, double position, double margin) {
  return position >= zone.From - margin && position <= zone.To + margin;
}

}  // namespace

bool Input_High(int number, std::int64_t time) {
  const Simulated_Input& input = Simulated_Machine.Inputs[number];
  const bool pressed = input.Contact_On != Turned_By_Bounce(input, time);
  const bool closed = input.Fault != Input_Fault::Wire_Broken && pressed != Normally_Closed(number);
  return !closed != In_Noise_Pulse(input, time);
}

void Refresh_Input(int number, std::int64_t time) {
  Simulated_Input& input = Simulated_Machine.Inputs[number];
  if (Has_Carriage(number)) Let_Sink(number, time);
  const bool reported = Reported(input);
  if (reported != input.Contact_On) {
    input.Contact_On = reported;
    input.Changed = time;
  }
  const bool restless = Bouncing(input, time) || input.Noise_Period > 0 ||
                        (Has_Carriage(number) && Is_Sinking(number));
  Set_Input_Level(number, Input_High(number, time), restless);
}

void Carriage_Moved(int axis, std::int64_t time) {
  Simulated_Input& input = Simulated_Machine.Inputs[axis];
  const double position = True_Position(axis);
  bool pressed = false;
  for (const auto& zone : input.Zones) {
    if (!zone) continue;
    const double margin = input.Pressed ? input.Hysteresis : 0;
    pressed = pressed || In_Zone(*zone, position, margin);
  }
  if (pressed == input.Pressed) return;
  input.Pressed = pressed;
  Refresh_Input(axis, time);
}

}  // namespace norvik
