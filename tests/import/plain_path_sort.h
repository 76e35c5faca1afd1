// plain_path_sort.h: the nearest-neighbour order of strokes and of holes as its rules stand; the
// reference of the tests and of the benchmarks. Its cost grows with the square of the rows.
#pragma once

#include "import/pipeline/distance.h"

#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

namespace norvik {

struct Plain_Stroke {
  float X1 = 0, Y1 = 0, X2 = 0, Y2 = 0;
  std::int32_t Number = 0;
  bool Reversed = false;

  void Reverse() {
    std::swap(X1, X2);
    std::swap(Y1, Y2);
    Reversed = !Reversed;
  }
};

// `to_meeting`: a stroke that starts at the position ends the search for the next.
inline void Plain_Stroke_Sort(std::vector<Plain_Stroke>& strokes, bool to_meeting = false) {
  float x = 0, y = 0;
  const auto turn = [&](Plain_Stroke& s) {
    if (Is_Closer(x, y, s.X1, s.Y1, s.X2, s.Y2)) s.Reverse();
  };
  for (std::size_t i = 0; i < strokes.size(); ++i) {
    turn(strokes[i]);
    const auto met = [&] { return to_meeting && strokes[i].X1 == x && strokes[i].Y1 == y; };
    for (std::size_t j = i + 1; j < strokes.size() && !met(); ++j) {
      Plain_Stroke &here = strokes[i], &later = strokes[j];
      turn(later);
      const bool farther = Is_Closer(x, y, later.X1, later.Y1, here.X1, here.Y1);
      if (!farther) std::swap(here, later);
    }
    x = strokes[i].X2;
    y = strokes[i].Y2;
  }
}

struct Plain_Hole {
  float X = 0, Y = 0;
  std::int32_t Number = 0;
};

inline void Plain_Hole_Sort(std::vector<Plain_Hole>& holes, float& x, float& y) {
  for (std::size_t i = 0; i < holes.size(); ++i) {
    for (std::size_t j = i + 1; j < holes.size(); ++j) {
      if (!Is_Closer(x, y, holes[j].X, holes[j].Y, holes[i].X, holes[i].Y)) {
        std::swap(holes[i], holes[j]);
      }
    }
    x = holes[i].X;
    y = holes[i].Y;
  }
}

}  // namespace norvik
