// Arcs as chords: how many, where, in which plane, and what cannot be walked.
#include "compiler/arcs/chords.h"
#include "compiler/state/compiler_state.h"
#include "compiler/state/wire_table.h"
#include "compiler/wires/wire_pass.h"
#include "core/application.h"
#include "core/messages.h"
#include "core/setup.h"
#include "platform/scripted/scripted_platform.h"

#include <cmath>
#include <random>

#include <gmock/gmock.h>

namespace norvik {
namespace {

using testing::HasSubstr;

constexpr double Pi = 3.14159265358979;

struct Arc_Setup {
  int Resolution = 180, Most = 360, Metric = 0, Ignore_Radius = 0, Port = 1;
  float Least_Length = 0;
  bool Incremental_Centre = true;
};

void Use(const Arc_Setup& setup) {
  MachineSetup.Arc_Resolution = static_cast<std::int16_t>(setup.Resolution);
  MachineSetup.Arc_Max_Segments = static_cast<std::int16_t>(setup.Most);
  MachineSetup.UnitsofMeasurement = static_cast<std::int16_t>(setup.Metric);
  MachineSetup.Arc_Radius_Ignore = static_cast<std::int16_t>(setup.Ignore_Radius);
  MachineSetup.Parallel_Port_Type = static_cast<std::int16_t>(setup.Port);
  MachineSetup.DravonArcMinimumLength = setup.Least_Length;
  MachineSetup.GC_IJ_Incremental = setup.Incremental_Centre;
}

using Point = Indexed<Nullable, 1, 4>;

// The wires of one arc that starts where the tool is.
Record_List<Wire> Chords(const Point& start, const Point& end, Nullable i, Nullable j,
                         int direction, int plane = 17, int distance = 90) {
  Wire_Pass = {};
  Compiler = {};
  Compiler.ModalGroups[modal_group::Plane] = static_cast<std::int16_t>(plane);
  Compiler.ModalGroups[modal_group::Distance] = static_cast<std::int16_t>(distance);
  for (int axis = 1; axis <= 4; ++axis) {
    Compiler.CurrentPosition[axis] = Compiler.TargetPosition[axis] = start[axis];
  }
  Wire_Pass.Start = start;
  Nist_Arc(start, end, i, j, static_cast<std::int16_t>(direction));
  return std::move(Wire_Pass.Wires);
}

struct Wire_Arcs : testing::Test {
  Wire_Arcs() { Use({}); }
  ~Wire_Arcs() override { Compiler = {}; }
  Scripted_Platform Scripted;
};

TEST_F(Wire_Arcs, A_Quarter_In_Four_Chords) {
  Use({.Resolution = 4});
  const auto wires = Chords({{1, 0, 0.5}}, {{0, 1, 0.1}}, -1, 0, 1);
  ASSERT_EQ(wires.size(), 4U);
  // 22.5, 45, 67.5 degrees on the circle, then the programmed end; Z falls by 0.1 a chord.
  const double expected[][3] = {{0.923879533, 0.382683432, 0.4},
                                {0.707106781, 0.707106781, 0.3},
                                {0.382683432, 0.923879533, 0.2},
                                {0, 1, 0.1}};
  for (std::size_t k = 0; k < 4; ++k) {
    for (int axis = 1; axis <= 3; ++axis) {
      EXPECT_NEAR(*wires[k].End[axis], expected[k][axis - 1], 2e-9) << k << " " << axis;
      EXPECT_EQ(wires[k].Start[axis], k == 0 ? Nullable(axis == 1   ? 1
                                                        : axis == 2 ? 0
                                                                    : 0.5)
                                             : wires[k - 1].End[axis]);
    }
  }
  EXPECT_EQ(wires[3].End[1], Nullable(0));  // exactly
  EXPECT_EQ(wires[3].End[2], Nullable(1));
  EXPECT_FALSE(wires[0].End[4]);
}

TEST_F(Wire_Arcs, The_Number_Of_Chords) {
  struct Row {
    const char* Why;
    Arc_Setup Setup;
    double Radius, Sweep;  // of a counter-clockwise arc from angle 0; 360: back to the start
    std::size_t Chords;
  };
  const Row rows[] = {
      {"resolution times radius", {}, 1, 90, 180},
      {"the swept angle does not count", {}, 1, 360, 180},
      {"nor a small one", {}, 1, 1, 180},
      {"at most the limit", {}, 10, 90, 360},
      {"at least three", {}, 0.001, 90, 3},
      {"metric: 180 / 32 rounds to 6", {.Metric = 1}, 10, 90, 60},
      {"ties of the rounding go to the even", {.Resolution = 5}, 0.9, 90, 4},
      {"the radius ignored", {.Ignore_Radius = 1}, 0.01, 90, 180},
      {"the limit counts there too", {.Most = 90, .Ignore_Radius = 1}, 0.01, 90, 90},
      {"shorter than the floor: nothing", {}, 0.00005, 90, 0},
      {"a full turn passes the floor", {}, 0.00005, 360, 3},
      {"no radius: nothing", {}, 0, 360, 0},
      {"short for the serial board: one", {.Port = 2, .Least_Length = 2}, 1, 90, 1},
      {"long enough for it", {.Port = 2, .Least_Length = 1}, 1, 90, 180},
      {"other drives have no least length", {.Port = 3, .Least_Length = 2}, 1, 90, 180},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.Why);
    Use(row.Setup);
    const double angle = row.Sweep * Pi / 180, r = row.Radius;
    const Point end =
        row.Sweep == 360 ? Point{{r, 0}} : Point{{r * std::cos(angle), r * std::sin(angle)}};
    EXPECT_EQ(Chords({{r, 0}}, end, -r, 0, 1).size(), row.Chords);
  }
}

// Start and end as angles in degrees on a circle around (3, -2); the middle chord shows the way.
TEST_F(Wire_Arcs, Each_Direction_Sweeps_Its_Own_Way) {
  struct Row {
    double From, To;
    int Direction;
    double Sweep;
  };
  const Row rows[] = {
      {30, 60, 1, 30},   {30, 60, 0, -330},  {60, 30, 0, -30},  {60, 30, 1, 330},
      {350, 10, 1, 20},  {350, 10, 0, -340}, {10, 350, 0, -20}, {10, 350, 1, 340},
      {90, 90, 1, 360},  {90, 90, 0, -360},  {0, 0, 0, -360},   {0, 180, 1, 180},
      {180, 0, 0, -180}, {270, 90, 1, 180},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(testing::Message() << row.From << " to " << row.To << " G" << 2 + row.Direction);
    const double r = 1, cx = 3, cy = -2;
    const auto at = [&](double degrees) {
      const double angle = degrees * Pi / 180;
      return Point{{cx + r * std::cos(angle), cy + r * std::sin(angle), 1}};
    };
    const auto wires = Chords(at(row.From), at(row.To), cx - *at(row.From)[1],
                              cy - *at(row.From)[2], row.Direction);
    ASSERT_GE(wires.size(), 179U);
    ASSERT_LE(wires.size(), 181U);
    const std::size_t half = wires.size() / 2;
    const double part = static_cast<double>(half) / static_cast<double>(wires.size());
    const Point middle = at(row.From + row.Sweep * part);
    EXPECT_NEAR(*wires[half - 1].End[1], *middle[1], 0.02);
    EXPECT_NEAR(*wires[half - 1].End[2], *middle[2], 0.02);
  }
}

TEST_F(Wire_Arcs, Planes_Map_Their_Axes) {
  Use({.Resolution = 4});
  struct Row {
    int Plane, First, Second, Third;
  };
  for (const Row& row : {Row{17, 1, 2, 3}, Row{18, 1, 3, 2}, Row{19, 3, 2, 1}}) {
    SCOPED_TRACE(row.Plane);
    Point start, end;
    start[row.First] = 1;
    start[row.Second] = 0;
    start[row.Third] = 5;
    start[4] = 10;
    end[row.First] = 0;
    end[row.Second] = 1;
    end[row.Third] = 9;
    end[4] = 2;
    const auto wires = Chords(start, end, -1, 0, 1, row.Plane);
    ASSERT_EQ(wires.size(), 4U);
    EXPECT_NEAR(*wires[0].End[row.First], std::cos(Pi / 8), 1e-9);
    EXPECT_NEAR(*wires[0].End[row.Second], std::sin(Pi / 8), 1e-9);
    EXPECT_EQ(wires[0].End[row.Third], Nullable(6));
    EXPECT_EQ(wires[0].End[4], Nullable(8));
    EXPECT_EQ(wires[3].End[row.Third], Nullable(9));
    EXPECT_EQ(wires[3].End[4], Nullable(2));
  }
  EXPECT_TRUE(Chords({{1, 0}}, {{0, 1}}, -1, 0, 1, 20).empty());
}

TEST_F(Wire_Arcs, Axes_Across_Move_Only_Between_Two_Known_Ends) {
  Use({.Resolution = 4});
  for (const auto& wire : Chords({{1, 0, Nullable(), 3}}, {{0, 1, 7}}, -1, 0, 1)) {
    EXPECT_FALSE(wire.End[3]);
    EXPECT_EQ(wire.End[4], Nullable(3));
  }
}

TEST_F(Wire_Arcs, Centre_Words_May_Be_Absolute) {
  Use({.Resolution = 4, .Incremental_Centre = false});
  const auto wires = Chords({{6, 5}}, {{5, 6}}, 5, 5, 1);
  ASSERT_EQ(wires.size(), 4U);
  EXPECT_NEAR(*wires[1].End[1], 5 + std::sqrt(0.5), 1e-8);
}

// A program that ends in G91 has its arcs walked incrementally once more: centre and end move by
// the start, each point is the current position less the point, and the last chord ends at the end
// less what was travelled. Start (1, 0), centre words (-1, 0) and end words (-1, 1) become centre
// (0, 0) and end (0, 1) with relative centre words switched off.
TEST_F(Wire_Arcs, A_Program_That_Ends_In_G91) {
  Use({.Resolution = 4, .Incremental_Centre = false});
  const auto wires = Chords({{1, 0}}, {{-1, 1}}, -1, 0, 1, 17, 91);
  ASSERT_EQ(wires.size(), 4U);
  EXPECT_NEAR(*wires[0].End[1], 1 - 0.923879533, 2e-9);
  EXPECT_NEAR(*wires[0].End[2], 0 - 0.382683432, 2e-9);
  EXPECT_NEAR(*wires[1].End[1], *wires[0].End[1] - 0.707106781, 2e-9);
  EXPECT_NEAR(*wires[3].End[1], 0 - (0.382683432 - 1), 2e-9);
  EXPECT_NEAR(*wires[3].End[2], 1 - 0.923879533, 2e-9);
}

TEST_F(Wire_Arcs, What_Cannot_Be_Walked_Is_Logged) {
  struct Row {
    Arc_Setup Setup;
    Point Start, End;
    Nullable I;
    const char* Log;
  };
  const Row rows[] = {
      {{}, {{Nullable(), 0}}, {{0, 1}}, -1, "Nist_Arc Error # 13"},
      {{}, {{1, 0}}, {{0, 1}}, Nullable(), "Nist_Arc Error # 13"},
      {{.Most = 0}, {{1, 0}}, {{0, 1}}, -1, "Nist_Arc Error # 11 Division by zero"},
      {{}, {{1e9, 0}}, {{0, 1e9}}, -1e9, "Nist_Arc Error # 6"},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.Log);
    Use(row.Setup);
    Messages.Panel[1].clear();
    EXPECT_TRUE(Chords(row.Start, row.End, row.I, 0, 1).empty());
    EXPECT_THAT(Messages.Panel[1], HasSubstr(row.Log));
  }
}

// Whatever the arc: the chain has no gap, its points lie on the circle and advance in the arc's
// direction, and its last chord ends on the target. Where the count came out above a whole number,
// Z must not go a chord too deep.
TEST_F(Wire_Arcs, Every_Arc_Stays_On_Its_Circle) {
  std::mt19937 random(11);
  std::uniform_real_distribution<double> place(-20, 20), angle(0, 2 * Pi), size(-3, 1.5);
  for (int round = 0; round < 2000; ++round) {
    const double cx = place(random), cy = place(random), r = std::pow(10, size(random));
    const double from = angle(random), to = angle(random);
    const int direction = round % 2;
    const Point start{{cx + r * std::cos(from), cy + r * std::sin(from), place(random)}};
    const Point end{{cx + r * std::cos(to), cy + r * std::sin(to), place(random)}};
    const auto wires = Chords(start, end, cx - *start[1], cy - *start[2], direction);
    if (wires.empty()) continue;
    SCOPED_TRACE(testing::Message() << "round " << round << " r " << r << " " << from << " " << to);
    EXPECT_EQ(Scripted.Beeps, 0);
    for (std::size_t k = 0; k < wires.size(); ++k) {
      const auto& at = wires[k];
      for (int axis = 1; axis <= 2; ++axis) {
        ASSERT_EQ(at.Start[axis], k == 0 ? start[axis] : wires[k - 1].End[axis]);
      }
      ASSERT_NEAR(std::hypot(*at.End[1] - cx, *at.End[2] - cy), r, 1e-9 + r * 1e-8);
      const double turn =
          (*at.Start[1] - cx) * (*at.End[2] - cy) - (*at.Start[2] - cy) * (*at.End[1] - cx);
      const double sense = direction == 1 ? 1 : -1;
      ASSERT_TRUE(k + 1 == wires.size() || sense * turn > -1e-12) << k;
    }
    EXPECT_NEAR(*wires.back().End[3], *end[3], 1e-9);
    EXPECT_EQ(wires.back().End[1], end[1]);
    EXPECT_EQ(wires.back().End[2], end[2]);
  }
}

}  // namespace
}  // namespace norvik
