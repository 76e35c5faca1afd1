// isolation.h: the outline of the union of all polygons, edge by edge.
//
// An edge is cut at every crossing with an edge of another polygon. Between two crossings a piece
// lies wholly inside or wholly outside of each other polygon, so its two ends decide; what lies
// inside any is dropped. A piece that runs along an edge of the other polygon is not inside: edges
// that coincide stay, both of them.
//
// Crossings in an end point do not count. So an edge that enters another polygon exactly through a
// corner is not cut there.
//
// Only polygons that share a cell of a grid are compared, in the order of the table; the outcome is
// that of comparing all.
#pragma once

#include "import/gerber/polygon.h"

#include <array>
#include <cstdint>
#include <span>
#include <string>

namespace norvik {

// Where an edge crosses others. At most 50 are kept: each further one takes the last place.
class Edge_Crossings {
 public:
  static constexpr std::size_t Most = 50;
  void Clear() { Total = 0; }
  void Add(Plane_Point crossing) {
    if (Total < Most) ++Total;
    Points[Total - 1] = crossing;
  }
  std::size_t Count() const { return Total; }
  const Plane_Point& operator[](std::size_t n) const { return Points[n]; }

  // Orders them by their distance from `a`, and ends the list with a point that is none.
  void Split_Edge(Plane_Point a);

 private:
  static constexpr double Sentinel = 9999999;
  std::array<Plane_Point, Most + 1> Points{};
  std::size_t Total = 0;
};

// `others`: the polygons to compare with, in ascending order.
bool Segment_Inside_Any(const Iso_Polygon& table, std::span<const std::int32_t> others,
                        Plane_Point a, Plane_Point b);
void Segment_Crossings(const Iso_Polygon& table, std::span<const std::int32_t> others,
                       Plane_Point a, Plane_Point b, Edge_Crossings& crossings);

// Append to the line file; the bounds must be known. ESC stops; the event queue gets its turn once
// for each polygon. Raise a file fault.
void Isolate_Polygons(const Iso_Polygon& table, int pass, const std::string& line_file);
// Every edge of every polygon.
void Write_Polygons(const Iso_Polygon& table, int pass, const std::string& line_file);

}  // namespace norvik
