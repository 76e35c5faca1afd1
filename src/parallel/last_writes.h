// last_writes.h: outputs and motors off when a signal ends the process on the spot.
//
// A signal handler may neither allocate nor lock, and it may come in the middle of any statement.
// So what has to be written is worked out whenever the pins are brought to rest, into a plain
// table: for each output port the bits that are ours and their levels for off. The handler puts
// them into the byte that was written to the port last, one write for each port.
#pragma once

#include <cstdint>
#include <optional>

namespace norvik {

// Writes one byte past everything that may allocate or raise.
using Raw_Port_Write = void (*)(std::uint16_t port, std::uint8_t value) noexcept;

// The byte that was written to a port last; absent: none.
using Last_Byte_Of = std::optional<std::uint8_t> (*)(std::int32_t port);

// Empties the table.
void Forget_Last_Writes();
// One more bit, by its mask, with its level at rest.
void Add_Last_Write(std::int32_t port, std::uint8_t mask, bool high);

// Makes the writes; ports that nothing was written to are left out. Safe in a signal handler.
void Make_Last_Writes(Raw_Port_Write write, Last_Byte_Of last_byte_of) noexcept;

}  // namespace norvik
