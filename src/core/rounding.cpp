#include "core/rounding.h"

#include "core/fault.h"

#include <cmath>
#include <limits>
#include <string>

namespace norvik {

namespace {

[[noreturn]] void Raise_Not_A_Number() {
  throw Fault(Fault_Number::Type_Mismatch, "A result is not a number");
}

[[noreturn]] void Raise_Overflow(double value, const char* type) {
  throw Fault(Fault_Number::Overflow, std::to_string(value) + " does not fit into " + type);
}

template <class Whole>
Whole To_Whole(double value, const char* type) {
  if (std::isnan(value)) Raise_Not_A_Number();
  const double rounded = Round_Half_Even(value);
  if (rounded < static_cast<double>(std::numeric_limits<Whole>::min()) ||
      rounded > static_cast<double>(std::numeric_limits<Whole>::max())) {
    Raise_Overflow(value, type);
  }
  return static_cast<Whole>(rounded);
}

}  // namespace

// The rounding mode of the process is never changed, so this is halves to even.
double Round_Half_Even(double value) {
  return std::nearbyint(value);
}

std::int16_t To_Int16(double value) {
  return To_Whole<std::int16_t>(value, "16 bits");
}

std::int32_t To_Int32(double value) {
  return To_Whole<std::int32_t>(value, "32 bits");
}

void Raise_No_Single(double value) {
  if (std::isnan(value)) Raise_Not_A_Number();
  Raise_Overflow(value, "a single");
}

void Raise_Division_By_Zero() {
  throw Fault(Fault_Number::Division_By_Zero, "Division by zero");
}

}  // namespace norvik
