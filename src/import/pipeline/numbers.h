// numbers.h: the numbers of foreign files. How they are written: core/general_text.h.
#pragma once

#include "core/general_text.h"

#include <string_view>

namespace norvik {

// The number in a text of a foreign file, with either decimal sign in any region. Raises a type
// fault when it is no number, an overflow fault when it does not fit a single: nothing that a
// machine could reach.
double Foreign_Number(std::string_view text);

// What `Format_Axis_Number` makes of numbers, as numbers: rounded to the decimals of `Axis_Format`,
// ties away from zero on the decimal text. For readers that pass every coordinate through it; one
// instance for a phase, since it takes `Axis_Format` when it is made.
class Axis_Rounding {
 public:
  Axis_Rounding();
  double operator()(double value) const;
  // A text of a foreign file: trimmed, either decimal sign, empty is 0. Raises a type fault when it
  // is no number, an overflow fault when the number does not fit a single.
  double operator()(std::string_view text) const;

 private:
  Decimal_Rounding Rounding;
};

}  // namespace norvik
