#include "parallel/port_ranges.h"

#include "parallel/ports.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdio>
#include <optional>

namespace norvik {

Port_Ranges_State Port_Ranges;

namespace {

constexpr std::array<Port_Range, 3> Usual_Ports{{{0x278, 0x27A}, {0x378, 0x37A}, {0x3BC, 0x3BE}}};

bool Holds(const Port_Range& range, std::int32_t port) {
  return port >= range.First && port <= range.Last;
}

// "0x300", "&H300" or "768".
std::optional<std::int32_t> Address_In(std::string_view text) {
  int base = 10;
  for (const std::string_view mark : {"0x", "0X", "&H", "&h"}) {
    if (!text.starts_with(mark)) continue;
    text.remove_prefix(mark.size());
    base = 16;
  }
  std::int32_t value = 0;
  const auto read = std::from_chars(text.data(), text.data() + text.size(), value, base);
  const bool whole = read.ec == std::errc() && read.ptr == text.data() + text.size();
  if (!whole || value < Lowest_Port || value > 0xFFFF) return std::nullopt;
  return value;
}

}  // namespace

bool Is_Machine_Port(std::int32_t port) noexcept {
  const auto is_among = [port](const auto& ranges) {
    return std::any_of(ranges.begin(), ranges.end(), [port](const Port_Range& range) {
      return Holds(range, port) || Holds(range, port - Dummy_Port_Offset);
    });
  };
  return is_among(Usual_Ports) || is_among(Port_Ranges.Cards);
}

std::vector<Port_Range> Ranges_In(std::string_view text) {
  std::vector<Port_Range> ranges;
  while (!text.empty()) {
    const std::string_view item = text.substr(0, text.find_first_of(", "));
    text.remove_prefix(std::min(item.size() + 1, text.size()));
    const auto dash = item.find('-');
    const auto first = Address_In(item.substr(0, dash));
    const auto last = dash == std::string_view::npos ? first : Address_In(item.substr(dash + 1));
    if (first && last && *first <= *last) ranges.push_back({*first, *last});
  }
  return ranges;
}

std::string Words_About_Refused_Port(std::int32_t port) {
  std::array<char, 16> hexadecimal{};
  std::snprintf(hexadecimal.data(), hexadecimal.size(), "0x%X", static_cast<unsigned>(port));
  return "Port " + std::to_string(port) + " (" + hexadecimal.data() +
         ") is no register of a parallel port or of an add-on card of this computer, so it is not "
         "accessed: devices of the computer lie there. Correct the port setup; registers of a card "
         "that was not found are named by Card_Ports in section Platform of Norvik.Ini "
         "(Card_Ports=0x300-0x307).";
}

}  // namespace norvik
