#include "import/pipeline/numbers.h"

#include "core/fault.h"
#include "core/numbers.h"
#include "core/setup.h"

#include <cmath>
#include <limits>
#include <optional>

namespace norvik {

double Foreign_Number(std::string_view text) {
  const std::optional<double> number = Try_Number(text);
  const auto shown = [&] { return "\"" + std::string(text.substr(0, 40)) + "\""; };
  if (!number) throw Fault(Fault_Number::Type_Mismatch, shown() + " is no number");
  if (std::abs(*number) > static_cast<double>(std::numeric_limits<float>::max())) {
    throw Fault(Fault_Number::Overflow, shown() + " is too large");
  }
  return *number;
}

Axis_Rounding::Axis_Rounding() : Rounding("############" + MachineSetup.Axis_Format) {}

double Axis_Rounding::operator()(double value) const {
  return Rounding(value);
}

double Axis_Rounding::operator()(std::string_view text) const {
  if (text.find_first_not_of(' ') == std::string_view::npos) return 0;
  return Rounding(Foreign_Number(text));
}

}  // namespace norvik
