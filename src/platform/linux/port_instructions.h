// port_instructions.h: the processor's byte instructions for its I/O space.
#pragma once

#include <cstdint>

namespace norvik {

// Allows this thread to access one address. 0, or the error number of the refusal (ENOSYS on
// processors without an I/O space).
int Allow_Port(std::uint16_t address);
// Only after Allow_Port answered 0 for the address.
std::uint8_t In_Byte(std::uint16_t address);
void Out_Byte(std::uint16_t address, std::uint8_t value);

}  // namespace norvik
