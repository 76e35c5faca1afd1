// format.h: the one number formatter for pattern texts such as "############000.000".
//
// A pattern is read from left to right: "0" is a digit that always stands, "#" one that stands only
// where it is needed, the first "." the place of the decimal sign, a "," between digits left of it
// asks for groups of three, and any other character stands for itself at the front or the end.
// A "#" between two places that always stand counts as "0".
//
// Ties round away from zero on the decimal text of the number: its shortest text that reads back
// equal, cut to 15 digits. So 1.0005 under "000.000" is "001.001" although the nearest binary
// number lies below. A negative value that rounds to zero has no sign.
#pragma once

#include <array>
#include <concepts>
#include <cstdint>
#include <string>
#include <string_view>

namespace norvik {

// A pattern taken apart once, for loops that print many numbers by the same one.
struct Number_Pattern {
  explicit Number_Pattern(std::string_view pattern);

  int Whole_Digits = 0;    // digits left of the point that always stand
  int Decimals = 0;        // digits right of the point at most
  int Least_Decimals = 0;  // of these, how many always stand
  bool Has_Point = false;
  bool Grouped = false;
  std::string Front, Back;  // literal text around the number
};

// Longest text that a number can take under any pattern, literals not counted.
inline constexpr std::size_t Formatted_Number_Limit = 560;

// Writes `value` by `pattern` to `out` without allocating and returns one past the last character.
// `out` holds Formatted_Number_Limit plus the literals. Raises a type fault for what is no number
// and an overflow fault for infinity.
char* Write_Number(char* out, double value, const Number_Pattern& pattern, char decimal_sign);

// A number by a pattern, with the decimal sign of the region (`Application.DecimalSeparator`).
std::string Format_Number(double value, std::string_view pattern);
// The same with a point in every region, for files that other programs read.
std::string Format_Number_Point(double value, std::string_view pattern);

// A single is printed by its own shortest text: 0.0025 in single precision is "0.003" under "0.000"
// although the double next to it lies below the tie.
double Double_Of_Text(float value);
template <std::same_as<float> Single>
std::string Format_Number(Single value, std::string_view pattern) {
  return Format_Number(Double_Of_Text(value), pattern);
}
template <std::same_as<float> Single>
std::string Format_Number_Point(Single value, std::string_view pattern) {
  return Format_Number_Point(Double_Of_Text(value), pattern);
}

// By "############" + `MachineSetup.Axis_Format`, regional sign.
std::string Format_Axis_Number(double value);
template <std::same_as<float> Single>
std::string Format_Axis_Number(Single value) {
  return Format_Axis_Number(Double_Of_Text(value));
}
// The number in a text, trimmed, with either decimal sign; empty gives 0, and so does a numeral
// format such as "000.000" or "##0.00". Raises a type fault when the text is no number.
std::string Format_Axis_Number(std::string_view text);

// Shortest text that reads back equal, with a point and without an exponent.
std::string Shortest_Text(double value);
std::string Shortest_Text(float value);

}  // namespace norvik
