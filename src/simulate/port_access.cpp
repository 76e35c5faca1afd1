#include "simulate/port_access.h"

#include "core/setup.h"
#include "platform/platform.h"
#include "simulate/axis_model.h"
#include "simulate/findings.h"
#include "simulate/input_model.h"
#include "simulate/output_model.h"
#include "simulate/port_space.h"
#include "simulate/simulated_machine.h"
#include "simulate/virtual_clock.h"

#include <bit>

namespace norvik {

namespace {

// Asks for the levels that depend on the time.
void Refresh_Restless(Port_Register& wired) {
  const std::int64_t now = Machine_Time();
  for (std::uint8_t bits = wired.Restless; bits != 0;) {
    const auto mask = static_cast<std::uint8_t>(bits & -bits);
    bits = static_cast<std::uint8_t>(bits ^ mask);
    Refresh_Input(wired.Input_Slot[Bit_Index(mask)], now);
  }
}

// The pin of an output slot has a new level.
void Output_Pin_Changed(int slot, bool high, std::int64_t time) {
  const bool on = high != Port_Space.Map.Outputs[slot].Invert;
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
void Several_Pins_Changed(const Port_Register& wired, std::uint8_t changed, std::int64_t time) {
  for (const bool steps : {false, true}) {
    for (std::size_t bit = 0; bit < 8; ++bit) {
      const auto slot = wired.Output_Slot[bit];
      const bool is_step = slot <= 12 && (slot - 1) % 3 == 0;
      if ((changed >> bit & 1) == 0 || is_step != steps) continue;
      Output_Pin_Changed(slot, (wired.Latch >> bit & 1) != 0, time);
    }
  }
}

void Note_Two_Functions(const Port_Register& wired, std::int64_t time) {
  if (!Count_Finding(Finding_Kind::Two_Functions, 0, time)) return;
  Word_Finding("One write to port " + std::to_string(wired.Address) +
               " changed the pins of two functions");
}

// On a port that does not read back, a program that reads, changes one bit and writes puts every
// other bit to what the read answered: a bit that differs from the answer is the one it meant, any
// other change is stale. True when the write was one of these.
bool Note_Stale_Write(const Port_Register& wired, std::uint8_t changed, std::int64_t time) {
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

void Latch_Value(Port_Register& wired, std::uint8_t value) {
  const auto changed = static_cast<std::uint8_t>((wired.Latch ^ value) & wired.Output);
  wired.Latch = value;
  Port_Space.Value[wired.Address] = Read_Value(wired);
  if (changed == 0) return;
  const std::int64_t time = Machine_Time();
  // A program that works on remembered bytes does not go by the answer.
  const bool blind =
      Simulated_Machine.Output_Read_Back != Read_Back::Latch && !MachineSetup.Port_Shadow;
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

std::uint8_t Simulated_Port_Read(std::uint16_t address) {
  ++Simulated_Machine.Reads;
  const Access access;
  Port_Register* wired = Register_At(address);
  if (wired != nullptr && wired->Restless != 0) {
    Refresh_Restless(*wired);
    return Read_Value(*wired);
  }
  return Port_Space.Value[address];
}

void Simulated_Port_Write(std::uint16_t address, std::uint8_t value) {
  ++Simulated_Machine.Writes;
  const Access access;
  if (Port_Space.Index[address] == Unmapped_Port) Follow_Setup();
  if (Port_Register* wired = Register_At(address)) return Latch_Value(*wired, value);
  if (Port_Space.Index[address] == Unmapped_Port) Note_Unmapped_Write(address);
}

}  // namespace norvik
