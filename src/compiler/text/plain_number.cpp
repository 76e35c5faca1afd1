#include "compiler/text/plain_number.h"

#include "core/application.h"
#include "core/numbers.h"
#include "core/setup.h"

#include <algorithm>

namespace norvik {

namespace {

struct Axis_Rounding_State {
  Axis_Word_Rounding Now;
};
Axis_Rounding_State Rounding;

// The first decimal sign of the other region becomes this region's.
std::string With_Regional_Sign(std::string_view text) {
  const char sign = Application.DecimalSeparator;
  std::string fixed(text);
  const auto other = fixed.find(sign == '.' ? ',' : '.');
  if (other != std::string::npos) fixed[other] = sign;
  return fixed;
}

}  // namespace

Axis_Word_Rounding::Axis_Word_Rounding(const std::string& axis_format) : Axis_Format(axis_format) {
  const Number_Pattern pattern("############" + axis_format);
  Decimals = static_cast<unsigned>(pattern.Decimals);
  Digits_Only = pattern.Front.empty() && pattern.Back.empty() && !pattern.Grouped;
  Zero_Has_Digit = pattern.Whole_Digits > 0 || pattern.Least_Decimals > 0;
}

double Axis_Word_Rounding::Value(std::string_view text) const {
  Plain_Number number;
  const char* end = text.data() + text.size();
  if (Scan_Plain_Number(text.data(), end, number) == end && number.Is_Plain()) {
    return Value(number);
  }
  return To_Double(Format_Axis_Number(To_Double(With_Regional_Sign(text))));
}

double Axis_Word_Rounding::Value_By_Text(const Plain_Number& number) {
  return To_Double(Format_Axis_Number(number.Value()));
}

const Axis_Word_Rounding& Current_Axis_Rounding() {
  if (Rounding.Now.Format() != MachineSetup.Axis_Format) {
    Rounding.Now = Axis_Word_Rounding(MachineSetup.Axis_Format);
  }
  return Rounding.Now;
}

double Number_Value(std::string_view text) {
  Plain_Number number;
  const char* end = text.data() + text.size();
  if (Scan_Plain_Number(text.data(), end, number) == end && number.Is_Plain()) {
    return number.Value();
  }
  return To_Double(With_Regional_Sign(text));
}

double Rounded_Away(const Plain_Number& number) {
  const std::uint64_t unit = Whole_Powers_Of_Ten[number.Decimals];
  const auto magnitude = static_cast<double>((number.Whole + unit / 2) / unit);
  return number.Negative && magnitude != 0 ? -magnitude : magnitude;
}

}  // namespace norvik
