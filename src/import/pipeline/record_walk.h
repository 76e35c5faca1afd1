// record_walk.h: the rows of a path sort by place, and the search for the row to take next.
//
// The path sorts look through the rest of their table for rows nearer than the best so far, and
// each one found changes places with the row in the slot. Which row is found next, and so the order
// of the whole table, depends on the places and not only on the distances. A plain scan measures
// every row for every slot. The walk finds the same rows in the same order:
//
//   - It scans with a first look in singles, thirty-two places at a time; coordinates lie by place.
//     Only where the first look cannot tell, the exact distances decide.
//   - When a long stretch brought nothing it asks the tree for everything within the best distance.
//     A short answer, sorted by place, holds all rows that can still be found. A long answer means
//     that the scan will find one soon: it goes on with a larger allowance.
//
// Rows found later than the answer mostly lie within smaller distances, so one answer serves the
// rest of the walk; where the best distance grows again, the scan goes on.
//
// Row r has the ends 2r and 2r+1, its sides 0 and 1, and starts at one of them. An end that is
// switched off is never found; a table of single points leaves its second ends off.
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

  // From now on a row found with a live end at the point itself ends the search.
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

  // Looks at the places from `from` on, in order, for rows with an end nearer to (x, y) than
  // `best`, or not farther, as the walk was made for. Each one found changes places with the row in
  // `slot`, is turned to start at its nearer live end, and gives the new best point: its start; but
  // where only its second end is live, its other end.
  void Find(Point_Tree::Point from_point, std::int32_t slot, std::int32_t from,
            Point_Tree::Point best);

  // A row found, where it stood and the rough squares of its ends.
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
  // Margins far wider than what rounding and underflow can hide in a rough square.
  static constexpr float Less = 1 - 1e-5F, More = 1 + 1e-5F, Smallest = 1e-36F;

  // Thirty-two places. Ends that are off, and those of places behind the last row, are infinite.
  struct Place_Block {
    float X[2][Block], Y[2][Block];  // by side of the row
    std::int32_t Start[Block];       // the end at which the row starts
  };
  // What stands at a place, while it is carried to the next one.
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
  Row_State Carried;        // the row found last; it goes to the slot, or to the place of the next
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
