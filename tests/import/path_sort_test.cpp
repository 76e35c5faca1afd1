// The order of strokes and holes against plain transcriptions of its rules.
#include "import/pipeline/path_sort.h"

#include "import_fixture.h"
#include "plain_path_sort.h"

namespace norvik {
namespace {

using Points = std::vector<Point_Tree::Point>;
using Numbers = std::vector<std::pair<std::int32_t, bool>>;

Numbers Sorted(const Points& points, Path_Rows rows, Point_Tree::Point& position) {
  Numbers numbers;
  const auto go_on = [](std::int32_t) { return true; };
  for (const Path_Step& step : Sort_Path(points, rows, position, go_on)) {
    numbers.emplace_back(step.Row, step.Reversed);
  }
  return numbers;
}

void Compare_Strokes(const Points& ends, const std::string& name) {
  std::vector<Plain_Stroke> given;
  for (std::size_t n = 0; n < ends.size(); n += 2) {
    given.push_back({ends[n].X, ends[n].Y, ends[n + 1].X, ends[n + 1].Y,
                     static_cast<std::int32_t>(n / 2), false});
  }
  for (const Path_Rows rows : {Path_Rows::Lines, Path_Rows::Lines_To_Meeting}) {
    std::vector<Plain_Stroke> strokes = given;
    Plain_Stroke_Sort(strokes, rows == Path_Rows::Lines_To_Meeting);
    Numbers plain;
    for (const Plain_Stroke& stroke : strokes) plain.emplace_back(stroke.Number, stroke.Reversed);
    Point_Tree::Point position;
    ASSERT_EQ(Sorted(ends, rows, position), plain)
        << name << (rows == Path_Rows::Lines ? "" : ", to meeting");
  }
}

void Compare_Holes(const Points& points, Point_Tree::Point start, const std::string& name) {
  std::vector<Plain_Hole> holes;
  for (const auto& point : points) {
    holes.push_back({point.X, point.Y, static_cast<std::int32_t>(holes.size())});
  }
  float x = start.X, y = start.Y;
  Plain_Hole_Sort(holes, x, y);
  Numbers plain;
  for (const Plain_Hole& hole : holes) plain.emplace_back(hole.Number, false);
  ASSERT_EQ(Sorted(points, Path_Rows::Points, start), plain) << name;
  ASSERT_EQ(start.X, x);
  ASSERT_EQ(start.Y, y);
}

struct Cloud_Kind {
  int Rows;  // at most
  int Grid;  // points lie on so many grid lines; few give many equals
  float Spacing;
  bool Joined;  // strokes continue where the one before ended
};

Points Cloud(std::mt19937& random, const Cloud_Kind& kind) {
  const auto pick = [&](int low, int high) {
    return std::uniform_int_distribution<int>(low, high)(random);
  };
  const auto coordinate = [&] {
    return static_cast<float>(pick(-kind.Grid, kind.Grid)) * kind.Spacing;
  };
  Points ends(2 * static_cast<std::size_t>(pick(0, kind.Rows)));
  for (std::size_t n = 0; n < ends.size(); n += 2) {
    ends[n] = {coordinate(), coordinate()};
    if (kind.Joined && n > 0 && pick(0, 4) > 0) ends[n] = ends[n - 1];
    ends[n + 1] = pick(0, 6) == 0 ? ends[n] : Point_Tree::Point{coordinate(), coordinate()};
  }
  return ends;
}

constexpr Cloud_Kind Clouds[] = {
    {30, 1, 1, false},  // hardly anything but equals
    {80, 3, 1, true},          {120, 40, 0.125F, true}, {120, 2000, 1.0F / 1016, true},
    {40, 30, 1e-30F, false},    // squares underflow in single precision
    {40, 30, 1e33F, false},     // and overflow
    {1500, 5000, 0.01F, true},  // beyond the first allowance of the scan
};
constexpr int Clouds_Each = 200;

TEST(Path_Sort_Test, Orders_Strokes_Like_The_Plain_Scan) {
  unsigned seed = 0;
  for (const Cloud_Kind& kind : Clouds) {
    for (int n = 0; n < (kind.Rows > 1000 ? 2 : Clouds_Each); ++n) {
      std::mt19937 random(++seed);
      Compare_Strokes(Cloud(random, kind), "cloud " + std::to_string(seed));
      if (::testing::Test::HasFatalFailure()) return;
    }
  }
}

TEST(Path_Sort_Test, Orders_Holes_Like_The_Plain_Scan) {
  unsigned seed = 100'000;
  for (const Cloud_Kind& kind : Clouds) {
    for (int n = 0; n < (kind.Rows > 1000 ? 2 : Clouds_Each); ++n) {
      std::mt19937 random(++seed);
      const float shift = kind.Spacing * static_cast<float>(n % 3);
      Compare_Holes(Cloud(random, kind), {shift, -shift}, "cloud " + std::to_string(seed));
      if (::testing::Test::HasFatalFailure()) return;
    }
  }
}

// Strokes whose ends lie equally far from the tool keep the turn that an earlier position gave
// them.
TEST(Path_Sort_Test, Keeps_The_Turn_Of_Equally_Far_Ends) {
  Points hatch, mirrored, towards;
  for (int n = 0; n < 120; ++n) {
    const auto d = static_cast<float>(n);
    hatch.insert(hatch.end(), {{-10, d}, {10, d}});
    mirrored.insert(mirrored.end(), {{d + 1, 0}, {-d - 1, 0}, {0, d + 1}, {0, -d - 1}});
    towards.insert(towards.end(), {{200 - d, 1}, {200 - d, 0}});
  }
  Compare_Strokes(hatch, "hatch");
  Compare_Strokes(mirrored, "mirrored");
  Compare_Strokes(towards, "towards the tool");
  Compare_Strokes(Points(200), "all on one spot");
}

TEST(Path_Sort_Test, A_Stop_Keeps_Every_Row_Once) {
  std::mt19937 random(5);
  Points ends = Cloud(random, {400, 300, 0.5F, true});
  Point_Tree::Point position;
  const auto steps =
      Sort_Path(ends, Path_Rows::Lines, position, [](std::int32_t done) { return done < 20; });
  std::vector<std::int32_t> rows;
  for (const Path_Step& step : steps) rows.push_back(step.Row);
  std::sort(rows.begin(), rows.end());
  ASSERT_EQ(rows.size(), ends.size() / 2);
  for (std::size_t n = 0; n < rows.size(); ++n) ASSERT_EQ(rows[n], static_cast<std::int32_t>(n));
}

}  // namespace
}  // namespace norvik
