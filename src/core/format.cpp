#include "core/format.h"

#include "core/application.h"
#include "core/fault.h"
#include "core/numbers.h"
#include "core/powers_of_ten.h"
#include "core/setup.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstring>

namespace norvik {

namespace {

// At most so many digits of the shortest text count.
constexpr int Most_Digits = 15;
// A pattern may come from a file: more places than this on either side are not taken.
constexpr int Most_Pattern_Digits = 100;

// The digits of a number, without sign, and where its decimal point lies: 0.DIGITS * 10^Exponent.
struct Decimal_Text {
  std::array<char, 20> Digits{};
  int Count = 0;
  int Exponent = 0;
};

void Drop_Trailing_Zeros(Decimal_Text& text) {
  while (text.Count > 0 && text.Digits[static_cast<std::size_t>(text.Count - 1)] == '0') {
    --text.Count;
  }
}

Decimal_Text Decimal_Of(double magnitude) {
  Decimal_Text text;
  if (magnitude == 0) return text;
  char buffer[40];
  auto end =
      std::to_chars(buffer, buffer + sizeof buffer, magnitude, std::chars_format::scientific);
  const auto digits_in = [&] {
    return std::find(buffer, end.ptr, 'e') - buffer - (buffer[1] == '.' ? 1 : 0);
  };
  if (digits_in() > Most_Digits) {
    end = std::to_chars(buffer, buffer + sizeof buffer, magnitude, std::chars_format::scientific,
                        Most_Digits - 1);
  }
  const char* mark =
      std::find(static_cast<const char*>(buffer), static_cast<const char*>(end.ptr), 'e');
  for (const char* at = buffer; at != mark; ++at) {
    if (*at != '.') text.Digits[static_cast<std::size_t>(text.Count++)] = *at;
  }
  int exponent = 0;
  std::from_chars(mark + (mark[1] == '+' ? 2 : 1), end.ptr, exponent);
  text.Exponent = exponent + 1;
  Drop_Trailing_Zeros(text);
  return text;
}

// Keeps `decimals` digits behind the point; a tie and more goes away from zero.
void Round_At(Decimal_Text& text, int decimals) {
  const int keep = text.Exponent + decimals;
  if (keep >= text.Count) return;
  if (keep < 0) {
    text.Count = 0;
    return;
  }
  const bool up = text.Digits[static_cast<std::size_t>(keep)] >= '5';
  text.Count = keep;
  if (!up) {
    Drop_Trailing_Zeros(text);
    return;
  }
  int at = keep - 1;
  while (at >= 0 && text.Digits[static_cast<std::size_t>(at)] == '9') --at;
  if (at < 0) {  // all nines: one digit more in front
    text.Digits[0] = '1';
    text.Count = 1;
    ++text.Exponent;
    return;
  }
  ++text.Digits[static_cast<std::size_t>(at)];
  text.Count = at + 1;
}

char* Put_Text(char* out, std::string_view text) {
  return std::copy(text.begin(), text.end(), out);
}

bool Group_Ends(int digits_left) {
  return digits_left > 0 && digits_left % 3 == 0;
}

// The rounded digits in the pattern's places.
char* Put_Digits(char* out, const Decimal_Text& text, const Number_Pattern& pattern,
                 char decimal_sign) {
  const auto digit = [&](int place) {  // place 0 is the first digit behind the point's left edge
    return place >= 0 && place < text.Count ? text.Digits[static_cast<std::size_t>(place)] : '0';
  };
  const int whole = text.Count > 0 ? std::max(0, text.Exponent) : 0;
  const int shown = std::max(whole, pattern.Whole_Digits);
  for (int left = shown; left > 0; --left) {
    *out++ = left > whole ? '0' : digit(whole - left);
    if (pattern.Grouped && Group_Ends(left - 1)) *out++ = decimal_sign == ',' ? '.' : ',';
  }
  if (!pattern.Has_Point) return out;
  *out++ = decimal_sign;
  const int last = text.Count > 0 ? text.Count - text.Exponent : 0;
  const int decimals = std::clamp(last, pattern.Least_Decimals, pattern.Decimals);
  for (int place = 0; place < decimals; ++place) {
    *out++ = text.Count > 0 ? digit(text.Exponent + place) : '0';
  }
  return out;
}

// Most numbers are small with few decimals: whole-number arithmetic gives the same digits, unless
// the value lies so close to a tie that only its text decides. False: not such a number.
bool Put_Small_Number(char*& out, double magnitude, bool negative, const Number_Pattern& pattern,
                      char decimal_sign) {
  constexpr double largest = 1e13;
  constexpr int most_decimals = 9;
  if (pattern.Decimals > most_decimals || pattern.Grouped) return false;
  const double scaled = magnitude * Powers_Of_Ten[pattern.Decimals];
  if (!(scaled < largest)) return false;
  const double rounded = std::nearbyint(scaled);
  if (Near_Tie(scaled, rounded)) return false;

  Decimal_Text text;
  const auto number = static_cast<std::uint64_t>(rounded);
  if (number != 0) {
    const auto end =
        std::to_chars(text.Digits.data(), text.Digits.data() + text.Digits.size(), number);
    text.Count = static_cast<int>(end.ptr - text.Digits.data());
    text.Exponent = text.Count - pattern.Decimals;
    Drop_Trailing_Zeros(text);
    if (negative) *out++ = '-';
  }
  out = Put_Digits(out, text, pattern, decimal_sign);
  return true;
}

template <class Real>
std::string Shortest_Plain(Real value) {
  if (std::isnan(value)) throw Fault(Fault_Number::Type_Mismatch, "A result is not a number");
  if (std::isinf(value)) throw Fault(Fault_Number::Overflow, "A result is too large");
  if (value == 0) return "0";  // no sign
  char buffer[400];
  const auto end = std::to_chars(buffer, buffer + sizeof buffer, value, std::chars_format::fixed);
  return {buffer, end.ptr};
}

}  // namespace

Number_Pattern::Number_Pattern(std::string_view pattern) {
  const auto is_place = [](char c) { return c == '0' || c == '#' || c == '.'; };
  const auto first = std::find_if(pattern.begin(), pattern.end(), is_place);
  auto last = first;
  for (auto at = first; at != pattern.end(); ++at) {
    if (is_place(*at)) last = at + 1;
  }
  Front.assign(pattern.begin(), first);
  Back.assign(last, pattern.end());
  bool always = false;
  for (auto at = first; at != last; ++at) {
    if (*at == '.') {
      Has_Point = true;
    } else if (*at == ',') {
      Grouped = !Has_Point;
    } else if (is_place(*at) && !Has_Point) {
      always = always || *at == '0';
      if (always) ++Whole_Digits;
    } else if (is_place(*at)) {
      ++Decimals;
      if (*at == '0') Least_Decimals = Decimals;
    }
  }
  Whole_Digits = std::min(Whole_Digits, Most_Pattern_Digits);
  Decimals = std::min(Decimals, Most_Pattern_Digits);
  Least_Decimals = std::min(Least_Decimals, Decimals);
}

char* Write_Number(char* out, double value, const Number_Pattern& pattern, char decimal_sign) {
  if (std::isnan(value)) throw Fault(Fault_Number::Type_Mismatch, "A result is not a number");
  if (std::isinf(value)) throw Fault(Fault_Number::Overflow, "A result is too large");
  const bool negative = std::signbit(value);
  const double magnitude = std::abs(value);
  out = Put_Text(out, pattern.Front);
  if (!Put_Small_Number(out, magnitude, negative, pattern, decimal_sign)) {
    Decimal_Text text = Decimal_Of(magnitude);
    Round_At(text, pattern.Decimals);
    if (negative && text.Count > 0) *out++ = '-';
    out = Put_Digits(out, text, pattern, decimal_sign);
  }
  return Put_Text(out, pattern.Back);
}

namespace {

std::string Format_With(double value, std::string_view pattern, char decimal_sign) {
  const Number_Pattern parts(pattern);
  std::string text(Formatted_Number_Limit + pattern.size() * 2, '\0');
  text.resize(static_cast<std::size_t>(Write_Number(text.data(), value, parts, decimal_sign) -
                                       text.data()));
  return text;
}

}  // namespace

std::string Format_Number(double value, std::string_view pattern) {
  return Format_With(value, pattern, Application.DecimalSeparator);
}

std::string Format_Number_Point(double value, std::string_view pattern) {
  return Format_With(value, pattern, '.');
}

double Double_Of_Text(float value) {
  char buffer[40];
  const auto end = std::to_chars(buffer, buffer + sizeof buffer, value);
  double result = value;
  std::from_chars(buffer, end.ptr, result);
  return result;
}

std::string Format_Axis_Number(double value) {
  return Format_Number(value, "############" + MachineSetup.Axis_Format);
}

std::string Format_Axis_Number(std::string_view text) {
  return RegionalFormat(text);
}

std::string Shortest_Text(double value) {
  return Shortest_Plain(value);
}

std::string Shortest_Text(float value) {
  return Shortest_Plain(value);
}

}  // namespace norvik
