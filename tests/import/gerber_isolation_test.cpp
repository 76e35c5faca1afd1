// Outlines: against the plain comparison of all with all, and against geometry of its own.
#include "board_generator.h"
#include "import/gerber/isolation.h"
#include "import/gerber/shape_grid.h"
#include "import_fixture.h"
#include "plain_isolation.h"

namespace norvik {
namespace {

constexpr double Extra = 0.0001;
constexpr int Pass = 1;

struct Isolation_Test : Import_Test {
  std::vector<Gerber_Cut> Isolated(const Iso_Polygon& table) {
    std::remove(Application.Gerber_Scratch.c_str());
    Isolate_Polygons(table, Pass, Application.Gerber_Scratch);
    std::vector<Gerber_Cut> cuts;
    Gerber_Line_Reader reader(Application.Gerber_Scratch, "test");
    for (Gerber_Cut cut; reader.Read(cut);) cuts.push_back(cut);
    return cuts;
  }
  static Iso_Polygon Polygons(const Gerber_Table_State& board) {
    Iso_Polygon table = Make_Polygons(board, Extra);
    table.Analyze_Bounds();
    return table;
  }
  // The crossings that fell to the limit of 50.
  std::size_t Compare(const Gerber_Table_State& board, const std::string& name) {
    const Iso_Polygon table = Polygons(board);
    Plain_Isolation plain{table, {}, {}};
    plain.Run();
    const std::string expected = (Folder / "plain.txt").string();
    std::remove(expected.c_str());
    Gerber_Line_Appender file(expected);
    for (const Gerber_Cut& cut : plain.Written) file.Write(cut);
    file.Close();
    Isolated(table);
    EXPECT_EQ(Read_Whole_File(Application.Gerber_Scratch), Read_Whole_File(expected)) << name;
    return plain.Overwritten;
  }
};

constexpr Board_Kind Boards[] = {
    {6, 2, 0.05, 0.1, false},     // hardly anything but coincidence
    {15, 6, 0.025, 0.05, false},  // crowded
    {15, 40, 0.025, 0.06, false},  {15, 5000, 0.0002, 0.06, true},
    {10, 20, 0.001, 0.0004, true},  // shapes of a few steps of rounding
    {12, 6, 0.05, 0, true},         // as wide as the outline's distance
    {12, 12, 3e33, 1e34, true},     // singles near their end
    {12, 12, 1e-7, 1e-6, true},     // all rounded to a point or two
    {12, 9, 40, 20, true},          // millimetres, far from the origin
};

TEST_F(Isolation_Test, Keeps_What_The_Comparison_Of_All_Keeps) {
  unsigned seed = 0;
  for (const Board_Kind& kind : Boards) {
    for (int n = 0; n < 250; ++n) {
      std::mt19937 random(++seed);
      Compare(Generated_Board(random, kind), "board " + std::to_string(seed));
      if (HasFailure()) return;
    }
  }
  std::mt19937 random(++seed);
  Compare(Generated_Board(random, {300, 8000, 0.0002, 0.06, true}), "large board");
  Gerber_Table_State stray = Generated_Board(random, {60, 40, 0.025, 0.06, false});
  stray.Lines.push_back({-1e30F, 2e20F, 1e30F, 1, 0.01F, false});
  stray.Pads.push_back({7e29F, 0, 0.06F, 0.06F, 'C', false});
  Compare(stray, "strays far outside");
}

// Every further crossing takes the place of the fiftieth: the pieces behind it fall together.
TEST_F(Isolation_Test, Only_Fifty_Crossings_Of_An_Edge_Count) {
  std::size_t overwritten = 0;
  for (const int pads : {24, 25, 26, 60}) {
    Gerber_Table_State comb;
    const auto length = static_cast<float>(pads);
    comb.Lines.push_back({0, 0, length, 0, 0.02F, false});
    for (int n = 0; n < pads; ++n) {
      const float x = static_cast<float>((n * 7) % pads) + 0.5F;
      comb.Pads.push_back({x, 0, 0.06F, 0.06F, 'R', false});
    }
    overwritten += Compare(comb, std::to_string(pads) + " pads");
  }
  EXPECT_EQ(overwritten, 2U * (2 + 70));  // of both long sides
}

// --- Geometry ------------------------------------------------------------------------------------

// The union's outline by the depth of points inside convex polygons, in doubles.
class Outline_Checker {
 public:
  explicit Outline_Checker(const Iso_Polygon& table);
  void Check(const std::vector<Gerber_Cut>& kept);

  // Edges that a corner of another polygon touches are not cut there, and so may keep a part that
  // lies inside, as may those with more than fifty crossings.
  std::size_t Edges = 0, Excused = 0, Samples = 0;
  std::string Fault;

 private:
  struct Edge {
    std::size_t Polygon;
    Plane_Point A, B;
    bool Touched = false;
  };
  static double Distance(Plane_Point p, Plane_Point a, Plane_Point b);
  double Depth(Plane_Point p, std::size_t polygon) const;
  double Greatest_Depth(Plane_Point p, std::size_t except) const;
  bool Is_Excused(Plane_Point p) const;
  void Fail(const char* what, Plane_Point p) {
    Fault = std::string(what) + " at " + std::to_string(p.X) + ", " + std::to_string(p.Y);
  }
  void Check_Kept(const Gerber_Cut& cut);
  void Check_Missing(const Edge& edge, const std::vector<Gerber_Cut>& kept);

  std::vector<std::vector<Plane_Point>> Rings;  // counter-clockwise
  std::vector<Edge> All;
};

constexpr double Off_The_Outline = 0.0002, Longest_Missing = 0.002, Touch = 0.00001;
constexpr std::size_t None = static_cast<std::size_t>(-1);

Plane_Point Between(Plane_Point a, Plane_Point b, double share) {
  return {a.X + (b.X - a.X) * share, a.Y + (b.Y - a.Y) * share};
}

double Outline_Checker::Distance(Plane_Point p, Plane_Point a, Plane_Point b) {
  const double length = std::hypot(b.X - a.X, b.Y - a.Y);
  if (length == 0) return std::hypot(p.X - a.X, p.Y - a.Y);
  const double along = ((p.X - a.X) * (b.X - a.X) + (p.Y - a.Y) * (b.Y - a.Y)) / length;
  if (along < 0) return std::hypot(p.X - a.X, p.Y - a.Y);
  if (along > length) return std::hypot(p.X - b.X, p.Y - b.Y);
  return std::abs((b.X - a.X) * (p.Y - a.Y) - (b.Y - a.Y) * (p.X - a.X)) / length;
}

Outline_Checker::Outline_Checker(const Iso_Polygon& table) {
  for (std::int32_t polygon = 0; polygon < table.Polygon_Total(); ++polygon) {
    std::vector<Plane_Point> ring;
    double area = 0;
    for (std::size_t n = table.First(polygon); n < table.End(polygon); ++n) {
      ring.push_back(table.At(n));
    }
    for (std::size_t n = 1; n < ring.size(); ++n) {
      area += ring[n - 1].X * ring[n].Y - ring[n].X * ring[n - 1].Y;
    }
    if (area < 0) std::reverse(ring.begin(), ring.end());
    for (std::size_t n = 1; n < ring.size(); ++n) {
      All.push_back({Rings.size(), ring[n - 1], ring[n]});
    }
    Rings.push_back(ring);
  }
  Edges = All.size();
  for (Edge& edge : All) {
    int crossed = 0;
    for (const Edge& other : All) {
      if (other.Polygon == edge.Polygon) continue;
      const bool at_end = std::min(std::hypot(other.A.X - edge.A.X, other.A.Y - edge.A.Y),
                                   std::hypot(other.A.X - edge.B.X, other.A.Y - edge.B.Y)) < Touch;
      edge.Touched |= !at_end && Distance(other.A, edge.A, edge.B) < Touch;
      const auto side = [](const Edge& e, Plane_Point p) {
        return (e.B.X - e.A.X) * (p.Y - e.A.Y) > (e.B.Y - e.A.Y) * (p.X - e.A.X);
      };
      crossed += static_cast<int>(side(edge, other.A) != side(edge, other.B) &&
                                  side(other, edge.A) != side(other, edge.B));
    }
    edge.Touched |= crossed > 50;
    Excused += edge.Touched ? 1 : 0;
  }
}

// How far inside; negative outside.
double Outline_Checker::Depth(Plane_Point p, std::size_t polygon) const {
  double depth = 1e9;
  const auto& ring = Rings[polygon];
  for (std::size_t n = 1; n < ring.size(); ++n) {
    const Plane_Point a = ring[n - 1], b = ring[n];
    const double length = std::hypot(b.X - a.X, b.Y - a.Y);
    if (length == 0) continue;
    depth = std::min(depth, ((b.X - a.X) * (p.Y - a.Y) - (b.Y - a.Y) * (p.X - a.X)) / length);
  }
  return depth;
}

double Outline_Checker::Greatest_Depth(Plane_Point p, std::size_t except) const {
  double depth = -1e9;
  for (std::size_t q = 0; q < Rings.size(); ++q) {
    if (q != except) depth = std::max(depth, Depth(p, q));
  }
  return depth;
}

bool Outline_Checker::Is_Excused(Plane_Point p) const {
  return std::any_of(All.begin(), All.end(), [&](const Edge& edge) {
    return edge.Touched && Distance(p, edge.A, edge.B) < Touch;
  });
}

void Outline_Checker::Check_Kept(const Gerber_Cut& cut) {
  const double length = std::hypot(cut.To.X - cut.From.X, cut.To.Y - cut.From.Y);
  const int parts = 4 + static_cast<int>(length / Longest_Missing);
  for (int n = 0; n <= parts; ++n) {
    const Plane_Point p = Between(cut.From, cut.To, 1.0 * n / parts);
    ++Samples;
    const bool on_ring = std::any_of(All.begin(), All.end(), [&](const Edge& edge) {
      return Distance(p, edge.A, edge.B) < Off_The_Outline;
    });
    if (!on_ring) Fail("On no polygon", p);
    if (Greatest_Depth(p, None) > Off_The_Outline && !Is_Excused(p)) Fail("Inside the union", p);
  }
}

// Points of the edge that lie in no other polygon, where so many follow that the part is long
// enough to be missed, must be near a kept piece.
void Outline_Checker::Check_Missing(const Edge& edge, const std::vector<Gerber_Cut>& kept) {
  constexpr double step = Longest_Missing / 4, on_ring = 1e-6;
  const double length = std::hypot(edge.B.X - edge.A.X, edge.B.Y - edge.A.Y);
  const int parts = static_cast<int>(length / step);
  std::vector<Plane_Point> missing;
  for (int n = 0; n <= parts; ++n) {
    const Plane_Point p = Between(edge.A, edge.B, (n + 0.5) / (parts + 1));
    ++Samples;
    const bool is_kept = std::any_of(kept.begin(), kept.end(), [&](const Gerber_Cut& cut) {
      return Distance(p, cut.From, cut.To) < Off_The_Outline;
    });
    if (is_kept || Greatest_Depth(p, edge.Polygon) > on_ring) {
      missing.clear();
      continue;
    }
    missing.push_back(p);
    const double run = std::hypot(p.X - missing.front().X, p.Y - missing.front().Y);
    if (run > Longest_Missing && !edge.Touched) Fail("Outline missing", p);
  }
}

void Outline_Checker::Check(const std::vector<Gerber_Cut>& kept) {
  for (const Gerber_Cut& cut : kept) Check_Kept(cut);
  for (const Edge& edge : All) Check_Missing(edge, kept);
}

TEST_F(Isolation_Test, Keeps_The_Outline_Of_The_Union) {
  struct Row {
    Board_Kind Kind;
    double Most_Excused;  // share of the edges
  };
  constexpr Row rows[] = {{{8, 5000, 0.0001, 0.06, true}, 0.01},
                          {{12, 3000, 0.0001, 0.1, true}, 0.02},
                          {{8, 5000, 0.0001, 0.06, false}, 0.01},
                          {{8, 60, 0.0125, 0.06, false}, 0.15}};
  unsigned seed = 500'000;
  for (const Row& row : rows) {
    std::size_t edges = 0, excused = 0, samples = 0;
    for (int n = 0; n < 30; ++n) {
      std::mt19937 random(++seed);
      const Iso_Polygon table = Polygons(Generated_Board(random, row.Kind));
      Outline_Checker checker(table);
      checker.Check(Isolated(table));
      ASSERT_EQ(checker.Fault, "") << "board " << seed;
      edges += checker.Edges;
      excused += checker.Excused;
      samples += checker.Samples;
    }
    EXPECT_GT(samples, 10'000U);
    EXPECT_LE(static_cast<double>(excused), row.Most_Excused * static_cast<double>(edges))
        << excused << " of " << edges;
  }
}

TEST_F(Isolation_Test, The_Checker_Sees_What_Is_Wrong) {
  Gerber_Table_State board;
  board.Pads = {{0, 0, 1, 1, 'R', false}, {0.25F, 0.25F, 1, 1, 'R', false}};
  const Iso_Polygon table = Polygons(board);
  const std::vector<Gerber_Cut> right = Isolated(table);
  const auto fault = [&](const std::vector<Gerber_Cut>& cuts) {
    Outline_Checker checker(table);
    checker.Check(cuts);
    return checker.Fault;
  };
  EXPECT_EQ(fault(right), "");
  std::vector<Gerber_Cut> shortened = right, whole;
  shortened.back().To = Between(shortened.back().From, shortened.back().To, 0.98);
  EXPECT_THAT(fault(shortened), ::testing::HasSubstr("missing"));
  std::vector<Gerber_Cut> more = right;
  more.push_back({table.At(1), table.At(2)});
  EXPECT_THAT(fault(more), ::testing::HasSubstr("Inside"));
}

// --- Single polygons -----------------------------------------------------------------------------

TEST(Polygon_Test, Has_The_Vertices_Of_Pads_And_Lines) {
  const auto points = [](const Iso_Outline& outline) {
    std::vector<std::pair<double, double>> list;
    for (std::size_t n = 0; n < outline.Count; ++n) {
      list.emplace_back(outline.Points[n].X, outline.Points[n].Y);
    }
    return list;
  };
  using List = std::vector<std::pair<double, double>>;
  EXPECT_EQ(points(Make_Pad_Polygon(1, 2, 0.4, 0.2, 'R', 0.01)),
            (List{{0.79, 2.11}, {1.21, 2.11}, {1.21, 1.89}, {0.79, 1.89}, {0.79, 2.11}}));
  EXPECT_EQ(points(Make_Pad_Polygon(0, 0, 0.4, 0.2, 'C', 0.01)), (List{{-0.21, 0.06},
                                                                       {-0.11, 0.11},
                                                                       {0.11, 0.11},
                                                                       {0.21, 0.06},
                                                                       {0.21, -0.06},
                                                                       {0.11, -0.11},
                                                                       {-0.11, -0.11},
                                                                       {-0.21, -0.06},
                                                                       {-0.21, 0.06}}));
  // Half width 0.1, caps 0.2 / 5.225 = 0.0383; upwards, so that the right is +X.
  EXPECT_EQ(points(Make_Line_Polygon(0, 0, 0, 1, 0.15, 0.05)), (List{{0.1, 1.0383},
                                                                     {0.0383, 1.1},
                                                                     {-0.0383, 1.1},
                                                                     {-0.1, 1.0383},
                                                                     {-0.1, -0.0383},
                                                                     {-0.0383, -0.1},
                                                                     {0.0383, -0.1},
                                                                     {0.1, -0.0383},
                                                                     {0.1, 1.0383}}));
}

TEST(Polygon_Test, A_Point_On_A_Ring_Is_Inside_And_On_Its_Edge) {
  Iso_Polygon table;
  table.Add(Make_Pad_Polygon(0, 0, 2, 2, 'C', 0));
  table.Analyze_Bounds();
  const auto inside = [&](double x, double y) { return Point_In_Polygon(table, {x, y}, 0); };
  EXPECT_TRUE(inside(0, 0));
  EXPECT_TRUE(inside(1, 0.5));          // a corner
  EXPECT_TRUE(inside(0.75, 0.75));      // on a slanted edge
  EXPECT_TRUE(inside(0.750006, 0.75));  // beside it
  EXPECT_FALSE(inside(0.75002, 0.75));
  EXPECT_FALSE(inside(1.000001, 0));  // out of the bounds
  EXPECT_FALSE(inside(-0.9, 0.9));
  EXPECT_TRUE(Point_On_Segment({0.5, 0}, {0, 0}, {1, 0}));
  EXPECT_FALSE(Point_On_Segment({0.5, 0.000001}, {0, 0}, {1, 0}));  // outside of the flat box
  EXPECT_TRUE(Point_On_Segment({3, 3}, {3, 3}, {3, 3}));
  EXPECT_FALSE(Segment_Cross({0, 0}, {1, 0}, {0.5, 0}, {0.5, 1}));  // ends do not cross
  EXPECT_EQ(Segment_Cross({0, 0}, {1, 0}, {0.5, -1}, {0.5, 1}), (Plane_Point{0.5, 0}));
}

TEST(Shape_Grid_Test, Shapes_That_Touch_Share_A_Cell) {
  std::mt19937 random(3);
  std::uniform_real_distribution<double> at(0, 10);
  std::vector<std::array<Plane_Point, 2>> lines;
  for (int n = 0; n < 400; ++n)
    lines.push_back({{{at(random), at(random)}, {at(random), at(random)}}});
  Shape_Grid grid;
  grid.Build(400, [&](std::int32_t n) {
    return std::span<const Plane_Point>(lines[static_cast<std::size_t>(n)]);
  });
  EXPECT_GT(grid.Cell_Total(), 100U);
  for (std::int32_t i = 0; i < 400; ++i) {
    const auto mine = grid.Cells_Of(i);
    for (std::int32_t j = 0; j < i; ++j) {
      const auto &a = lines[static_cast<std::size_t>(i)], &b = lines[static_cast<std::size_t>(j)];
      if (!Segment_Cross(a[0], a[1], b[0], b[1])) continue;
      const auto theirs = grid.Cells_Of(j);
      ASSERT_NE(std::find_first_of(mine.begin(), mine.end(), theirs.begin(), theirs.end()),
                mine.end());
    }
  }
}

}  // namespace
}  // namespace norvik
