#include "cli/json_text.h"

#include "core/format.h"
#include "core/numbers.h"

#include <cstddef>

namespace norvik {

namespace {

// Length of the UTF-8 character that begins the text; 0: none does.
std::size_t Character_Length(std::string_view text) {
  const auto byte = [&](std::size_t n) { return static_cast<unsigned char>(text[n]); };
  const std::size_t length = byte(0) < 0x80U                       ? 1
                             : byte(0) >= 0xC2U && byte(0) < 0xE0U ? 2
                             : byte(0) >= 0xE0U && byte(0) < 0xF0U ? 3
                             : byte(0) >= 0xF0U && byte(0) < 0xF5U ? 4
                                                                   : 0;
  if (length == 0 || length > text.size()) return 0;
  for (std::size_t n = 1; n < length; ++n) {
    if ((byte(n) & 0xC0U) != 0x80U) return 0;
  }
  return length;
}

}  // namespace

std::string Json_Text(std::string_view text) {
  constexpr std::string_view hex = "0123456789abcdef";
  std::string json = "\"";
  while (!text.empty()) {
    const char c = text.front();
    const std::size_t length = Character_Length(text);
    if (c == '"' || c == '\\') {
      json.append({'\\', c});
    } else if (static_cast<unsigned char>(c) < 0x20U) {
      json.append("\\u00").append(
          {hex[static_cast<unsigned char>(c) / 16U], hex[static_cast<unsigned char>(c) % 16U]});
    } else if (length == 0) {
      json += "\xEF\xBF\xBD";
    } else {
      json += text.substr(0, length);
    }
    text.remove_prefix(length == 0 ? 1 : length);
  }
  return json + '"';
}

std::string Json_Number(std::string_view text) {
  const auto number = Try_Number(text);
  return number ? Shortest_Text(*number) : "null";
}

}  // namespace norvik
