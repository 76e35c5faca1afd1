// port_ranges.h: the addresses that a machine may be wired to.
//
// A machine file may come from a stranger, and behind other addresses of the I/O space lie devices
// of the computer itself; one byte at 0xCF9 resets it. So the real port takes the registers of the
// three usual parallel ports, those of add-on cards, and no others.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace norvik {

// Both ends belong to it.
struct Port_Range {
  std::int32_t First = 0, Last = 0;
};

struct Port_Ranges_State {
  std::vector<Port_Range> Cards;  // registers of add-on cards; fixed when the port is chosen
};
extern Port_Ranges_State Port_Ranges;

// True for a register of a parallel port (0x278, 0x378, 0x3BC and the two behind each) or of a
// card, and for the place of its dummy writes 12 addresses further on.
bool Is_Machine_Port(std::int32_t port) noexcept;

// Ranges as "0x300-0x307, &HD100, 53504" in hexadecimal or decimal, parted by commas or blanks.
// What cannot be read is left out.
std::vector<Port_Range> Ranges_In(std::string_view text);

// Why the port is refused, with what to do.
std::string Words_About_Refused_Port(std::int32_t port);

}  // namespace norvik
