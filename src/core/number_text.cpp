#include "core/number_text.h"

#include "core/fault.h"

#include <algorithm>
#include <cmath>

namespace norvik {

namespace {

// 0000, 0001, .. 9999: the four decimals, and how many of them stand before trailing zeros.
struct Four_Digits {
  char Text[10'000][4];
  std::uint8_t Kept[10'000];
};

constexpr Four_Digits Make_Four_Digits() {
  Four_Digits table{};
  for (int number = 0; number < 10'000; ++number) {
    int rest = number, kept = 4;
    for (int place = 3; place >= 0; --place, rest /= 10) {
      table.Text[number][place] = static_cast<char>('0' + rest % 10);
    }
    while (kept > 0 && table.Text[number][kept - 1] == '0') --kept;
    table.Kept[number] = static_cast<std::uint8_t>(kept);
  }
  return table;
}

const Four_Digits Decimals = Make_Four_Digits();

// A decimal of so few digits is the only one of that length or less for its double or single, so
// that it is the shortest text.
template <class Real>
constexpr double Sure_Digits = sizeof(Real) == 8 ? 1e15 : 1e6;

// Prints a value that is a whole number of ten-thousandths; null for any other.
template <class Real>
char* Print_Few_Decimals(char* out, Real value) {
  constexpr double unit = 10'000;
  const double magnitude = std::abs(static_cast<double>(value));
  const double scaled = magnitude * unit + 0.5;
  if (!(scaled < Sure_Digits<Real>)) return nullptr;
  const auto number = static_cast<std::uint64_t>(scaled);
  if (static_cast<Real>(static_cast<double>(number) / unit) != std::abs(value)) return nullptr;

  const std::uint64_t whole = number / 10'000, decimals = number % 10'000;
  if (value < 0) *out++ = '-';
  out = std::to_chars(out, out + Number_Text_Limit, whole).ptr;
  if (decimals == 0) return out;
  *out++ = '.';
  std::memcpy(out, Decimals.Text[decimals], 4);
  return out + Decimals.Kept[decimals];
}

template <class Real>
char* Print_Real(char* out, Real value) {
  if (char* end = Print_Few_Decimals(out, value)) return end;
  if (std::isnan(value)) throw Fault(Fault_Number::Type_Mismatch, "A result is not a number");
  if (std::isinf(value)) throw Fault(Fault_Number::Overflow, "A result is too large");
  return std::to_chars(out, out + Number_Text_Limit, value, std::chars_format::fixed).ptr;
}

// Digits first: neither "inf" nor a second sign is a number here.
bool Starts_Number(const char* at, const char* last) {
  return at != last && ((*at >= '0' && *at <= '9') || *at == '.');
}

template <class Real>
const char* Parse_Long(const char* at, const char* last, Real& value) {
  const bool negative = at != last && *at == '-';
  const char* first = negative ? at + 1 : at;
  if (!Starts_Number(first, last)) return at;
  Real magnitude = 0;
  const auto end = std::from_chars(first, last, magnitude);
  if (end.ec == std::errc::result_out_of_range) {
    // Too small counts as 0, too large is no value.
    long double wide = 1;
    if (std::from_chars(first, end.ptr, wide).ec != std::errc() || wide >= 1) return at;
    magnitude = 0;
  } else if (end.ec != std::errc()) {
    return at;
  }
  value = negative ? -magnitude : magnitude;
  return end.ptr;
}

template <class Real>
bool Parse_Whole_Text(const char* first, const char* last, Real& value) {
  if (first != last && *first == '+') {
    ++first;
    if (!Starts_Number(first, last)) return false;
  }
  Real number = 0;
  if (first == last || Parse_Long(first, last, number) != last) return false;
  value = number;
  return true;
}

}  // namespace

char* Print_Number(char* out, double value) {
  return Print_Real(out, value);
}
char* Print_Number(char* out, float value) {
  return Print_Real(out, value);
}

const char* Parse_Long_Number(const char* at, const char* last, double& value) {
  return Parse_Long(at, last, value);
}
const char* Parse_Long_Number(const char* at, const char* last, float& value) {
  return Parse_Long(at, last, value);
}

bool Parse_Number(const char* first, const char* last, double& value) {
  return Parse_Whole_Text(first, last, value);
}
bool Parse_Number(const char* first, const char* last, float& value) {
  return Parse_Whole_Text(first, last, value);
}

}  // namespace norvik
