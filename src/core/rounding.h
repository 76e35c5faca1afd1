// rounding.h: the named ways from one number type to another.
//
// A store into a narrower type always goes through one of these; out of range raises an overflow
// fault, a value that is no number a type fault.
#pragma once

#include <cstdint>

namespace norvik {

// Nearest whole number, halves to the even neighbour.
double Round_Half_Even(double value);
// Nearest whole number, halves to the even neighbour, held in 16 or 32 bits.
std::int16_t To_Int16(double value);
std::int32_t To_Int32(double value);
// Nearest single.
float To_Single(double value);
// The part before the decimal point, toward zero; -1.7 gives -1.
double Whole_Part(double value);

}  // namespace norvik
