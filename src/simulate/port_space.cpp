#include "simulate/port_space.h"

#include "platform/platform.h"
#include "simulate/axis_model.h"
#include "simulate/findings.h"
#include "simulate/input_model.h"
#include "simulate/output_model.h"
#include "simulate/simulated_machine.h"
#include "simulate/virtual_clock.h"

#include <array>
#include <bit>

namespace norvik {

namespace {

constexpr std::int32_t Dummy_Offset = 12;

// One wired register. `Output` and `Input` are masks of its wired bits; the others keep what was
// written.
struct Register {
  std::uint16_t Address = 0;
  std::uint8_t Latch = 0;
  std::uint8_t Output = 0, Input = 0;
  std::uint8_t Levels = 255;                 // of the input bits
  std::uint8_t Restless = 0;                 // input bits whose level depends on the time
  std::array<std::int8_t, 8> Output_Slot{};  // by bit, 0: none
  std::array<std::int8_t, 8> Input_Slot{};   // by bit, -1: none
};

// Index entries of an address that is no register.
constexpr std::uint8_t Unmapped = 255, Dummy = 254;

struct Port_Space_State {
  Port_Space_State() { Index.fill(Unmapped); }
  Wired_Map Map;
  std::vector<Register> Registers;
  std::array<std::uint8_t, 65536> Index;    // register, Dummy or Unmapped
  std::array<std::uint8_t, 65536> Value{};  // what a read answers
};
Port_Space_State Space;

Register* Register_At(std::int32_t port) {
  const std::uint8_t index = Space.Index[static_cast<std::uint16_t>(port)];
  return index >= Dummy ? nullptr : &Space.Registers[index];
}

Register& Add_Register(std::int32_t port) {
  if (Register* known = Register_At(port)) return *known;
  const auto address = static_cast<std::uint16_t>(port);
  Space.Index[address] = static_cast<std::uint8_t>(Space.Registers.size());
  Register& added = Space.Registers.emplace_back();
  added.Address = address;
  added.Input_Slot.fill(-1);
  return added;
}

std::size_t Bit_Index(std::uint8_t mask) {
  return static_cast<std::size_t>(std::countr_zero(mask));
}

std::uint8_t Blind_Answer() {
  return Simulated_Machine.Output_Read_Back == Read_Back::Zero ? 0 : 255;
}

std::uint8_t Read_Value(const Register& wired) {
  std::uint8_t latch = wired.Latch;
  if (Simulated_Machine.Output_Read_Back != Read_Back::Latch) latch = Blind_Answer();
  return static_cast<std::uint8_t>((latch & ~wired.Input) | (wired.Levels & wired.Input));
}

void Set_Level_Bit(Register& wired, std::uint8_t mask, bool high) {
  wired.Levels = static_cast<std::uint8_t>(high ? wired.Levels | mask : wired.Levels & ~mask);
}

// Asks for the levels that depend on the time.
void Refresh_Restless(Register& wired) {
  const std::int64_t now = Machine_Time();
  for (std::uint8_t bits = wired.Restless; bits != 0;) {
    const auto mask = static_cast<std::uint8_t>(bits & -bits);
    bits = static_cast<std::uint8_t>(bits ^ mask);
    Refresh_Input(wired.Input_Slot[Bit_Index(mask)], now);
  }
}

// The pin of an output slot has a new level.
void Output_Pin_Changed(int slot, bool high, std::int64_t time) {
  const bool on = high != Space.Map.Outputs[slot].Invert;
  if (slot > 12) return Output_Changed(slot - 12, on, time);
  const int axis = (slot + 2) / 3;
  switch ((slot - 1) % 3) {
    case 0:
      return Step_Pin_Changed(axis, high, time);
    case 1:
      return Direction_Pin_Changed(axis, on, time);
    default:
      return Enable_Pin_Changed(axis, on, time);
  }
}

// Directions and enables before steps, as a driver would see the slower signal late at the latest.
void Several_Pins_Changed(const Register& wired, std::uint8_t changed, std::int64_t time) {
  for (const bool steps : {false, true}) {
    for (std::size_t bit = 0; bit < 8; ++bit) {
      const int slot = wired.Output_Slot[bit];
      const bool is_step = slot <= 12 && (slot - 1) % 3 == 0;
      if ((changed >> bit & 1) == 0 || is_step != steps) continue;
      Output_Pin_Changed(slot, (wired.Latch >> bit & 1) != 0, time);
    }
  }
}

void Note_Two_Functions(const Register& wired, std::int64_t time) {
  if (!Count_Finding(Finding_Kind::Two_Functions, 0, time)) return;
  Word_Finding("One write to port " + std::to_string(wired.Address) +
               " changed the pins of two functions");
}

// On a port that does not read back, a program that reads, changes one bit and writes puts every
// other bit to what the read answered: a bit that differs from the answer is the one it meant, any
// other change is stale. True when the write was one of these.
bool Note_Stale_Write(const Register& wired, std::uint8_t changed, std::int64_t time) {
  const auto meant = static_cast<std::uint8_t>((wired.Latch ^ Blind_Answer()) & wired.Output);
  const auto others = static_cast<std::uint8_t>(changed & ~meant);
  const bool stale =
      meant == 0 ? !std::has_single_bit(changed) : std::has_single_bit(meant) && others != 0;
  if (stale && Count_Finding(Finding_Kind::Stale_Write, 0, time)) {
    Word_Finding("A write to port " + std::to_string(wired.Address) +
                 " put the pin of another function back: the port does not read back what was "
                 "written");
  }
  return stale;
}

void Latch_Value(Register& wired, std::uint8_t value) {
  const auto changed = static_cast<std::uint8_t>((wired.Latch ^ value) & wired.Output);
  wired.Latch = value;
  Space.Value[wired.Address] = Read_Value(wired);
  if (changed == 0) return;
  const std::int64_t time = Machine_Time();
  const bool blind = Simulated_Machine.Output_Read_Back != Read_Back::Latch;
  const bool stale = blind && Note_Stale_Write(wired, changed, time);
  if (std::has_single_bit(changed)) {
    Output_Pin_Changed(wired.Output_Slot[Bit_Index(changed)], (value & changed) != 0, time);
  } else {
    if (!stale) Note_Two_Functions(wired, time);
    Several_Pins_Changed(wired, changed, time);
  }
}

void Note_Unmapped_Write(std::uint16_t address) {
  if (!Count_Finding(Finding_Kind::Unmapped_Write, 0, Machine_Time())) return;
  Word_Finding("A write to port " + std::to_string(address) + ", where nothing is wired");
}

// An access takes its time. The virtual clock moves before the machine sees the access; on a real
// clock the machine's own work is part of the time.
class Access {
 public:
  Access() : Cost(Simulated_Machine.Access_Time) {
    if (Cost <= 0) return;
    if (Virtual_Clock.Installed) {
      Advance_Virtual_Clock(Cost);
      Cost = 0;
    } else {
      Begin = Platform.Monotonic_Clock();
    }
  }
  ~Access() {
    if (Cost <= 0) return;
    // A clock that stands still ends the wait.
    std::int64_t now = Platform.Monotonic_Clock(), last = Begin - 1;
    while (now < Begin + Cost && now != last) {
      last = now;
      now = Platform.Monotonic_Clock();
    }
  }
  Access(const Access&) = delete;
  Access& operator=(const Access&) = delete;

 private:
  std::int64_t Cost = 0, Begin = 0;
};

}  // namespace

std::int64_t Machine_Time() {
  return Virtual_Clock.Installed ? Virtual_Clock.Now : Platform.Monotonic_Clock();
}

void Wire_Ports(const Wired_Map& map) {
  const std::vector<Register> before = std::move(Space.Registers);
  Space.Map = map;
  Space.Registers.clear();
  Space.Index.fill(Unmapped);
  Space.Value.fill(Simulated_Machine.Floating_Bus);
  for (int slot = 1; slot <= 17; ++slot) {
    const Wired_Pin& pin = map.Outputs[slot];
    if (pin.Mask == 0) continue;
    Register& wired = Add_Register(pin.Port);
    wired.Output |= pin.Mask;
    // As a program that ended in order leaves it: steps at rest, motors and outputs off.
    if (pin.Invert) wired.Latch |= pin.Mask;
    wired.Output_Slot[Bit_Index(pin.Mask)] = static_cast<std::int8_t>(slot);
  }
  for (int slot = 0; slot <= 5; ++slot) {
    const Wired_Pin& pin = map.Inputs[slot];
    if (pin.Mask == 0) continue;
    Register& wired = Add_Register(pin.Port);
    wired.Input |= pin.Mask;
    wired.Input_Slot[Bit_Index(pin.Mask)] = static_cast<std::int8_t>(slot);
  }
  for (const Register& old : before) {
    if (Register* kept = Register_At(old.Address)) kept->Latch = old.Latch;
  }
  for (const Register& wired : Space.Registers) {
    const std::int32_t dummy = wired.Address + Dummy_Offset;
    if (dummy > 65535) continue;
    std::uint8_t& index = Space.Index[static_cast<std::uint16_t>(dummy)];
    if (index == Unmapped) index = Dummy;
  }
  Refresh_Reads();
}

const Wired_Map& Wiring() {
  return Space.Map;
}

bool Latched_High(int slot) {
  const Wired_Pin& pin = Space.Map.Outputs[slot];
  return pin.Mask != 0 && (Register_At(pin.Port)->Latch & pin.Mask) != 0;
}

void Refresh_Reads() {
  for (const Register& wired : Space.Registers) Space.Value[wired.Address] = Read_Value(wired);
}

std::uint8_t Simulated_Port_Read(std::uint16_t address) {
  ++Simulated_Machine.Reads;
  const Access access;
  Register* wired = Register_At(address);
  if (wired != nullptr && wired->Restless != 0) {
    Refresh_Restless(*wired);
    return Read_Value(*wired);
  }
  return Space.Value[address];
}

void Simulated_Port_Write(std::uint16_t address, std::uint8_t value) {
  ++Simulated_Machine.Writes;
  const Access access;
  if (Space.Index[address] == Unmapped) Follow_Setup();
  if (Register* wired = Register_At(address)) return Latch_Value(*wired, value);
  if (Space.Index[address] == Unmapped) Note_Unmapped_Write(address);
}

void Set_Input_Level(int input, bool high, bool restless) {
  const Wired_Pin& pin = Space.Map.Inputs[input];
  if (pin.Mask == 0) return;
  Register* wired = Register_At(pin.Port);
  Set_Level_Bit(*wired, pin.Mask, high);
  wired->Restless = static_cast<std::uint8_t>(restless ? wired->Restless | pin.Mask
                                                       : wired->Restless & ~pin.Mask);
  Space.Value[wired->Address] = Read_Value(*wired);
}

}  // namespace norvik
