// The pass over a whole table: where compensation begins and ends, what other records and inserted
// ones carry, what is left alone.
#include "comp_contours.h"
#include "compiler/compensation/compensation.h"
#include "compiler/state/compile_host.h"
#include "compiler/state/compiler_state.h"
#include "core/application.h"
#include "core/messages.h"
#include "core/setup.h"

#include <gmock/gmock.h>

namespace norvik::comp_test {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

constexpr int Off = 0, Left = 1, Right = 2;

// A program of lines, each going on from where the last one ended.
class Program {
 public:
  Program& To(double x, double y, int mode) {
    LineArc record = Line_Record(At.X, At.Y, x, y, mode);
    At = {x, y};
    return Add(record);
  }
  Program& To_Z(double z, int mode) {
    LineArc record = Line_Record(At.X, At.Y, At.X, At.Y, mode);
    record.Start[3] = Z;
    record.End[3] = Z = z;
    return Add(record);
  }
  Program& Control() {
    LineArc record = Line_Record(At.X, At.Y, At.X, At.Y, Left);
    record.RecordType = Record_Type::Control;
    record.PauseTime = -1;
    return Add(record);
  }
  Program& Add(LineArc record) {
    record.LineNumber = static_cast<std::int32_t>(Records.Rows.size() + 1);
    if (record.Start[3] == Nullable(-1.0)) record.Start[3] = record.End[3] = Z;
    record.ToolNumber = Tool;
    Records.Rows.push_back(record);
    return *this;
  }
  LineArc& Last() { return Records.Rows.back(); }

  double Tool = 1;
  Table<LineArc> Records;

 private:
  Spot At;
  double Z = 0;
};

std::vector<double> Depths(const Table<LineArc>& table) {
  std::vector<double> depths;
  for (const LineArc& record : table.Rows) depths.push_back(*record.End[3]);
  return depths;
}

std::vector<int> Lines(const Table<LineArc>& table) {
  std::vector<int> lines;
  for (const LineArc& record : table.Rows) lines.push_back(record.LineNumber);
  return lines;
}

TEST(Compensation_Pass, Leads_Where_Modes_And_Tools_Change) {
  struct Row {
    const char* Why;
    Program Records;
    const char* Moved;
  };
  Tools.Diameter[2] = 4;
  Tools.Diameter[3] = 2;
  Program tools;
  tools.To(10, 0, Left).Tool = 2;
  tools.To(20, 0, Left).Tool = 3;
  tools.To(30, 0, Left);
  Program same_size;
  same_size.To(10, 0, Left).Tool = 3;
  same_size.To(20, 0, Left);
  const Row rows[] = {
      {"G41 after an uncompensated move, G40 before the last",
       Program().To(5, 0, Off).To(10, 0, Left).To(20, 0, Left).To(30, 0, Off),
       "0,0|G1 5,0|G1 5,1|G1 10,1|G1 20,1|G1 20,0|G1 30,0"},
      {"G42 after G41: through the uncompensated point", Program().To(10, 0, Left).To(20, 0, Right),
       "0,0|G1 0,1|G1 10,1|G1 10,0|G1 10,-1|G1 20,-1|G1 20,0"},
      {"tools of other sizes", tools,
       "0,0|G1 0,1|G1 10,1|G1 10,0|G1 10,2|G1 20,2|G1 20,0|G1 20,1|G1 30,1|G1 30,0"},
      {"another tool of the same size", same_size, "0,0|G1 0,1|G1 10,1|G1 20,1|G1 20,0"},
  };
  for (const Row& row : rows) {
    const Outcome outcome = Compensate(row.Records.Records, 1);
    EXPECT_EQ(Text_Of(outcome.Moved), row.Moved) << row.Why;
    EXPECT_THAT(outcome.Log, IsEmpty()) << row.Why;
  }
}

// Plunge at the uncompensated point, a hop at an inside and at an outside corner, retract at the
// end: each in Z alone, where the tool stands; the lead out comes after the retract.
TEST(Compensation_Pass, Moves_In_Z_Alone_Stay_With_The_Tool) {
  Program program;
  program.To_Z(-1, Left).To(10, 0, Left).To_Z(5, Left).To_Z(-2, Left).To(10, 10, Left);
  program.Control().To_Z(-3, Left).To(20, 10, Left).To_Z(6, Left).Control().To_Z(7, Off);
  const Outcome outcome = Compensate(program.Records, 1);
  EXPECT_EQ(Text_Of(outcome.Moved),
            "0,0|G1 0,0|G1 0,1|G1 9,1|G1 9,1|G1 9,1|G1 9,10|G2 10,11 (10,10)|"
            "G1 10,10|G1 10,11|G1 20,11|G1 20,11|G1 20,10|G1 20,10|G1 20,10");
  EXPECT_THAT(Depths(outcome.Moved),
              ElementsAre(-1, -1, -1, 5, -2, -2, -2, -2, -3, -3, 6, 6, 6, 7));
  EXPECT_THAT(Lines(outcome.Moved), ElementsAre(1, 2, 2, 3, 4, 5, 5, 6, 7, 8, 9, 8, 10, 11));
  EXPECT_EQ(outcome.Moved.Rows[7], program.Records.Rows[5]) << "a control record is left alone";
}

TEST(Compensation_Pass, Inserted_Records_Carry_Their_Block_And_Switch_Nothing) {
  Program program;
  program.To(10, 0, Right).Last().Out[0] = Output_On;
  program.Last().Feed.Fill(250);
  program.Last().SourceText = "G1 X10 M3";
  program.Last().SpindleSpeed = 900.0;
  program.Last().End[4] = 45.0;
  program.To(10, 10, Right).Last().FeedMove = false;
  program.Last().Out[3] = Output_Off;
  const auto moved = Compensate(program.Records, 1).Moved;
  ASSERT_EQ(Text_Of(moved), "0,0|G1 0,-1|G1 10,-1|G3 11,0 (10,0)|G1 11,10|G1 10,10");
  const LineArc &lead_in = moved.Rows[0], &first = moved.Rows[1], &corner = moved.Rows[2],
                &second = moved.Rows[3], &lead_out = moved.Rows[4];
  EXPECT_EQ(lead_in.Out[0], Output_On) << "the block's output switches before the block moves";
  EXPECT_EQ(first.Out[0], Output_Unchanged);
  EXPECT_EQ(lead_in.End[4], lead_in.Start[4]) << "A waits for its own record";
  EXPECT_EQ(first.End[4], Nullable(45.0));

  EXPECT_EQ(corner.SourceText, "G1 X10 M3");
  EXPECT_EQ(corner.Feed[1], 250);
  EXPECT_EQ(corner.SpindleSpeed, Nullable(900.0));
  EXPECT_EQ(corner.CompMode, Right);
  EXPECT_EQ(corner.RecordFlag, 1);
  EXPECT_TRUE(corner.FeedMove);
  EXPECT_THAT(corner.Out.Items, testing::Each(Output_Unchanged));
  EXPECT_EQ(corner.Start[4], Nullable(45.0));
  EXPECT_EQ(corner.End[4], Nullable(45.0));
  EXPECT_EQ(corner.ArcDirection, 1);

  EXPECT_EQ(second.Out[3], Output_Off);
  EXPECT_THAT(lead_out.Out.Items, testing::Each(Output_Unchanged));
  EXPECT_FALSE(lead_out.FeedMove);
  EXPECT_FALSE(lead_out.CenterI);
}

// The first move of a program has no start: it is not moved there, and no lead can begin there.
TEST(Compensation_Pass, Absent_Coordinates_Stay_Absent) {
  Program program;
  program.To(10, 0, Left).To(10, 10, Left);
  program.Records.Rows[0].Start[1].reset();
  program.Records.Rows[0].Start[2].reset();
  const auto moved = Compensate(program.Records, 1).Moved;
  ASSERT_EQ(moved.Rows.size(), 3U);
  EXPECT_FALSE(moved.Rows[0].Start[1]);
  EXPECT_FALSE(moved.Rows[0].Start[2]);
  EXPECT_EQ(moved.Rows[0].End[1], Nullable(9.0));
  EXPECT_EQ(moved.Rows[2].End[1], Nullable(10.0));

  Program only_x;
  only_x.To(10, 0, Left).To(20, 0, Left);
  for (LineArc& record : only_x.Records.Rows) {
    record.Start[2].reset();
    record.End[2].reset();
  }
  const auto line = Compensate(only_x.Records, 1).Moved;
  ASSERT_EQ(line.Rows.size(), 2U);
  for (const LineArc& record : line.Rows) EXPECT_FALSE(record.Start[2] || record.End[2]);
}

// A jump between records is not the compensation's to mend: it leads out and in again.
TEST(Compensation_Pass, Starts_Anew_Behind_A_Jump) {
  Program program;
  program.To(10, 0, Left).Add(Line_Record(20, 5, 30, 5, Left));
  EXPECT_EQ(Text_Of(Compensate(program.Records, 1).Moved),
            "0,0|G1 0,1|G1 10,1|G1 10,0|G1 20,6|G1 30,6|G1 30,5");
}

TEST(Compensation_Pass, Leaves_Alone_What_It_Cannot_Or_Need_Not_Move) {
  Random random(3);
  const Table<LineArc> contour = Program_Of(Random_Polygon(random, true), Left);
  EXPECT_TRUE(Compensate(contour, 0).Moved.Rows == contour.Rows) << "a tool without diameter";

  Table<LineArc> off = contour;
  for (LineArc& record : off.Rows) record.CompMode = Off;
  EXPECT_TRUE(Compensate(off, 1).Moved.Rows == off.Rows) << "not compensated";

  Compiler.ModalGroups[modal_group::Plane] = 18;
  const Outcome other_plane = Compensate(contour, 1);
  Compiler = {};
  EXPECT_TRUE(other_plane.Moved.Rows == contour.Rows);
  EXPECT_THAT(other_plane.Log, ElementsAre(HasSubstr("the program ends in G18")));

  Program far_away;
  far_away.To(1e300, 0, Left);
  const Outcome overflow = Compensate(far_away.Records, 1);
  EXPECT_TRUE(overflow.Moved.Rows == far_away.Records.Rows);
  EXPECT_THAT(overflow.Log, ElementsAre(HasSubstr("Nist_Add_Radius_to_Line_Error # 6 ")));

  Program no_tool;
  no_tool.Tool = 201;
  no_tool.To(10, 0, Left);
  const Outcome unknown = Compensate(no_tool.Records, 1);
  EXPECT_TRUE(unknown.Moved.Rows == no_tool.Records.Rows);
  EXPECT_THAT(unknown.Log, ElementsAre("Line Radius Compensation Error # 9 Index 201 is outside "
                                       "0..200, line 1, G1"));
}

TEST(Compensation_Pass, Shows_Its_Progress) {
  std::vector<std::string> panel, captions;
  Messages_Host.Panel_Changed = [&](int number) {
    if (number == 1) panel.push_back(Messages.Panel[1]);
  };
  Compile_Host.Show_Progress = [&](const std::string& caption) { captions.push_back(caption); };
  Program program;
  program.To(10, 0, Off).To(20, 0, Left).To(30, 0, Left).To(40, 0, Off);
  Tools.Diameter[1] = 2;
  AddRadiusCompensation(program.Records);
  Messages_Host = {};
  Compile_Host = {};
  EXPECT_THAT(captions, ElementsAre("GCode Adding Radius Compensation"));
  EXPECT_THAT(panel, ElementsAre("GCode Compile: Adding Radius Compensation...",
                                 "GCode Compile: Processing Radius'... .0",
                                 "GCode Compile: Processing Radius'... 25.0",
                                 "GCode Compile: Processing Radius'... 75.0",
                                 "GCode Compile: Processing Radius'... 100.0 Complete."));
}

}  // namespace
}  // namespace norvik::comp_test
