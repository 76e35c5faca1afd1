// number_text.h: numbers to the text of a table and back.
//
// The text is the shortest that reads back equal, without an exponent and with a point, as
// `Shortest_Text` gives it. Most values of a program have few decimals and many stand in the tables
// again and again (the end of a move is the start of the next, one feed serves a whole contour), so
// that two short cuts come first: whole-number arithmetic for up to four decimals, and a memory of
// the texts printed last.
#pragma once

#include "core/powers_of_ten.h"

#include <array>
#include <bit>
#include <charconv>
#include <cstdint>
#include <cstring>
#include <type_traits>

namespace norvik {

// Room that any printed number needs at most: the smallest double has 324 zeros and its digits.
inline constexpr std::size_t Number_Text_Limit = 352;

// Prints a number at `out`, which has room for `Number_Text_Limit` characters, and returns the end.
// Zero has no sign. A value that is no number raises a type fault, an infinite one an overflow
// fault.
char* Print_Number(char* out, double value);
char* Print_Number(char* out, float value);
inline char* Print_Number(char* out, std::int32_t value) {
  return std::to_chars(out, out + Number_Text_Limit, value).ptr;
}

// The texts of numbers printed lately, each at the place that its value's bits choose.
template <class Real>
class Recent_Texts {
 public:
  // As `Print_Number`.
  char* Print(char* out, Real value) {
    const auto bits = std::bit_cast<Bits>(value);
    Cell& cell = Cells[static_cast<std::size_t>((bits * Spread) >> Shift)];
    if (cell.Value != bits) {
      char text[Number_Text_Limit];
      const auto length = static_cast<std::size_t>(Print_Number(text, value) - text);
      if (length > Longest) return std::copy(text, text + length, out);
      std::memcpy(cell.Text, text, Longest);
      cell.Length = static_cast<std::uint8_t>(length);
      cell.Value = bits;
    }
    std::memcpy(out, cell.Text, Longest);  // always all of it: one instruction or two
    return out + cell.Length;
  }

 private:
  using Bits = std::conditional_t<sizeof(Real) == 8, std::uint64_t, std::uint32_t>;
  static constexpr std::size_t Longest = sizeof(Real) == 8 ? 23 : 19, Cell_Count_Log = 8;
  static constexpr Bits Spread =
      static_cast<Bits>(0x9E37'79B9'7F4A'7C15ULL >> (64 - 8 * sizeof(Bits)));
  static constexpr int Shift = static_cast<int>(8 * sizeof(Bits) - Cell_Count_Log);

  // As it starts, each cell holds zero.
  struct Cell {
    Bits Value = 0;
    std::uint8_t Length = 1;
    char Text[Longest] = {'0'};
  };
  std::array<Cell, 1U << Cell_Count_Log> Cells{};
};

// Reads a sign and digits with at most one point from `at` on, as far as they go, and returns where
// they end. Returns `at` where no such number stands or where the quotient of two exact numbers
// would not be the nearest value. What follows the number must be readable up to the first
// character that cannot belong to it; a text end of any kind will do.
template <class Number>
const char* Parse_Plain_Number(const char* at, Number& value) {
  constexpr bool real = std::is_floating_point_v<Number>;
  constexpr std::uint64_t largest = std::is_same_v<Number, double>  ? 1ULL << 53
                                    : std::is_same_v<Number, float> ? 1ULL << 24
                                                                    : 0x7FFF'FFFFULL;
  constexpr std::ptrdiff_t most_digits = 18,
                           most_decimals = std::is_same_v<Number, float> ? 10 : 22;
  const char* const start = at;
  const bool negative = *at == '-';
  if (negative) ++at;
  const auto digit = [&] { return static_cast<unsigned>(static_cast<unsigned char>(*at)) - '0'; };

  std::uint64_t digits = 0;
  const char* const first = at;
  for (; digit() <= 9; ++at) digits = digits * 10 + digit();
  std::ptrdiff_t count = at - first, decimals = 0;
  if (real && *at == '.') {
    const char* const point = ++at;
    for (; digit() <= 9; ++at) digits = digits * 10 + digit();
    decimals = at - point;
    count += decimals;
  }
  if (count == 0 || count > most_digits || digits > largest || decimals > most_decimals) {
    return start;
  }
  auto magnitude = static_cast<Number>(digits);
  if constexpr (real) {
    if (decimals != 0) magnitude /= static_cast<Number>(Powers_Of_Ten[decimals]);
  }
  value = negative ? -magnitude : magnitude;
  return at;
}

// The same for numbers of any length within [at, last), exponents included; no leading "+".
const char* Parse_Long_Number(const char* at, const char* last, double& value);
const char* Parse_Long_Number(const char* at, const char* last, float& value);

// The number that is the whole of [first, last): a sign, digits with one point, an exponent, no
// blanks. False when it is no such number or too large for its type; `value` is then unchanged.
bool Parse_Number(const char* first, const char* last, double& value);
bool Parse_Number(const char* first, const char* last, float& value);

}  // namespace norvik
