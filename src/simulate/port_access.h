// port_access.h: a byte written to or read from the simulated ports, and what it does.
#pragma once

#include <cstdint>

namespace norvik {

std::uint8_t Simulated_Port_Read(std::uint16_t address);
void Simulated_Port_Write(std::uint16_t address, std::uint8_t value);

}  // namespace norvik
