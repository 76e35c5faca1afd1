// axes.h: the axes that a machine moves.
#pragma once

#include <string_view>

namespace norvik {

// Axis tables are indexed from 1: X, Y, Z, A.
inline constexpr int Axis_Count = 4;

// The letter of axis 1..4.
inline constexpr char Axis_Letter(int axis) {
  return std::string_view(" XYZA")[static_cast<std::size_t>(axis)];
}

}  // namespace norvik
