// record_walk.h: the next row in table order that lies within a distance.
//
// The path sorts look through the rest of their table for rows nearer than the best so far, and
// each one found changes places with the row in the slot. Which row is found next, and so the order
// of the whole table, depends on the places and not only on the distances. A plain scan visits
// every row for every slot. The walk finds the same rows in the same order:
//
//   - A short scan first: while the best is still far away, a nearer row is found within a few
//   steps.
//   - Then the tree is asked for everything within the best distance. A short answer, sorted by
//   place,
//     holds all rows that can still be found. A long answer means that the scan will find one soon:
//     it goes on with a larger allowance.
//
// Rows found later than the answer only lie within smaller distances, so one answer serves the
// whole walk; where a sort lets the best distance grow again, the tree is asked again.
#pragma once

#include "import/point_tree.h"

#include <algorithm>
#include <cstdint>
#include <vector>

namespace norvik {

// `Table` gives:
//   std::int32_t Size()                      number of places
//   double Key_At(place, x, y)               squared distance of the nearest live end of the row
//   there;
//                                            infinite or more where it has none
//   std::int32_t Place_Of(Point_Tree::Number) place of the row that the point belongs to
//   const Point_Tree& Tree()                 live ends of all rows
template <class Table>
class Record_Walk {
 public:
  explicit Record_Walk(const Table& table) : Rows(table) {}

  // A new walk around (x, y) that begins at `place`.
  void Begin(float x, float y, std::int32_t place) {
    X = x;
    Y = y;
    At = place;
    Holds_Answer = false;
    Scan_Allowance = First_Allowance;
  }

  // The next place at or behind the one last found whose key is at most `square`; -1 when there is
  // none. Rows behind it must not have moved since Begin.
  std::int32_t Next(double square) {
    for (;;) {
      if (Holds_Answer && square <= Answer_Square) return Next_In_Answer(square);
      const std::int32_t stop = std::min(Rows.Size(), At + Scan_Allowance);
      for (; At < stop; ++At) {
        if (Rows.Key_At(At, X, Y) <= square) return At++;
      }
      if (At >= Rows.Size()) return -1;
      Ask_Tree(square);
      Scan_Allowance *= Growth;
    }
  }

 private:
  static constexpr std::int32_t First_Allowance = 32, Growth = 4;

  void Ask_Tree(double square) {
    Holds_Answer =
        Rows.Tree().Gather(X, Y, square, static_cast<std::size_t>(Scan_Allowance), Points);
    if (!Holds_Answer) return;
    Answer_Square = square;
    Places.clear();
    for (const Point_Tree::Number point : Points) {
      const std::int32_t place = Rows.Place_Of(point);
      if (place >= At) Places.push_back(place);
    }
    std::sort(Places.begin(), Places.end());
    Answer_At = 0;
  }

  std::int32_t Next_In_Answer(double square) {
    for (; Answer_At < Places.size(); ++Answer_At) {
      const std::int32_t place = Places[Answer_At];
      if (place < At || !(Rows.Key_At(place, X, Y) <= square)) continue;
      At = place + 1;
      return place;
    }
    return -1;
  }

  const Table& Rows;
  float X = 0, Y = 0;
  std::int32_t At = 0, Scan_Allowance = First_Allowance;
  bool Holds_Answer = false;
  double Answer_Square = 0;
  std::size_t Answer_At = 0;
  std::vector<Point_Tree::Number> Points;
  std::vector<std::int32_t> Places;
};

}  // namespace norvik
