#include "parallel/pin_map.h"

#include "core/application.h"
#include "core/axes.h"
#include "core/rounding.h"
#include "core/setup.h"
#include "drive/drive_status.h"
#include "parallel/last_writes.h"
#include "parallel/ports.h"

#include <string>

namespace norvik {

Pin_State Pins;

// Called at every access, so texts of the usual form
// (one digit, or "99") are seen without a scan.
std::optional<int> Bit_In(const std::string& text) {
  const auto digit = [](char c) { return c >= '0' && c <= '9'; };
  if (text.size() == 1 && text[0] >= '0' && text[0] <= '7') return text[0] - '0';
  const auto first = text.find_first_not_of(' ');
  if (first == std::string::npos) return std::nullopt;
  const auto last = text.find_last_not_of(' ');
  int bit = 0;
  for (auto place = first; place <= last; ++place) {
    if (!digit(text[place])) return std::nullopt;
    bit = bit * 10 + (text[place] - '0');
    if (bit > 7) return std::nullopt;
  }
  return bit;
}

namespace {

// One function's place; `Mask` 0: not used.
struct Pin {
  std::int32_t Port = 0;
  std::uint8_t Mask = 0;
  bool Invert = false;
};

std::uint8_t Mask_Of(const std::string& text) {
  const auto bit = Bit_In(text);
  return bit ? static_cast<std::uint8_t>(1u << *bit) : std::uint8_t{0};
}

Pin Output_Pin(int slot) {
  return {MachineSetup.Output_Port[slot], Mask_Of(MachineSetup.Parallel_Output_Bit[slot]),
          MachineSetup.Parallel_Output_Bit_Invert[slot]};
}

Pin Input_Pin(int slot) {
  return {MachineSetup.Input_Port[slot], Mask_Of(MachineSetup.Parallel_Input_Bit[slot]),
          MachineSetup.Parallel_Input_Bit_Invert[slot]};
}

std::uint8_t With_Bit(std::uint8_t value, std::uint8_t mask, bool high) {
  return static_cast<std::uint8_t>(high ? value | mask : value & (255 - mask));
}

void Set_Pin(const Pin& pin, bool high) {
  if (pin.Mask == 0) return;
  PPSetPort(pin.Port, With_Bit(Output_Byte(pin.Port), pin.Mask, high), true);
}

// Brings a function to a logic state through its invert flag.
void Set_Function(int slot, bool on) {
  const Pin pin = Output_Pin(slot);
  Set_Pin(pin, on != pin.Invert);
}

// A step, on the rising edge only.
void Count_Step(int axis, bool negative) {
  const double scale = MachineSetup.Axis_SPI[axis];
  if (scale == 0) {
    throw Fault(Fault_Number::Division_By_Zero,
                "Axis_SPI_" + std::to_string(axis) + " is 0: set the steps per unit of the axis");
  }
  const double delta = (1 / scale) * (negative ? -1 : 1);
  Machine.Position[axis] += delta;
  Drive_Status.Home_Distance[axis] = static_cast<float>(Drive_Status.Home_Distance[axis] + delta);
}

// For an end by a signal: step pins at rest, motors and outputs off.
void Prepare_Last_Writes() {
  Forget_Last_Writes();
  const auto add = [](int slot) {
    const Pin pin = Output_Pin(slot);
    if (pin.Mask != 0) Add_Last_Write(pin.Port, pin.Mask, pin.Invert);
  };
  for (int axis = 1; axis <= Axis_Count; ++axis) {
    add(Step_Slot(axis));
    add(Enable_Slot(axis));
  }
  for (int n = 1; n <= 5; ++n) add(Output_Slot(n));
}

}  // namespace

std::optional<int> Output_Bit(int slot) {
  return Bit_In(MachineSetup.Parallel_Output_Bit[slot]);
}
std::optional<int> Input_Bit(int slot) {
  return Bit_In(MachineSetup.Parallel_Input_Bit[slot]);
}

std::string Output_Role(int slot) {
  if (slot >= Output_Slot(1)) return "output " + std::to_string(slot - Output_Slot(1) + 1);
  constexpr const char* functions[] = {"step", "direction", "enable"};
  return std::string(1, Axis_Letter((slot - 1) / 3 + 1)) + " " + functions[(slot - 1) % 3];
}

std::string Input_Role(int slot) {
  if (slot == EStop_Input) return "E-stop input";
  if (slot == Auxiliary_Input) return "auxiliary input";
  return std::string(1, Axis_Letter(slot)) + " switch";
}

bool Read_Input(int slot) {
  const Pin pin = Input_Pin(slot);
  if (pin.Mask == 0) return false;
  const bool high = (PPGetPort(pin.Port) & pin.Mask) != 0;
  return high == pin.Invert;
}

void Read_Limits() {
  for (int axis = 1; axis <= Axis_Count; ++axis) {
    Drive_Status.Limit_State[axis] = Read_Input(Limit_Input(axis));
    if (Drive_Status.Limit_State[axis]) Drive_Status.Home_Distance[axis] = 0;
  }
  for (int n = 1; n <= 4; ++n) {
    const Pin pin = Output_Pin(Output_Slot(n));
    Drive_Status.Output_State[n] =
        pin.Mask != 0 && ((Output_Byte(pin.Port) & pin.Mask) != 0) != pin.Invert;
  }
}

void Set_Direction(int axis, bool negative) {
  Set_Function(Direction_Slot(axis), negative);
}
void Motor_Enable(int axis) {
  Set_Function(Enable_Slot(axis), true);
}
void Motor_Disable(int axis) {
  Set_Function(Enable_Slot(axis), false);
}
void Output_On(int n) {
  Drive_Status.Output_Commanded[n] = Output_Bit(Output_Slot(n)).has_value();
  Set_Function(Output_Slot(n), true);
}
void Output_Off(int n) {
  Drive_Status.Output_Commanded[n] = false;
  Set_Function(Output_Slot(n), false);
}

void Idle_All_Outputs() {
  Prepare_Last_Writes();
  for (int axis = 1; axis <= Axis_Count; ++axis) {
    const Pin pin = Output_Pin(Step_Slot(axis));
    Set_Pin(pin, pin.Invert);
    Pins.Step_Bit[axis] = pin.Invert ? 1 : 0;
  }
  for (int axis = 1; axis <= Axis_Count; ++axis) Motor_Disable(axis);
}

void All_Outputs_Off() {
  Idle_All_Outputs();
  for (int n = 1; n <= 5; ++n) Output_Off(n);
}

void Toggle_Step(int axis, bool negative, bool enabled, bool is_backlash) {
  if (enabled) Pins.Motor_Enable_Timer[axis] = MachineSetup.Parallel_MotorEnable_Time;
  const Pin pin = Output_Pin(Step_Slot(axis));
  if (pin.Mask == 0) return;
  const std::uint8_t value = Output_Byte(pin.Port);
  std::int16_t& level = Pins.Step_Bit[axis];
  level = level == 0 ? 1 : 0;
  const double position = Machine.Position[axis];
  const float home_distance = Drive_Status.Home_Distance[axis];
  if (level != 0 && enabled && !is_backlash) Count_Step(axis, negative);
  if (PPSetPort(pin.Port, With_Bit(value, pin.Mask, level != 0), enabled)) return;
  // The pin did not move: no step was made.
  Machine.Position[axis] = position;
  Drive_Status.Home_Distance[axis] = home_distance;
}

}  // namespace norvik
