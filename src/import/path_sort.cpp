#include "import/path_sort.h"

#include "import/import_distance.h"
#include "import/record_walk.h"

#include <cmath>

namespace norvik {

namespace {

using Point = Point_Tree::Point;

class Path_Sort {
 public:
  Path_Sort(const std::vector<Point>& points, Path_Rows rows);
  std::vector<Path_Step> Run(Point& position, const std::function<bool(std::int32_t)>& round);

 private:
  bool Starts_At_Second(const Point& position, std::int32_t row) const;
  void Place_Next(std::int32_t slot);

  Record_Walk Walk{Record_Walk::Finds::Not_Farther};
  bool Single;
  std::vector<Point> Passed;  // positions so far, the present one last
};

Path_Sort::Path_Sort(const std::vector<Point>& points, Path_Rows rows)
    : Single(rows == Path_Rows::Points) {
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
}

// Every row left is turned at every step. Where its ends are equally far the row stays as the step
// before had turned it, and before the first step as it was given.
bool Path_Sort::Starts_At_Second(const Point& position, std::int32_t row) const {
  const Point &first = Walk.End_At(row * 2), &second = Walk.End_At(row * 2 + 1);
  const auto compare = [&](const Point& from) {
    const double root_1 = std::sqrt(Distance_Square(from.X, from.Y, first.X, first.Y));
    const double root_2 = std::sqrt(Distance_Square(from.X, from.Y, second.X, second.Y));
    return root_2 < root_1 ? 1 : root_1 < root_2 ? -1 : 0;
  };
  int order = compare(position);
  if (first.X == second.X && first.Y == second.Y) return false;
  for (std::size_t n = Passed.size(); order == 0 && n > 0; --n) order = compare(Passed[n - 1]);
  return order > 0;
}

void Path_Sort::Place_Next(std::int32_t slot) {
  const Point position = Passed.back();
  const std::int32_t row = Walk.Row_In(slot);
  const bool second = !Single && Starts_At_Second(position, row);
  Walk.Find(position, slot, slot + 1, Walk.End_At(row * 2 + (second ? 1 : 0)));
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
    const bool reversed = !Single && Starts_At_Second(position, row);
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
