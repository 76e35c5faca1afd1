// distance.h: the two questions of every path sort.
//
// Both work in singles. Distances are scaled by 10000 in single precision before they are squared,
// so that very short ones keep their order; the squares, their sum and the root run in doubles. The
// order of two distances is that of their roots.
#pragma once

#include "core/nullable.h"

#include <cmath>

namespace norvik {

// Scaled square of the distance on one axis.
inline double Scaled_Square(float a, float b) {
  const double scaled = static_cast<double>(std::abs(a - b) * 10000.0F);
  return scaled * scaled;
}

// Scaled distance, squared.
inline double Distance_Square(float cx, float cy, float px, float py) {
  return Scaled_Square(cx, px) + Scaled_Square(cy, py);
}
// Order of two distances by their squares. Squares that differ can have the same root, and then
// neither is nearer.
inline bool Is_Nearer_Square(double square, double than) {
  return square < than && std::sqrt(square) < std::sqrt(than);
}

// True when b lies strictly nearer to c than a does; equal distances give false.
inline bool Is_Closer(float cx, float cy, float ax, float ay, float bx, float by) {
  return Is_Nearer_Square(Distance_Square(cx, cy, bx, by), Distance_Square(cx, cy, ax, ay));
}

}  // namespace norvik
