// geometry.h: points, segments and roundings of the artwork importer.
//
// Points are stored as singles; everything between two stores runs in doubles.
#pragma once

#include "core/geometry.h"

#include <algorithm>
#include <cmath>
#include <optional>

namespace norvik {

struct Plane_Point {
  double X = 0, Y = 0;
  friend bool operator==(const Plane_Point&, const Plane_Point&) = default;
};

// Rounded to 4, 8 or 16 decimals, halves to the even neighbour. Numbers too large to have so many
// stay as they are.
double Round4(double value);
double Round8(double value);
double Round16(double value);

// Sum of two angles in 0..2*pi, a full turn as 0, rounded to 9 decimals.
double Add_Angle(double a, double b);

// How far a point may lie from an edge and still count as on it. Crossings are rounded to singles;
// beyond 83 units their steps are coarser than the fixed tolerance.
inline double Edge_Tolerance(Plane_Point p) {
  constexpr double fixed = 0.00001, single_step = 1.2e-7;
  return std::max(fixed, single_step * std::max(std::abs(p.X), std::abs(p.Y)));
}

// Where a-b and c-d cross, as singles; absent when they are parallel or meet in an end point.
inline std::optional<Plane_Point> Segment_Cross(Plane_Point a, Plane_Point b, Plane_Point c,
                                                Plane_Point d) {
  // Segments that lie apart cannot cross, whatever rounding makes of nearly parallel ones.
  if (std::max(a.X, b.X) < std::min(c.X, d.X) || std::max(c.X, d.X) < std::min(a.X, b.X) ||
      std::max(a.Y, b.Y) < std::min(c.Y, d.Y) || std::max(c.Y, d.Y) < std::min(a.Y, b.Y)) {
    return std::nullopt;
  }
  const double denominator = (b.X - a.X) * (d.Y - c.Y) - (b.Y - a.Y) * (d.X - c.X);
  if (denominator == 0) return std::nullopt;
  const double t = ((a.Y - c.Y) * (d.X - c.X) - (a.X - c.X) * (d.Y - c.Y)) / denominator;
  const double u = ((a.Y - c.Y) * (b.X - a.X) - (a.X - c.X) * (b.Y - a.Y)) / denominator;
  if (!(t > 0 && t < 1 && u > 0 && u < 1)) return std::nullopt;
  return Plane_Point{static_cast<float>(a.X + t * (b.X - a.X)),
                     static_cast<float>(a.Y + t * (b.Y - a.Y))};
}

// True when p lies within the box of a-b, its borders included, and its foot on the line through
// them is nearer than the tolerance on both axes.
inline bool Point_On_Segment(Plane_Point p, Plane_Point a, Plane_Point b) {
  if (p.X < std::min(a.X, b.X) || p.X > std::max(a.X, b.X)) return false;
  if (p.Y < std::min(a.Y, b.Y) || p.Y > std::max(a.Y, b.Y)) return false;
  constexpr double length_of_none = 0.001;
  const double dx = b.X - a.X, dy = b.Y - a.Y;
  double square = dx * dx + dy * dy;
  if (square == 0) square = length_of_none * length_of_none;
  const double u = ((p.X - a.X) * dx + (p.Y - a.Y) * dy) / square;
  const double tolerance = Edge_Tolerance(p);
  return std::abs(a.X + u * dx - p.X) < tolerance && std::abs(a.Y + u * dy - p.Y) < tolerance;
}

// Square of the distance of p from the nearest point of a-b.
inline double Segment_Distance_Square(Plane_Point p, Plane_Point a, Plane_Point b) {
  const double dx = b.X - a.X, dy = b.Y - a.Y;
  const double square = dx * dx + dy * dy;
  const double u =
      square == 0 ? 0 : std::clamp(((p.X - a.X) * dx + (p.Y - a.Y) * dy) / square, 0.0, 1.0);
  const double x = a.X + u * dx - p.X, y = a.Y + u * dy - p.Y;
  return x * x + y * y;
}

}  // namespace norvik
