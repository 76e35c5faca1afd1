#include "parallel/last_writes.h"

#include "core/axes.h"
#include "core/setup.h"
#include "parallel/pin_map.h"
#include "parallel/ports.h"

#include <array>
#include <cstddef>

namespace norvik {

namespace {

struct Last_Write {
  std::int32_t Port = 0;
  std::uint8_t Own = 0, Off = 0;
};

// No more ports than slots that are switched off.
struct Last_Write_State {
  std::array<Last_Write, 2 * Axis_Count + 5> Writes{};
  volatile std::size_t Count = 0;
};
Last_Write_State Last_Writes;

Last_Write& Write_Of_Port(std::int32_t port, std::size_t& count) {
  for (std::size_t i = 0; i < count; ++i) {
    if (Last_Writes.Writes[i].Port == port) return Last_Writes.Writes[i];
  }
  Last_Writes.Writes[count] = {port, 0, 0};
  return Last_Writes.Writes[count++];
}

void Add_Slot(int slot, std::size_t& count) {
  const auto bit = Output_Bit(slot);
  const std::int32_t port = MachineSetup.Output_Port[slot];
  if (!bit || port < Lowest_Port || port > 0xFFFF) return;
  Last_Write& write = Write_Of_Port(port, count);
  const auto mask = static_cast<std::uint8_t>(1U << *bit);
  write.Own = static_cast<std::uint8_t>(write.Own | mask);
  // Off is low, high where the function is inverted.
  if (MachineSetup.Parallel_Output_Bit_Invert[slot]) {
    write.Off = static_cast<std::uint8_t>(write.Off | mask);
  }
}

}  // namespace

void Prepare_Last_Writes() {
  Last_Writes.Count = 0;
  std::size_t count = 0;
  for (int axis = 1; axis <= Axis_Count; ++axis) {
    Add_Slot(Step_Slot(axis), count);
    Add_Slot(Enable_Slot(axis), count);
  }
  for (int n = 1; n <= 5; ++n) Add_Slot(Output_Slot(n), count);
  Last_Writes.Count = count;
}

void Make_Last_Writes(Raw_Port_Write write) noexcept {
  for (std::size_t i = 0; i < Last_Writes.Count; ++i) {
    const Last_Write& last = Last_Writes.Writes[i];
    const auto written = Written_Byte(last.Port);
    if (!written) continue;
    const int value = (*written & ~last.Own) | last.Off;
    write(static_cast<std::uint16_t>(last.Port), static_cast<std::uint8_t>(value));
  }
}

}  // namespace norvik
