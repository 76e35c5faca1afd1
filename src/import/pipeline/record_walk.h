// record_walk.h: finds the row that a path sort takes next, faster than by looking at every row.
//
// A path sort goes through its table slot by slot. For each slot it looks at all places behind it,
// in order, for the row nearest to where the tool is. Whenever a row is nearer than the best one so
// far, it changes places with the row in the slot and becomes the best. Because of these exchanges
// the order of the result depends on where rows lie in the table, not only on distances, so a
// search that just returned the nearest row would give another program. This class gives exactly
// the rows that looking at every row would give, in the same order, in two ways that it changes
// between:
//
//   - Scan: thirty-two places at a time, with distances in single precision. Where these are too
//     close to decide, the exact distances do.
//   - Tree: when the scan has found nothing for a long stretch, it asks a tree of points for every
//     row within the best distance. If there are few, only those can still be found; they are
//     looked at in the order of their places, and the rest of the table is skipped. If there are
//     many, the scan is likely to find one soon and goes on for a longer stretch before it asks
//     again.
//
// Finding a row usually makes the best distance smaller, so what the tree gave stays valid. Where
// the distance grows (a row may be entered at its far end only), the scan goes on.
//
// Row r has two ends, numbered 2r and 2r + 1, and is cut starting from one of them. An end that is
// switched off is never found; tables of single points have all second ends off.
#pragma once

#include "import/pipeline/point_tree.h"

#include <cstdint>
#include <utility>
#include <vector>

namespace norvik {

class Record_Walk {
 public:
  enum class Finds { Nearer, Not_Farther };
  explicit Record_Walk(Finds rule) : Rule(rule) {}

  // From now on a row that begins or ends exactly where the tool is ends the search at once.
  void End_At_Meeting() { Ends_At_Meeting = true; }

  // Two ends for each row, all off; row r stands at place r and starts at its side 0.
  void Build(std::vector<Point_Tree::Point> ends);

  std::int32_t Size() const { return static_cast<std::int32_t>(Place.size()); }
  std::int32_t Row_In(std::int32_t place) const { return Start_Of(place) / 2; }
  std::int32_t Place_Of(std::int32_t row) const { return Place[Index(row)]; }
  const Point_Tree::Point& End_At(std::int32_t end) const { return Tree.At(end); }
  bool Any_On() const { return Tree.Live() > 0; }
  // Ends of the row at a place.
  std::int32_t Start_Of(std::int32_t place) const {
    return Blocks[Index(place / Block)].Start[Index(place % Block)];
  }
  std::int32_t End_Of(std::int32_t place) const { return Start_Of(place) ^ 1; }
  bool Is_Reversed(std::int32_t place) const { return Start_Of(place) % 2 != 0; }
  void Reverse(std::int32_t place) {
    Blocks[Index(place / Block)].Start[Index(place % Block)] ^= 1;
  }

  void Switch(std::int32_t end, bool on);
  void Exchange(std::int32_t place, std::int32_t other);

  // Looks at the places from `from` on for rows nearer to `from_point` than `best` (or as near, by
  // the rule given to the constructor). Each row found changes places with the row in `slot` and is
  // turned so that it starts at its nearer end. The new best point is that start; where only its
  // second end is switched on, it is the other end.
  void Find(Point_Tree::Point from_point, std::int32_t slot, std::int32_t from,
            Point_Tree::Point best);

  // A row that was found: its place at that moment, and the squared distances of its ends in single
  // precision.
  struct Found_Row {
    std::int32_t Row = 0, Place = 0;
    float Squares[2] = {};
    // Whether its second end is nearer; `exact` is asked where the rough squares cannot tell.
    template <class Exact>
    bool Second_Nearer(const Exact& exact) const {
      if (Squares[1] < Squares[0] * Less - Smallest) return true;
      return !(Squares[0] < Squares[1] * Less - Smallest) && exact();
    }
  };
  // Of the last search, where a meeting ends it: the rows found, in order, and one past the last
  // place looked at.
  const std::vector<Found_Row>& Rows_Found() const { return Found; }
  std::int32_t Looked_To() const { return Met ? Last_Found + 1 : Size(); }

 private:
  static constexpr std::int32_t Block = 32;
  static constexpr std::int32_t First_Allowance = 1024, Growth = 4;
  // Factors and a least value that allow for more than single precision can get wrong.
  static constexpr float Less = 1 - 1e-5F, More = 1 + 1e-5F, Smallest = 1e-36F;

  // Thirty-two places. Ends that are switched off, and those of places behind the last row, lie at
  // infinity, so that no comparison finds them.
  struct Place_Block {
    float X[2][Block], Y[2][Block];  // by side of the row
    std::int32_t Start[Block];       // the end at which the row starts
  };
  // A row taken out of its place.
  struct Row_State {
    std::int32_t Start = 0;
    float X[2] = {}, Y[2] = {};
  };

  static std::size_t Index(std::int32_t n) { return static_cast<std::size_t>(n); }
  Row_State State_At(std::int32_t place) const;
  void Put_State(std::int32_t place, const Row_State& state);
  float Rough_Square(float x, float y) const;
  double Exact_Root(const Row_State& row) const;
  void Set_Best(float rough_square);
  bool Passes(const Row_State& row, float rough_square);
  bool Shares_Best_Point(const Row_State& row, float near_square) const;
  void Take(std::int32_t place, const Row_State& row, float near_square);
  void Turn_Carried();
  void Note_Found();
  void Scan(std::int32_t allowance);
  bool Ask_Tree();
  void Walk_Answer();

  Finds Rule;
  bool Ends_At_Meeting = false;
  std::vector<std::int32_t> Place;  // of each row
  std::vector<Place_Block> Blocks;
  Point_Tree Tree;

  // The search in progress.
  Point_Tree::Point Centre;
  Row_State Carried;  // the row found last, on its way to the slot (or to where the next one was)
  float Low = 0, High = 0;  // rough squares below are nearer than the best, above are farther
  double Root = -1;         // exact distance of the best; -1: that of Carried, not computed yet
  double Found_Root = -1;   // that of the row that has just passed, where it was computed
  float Near = 0;           // rough square of the near end of Carried
  std::int32_t At = 0, Last_Found = 0;
  bool Met = false;  // the row found last starts at the point itself and ends the search
  std::vector<Found_Row> Found;
  std::vector<std::int32_t> Answer;  // places in ascending order
  std::vector<Point_Tree::Number> Points;
};

}  // namespace norvik
