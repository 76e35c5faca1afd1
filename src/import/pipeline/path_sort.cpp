#include "import/pipeline/path_sort.h"

#include "import/pipeline/distance.h"
#include "import/pipeline/record_walk.h"

#include <cmath>

namespace norvik {

namespace {

using Point = Point_Tree::Point;

class Path_Sort {
 public:
  Path_Sort(const std::vector<Point>& points, Path_Rows rows);
  std::vector<Path_Step> Run(Point& position, const std::function<bool(std::int32_t)>& round);

 private:
  // What is known of a row since it last changed its place.
  struct Turn {
    std::int32_t Slots = 0;  // filled by then
    bool Second = false;     // it started at its second end then
  };
  static std::size_t Index(std::int32_t n) { return static_cast<std::size_t>(n); }
  bool Starts_At_Second(std::int32_t row, std::int32_t place) const;
  void Place_Next(std::int32_t slot);
  void Keep_Turns(std::int32_t slot, std::int32_t row_before);

  Record_Walk Walk{Record_Walk::Finds::Not_Farther};
  bool Single, To_Meeting;
  std::vector<Point> Passed;  // positions so far, the present one last
  // Where a meeting ends the search:
  std::vector<std::int32_t> Looked_To;  // for each slot, one past the last place looked at
  std::vector<Turn> Turns;              // by row
};

Path_Sort::Path_Sort(const std::vector<Point>& points, Path_Rows rows)
    : Single(rows == Path_Rows::Points), To_Meeting(rows == Path_Rows::Lines_To_Meeting) {
  std::vector<Point> ends;
  if (Single) {
    ends.reserve(points.size() * 2);
    for (const Point& point : points) ends.insert(ends.end(), 2, point);
  } else {
    ends = points;
  }
  const auto count = static_cast<std::int32_t>(ends.size());
  Walk.Build(std::move(ends));
  for (std::int32_t end = 0; end < count; end += Single ? 2 : 1) Walk.Switch(end, true);
  if (!To_Meeting) return;
  Walk.End_At_Meeting();
  Turns.resize(Index(Walk.Size()));
  Looked_To.assign(Index(Walk.Size()), 0);
}

// Every row that is looked at is turned. Where its ends are equally far the row stays as the slot
// before had turned it, and before the first slot as it was given. Asked for rows that are looked
// at for the present slot, the last of Passed, and stood at `place` until then.
bool Path_Sort::Starts_At_Second(std::int32_t row, std::int32_t place) const {
  const Point &first = Walk.End_At(row * 2), &second = Walk.End_At(row * 2 + 1);
  const auto compare = [&](const Point& from) {
    const double root_1 = std::sqrt(Distance_Square(from.X, from.Y, first.X, first.Y));
    const double root_2 = std::sqrt(Distance_Square(from.X, from.Y, second.X, second.Y));
    return root_2 < root_1 ? 1 : root_1 < root_2 ? -1 : 0;
  };
  if (first.X == second.X && first.Y == second.Y) return false;
  int order = compare(Passed.back());
  const Turn known = To_Meeting ? Turns[Index(row)] : Turn{};
  for (std::size_t n = Passed.size() - 1; order == 0 && n > Index(known.Slots); --n) {
    const bool looked_at = !To_Meeting || Looked_To[n - 1] > place;
    if (looked_at) order = compare(Passed[n - 1]);
  }
  return order == 0 ? known.Second : order > 0;
}

// Notes how the search has left the rows that it moved.
void Path_Sort::Keep_Turns(std::int32_t slot, std::int32_t row_before) {
  Turns[Index(row_before)] = {slot + 1, Starts_At_Second(row_before, slot)};
  for (const Record_Walk::Found_Row& found : Walk.Rows_Found()) {
    const auto exact = [&] { return Starts_At_Second(found.Row, found.Place); };
    Turns[Index(found.Row)] = {slot + 1, found.Second_Nearer(exact)};
  }
}

void Path_Sort::Place_Next(std::int32_t slot) {
  const Point position = Passed.back();
  const std::int32_t row = Walk.Row_In(slot);
  const bool second = !Single && Starts_At_Second(row, slot);
  const Point& start = Walk.End_At(row * 2 + (second ? 1 : 0));
  const bool meets = To_Meeting && start.X == position.X && start.Y == position.Y;
  if (!meets) Walk.Find(position, slot, slot + 1, start);
  if (!To_Meeting) return;
  if (!meets) Keep_Turns(slot, row);
  Looked_To[Index(slot)] = meets ? slot + 1 : Walk.Looked_To();
}

std::vector<Path_Step> Path_Sort::Run(Point& position,
                                      const std::function<bool(std::int32_t)>& round) {
  std::vector<Path_Step> steps;
  steps.reserve(static_cast<std::size_t>(Walk.Size()));
  Passed.reserve(static_cast<std::size_t>(Walk.Size()));
  std::int32_t slot = 0;
  for (; slot < Walk.Size() && round(slot); ++slot) {
    Passed.push_back(position);
    Place_Next(slot);
    const std::int32_t row = Walk.Row_In(slot);
    const bool reversed = !Single && Starts_At_Second(row, slot);
    steps.push_back({row, reversed});
    position = Walk.End_At(row * 2 + (reversed ? 0 : 1));
    Walk.Switch(row * 2, false);
    if (!Single) Walk.Switch(row * 2 + 1, false);
  }
  for (; slot < Walk.Size(); ++slot) steps.push_back({Walk.Row_In(slot), false});
  return steps;
}

}  // namespace

std::vector<Path_Step> Sort_Path(const std::vector<Point_Tree::Point>& points, Path_Rows rows,
                                 Point_Tree::Point& position,
                                 const std::function<bool(std::int32_t)>& round) {
  return Path_Sort(points, rows).Run(position, round);
}

}  // namespace norvik
