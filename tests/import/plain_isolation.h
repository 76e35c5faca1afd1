// plain_isolation.h: cleaning and isolation of artwork as their rules stand, every pair and every
// polygon compared; the reference of the tests and of the benchmarks. Only what is asked of one
// point, one edge or one pair of lines is shared with the product.
#pragma once

#include "import/gerber/clean.h"
#include "import/gerber/isolation.h"
#include "import/gerber/lines.h"

#include <vector>

namespace norvik {

struct Plain_Isolation {
  const Iso_Polygon& Table;
  std::vector<Gerber_Cut> Written;
  std::vector<Plane_Point> Cross;
  std::size_t Overwritten = 0;  // crossings beyond the fiftieth of an edge

  bool Inside_Any(std::int32_t polygon, Plane_Point a, Plane_Point b) const {
    for (std::int32_t q = 0; q < Table.Polygon_Total(); ++q) {
      if (q == polygon) continue;
      if (!Point_In_Polygon(Table, a, q) || !Point_In_Polygon(Table, b, q)) continue;
      bool along = false;
      for (std::size_t n = Table.First(q); n + 1 < Table.End(q); ++n) {
        along |= Point_On_Segment(a, Table.At(n), Table.At(n + 1)) &&
                 Point_On_Segment(b, Table.At(n), Table.At(n + 1));
      }
      if (!along) return true;
    }
    return false;
  }

  void Find_Crossings(std::int32_t polygon, Plane_Point a, Plane_Point b) {
    Cross.clear();
    for (std::int32_t q = 0; q < Table.Polygon_Total(); ++q) {
      if (q == polygon) continue;
      for (std::size_t n = Table.First(q); n + 1 < Table.End(q); ++n) {
        const auto crossing = Segment_Cross(a, b, Table.At(n), Table.At(n + 1));
        if (!crossing) continue;
        if (Cross.size() == 50) {
          Cross.pop_back();
          ++Overwritten;
        }
        Cross.push_back(*crossing);
      }
    }
  }

  void Isolate_Edge(std::int32_t polygon, Plane_Point a, Plane_Point b) {
    if (Inside_Any(polygon, a, b)) return;
    Find_Crossings(polygon, a, b);
    Edge_Crossings split;
    for (const Plane_Point& crossing : Cross) split.Add(crossing);
    split.Split_Edge(a);
    std::vector<Plane_Point> way{a};
    for (std::size_t n = 0; n < Cross.size(); ++n) way.push_back(split[n]);
    way.push_back(b);
    for (std::size_t n = 1; n < way.size(); ++n) {
      if (way[n - 1] == way[n]) continue;
      if (Cross.empty() || !Inside_Any(polygon, way[n - 1], way[n])) {
        Written.push_back({way[n - 1], way[n]});
      }
    }
  }

  void Run() {
    for (std::int32_t p = 0; p < Table.Polygon_Total(); ++p) {
      for (std::size_t n = Table.First(p); n + 1 < Table.End(p); ++n) {
        Isolate_Edge(p, Table.At(n), Table.At(n + 1));
      }
    }
  }
};

// Gives the rounds that it took.
inline int Plain_Clean_Lines(std::vector<Clean_Line>& lines, const Clean_Rule& rule) {
  int rounds = 0;
  bool changed = true;
  while (changed && rounds < 10) {
    changed = false;
    ++rounds;
    for (std::size_t i = 0; i < lines.size(); ++i) {
      if (lines[i].Deleted) continue;
      for (std::size_t j = i + 1; j < lines.size(); ++j) {
        if (lines[j].Deleted || lines[i].Width != lines[j].Width) continue;
        std::array<Plane_Point, 2> ends;
        if (!Join_Lines(rule, lines[i], lines[j], ends)) continue;
        lines[i].Ends = ends;
        lines[j].Deleted = changed = true;
      }
    }
  }
  return rounds;
}

inline void Plain_Clean_Pads(std::vector<Gerber_Pad>& pads) {
  for (std::size_t i = 0; i < pads.size(); ++i) {
    for (std::size_t j = i + 1; j < pads.size(); ++j) {
      if (pads[i].Deleted || pads[j].Deleted) continue;
      if (pads[i].X == pads[j].X && pads[i].Y == pads[j].Y && pads[i].Shape == pads[j].Shape) {
        pads[j].Deleted = true;
      }
    }
  }
}

}  // namespace norvik
