// port_cards.h: the I/O addresses of add-on cards with parallel ports.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace norvik {

// Both ends belong to it.
struct Card_Range {
  std::uint16_t First = 0, Last = 0;
};

// As the kernel lists them for its PCI devices (files `class` and `resource` of each, documented
// with the kernel under "sysfs-pci"). Empty where there is no such bus. Another folder in tests.
std::vector<Card_Range> Port_Cards(const std::string& devices = "/sys/bus/pci/devices");

}  // namespace norvik
