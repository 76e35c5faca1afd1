// rounding.h: the named ways from one number type to another.
//
// A store into a narrower type always goes through one of these; out of range raises an overflow
// fault, a value that is no number a type fault.
#pragma once

#include <cmath>
#include <cstdint>

namespace norvik {

[[noreturn]] void Raise_No_Single(double value);
[[noreturn]] void Raise_Division_By_Zero();

// Nearest whole number, halves to the even neighbour.
double Round_Half_Even(double value);
// Nearest whole number, halves to the even neighbour, held in 16 or 32 bits.
std::int16_t To_Int16(double value);
std::int32_t To_Int32(double value);

// Nearest single.
inline float To_Single(double value) {
  const auto single = static_cast<float>(value);
  if (!std::isfinite(single)) Raise_No_Single(value);
  return single;
}

// The part before the decimal point, toward zero; -1.7 gives -1.
inline double Whole_Part(double value) {
  constexpr double all_whole = 1LL << 53;  // from here on there are no decimals
  if (!(std::abs(value) < all_whole)) return value;
  return static_cast<double>(static_cast<std::int64_t>(value));
}

// Quotient; a division fault where `by` is 0.
inline double Divided(double value, double by) {
  if (by == 0) Raise_Division_By_Zero();
  return value / by;
}

}  // namespace norvik
