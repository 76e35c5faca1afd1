#include "control/manual/joystick_jog.h"

#include "control/manual/jog.h"
#include "control/manual/jog_guard.h"
#include "control/manual/knob.h"
#include "core/fault.h"
#include "core/numbers.h"
#include "core/operation.h"
#include "core/paths.h"
#include "core/rounding.h"
#include "core/scope.h"
#include "core/setup.h"
#include "platform/platform.h"

#include <algorithm>
#include <cstdlib>

namespace norvik {

Joystick_Jog_State Joystick_Jog;

namespace {

constexpr int Device = 0;
constexpr std::int32_t Full_Range = 65535, Middle = 32767;

// Entries of the joystick table.
constexpr int Moving_Stick = 0, Z_Up = 1, Z_Down = 2, A_One_Way = 3, A_Other_Way = 4, Feed_Down = 5,
              Feed_Up = 6, Divisor = 7, Override_Stick = 8;

// Bits of the wanted set with what they move. Forward on the stick is Y positive and reads low.
struct Sense {
  std::uint32_t Bit;
  Jog_Way Way;
};
constexpr Sense Senses[] = {{1, {1, true}},   {2, {1, false}}, {4, {2, true}},  {8, {2, false}},
                            {16, {3, false}}, {32, {3, true}}, {64, {4, true}}, {128, {4, false}}};
constexpr std::uint32_t Stick_Bits = 15;

using Positions = std::array<std::int32_t, 2>;

// The two positions of the stick that an entry names; an unknown name gives none.
std::optional<Positions> Stick_Of(const Joystick_State& state, int entry) {
  const std::string name = Upper(Trim(MachineSetup.JoyJog_KeyValue[entry]));
  if (name == "LEFT STICK") return Positions{state.Axis_X, state.Axis_Y};
  if (name == "RIGHT STICK") return Positions{state.Axis_Z, state.Axis_R};
  return std::nullopt;
}

// Whether the button of an entry is down. "NU" and anything else that is no button takes no part.
bool Button_Down(std::uint32_t buttons, int entry) {
  int number = 0;
  Trap_With([](const Fault&) {},
            [&] {
              const std::string text = Trim(MachineSetup.JoyJog_KeyValue[entry]);
              if (!text.empty() && Upper(text) != "NU") number = To_Int32(To_Double(text));
            });
  return number >= 1 && number <= 16 && (buttons >> (number - 1) & 1U) != 0;
}

void Widen_Spans(const Positions& positions) {
  auto& stick = Joystick_Jog.Stick;
  if (!stick) {
    stick.emplace();
    for (std::size_t i = 0; i < positions.size(); ++i) {
      (*stick)[i].Smallest = (*stick)[i].Largest = positions[i];
      constexpr std::int32_t believable = Full_Range / 8;
      if (std::abs(positions[i] - Middle) < believable) (*stick)[i].Centre = positions[i];
    }
  }
  for (std::size_t i = 0; i < positions.size(); ++i) {
    Stick_Axis& axis = (*stick)[i];
    axis.Smallest = std::min(axis.Smallest, positions[i]);
    axis.Largest = std::max(axis.Largest, positions[i]);
  }
}

// The senses beyond centre +- spread; bits as in the wanted set.
std::uint32_t Deflected(const Positions& positions) {
  std::uint32_t bits = 0;
  for (std::size_t i = 0; i < positions.size(); ++i) {
    const Stick_Axis& axis = (*Joystick_Jog.Stick)[i];
    const bool low = positions[i] < axis.Centre - axis.Spread();
    const bool high = positions[i] > axis.Centre + axis.Spread();
    if (i == 0) bits |= (low ? 1U : 0U) | (high ? 2U : 0U);
    if (i == 1) bits |= (high ? 4U : 0U) | (low ? 8U : 0U);
  }
  return bits;
}

bool Moved(const Positions& positions) {
  for (std::size_t i = 0; i < positions.size(); ++i) {
    const Stick_Axis& axis = (*Joystick_Jog.Stick)[i];
    if (std::abs(positions[i] - axis.Centre) > 2 * axis.Spread()) return true;
  }
  return false;
}

std::uint32_t Button_Bits(std::uint32_t buttons) {
  return (Button_Down(buttons, Z_Up) ? 16U : 0U) | (Button_Down(buttons, Z_Down) ? 32U : 0U) |
         (Button_Down(buttons, A_One_Way) ? 64U : 0U) |
         (Button_Down(buttons, A_Other_Way) ? 128U : 0U);
}

// The wanted set. `holds`: the stick counts as long as it is beyond the inner bounds.
std::uint32_t Wanted_Set(const Joystick_State& state, bool holds) {
  std::uint32_t bits = Button_Bits(state.Buttons);
  if (const auto positions = Stick_Of(state, Moving_Stick)) {
    Widen_Spans(*positions);
    if (holds || Moved(*positions)) bits |= Deflected(*positions);
  }
  // Both senses of one axis cancel each other.
  for (std::uint32_t pair = 3; pair < 256; pair <<= 2)
    if ((bits & pair) == pair) bits &= ~pair;
  return bits;
}

void Show_Readings(const Joystick_State& state) {
  JogKey_Form.List1 = Joystick_Lines(state);
  if (const auto positions = Stick_Of(state, Moving_Stick)) {
    JogKey_Form.Picture_Joy_Spot.X = (*positions)[0];
    JogKey_Form.Picture_Joy_Spot.Y = (*positions)[1];
  }
  JogKey_Host.Form_Changed();
}

void Serve_Edge_Buttons(std::uint32_t buttons) {
  const auto pressed = [&](int entry) {
    return Button_Down(buttons, entry) && !Button_Down(Joystick_Jog.Buttons, entry);
  };
  if (pressed(Feed_Down)) Step_Jog_Feed(-1);
  if (pressed(Feed_Up)) Step_Jog_Feed(1);
  if (pressed(Divisor)) Increment_Jog_Toggle();
  Joystick_Jog.Buttons = buttons;
}

// The knob follows the stick by one a tick.
void Follow_Override(const Joystick_State& state) {
  const auto positions = Stick_Of(state, Override_Stick);
  if (!positions) return;
  const auto wanted = static_cast<int>(std::clamp((*positions)[0] / 655.35, 0.0, 100.0));
  if (wanted == Joystick_Jog.Knob_Value) return;
  Joystick_Jog.Knob_Value = static_cast<std::int16_t>(Joystick_Jog.Knob_Value +
                                                      (wanted > Joystick_Jog.Knob_Value ? 1 : -1));
  Knob.Knob_Position = Joystick_Jog.Knob_Value;
  Draw_Knob(Knob.Knob_Position);
  Knob_Process();
}

void Start_Joystick_Jog(std::uint32_t wanted) {
  if (Anything_Moves()) return;
  std::vector<Jog_Way> ways;
  for (const Sense& sense : Senses)
    if (wanted & sense.Bit) ways.push_back(sense.Way);
  const Value_In_Scope jogging(Joystick_Jog.Jogging, true);
  Start_Key_Jog(ways);
}

void Lose_Joystick() {
  if (Joystick_Jog.Jogging) Release_Jog();
  Reset_Joystick();
}

bool By_Joystick() {
  return MachineSetup.KeyJog_Device == 1;
}

}  // namespace

std::int32_t Stick_Axis::Spread() const {
  return std::max(Largest - Smallest, Full_Range / 2) / 8;
}

std::vector<std::string> Joystick_Lines(const Joystick_State& state) {
  std::vector<std::string> lines;
  for (int number = 16; number >= 1; --number) {
    const bool down = (state.Buttons >> (number - 1) & 1U) != 0;
    lines.push_back("Button " + std::to_string(number) + "  =" + (down ? "True" : "False"));
  }
  const std::pair<const char*, std::int32_t> axes[] = {{"X", state.Axis_X}, {"Y", state.Axis_Y},
                                                       {"Z", state.Axis_Z}, {"r", state.Axis_R},
                                                       {"u", state.Axis_U}, {"v", state.Axis_V}};
  for (const auto& [name, value] : axes)
    lines.push_back(std::string("Axis ") + name + "  =" + std::to_string(value));
  return lines;
}

void Reset_Joystick() {
  const bool jogging = Joystick_Jog.Jogging;
  Joystick_Jog = {};
  Joystick_Jog.Jogging = jogging;
  Joystick_Jog.Knob_Value = Knob.Knob_Position;
}

void JogKey_Timer1() {
  Jog_Guard_Tick();
  const auto state = Platform.Read_Joystick(Device);
  if (!state) {
    Lose_Joystick();
    return;
  }
  Show_Readings(*state);
  const std::uint32_t wanted = Wanted_Set(*state, Joystick_Jog.Wanted & Stick_Bits);
  if (!By_Joystick()) return;
  Serve_Edge_Buttons(state->Buttons);
  Follow_Override(*state);
  Joystick_Jog.Joy_Change = wanted != Joystick_Jog.Wanted;
  Joystick_Jog.Wanted = wanted;
  if (!JogKey_Host.Has_Focus()) {
    Joystick_Jog.Armed = false;
  } else if (wanted == 0) {
    Joystick_Jog.Armed = true;
  }
  if (Joystick_Jog.Joy_Change && wanted != 0 && Joystick_Jog.Armed) Start_Joystick_Jog(wanted);
}

void JogKey_Timer2() {
  if (!By_Joystick() || !Joystick_Jog.Jogging) return;
  const auto state = Platform.Read_Joystick(Device);
  if (!state) {
    Lose_Joystick();
    return;
  }
  if (Wanted_Set(*state, true) != 0) return;
  Joystick_Jog.Wanted = 0;
  End_Key_Jog();
}

}  // namespace norvik
