// polygon.h: the outlines of lines and pads.
//
//         5 ______________________________ 4
//        /                                  \  .
//     6 |                                    | 3    half width W, cap S = full width / 5.225:
//     7 |   E1 ---------------------->  E2   | 2    the long sides run S past the ends,
//        \ ________________________________ /  .    the blunt tips stand W beyond them
//         8                                1
#pragma once

#include "import/gerber/geometry.h"
#include "import/gerber/table.h"

#include <array>
#include <cstdint>
#include <span>
#include <vector>

namespace norvik {

// A closed outline: the last point repeats the first.
struct Iso_Outline {
  std::array<Plane_Point, 9> Points{};
  std::size_t Count = 0;
  void Add(double x, double y) { Points[Count++] = {Round4(x), Round4(y)}; }
  void Close() { Points[Count++] = Points[0]; }
};

// `extra` widens a line by its whole and a pad by its half on each side.
Iso_Outline Make_Line_Polygon(double x1, double y1, double x2, double y2, double width,
                              double extra);
// Shape "R" is a rectangle, every other an octagon.
Iso_Outline Make_Pad_Polygon(double x, double y, double size_x, double size_y, char shape,
                             double extra);

// The polygons of a pass, their points as singles one polygon behind the other.
struct Iso_Polygon {
  std::vector<float> Poly_X, Poly_Y;
  std::vector<std::uint32_t> First_Point{0};  // of each polygon, and one past the last point
  std::vector<float> Poly_Min_X, Poly_Min_Y, Poly_Max_X, Poly_Max_Y;  // by Analyze_Bounds

  std::int32_t Polygon_Total() const { return static_cast<std::int32_t>(First_Point.size()) - 1; }
  std::size_t First(std::int32_t polygon) const {
    return First_Point[static_cast<std::size_t>(polygon)];
  }
  // One past its last point.
  std::size_t End(std::int32_t polygon) const {
    return First_Point[static_cast<std::size_t>(polygon) + 1];
  }
  Plane_Point At(std::size_t point) const { return {Poly_X[point], Poly_Y[point]}; }

  // Raises an overflow fault when a point does not fit a single.
  void Add(const Iso_Outline& outline);
  void Analyze_Bounds();
  bool In_Bounds(Plane_Point p, std::int32_t polygon) const {
    const auto n = static_cast<std::size_t>(polygon);
    return p.X >= static_cast<double>(Poly_Min_X[n]) && p.X <= static_cast<double>(Poly_Max_X[n]) &&
           p.Y >= static_cast<double>(Poly_Min_Y[n]) && p.Y <= static_cast<double>(Poly_Max_Y[n]);
  }
};

// Within the bounds and either on an edge, within the tolerance, or enclosed an odd number of
// times.
bool Point_In_Polygon(const Iso_Polygon& table, Plane_Point p, std::int32_t polygon);

// Lines and pads that are not deleted, widened by `extra`. A shape that does not fit is logged and
// left out; ESC stops.
Iso_Polygon Make_Polygons(const Gerber_Table_State& artwork, double extra);

}  // namespace norvik
