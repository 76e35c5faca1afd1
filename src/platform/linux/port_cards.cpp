#include "platform/linux/port_cards.h"

#include <array>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <system_error>

namespace norvik {

namespace {

namespace fs = std::filesystem;

// The first two bytes of a PCI class: communication controllers that are serial ports (cards with
// both kinds say so), parallel ports, and others.
constexpr std::array Card_Classes{0x0700U, 0x0701U, 0x0780U};

bool Is_Card(const fs::path& device) {
  std::ifstream file(device / "class");
  unsigned number = 0;
  file >> std::hex >> number;
  for (const unsigned wanted : Card_Classes) {
    if (number >> 8 == wanted) return true;
  }
  return false;
}

// Lines "first last flags" in hexadecimal; bit 8 of the flags marks the I/O space.
void Add_Ranges(const fs::path& device, std::vector<Card_Range>& ranges) {
  constexpr std::uint64_t is_io = 0x100, highest = 0xFFFF;
  std::ifstream file(device / "resource");
  for (std::string line; std::getline(file, line);) {
    std::istringstream words(line);
    std::uint64_t first = 0, last = 0, flags = 0;
    if (!(words >> std::hex >> first >> last >> flags) || (flags & is_io) == 0) continue;
    if (first == 0 || first > last || last > highest) continue;
    ranges.push_back({static_cast<std::uint16_t>(first), static_cast<std::uint16_t>(last)});
  }
}

}  // namespace

std::vector<Card_Range> Port_Cards(const std::string& devices) {
  std::vector<Card_Range> ranges;
  std::error_code failure;
  fs::directory_iterator device(devices, failure);
  for (; !failure && device != fs::directory_iterator(); device.increment(failure)) {
    if (Is_Card(device->path())) Add_Ranges(device->path(), ranges);
  }
  return ranges;
}

}  // namespace norvik
