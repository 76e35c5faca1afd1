#include "core/numbers.h"

#include "core/application.h"
#include "core/fault.h"
#include "core/format.h"
#include "core/paths.h"
#include "core/rounding.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <limits>

namespace norvik {

namespace {

bool Is_Digit(char c) {
  return c >= '0' && c <= '9';
}
bool Is_Blank(char c) {
  return c == ' ' || c == '\t';
}

std::string_view Without_Blanks(std::string_view text) {
  while (!text.empty() && Is_Blank(text.front())) text.remove_prefix(1);
  while (!text.empty() && Is_Blank(text.back())) text.remove_suffix(1);
  return text;
}

enum class Parsed { Well, No_Number, Too_Large };

// Where the first digit that is not 0 stands, exponent included: above 0 left of the point.
long long Magnitude(std::string_view digits) {
  const auto mark = std::min(digits.find_first_of("eE"), digits.size());
  const auto mantissa = digits.substr(0, mark);
  const auto point = std::min(mantissa.find('.'), mantissa.size());
  const auto first = mantissa.find_first_of("123456789");
  long long exponent = 0;
  if (mark < digits.size()) {
    const char* from = digits.data() + mark + (digits[mark + 1] == '+' ? 2 : 1);
    const auto result = std::from_chars(from, digits.data() + digits.size(), exponent);
    constexpr long long beyond = 1'000'000'000'000;
    if (result.ec == std::errc::result_out_of_range) exponent = *from == '-' ? -beyond : beyond;
  }
  if (first == std::string_view::npos) return -1;
  return static_cast<long long>(point) - static_cast<long long>(first) + exponent;
}

// Digits with a point at most once; no sign.
Parsed Parse_Unsigned(std::string_view digits, double& value) {
  const auto digit_at = [&](std::size_t at) { return at < digits.size() && Is_Digit(digits[at]); };
  if (!digit_at(0) && !(digits.starts_with('.') && digit_at(1))) return Parsed::No_Number;
  const char* end = digits.data() + digits.size();
  const auto result = std::from_chars(digits.data(), end, value);
  if (result.ptr != end) return Parsed::No_Number;
  if (result.ec == std::errc::result_out_of_range) {
    if (Magnitude(digits) > 0) return Parsed::Too_Large;
    value = 0;
  }
  return Parsed::Well;
}

Parsed Parse_Point_Number(std::string_view text, double& value) {
  std::string_view digits = Without_Blanks(text);
  const bool negative = digits.starts_with('-');
  if (negative || digits.starts_with('+')) digits.remove_prefix(1);
  const Parsed outcome = Parse_Unsigned(digits, value);
  if (negative) value = -value;
  return outcome;
}

// The longest number that is worth a copy on the stack.
constexpr std::size_t Stack_Text = 64;

// A text of either region: a comma counts as a point.
Parsed Parse_Either(std::string_view text, double& value) {
  if (text.find(',') == std::string_view::npos) return Parse_Point_Number(text, value);
  if (text.size() > Stack_Text) {
    std::string fixed(text);
    std::replace(fixed.begin(), fixed.end(), ',', '.');
    return Parse_Point_Number(fixed, value);
  }
  std::array<char, Stack_Text> fixed;
  const auto end = std::replace_copy(text.begin(), text.end(), fixed.begin(), ',', '.');
  return Parse_Point_Number({fixed.data(), static_cast<std::size_t>(end - fixed.begin())}, value);
}

// The point, and the comma where it is the region's sign.
Parsed Parse_Regional(std::string_view text, double& value) {
  return Application.DecimalSeparator == ',' ? Parse_Either(text, value)
                                             : Parse_Point_Number(text, value);
}

[[noreturn]] void Raise(Parsed outcome, std::string_view text) {
  const std::string quoted = "\"" + std::string(text.substr(0, 60)) + "\"";
  if (outcome == Parsed::Too_Large) {
    throw Fault(Fault_Number::Overflow, quoted + " is too large");
  }
  throw Fault(Fault_Number::Type_Mismatch, quoted + " is not a number");
}

double Either_Sign_Number(std::string_view text) {
  double value = 0;
  const Parsed outcome = Parse_Either(text, value);
  if (outcome != Parsed::Well) Raise(outcome, text);
  return value;
}

// Rounded as a text of the given pattern would carry it.
double Through_Pattern(double value, const Number_Pattern& pattern) {
  std::array<char, Formatted_Number_Limit> text;
  const char* end = Write_Number(text.data(), value, pattern, '.');
  double result = value;
  Parse_Point_Number({text.data(), static_cast<std::size_t>(end - text.data())}, result);
  return result;
}

const Number_Pattern& Nine_Decimals() {
  static const Number_Pattern pattern("00000000.000000000");
  return pattern;
}

template <class Whole>
Whole Held(double value) {
  constexpr double low = std::numeric_limits<Whole>::min(),
                   high = std::numeric_limits<Whole>::max();
  return static_cast<Whole>(std::clamp(value, low, high));
}

template <class Whole>
Whole Get_Whole(std::string_view value, Sentinel sentinel, Whole otherwise) {
  if (sentinel == Sentinel::Empty && value.empty()) return otherwise;
  const double x = std::floor(NullToZero(value));
  if (sentinel == Sentinel::Zero && x == 0) return otherwise;
  return Held<Whole>(x);
}

bool Is_Empty_Number(std::string_view value) {
  return value.empty() || value == "." || value == ",";
}

// Tabs become blanks, runs of blanks one; `from` becomes `to`.
std::string With_Decimal_Sign(std::string_view text, char from, char to) {
  std::string result;
  result.reserve(text.size());
  for (const char c : text) {
    if (Is_Blank(c)) {
      if (!result.ends_with(' ')) result += ' ';
    } else {
      result += c == from ? to : c;
    }
  }
  return result;
}

// The characters that follow the first `letter`, as long as they are in `allowed`.
std::string Text_Behind(char letter, std::string_view text, std::string_view allowed) {
  const std::string upper = Upper(text);
  const auto place = upper.find(Upper(std::string_view(&letter, 1)));
  if (place == std::string::npos) return {};
  const auto end = upper.find_first_not_of(allowed, place + 1);
  return upper.substr(place + 1, end == std::string::npos ? end : end - place - 1);
}

// A numeral format given where a number is expected reads as 0.
bool Is_Numeral_Format(std::string_view text) {
  return text.find('#') != std::string_view::npos &&
         text.find_first_not_of("0#.,") == std::string_view::npos;
}

}  // namespace

double To_Double(std::string_view text) {
  double value = 0;
  const Parsed outcome = Parse_Regional(text, value);
  if (outcome != Parsed::Well) Raise(outcome, text);
  return value;
}

std::optional<double> Try_Number(std::string_view text) {
  double value = 0;
  if (Parse_Either(text, value) != Parsed::Well) return std::nullopt;
  return value;
}

std::int16_t GetInt(std::string_view value, Sentinel sentinel, std::int16_t otherwise) {
  return Get_Whole(value, sentinel, otherwise);
}

std::int32_t GetLong(std::string_view value, Sentinel sentinel, std::int32_t otherwise) {
  return Get_Whole(value, sentinel, otherwise);
}

float GetFloat(std::string_view value, Sentinel sentinel, float otherwise) {
  if (Is_Empty_Number(value)) return otherwise;
  const auto number = Try_Number(value);
  if (!number || std::abs(*number) > std::numeric_limits<float>::max()) return otherwise;
  const float x = To_Single(Through_Pattern(*number, Nine_Decimals()));
  return sentinel == Sentinel::Zero && x == 0 ? otherwise : x;
}

double GetDouble(std::string_view value, Sentinel sentinel, double otherwise) {
  if (Is_Empty_Number(value)) return otherwise;
  const double x = Try_Number(value).value_or(otherwise);
  return sentinel == Sentinel::Zero && x == 0 ? otherwise : x;
}

std::string GetString(std::string_view value, std::string_view otherwise) {
  return std::string(value.empty() ? otherwise : value);
}

double NullToZero(std::string_view value) {
  return Try_Number(value).value_or(0);
}

std::string RegionalFix(std::string_view text) {
  const char sign = Application.DecimalSeparator;
  std::string fixed(text);
  std::replace(fixed.begin(), fixed.end(), sign == '.' ? ',' : '.', sign);
  return fixed;
}

double RegionalNumber(std::string_view text) {
  return text.empty() ? 0 : Through_Pattern(Either_Sign_Number(text), Nine_Decimals());
}

std::string RegionalFormat(std::string_view text) {
  const std::string_view trimmed = Without_Blanks(text);
  if (trimmed.empty() || Is_Numeral_Format(trimmed)) return Format_Axis_Number(0.0);
  return Format_Axis_Number(Either_Sign_Number(trimmed));
}

std::optional<std::string> NumbersOnly(std::string_view text) {
  if (text.empty()) return std::nullopt;
  std::string kept;
  for (const char c : text) {
    if (Is_Digit(c) || c == ',' || c == '.') kept += c;
  }
  return kept;
}

std::string ToPointDecimal(std::string_view text) {
  return With_Decimal_Sign(text, ',', '.');
}

std::string ToCommaDecimal(std::string_view text) {
  return With_Decimal_Sign(text, '.', ',');
}

std::optional<double> WordValue(char letter, std::string_view text) {
  static const Number_Pattern seven_decimals("000000.0000000");
  const std::string number = Text_Behind(letter, text, "0123456789+-.,");
  if (number.empty()) return std::nullopt;
  return Through_Pattern(Either_Sign_Number(number), seven_decimals);
}

std::string WordText(char letter, std::string_view text) {
  return Text_Behind(letter, text, "0123456789+-.");
}

std::int16_t TrueToMinusOne(bool value) {
  return value ? -1 : 0;
}

bool ToBoolean(std::string_view value) {
  const std::string word = Upper(Trim(value));
  if (word == "TRUE") return true;
  if (word == "FALSE") return false;
  return NullToZero(value) != 0;
}

bool IsNumeric(std::string_view value) {
  double number = 0;
  return Parse_Regional(value, number) == Parsed::Well;
}

std::string FormatElapsed(double seconds) {
  // Whole milliseconds first, so that 59.9996 s does not read as 60 seconds.
  const double milliseconds = std::round(std::max(0.0, seconds) * 1000);
  const double hours = std::floor(milliseconds / 3'600'000);
  const double minutes = std::floor(milliseconds / 60'000) - hours * 60;
  const double rest = milliseconds / 1000 - hours * 3600 - minutes * 60;
  return Format_Number(hours, "00") + ":" + Format_Number(minutes, "00") + ":" +
         Format_Number(rest, "00.000");
}

}  // namespace norvik
