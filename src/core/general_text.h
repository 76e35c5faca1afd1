// general_text.h: numbers as a G-code line carries them.
//
// In general form: as few digits as the number needs, at most 15 significant ones for a double and
// 7 for a single, a zero before the point ("0.125"), no trailing zeros, never an exponent, a point
// in every region. Lines with fixed decimals go through `Format_Axis_Number` (format.h) instead.
#pragma once

#include "core/format.h"

#include <cstddef>
#include <string>
#include <string_view>

namespace norvik {

// Longest general form: 1e-308 with 15 digits, sign and point.
inline constexpr std::size_t General_Text_Limit = 360;

// Writes the general form to `out` (room for General_Text_Limit) and returns one past its end.
// Raises a type fault for what is no number, an overflow fault for infinity.
char* Write_General(char* out, double value);
char* Write_General(char* out, float value);

std::string General_Text(double value);
std::string General_Text(float value);

// A single of the setup as the decimal number that its text shows: 0.1 and not the binary number
// next to it, so that sums with it stay readable.
double Decimal_Of(float value);

// Rounds to the number that a pattern's text reads back as.
class Decimal_Rounding {
 public:
  explicit Decimal_Rounding(std::string_view pattern) : Pattern(pattern) {}
  double operator()(double value) const;

 private:
  Number_Pattern Pattern;
};

// Rounded to 12 decimals, halves to the even neighbour; the coordinates of every line read from a
// line file pass here. Numbers too large to have 12 decimals stay.
double Round_12(double value);

}  // namespace norvik
