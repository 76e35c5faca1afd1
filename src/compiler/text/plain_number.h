// plain_number.h: numbers of program texts as whole numbers with a count of decimals.
//
//   "-12.3456"  ->  -123456 / 10^4       under "000.000":  123456 -> 12346  ->  -12346 / 10^3
//
// A word's value is what its text says after the display format `Axis_Format` has rounded it; that
// is the precision of the whole compiler. Numbers of at most 15 digits, which is nearly all, need
// no text for that: rounding the whole number half away from zero gives the digits that the
// formatter prints, and one correctly rounded division gives the double that reading them back
// gives. All others (more digits, odd patterns, faulty texts) go through the texts themselves.
#pragma once

#include "core/format.h"
#include "core/powers_of_ten.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace norvik {

struct Plain_Number {
  std::uint64_t Whole = 0;  // all digits, without sign and decimal sign
  std::uint8_t Digits = 0;
  std::uint8_t Decimals = 0;  // of these, how many stand behind the decimal sign
  bool Negative = false;

  // Without digits or with so many that not every value has a double of its own, the number is not
  // plain.
  bool Is_Plain() const { return Digits >= 1 && Digits <= 15; }
  double Value() const;
};

inline double Plain_Number::Value() const {
  const double magnitude = static_cast<double>(Whole) / Powers_Of_Ten[Decimals];
  return Negative && Whole != 0 ? -magnitude : magnitude;
}

// Reads a sign, digits, and digits behind one decimal sign of either kind, from `at` on. Returns
// where it stopped; the number is to be asked whether it is plain.
inline const char* Scan_Plain_Number(const char* at, const char* end, Plain_Number& number) {
  number = {};
  if (at != end && (*at == '-' || *at == '+')) number.Negative = *at++ == '-';
  std::uint64_t whole = 0;
  const auto digits = [&] {
    const char* first = at;
    while (at != end) {
      const unsigned digit = static_cast<unsigned char>(*at) - unsigned{'0'};
      if (digit > 9) break;
      whole = whole * 10 + digit;  // wraps in numbers that are not plain
      ++at;
    }
    return at - first;
  };
  auto count = digits();
  if (at != end && (*at == '.' || *at == ',')) {
    ++at;
    const auto decimals = digits();
    count += decimals;
    number.Decimals = static_cast<std::uint8_t>(decimals);
  }
  number.Whole = whole;
  number.Digits = count <= 15 ? static_cast<std::uint8_t>(count) : std::uint8_t{16};
  return at;
}

// Axis words under `MachineSetup.Axis_Format`.
class Axis_Word_Rounding {
 public:
  Axis_Word_Rounding() = default;
  explicit Axis_Word_Rounding(const std::string& axis_format);

  const std::string& Format() const { return Axis_Format; }

  // The value of a word with this text. Raises a type or overflow fault when the text, or what the
  // pattern makes of it, is no number.
  double Value(std::string_view text) const;
  // The same for a number that is plain.
  double Value(const Plain_Number& number) const {
    std::uint64_t whole = number.Whole;
    unsigned decimals = number.Decimals;
    if (decimals > Decimals) {
      const std::uint64_t unit = Whole_Powers_Of_Ten[decimals - Decimals];
      whole = (whole + unit / 2) / unit;
      decimals = Decimals;
    }
    if (!Digits_Only || (whole == 0 && !Zero_Has_Digit)) return Value_By_Text(number);
    const double magnitude = static_cast<double>(whole) / Powers_Of_Ten[decimals];
    return number.Negative && whole != 0 ? -magnitude : magnitude;
  }

 private:
  static double Value_By_Text(const Plain_Number& number);

  std::string Axis_Format;
  unsigned Decimals = 0;
  bool Digits_Only = false;     // the pattern adds no text and no groups
  bool Zero_Has_Digit = false;  // it prints at least one digit for 0
};

// The rounding by the setup as it stands now.
const Axis_Word_Rounding& Current_Axis_Rounding();

// A number without the axis format: whole and real numbers of either region. Raises a type or
// overflow fault when the text is none.
double Number_Value(std::string_view text);

// As "printed with no decimals": the nearest whole number, ties away from zero.
double Rounded_Away(const Plain_Number& number);

}  // namespace norvik
