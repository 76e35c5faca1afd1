// Joints worked out by hand: a tool of radius 1 at every pairing of lines and arcs.
#include "comp_contours.h"
#include "core/setup.h"
#include "platform/scripted/scripted_platform.h"

#include <gmock/gmock.h>

namespace norvik::comp_test {
namespace {

struct Joint_Row {
  const char* Why;
  Contour Programmed;
  int Mode;
  const char* Moved;
};

const Joint_Row Joints[] = {
    {"two lines, inside: both end at the crossing", Contour().Line(10, 0).Line(10, 10), 1,
     "0,0|G1 0,1|G1 9,1|G1 9,10|G1 10,10"},
    {"two lines, outside: an arc around the corner", Contour().Line(10, 0).Line(10, 10), 2,
     "0,0|G1 0,-1|G1 10,-1|G3 11,0 (10,0)|G1 11,10|G1 10,10"},
    {"straight on: one point, no arc", Contour().Line(10, 0).Line(20, 0), 1,
     "0,0|G1 0,1|G1 10,1|G1 20,1|G1 20,0"},
    {"back the same way: half a turn around the end", Contour().Line(10, 0).Line(0, 0), 1,
     "0,0|G1 0,1|G1 10,1|G2 10,-1 (10,0)|G1 0,-1|G1 0,0"},
    {"tangential, arc around the tool's side: the radius shrinks",
     Contour().Line(10, 0).Arc(13, 3, 10, 3, 1), 1, "0,0|G1 0,1|G1 10,1|G3 12,3 (10,3)|G1 13,3"},
    {"tangential, arc away from the tool: the radius grows",
     Contour().Line(10, 0).Arc(13, 3, 10, 3, 1), 2, "0,0|G1 0,-1|G1 10,-1|G3 14,3 (10,3)|G1 13,3"},
    {"tangential into a full circle: it stays full",
     Contour{{7.5, 2.5}, {}}.Arc(10, 0, 10, 2.5, 1).Arc(10, 0, 10, 5, 1), 1,
     "7.5,2.5|G1 8.5,2.5|G3 10,1 (10,2.5)|G3 10,1 (10,5)|G1 10,0"},
    {"a full circle is not opened by a turn of a few decimals",
     Contour{{0, -0.0012}, {}}.Line(10, 0).Arc(10, 0, 10, 5, 1), 2,
     "0,-0.0012|G1 0.0001,-1.0012|G1 10,-1|G3 10,-1 (10,5)|G1 10,0"},
    // 15 - sqrt(6^2 - 1^2) = 9.0839: the upper circle has grown to 6, the line runs at y = 1.
    {"line and arc, inside", Contour().Line(10, 0).Arc(20, 0, 15, 0, 0), 1,
     "0,0|G1 0,1|G1 9.0839,1|G2 21,0 (15,0)|G1 20,0"},
    {"line and arc, outside", Contour().Line(10, 0).Arc(20, 0, 15, 0, 0), 2,
     "0,0|G1 0,-1|G1 10,-1|G3 11,0 (10,0)|G2 19,0 (15,0)|G1 20,0"},
    {"arc and line, inside", Contour().Arc(10, 0, 5, 0, 0).Line(20, 0), 1,
     "0,0|G1 -1,0|G2 10.9161,1 (5,0)|G1 20,1|G1 20,0"},
    {"arc and line, outside", Contour().Arc(10, 0, 5, 0, 0).Line(20, 0), 2,
     "0,0|G1 1,0|G2 9,0 (5,0)|G3 10,-1 (10,0)|G1 20,-1|G1 20,0"},
    // Two hills of radius 6 meet above the valley: sqrt(6^2 - 5^2) = 3.3166.
    {"two arcs that leave each other backwards, the tool between them",
     Contour().Arc(10, 0, 5, 0, 0).Arc(20, 0, 15, 0, 0), 1,
     "0,0|G1 -1,0|G2 10,3.3166 (5,0)|G2 21,0 (15,0)|G1 20,0"},
    {"the same with the tool on the other side: half a turn",
     Contour().Arc(10, 0, 5, 0, 0).Arc(20, 0, 15, 0, 0), 2,
     "0,0|G1 1,0|G2 9,0 (5,0)|G3 11,0 (10,0)|G2 19,0 (15,0)|G1 20,0"},
    {"closed, tool inside: the ends are trimmed too, the leads go to their crossing",
     Contour().Line(10, 0).Line(10, 10).Line(0, 10).Line(0, 0), 1,
     "0,0|G1 1,1|G1 9,1|G1 9,9|G1 1,9|G1 1,1|G1 0,0"},
    {"closed, tool outside", Contour().Line(10, 0).Line(10, 10).Line(0, 0), 2,
     "0,0|G1 0,-1|G1 10,-1|G3 11,0 (10,0)|G1 11,10|G3 9.2929,10.7071 (10,10)|"
     "G1 -0.7071,0.7071|G1 0,0"},
    {"an arc of just the tool's radius becomes a point",
     Contour().Line(10, 0).Arc(11, 1, 10, 1, 1).Line(11, 10), 1,
     "0,0|G1 0,1|G1 10,1|G1 10,1|G1 10,10|G1 11,10"},
    // The step of 0.005 vanishes: the line ends on the tool's arc around the step's upper edge, at
    // 10 - sqrt(1 - 0.995^2).
    {"a short step towards the tool is passed over",
     Contour().Line(10, 0).Line(10, 0.005).Line(20, 0.005), 1,
     "0,0|G1 0,1|G1 9.9001,1|G1 9.9001,1|G2 10,1.005 (10,0.005)|G1 20,1.005|G1 20,0.005"},
    {"a short step away from the tool: the arc around its edge ends on the line below",
     Contour().Line(10, 0).Line(10, -0.005).Line(20, -0.005), 1,
     "0,0|G1 0,1|G1 10,1|G2 10.0999,0.995 (10,0)|G1 10.0999,0.995|G1 20,0.995|G1 20,-0.005"},
    {"a short move around an outside corner is followed",
     Contour().Line(10, 0).Line(10.005, 0.005).Line(10.005, 10), 2,
     "0,0|G1 0,-1|G1 10,-1|G3 10.7071,-0.7071 (10,0)|G1 10.7121,-0.7021|"
     "G3 11.005,0.005 (10.005,0.005)|G1 11.005,10|G1 10.005,10"},
};

TEST(Compensation_Joints, Are_As_Worked_Out) {
  for (const bool from_start : {false, true}) {
    MachineSetup.GC_IJ_Incremental = from_start;
    for (const Joint_Row& row : Joints) {
      SCOPED_TRACE(row.Why);
      const Outcome outcome = Compensate(Program_Of(row.Programmed, row.Mode), 1);
      EXPECT_EQ(Text_Of(outcome.Moved), row.Moved);
      EXPECT_THAT(outcome.Log, testing::IsEmpty());
    }
  }
  MachineSetup.GC_IJ_Incremental = false;
}

// The mirror image of a contour, compensated on the other side, is the mirror image of its path.
TEST(Compensation_Joints, Mirror) {
  for (const Joint_Row& row : Joints) {
    Contour mirrored = row.Programmed;
    mirrored.Start.Y = -mirrored.Start.Y;
    for (Move& move : mirrored.Moves) {
      move.To.Y = -move.To.Y;
      move.Centre.Y = -move.Centre.Y;
      move.Direction = 1 - move.Direction;
    }
    Table<LineArc> path = Compensate(Program_Of(mirrored, 3 - row.Mode), 1).Moved;
    for (LineArc& record : path.Rows) {
      for (Nullable* y : {&record.Start[2], &record.End[2], &record.CenterJ}) {
        if (*y) *y = -**y;
      }
      if (record.ArcDirection)
        *record.ArcDirection = static_cast<std::int16_t>(1 - *record.ArcDirection);
    }
    EXPECT_EQ(Text_Of(path), row.Moved) << row.Why;
  }
}

struct Fault_Row {
  const char* Why;
  Contour Programmed;
  std::vector<std::string> Log;
  std::vector<int> Highlighted;
  int Beeps;
  const char* Moved;
};

const std::string Needs_Lead = "Cutter Compensation needs Lead-In or Lead Out near line ";

// Mode 1. What cannot be done stays at its moved place, without gaps, and the line is told.
TEST(Compensation_Faults, Are_Told_With_Their_Line) {
  const Fault_Row rows[] = {
      {"an arc smaller than the tool: its points lie opposite, seen from the centre",
       Contour().Line(10, 0).Arc(10.5, 0.5, 10, 0.5, 1).Line(10.5, 10),
       {"Cutter Compensation Arc radius is smaller that compensaton radius 2, G1",
        "Line Radius Compensation Error # 5 The tool of radius 1.0000 comes as near as 0.5000 to "
        "line 3; take a smaller tool or give the contour more room there, line 1, G1",
        "Line Radius Compensation Error # 5 The tool of radius 1.0000 comes as near as 0.5000 to "
        "line 1; take a smaller tool or give the contour more room there, line 3, G1"},
       {2, 1, 3},
       1,
       "0,0|G1 0,1|G1 10,1|G3 9.5,0.5 (10,0.5)|G1 9.5,10|G1 10.5,10"},
      {"the bottom of a slot that its two corners eat up",
       Contour().Line(10, 0).Line(10, 1.5).Line(0, 1.5),
       {Needs_Lead + "2, G1",
        "Line Radius Compensation Error # 5 The tool of radius 1.0000 comes as near as 0.5000 to "
        "line 3; take a smaller tool or give the contour more room there, line 1, G1",
        "Line Radius Compensation Error # 5 The tool of radius 1.0000 comes as near as 0.5000 to "
        "line 1; take a smaller tool or give the contour more room there, line 3, G1"},
       {2, 1, 3},
       0,
       "0,0|G1 0,1|G1 9,1|G1 9,1.5|G3 10,0.5 (10,1.5)|G1 0,0.5|G1 0,1.5"},
      {"a way towards the contour that is shorter than the tool's radius",
       Contour().Line(0.5, 0).Line(0.5, 10),
       {Needs_Lead + "1, G1"},
       {1},
       0,
       "0,0|G1 0,1|G1 0.5,1|G3 -0.5,0 (0.5,0)|G1 -0.5,10|G1 0.5,10"},
      // At y = 1 the line crosses the circle of radius 4 twice: 15 + sqrt(4^2 - 1^2) = 18.873 is
      // the crossing next to the corner.
      {"an arc that comes back to its line",
       Contour().Line(20, 0).Arc(10, 0, 15, 0, 1),
       {"Line Radius Compensation Error # 5 The tool of radius 1.0000 comes as near as 0.0000 to "
        "line 2; take a smaller tool or give the contour more room there, line 1, G1",
        "Line Radius Compensation Error # 5 The tool of radius 1.0000 comes as near as 0.0000 to "
        "line 1; take a smaller tool or give the contour more room there, line 2, G1"},
       {1, 2},
       0,
       "0,0|G1 0,1|G1 18.873,1|G3 11,0 (15,0)|G1 10,0"},
      {"walls that come close to each other, though every corner is joined",
       Contour().Line(10, 0).Line(10, 5).Line(5, 5).Line(5, 1.5).Line(-5, 1.5),
       {"Line Radius Compensation Error # 5 The tool of radius 1.0000 comes as near as 0.5000 to "
        "line 4; take a smaller tool or give the contour more room there, line 1, G1",
        "Line Radius Compensation Error # 5 The tool of radius 1.0000 comes as near as 0.5000 to "
        "line 1; take a smaller tool or give the contour more room there, line 4, G1",
        "Line Radius Compensation Error # 5 The tool of radius 1.0000 comes as near as 0.5000 to "
        "line 1; take a smaller tool or give the contour more room there, line 5, G1"},
       {1, 4, 5},
       0,
       "0,0|G1 0,1|G1 9,1|G1 9,4|G1 6,4|G1 6,1.5|G2 5,0.5 (5,1.5)|G1 -5,0.5|G1 -5,1.5"},
  };
  for (const Fault_Row& row : rows) {
    SCOPED_TRACE(row.Why);
    const Scripted_Platform scripted;
    const Outcome outcome = Compensate(Program_Of(row.Programmed, 1), 1);
    EXPECT_THAT(outcome.Log, testing::ElementsAreArray(row.Log));
    EXPECT_EQ(outcome.Highlighted, row.Highlighted);
    EXPECT_EQ(scripted.Beeps, row.Beeps);
    EXPECT_EQ(Text_Of(outcome.Moved), row.Moved);
  }
}

// A comb of slots, each narrower than the tool, is wrong at every move: the log stays readable.
TEST(Compensation_Faults, Are_Counted_Where_There_Are_Many) {
  Contour comb;
  for (int tooth = 0; tooth < 50; ++tooth) {
    const double x = 3.0 * tooth;
    comb.Line(x, 10).Line(x + 1.5, 10).Line(x + 1.5, 0).Line(x + 3, 0);
  }
  const Outcome outcome = Compensate(Program_Of(comb, 1), 0.8);
  const auto gouges = std::count_if(outcome.Log.begin(), outcome.Log.end(), [](const auto& line) {
    return line.find("comes as near as") != std::string::npos;
  });
  EXPECT_EQ(gouges, 20);
  EXPECT_THAT(outcome.Log.back(), testing::HasSubstr("further moves of this contour"));
}

}  // namespace
}  // namespace norvik::comp_test
