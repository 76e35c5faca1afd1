#include "core/general_text.h"

#include "core/fault.h"
#include "core/format.h"
#include "core/numbers.h"
#include "core/powers_of_ten.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <limits>

namespace norvik {

namespace {

// Digits and exponent of d.ddd * 10^Exponent as the library writes them, as plain text.
char* Plain_From_Scientific(char* out, const char* digits, int count, int exponent) {
  while (count > 1 && digits[count - 1] == '0') --count;
  if (exponent < 0) {
    *out++ = '0';
    *out++ = '.';
    out = std::fill_n(out, -exponent - 1, '0');
    return std::copy_n(digits, count, out);
  }
  const int whole = exponent + 1;
  if (count <= whole) return std::fill_n(std::copy_n(digits, count, out), whole - count, '0');
  out = std::copy_n(digits, whole, out);
  *out++ = '.';
  return std::copy_n(digits + whole, count - whole, out);
}

// The shortest text that reads back equal has no more digits than the general form for nearly all
// numbers, and is then the general form; only the others need the slower exact rounding.
template <class Real>
char* Write_Real(char* out, Real value) {
  constexpr int most_digits = std::numeric_limits<Real>::digits10 + (sizeof(Real) == 4 ? 1 : 0);
  if (std::isnan(value)) throw Fault(Fault_Number::Type_Mismatch, "A coordinate is not a number");
  if (std::isinf(value)) throw Fault(Fault_Number::Overflow, "A coordinate is too large");
  if (value == 0) {
    *out = '0';
    return out + 1;
  }
  if (value < 0) *out++ = '-';

  char buffer[64];
  auto end =
      std::to_chars(buffer, buffer + sizeof buffer, std::abs(value), std::chars_format::scientific);
  const char* mark =
      std::find(static_cast<const char*>(buffer), static_cast<const char*>(end.ptr), 'e');
  if (mark - buffer > most_digits + 1) {
    end = std::to_chars(buffer, buffer + sizeof buffer, std::abs(value),
                        std::chars_format::scientific, most_digits - 1);
    mark = std::find(static_cast<const char*>(buffer), static_cast<const char*>(end.ptr), 'e');
  }
  int exponent = 0;
  std::from_chars(mark + (mark[1] == '+' ? 2 : 1), end.ptr, exponent);
  const bool has_point = mark - buffer > 1;
  if (has_point) buffer[1] = buffer[0];  // close the gap where the point stood
  const char* digits = has_point ? buffer + 1 : buffer;
  return Plain_From_Scientific(out, digits, static_cast<int>(mark - digits), exponent);
}

template <class Real>
std::string Real_Text(Real value) {
  char buffer[General_Text_Limit];
  return {buffer, Write_Real(buffer, value)};
}

}  // namespace

char* Write_General(char* out, double value) {
  return Write_Real(out, value);
}
char* Write_General(char* out, float value) {
  return Write_Real(out, value);
}
std::string General_Text(double value) {
  return Real_Text(value);
}
std::string General_Text(float value) {
  return Real_Text(value);
}

double Decimal_Of(float value) {
  char text[General_Text_Limit];
  const char* end = Write_General(text, value);
  double number = 0;
  std::from_chars(text, end, number);
  return number;
}

double Round_12(double value) {
  constexpr double scale = 1e12, whole_from = 4503599627370496.0;  // 2^52: no bits for a fraction
  const double scaled = value * scale;
  if (!(std::abs(scaled) < whole_from)) return value;
  return std::nearbyint(scaled) / scale;
}

// A number with few digits is rounded as a whole number of the last place, which gives the same
// value as the text would (dividing whole numbers by a power of ten rounds once, as reading the
// text does). Near a tie only the text decides.
double Decimal_Rounding::operator()(double value) const {
  constexpr int most_decimals = 9;
  constexpr double largest = 1e13;
  if (Pattern.Decimals <= most_decimals) {
    const double scale = Powers_Of_Ten[Pattern.Decimals];
    const double scaled = std::abs(value) * scale;
    if (scaled < largest) {
      const double whole = std::nearbyint(scaled);
      if (!Near_Tie(scaled, whole)) {
        return whole == 0 ? 0 : std::copysign(whole / scale, value);
      }
    }
  }
  Number_Pattern digits = Pattern;
  digits.Front.clear();
  digits.Back.clear();
  digits.Grouped = false;
  char text[Formatted_Number_Limit];
  return To_Double({text, Write_Number(text, value, digits, '.')});
}

}  // namespace norvik
