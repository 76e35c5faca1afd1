// nullable.h: a number that may be absent, in eight bytes.
//
// Behaves as std::optional<double>. The tables hold a dozen of them a record and up to 900,000
// records, where the sixteen bytes of std::optional would double the memory of a compile. Absence
// is one quiet NaN pattern that no arithmetic yields; zero never stands for absent.
#pragma once

#include "core/fault.h"

#include <bit>
#include <cstdint>
#include <optional>

namespace norvik {

class Nullable {
 public:
  constexpr Nullable() = default;
  constexpr Nullable(std::nullopt_t) {}
  constexpr Nullable(double value) : Value(value) {}
  constexpr Nullable(std::optional<double> value) : Value(value ? *value : Absent()) {}

  constexpr bool has_value() const { return std::bit_cast<std::uint64_t>(Value) != Absent_Bits; }
  constexpr explicit operator bool() const { return has_value(); }
  constexpr void reset() { Value = Absent(); }

  // Must hold a value.
  constexpr double operator*() const { return Value; }
  // Raises a type fault when absent.
  constexpr double value() const {
    if (!has_value()) throw Fault(Fault_Number::Type_Mismatch, "A value is absent");
    return Value;
  }
  constexpr double value_or(double other) const { return has_value() ? Value : other; }
  constexpr operator std::optional<double>() const {
    return has_value() ? std::optional<double>(Value) : std::nullopt;
  }

  friend constexpr bool operator==(const Nullable& a, const Nullable& b) {
    return a.has_value() == b.has_value() && (!a.has_value() || a.Value == b.Value);
  }

 private:
  static constexpr std::uint64_t Absent_Bits = 0x7FF8'6E75'6C6C'0001ULL;
  static constexpr double Absent() { return std::bit_cast<double>(Absent_Bits); }

  double Value = Absent();
};

static_assert(sizeof(Nullable) == sizeof(double));

}  // namespace norvik
