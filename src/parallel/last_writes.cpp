#include "parallel/last_writes.h"

#include <array>
#include <cstddef>

namespace norvik {

namespace {

struct Last_Write {
  std::int32_t Port = 0;
  std::uint8_t Own = 0, Off = 0;
};

// More ports than functions of a machine.
constexpr std::size_t Most_Ports = 32;

struct Last_Write_State {
  std::array<Last_Write, Most_Ports> Writes{};
  volatile std::size_t Count = 0;  // counts an entry once it is whole
};
Last_Write_State Last_Writes;

Last_Write* Entry_Of(std::int32_t port) {
  for (std::size_t i = 0; i < Last_Writes.Count; ++i) {
    if (Last_Writes.Writes[i].Port == port) return &Last_Writes.Writes[i];
  }
  return nullptr;
}

}  // namespace

void Forget_Last_Writes() {
  Last_Writes.Count = 0;
}

void Add_Last_Write(std::int32_t port, std::uint8_t mask, bool high) {
  Last_Write* entry = Entry_Of(port);
  if (entry == nullptr) {
    if (Last_Writes.Count == Most_Ports) return;
    entry = &Last_Writes.Writes[Last_Writes.Count];
    *entry = {port, 0, 0};
    Last_Writes.Count = Last_Writes.Count + 1;
  }
  if (high) entry->Off = static_cast<std::uint8_t>(entry->Off | mask);
  entry->Own = static_cast<std::uint8_t>(entry->Own | mask);
}

void Make_Last_Writes(Raw_Port_Write write, Last_Byte_Of last_byte_of) noexcept {
  for (std::size_t i = 0; i < Last_Writes.Count; ++i) {
    const Last_Write& last = Last_Writes.Writes[i];
    const auto written = last_byte_of(last.Port);
    if (!written) continue;
    const int value = (*written & ~last.Own) | last.Off;
    write(static_cast<std::uint16_t>(last.Port), static_cast<std::uint8_t>(value));
  }
}

}  // namespace norvik
