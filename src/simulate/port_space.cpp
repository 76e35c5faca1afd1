#include "simulate/port_space.h"

#include "platform/platform.h"
#include "simulate/simulated_machine.h"
#include "simulate/virtual_clock.h"

#include <utility>

namespace norvik {

namespace {

constexpr std::int32_t Dummy_Offset = 12;

Port_Register& Add_Register(std::int32_t port) {
  if (Port_Register* known = Register_At(port)) return *known;
  const auto address = static_cast<std::uint16_t>(port);
  Port_Space.Index[address] = static_cast<std::uint8_t>(Port_Space.Registers.size());
  Port_Register& added = Port_Space.Registers.emplace_back();
  added.Address = address;
  added.Input_Slot.fill(-1);
  return added;
}

void Set_Level_Bit(Port_Register& wired, std::uint8_t mask, bool high) {
  wired.Levels = static_cast<std::uint8_t>(high ? wired.Levels | mask : wired.Levels & ~mask);
}

}  // namespace

Port_Space_State Port_Space;

std::int64_t Machine_Time() {
  return Virtual_Clock.Installed ? Virtual_Clock.Now : Platform.Monotonic_Clock();
}

void Wire_Ports(const Wired_Map& map) {
  const std::vector<Port_Register> before = std::move(Port_Space.Registers);
  Port_Space.Map = map;
  Port_Space.Registers.clear();
  Port_Space.Index.fill(Unmapped_Port);
  Port_Space.Value.fill(Simulated_Machine.Floating_Bus);
  for (int slot = 1; slot <= 17; ++slot) {
    const Wired_Pin& pin = map.Outputs[slot];
    if (pin.Mask == 0) continue;
    Port_Register& wired = Add_Register(pin.Port);
    wired.Output |= pin.Mask;
    // As a program that ended in order leaves it: steps at rest, motors and outputs off.
    if (pin.Invert) wired.Latch |= pin.Mask;
    wired.Output_Slot[Bit_Index(pin.Mask)] = static_cast<std::int8_t>(slot);
  }
  for (int slot = 0; slot <= 5; ++slot) {
    const Wired_Pin& pin = map.Inputs[slot];
    if (pin.Mask == 0) continue;
    Port_Register& wired = Add_Register(pin.Port);
    wired.Input |= pin.Mask;
    wired.Input_Slot[Bit_Index(pin.Mask)] = static_cast<std::int8_t>(slot);
  }
  for (const Port_Register& old : before) {
    if (Port_Register* kept = Register_At(old.Address)) kept->Latch = old.Latch;
  }
  for (const Port_Register& wired : Port_Space.Registers) {
    const std::int32_t dummy = wired.Address + Dummy_Offset;
    if (dummy > 65535) continue;
    std::uint8_t& index = Port_Space.Index[static_cast<std::uint16_t>(dummy)];
    if (index == Unmapped_Port) index = Dummy_Port;
  }
  Refresh_Reads();
}

const Wired_Map& Wiring() {
  return Port_Space.Map;
}

bool Latched_High(int slot) {
  const Wired_Pin& pin = Port_Space.Map.Outputs[slot];
  return pin.Mask != 0 && (Register_At(pin.Port)->Latch & pin.Mask) != 0;
}

void Refresh_Reads() {
  for (const Port_Register& wired : Port_Space.Registers)
    Port_Space.Value[wired.Address] = Read_Value(wired);
}

void Set_Input_Level(int input, bool high, bool restless) {
  const Wired_Pin& pin = Port_Space.Map.Inputs[input];
  if (pin.Mask == 0) return;
  Port_Register* wired = Register_At(pin.Port);
  Set_Level_Bit(*wired, pin.Mask, high);
  wired->Restless = static_cast<std::uint8_t>(restless ? wired->Restless | pin.Mask
                                                       : wired->Restless & ~pin.Mask);
  Port_Space.Value[wired->Address] = Read_Value(*wired);
}

}  // namespace norvik
