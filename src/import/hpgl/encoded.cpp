#include "import/hpgl/encoded.h"

#include <cmath>
#include <cstdint>
#include <optional>

namespace norvik {

namespace {

class Decoder {
 public:
  explicit Decoder(std::string_view text) : Text(text) {}

  // A character that is no digit of a number; absent at the end and before a number.
  std::optional<char> Flag() {
    while (At < Text.size()) {
      const auto c = static_cast<unsigned char>(Text[At]);
      if (Is_Digit(c)) return std::nullopt;
      ++At;
      if (c == ':' || c == '<' || c == '>' || c == '=' || c == '7') return static_cast<char>(c);
    }
    return std::nullopt;
  }
  // The next number as written; absent when the text ends in it.
  std::optional<std::int64_t> Number() {
    std::int64_t value = 0, place = 1;
    const std::int64_t base = Seven_Bits ? 32 : 64;
    for (; At < Text.size(); ++At) {
      const auto c = static_cast<unsigned char>(Text[At]);
      if (!Is_Digit(c)) continue;  // line ends may stand anywhere
      if (place > (std::int64_t{1} << 48)) return std::nullopt;
      const bool last = Seven_Bits ? c >= 95 : c >= 191;
      value += place * (c - (last ? (Seven_Bits ? 95 : 191) : 63));
      place *= base;
      if (!last) continue;
      ++At;
      return (value & 1) != 0 ? -(value >> 1) : value >> 1;
    }
    return std::nullopt;
  }
  bool At_End() const { return At >= Text.size(); }
  bool Seven_Bits = false;

 private:
  bool Is_Digit(unsigned char c) const {
    return (c >= 63 && c <= 126) || (!Seven_Bits && c >= 191 && c <= 254);
  }
  std::string_view Text;
  std::size_t At = 0;
};

}  // namespace

bool Decode_Polyline(std::string_view text, const std::function<void(const Encoded_Move&)>& move,
                     const std::function<void(int pen)>& select_pen) {
  Decoder decoder(text);
  double unit = 1;
  Encoded_Move next;
  for (;;) {
    if (const auto flag = decoder.Flag()) {
      if (*flag == '7') decoder.Seven_Bits = true;
      if (*flag == '<') next.Pen_Up = true;
      if (*flag == '=') next.Absolute = true;
      if (*flag != ':' && *flag != '>') continue;
      const auto value = decoder.Number();
      if (!value) return false;
      if (*flag == ':') {
        select_pen(static_cast<int>(*value));
      } else {
        unit = std::ldexp(1.0, -static_cast<int>(*value));
      }
      continue;
    }
    if (decoder.At_End()) return true;
    const auto x = decoder.Number(), y = decoder.Number();
    if (!x || !y) return false;
    next.X = static_cast<double>(*x) * unit;
    next.Y = static_cast<double>(*y) * unit;
    move(next);
    next = {};
  }
}

}  // namespace norvik
