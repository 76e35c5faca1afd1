// path_sort.h: the order of strokes and holes by nearest neighbour.
//
// From place 0 on: the row in the slot, and then each later row, is turned to start at its nearer
// end; a later row that starts no farther from the position than the row in the slot changes places
// with it, so that of equals the last one wins; the position moves to the end of the row in the
// slot. The outcome is that of the plain scan, equals and turned rows included, in about n log n
// for rows in no order.
//
// Where a meeting ends the search, the scan for a slot stops as soon as the row in it starts at the
// position: later rows are then neither taken nor turned.
//
// The cost has a part that the index does not take away: rows that lie in the order in which they
// were drawn come nearer one after the other, and each of them changes places. With the outlines of
// a board that is a fixed share of the rows at each slot, so that twice the rows take four times as
// long.
#pragma once

#include "import/pipeline/point_tree.h"

#include <cstdint>
#include <functional>
#include <vector>

namespace norvik {

struct Path_Step {
  std::int32_t Row = 0;
  bool Reversed = false;
};

// How rows are given: start and end of each, or one point of each, which is both; and whether a
// meeting ends the search.
enum class Path_Rows { Lines, Lines_To_Meeting, Points };

// The order in which rows are taken from `position` on, which is left at the end of the last one.
// `round(rows done)` is called before each row; when it gives false the rest stays in the order in
// which it stands.
std::vector<Path_Step> Sort_Path(const std::vector<Point_Tree::Point>& points, Path_Rows rows,
                                 Point_Tree::Point& position,
                                 const std::function<bool(std::int32_t)>& round);

}  // namespace norvik
