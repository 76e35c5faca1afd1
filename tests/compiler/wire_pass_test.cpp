// Records to wires: controls copied, lines emitted, arcs as runs of one record's wires.
#include "compiler/wires/wire_pass.h"

#include "compiler/state/compiler_state.h"
#include "compiler/state/wire_table.h"
#include "core/application.h"
#include "core/setup.h"
#include "support/reset.h"

#include <gmock/gmock.h>

namespace norvik {
namespace {

using testing::ElementsAre;

struct Wire_Pass_Test : testing::Test {
  Wire_Pass_Test() {
    Reset_Compiler();
    MachineSetup.Arc_Resolution = 4;
    MachineSetup.Arc_Max_Segments = 360;
    MachineSetup.UnitsofMeasurement = MachineSetup.Arc_Radius_Ignore = 0;
    MachineSetup.Parallel_Port_Type = 1;
    MachineSetup.GC_IJ_Incremental = true;
  }
  ~Wire_Pass_Test() override { Reset_Compiler(); }

  LineArc& Add(std::int32_t line, Record_Type type, Indexed<Nullable, 1, 6> end) {
    LineArc record;
    record.LineNumber = line;
    record.RecordType = type;
    record.RecordFlag = type == Record_Type::Control ? 0 : 1;
    record.Start = Records.Rows.empty() ? Indexed<Nullable, 1, 6>() : Records.Rows.back().End;
    record.End = end;
    record.FeedMove = type != Record_Type::Control;
    record.Feed = {{10, 20, 30, 40}};
    record.SourceText = "text";
    return Records.Rows.push_back(record);
  }
  LineArc& Add_Quarter(std::int32_t line) {
    const auto& at = Records.Rows.back().End;
    LineArc& arc = Add(line, Record_Type::Arc, {{*at[1] - 1, *at[2] + 1, at[3]}});
    arc.CenterI = -1;
    arc.CenterJ = 0;
    arc.ArcDirection = 1;
    return arc;
  }
  Record_List<Wire> Convert() { return NIST_ConvertLineArctoWire(Records).Rows; }

  Table<LineArc> Records;
};

std::vector<int> Outputs_Of(const Wire& wire) {
  return {wire.Out.begin(), wire.Out.end()};
}

TEST_F(Wire_Pass_Test, A_Control_Record_Is_Copied_Field_By_Field) {
  LineArc& record = Add(3, Record_Type::Control, {{1, Nullable(), 3, 4, 5, 6}});
  record.Start = {{9, 8, 7, 6, 5, 4}};
  record.RecordFlag = 7;
  record.Out = {{0, 2, 0, 2, 0}};
  record.ToolNumber = 4;
  record.PauseTime = -1;
  record.CompMode = 2;
  record.SpindleSpeed = 1200;
  record.SpareFlag = 5;
  record.SpareWord = 3;
  record.WaitInput = 1;
  Compiler.PauseNext = 99;  // the state of the interpreter does not reach a copied record
  Compiler.CompModeNow = 1;
  const Wire wire = Convert()[0];
  EXPECT_EQ(wire.Step, 3);
  EXPECT_EQ(wire.Motion, 7);
  EXPECT_EQ(wire.Start, record.Start);
  EXPECT_EQ(wire.End, record.End);
  EXPECT_THAT(Outputs_Of(wire), ElementsAre(0, 2, 0, 2, 0));
  EXPECT_EQ(wire.Tool, Nullable(4));
  EXPECT_FALSE(wire.FeedMove);
  EXPECT_EQ(wire.Dwell, -1);
  EXPECT_EQ(wire.Cutter_Comp, 2);
  EXPECT_THAT((std::vector{wire.IPM_D, wire.IPM_S, wire.IPM_R, wire.IPM_E}),
              ElementsAre(10, 20, 30, 40));
  EXPECT_EQ(wire.Block_Text, "text");
  EXPECT_EQ(wire.S_Word, Nullable(1200));
  EXPECT_EQ(wire.Reserved, 5);
  EXPECT_EQ(wire.Repeat, Nullable(3));
  EXPECT_EQ(wire.Aux_Wait, std::int16_t{1});
  EXPECT_EQ(Wire_Pass.Wire_Count, 0);
}

// Dwell, compensation and S word are the interpreter's at the program's end; the dwell goes with
// the first emitted wire only.
TEST_F(Wire_Pass_Test, A_Line_Takes_The_State_Of_The_Programs_End) {
  LineArc& first = Add(1, Record_Type::Line, {{1}});
  first.PauseTime = -1;
  first.CompMode = 1;
  first.SpindleSpeed = 5;
  first.SpareWord = 2;
  first.ToolNumber = 6;
  Add(2, Record_Type::Line, {{Nullable(), 2, Nullable(), Nullable(), 50}});
  Compiler.PauseNext = 1.5F;
  Compiler.CompModeNow = 2;
  Compiler.Last[word::S] = 800;
  const auto wires = Convert();
  ASSERT_EQ(wires.size(), 2U);
  EXPECT_EQ(wires[0].Motion, 1);
  EXPECT_EQ(wires[0].Dwell, 1.5F);
  EXPECT_EQ(wires[1].Dwell, 0);
  EXPECT_EQ(wires[0].Cutter_Comp, 2);
  EXPECT_EQ(wires[0].S_Word, Nullable(800));
  EXPECT_EQ(wires[0].Repeat, Nullable(2));
  EXPECT_EQ(wires[0].Tool, Nullable(6));
  EXPECT_EQ(wires[0].IPM_D, 10);
  EXPECT_EQ(wires[0].IPM_E, 10);
  // An axis not given stays absent; one given before keeps its target.
  EXPECT_EQ(wires[0].Start, (Indexed<Nullable, 1, 6>()));
  EXPECT_EQ(wires[0].End, (Indexed<Nullable, 1, 6>{{1}}));
  EXPECT_EQ(wires[1].End, (Indexed<Nullable, 1, 6>{{1, 2}}));
  EXPECT_EQ(Wire_Pass.Wire_Count, 2);
}

// Spindle and coolant ride on the first wire of their record; the auxiliary output repeats until
// another command comes. A control record keeps its own and passes the flags by.
TEST_F(Wire_Pass_Test, Outputs_Ride_On_The_First_Wire) {
  Add(1, Record_Type::Line, {{0, 0, 0}});
  Add(2, Record_Type::Line, {{1, 0, 0}}).Out = {{2, 0, 2, 2, 2}};
  Add(3, Record_Type::Line, {{2, 0, 0}});
  Add(4, Record_Type::Control, {{2, 0, 0}}).Out = {{0, 0, 0, 0, 0}};
  Add_Quarter(5).Out = {{0, 2, 1, 1, 1}};
  Add(6, Record_Type::Line, {{2, 0, 0}}).Out = {{1, 1, 1, 1, 0}};
  Add(7, Record_Type::Line, {{3, 0, 0}});
  const auto wires = Convert();
  ASSERT_EQ(wires.size(), 10U);
  EXPECT_THAT(Outputs_Of(wires[0]), ElementsAre(1, 1, 1, 1, 1));
  EXPECT_THAT(Outputs_Of(wires[1]), ElementsAre(2, 0, 2, 2, 2));
  EXPECT_THAT(Outputs_Of(wires[2]), ElementsAre(1, 1, 1, 1, 2));
  EXPECT_THAT(Outputs_Of(wires[3]), ElementsAre(0, 0, 0, 0, 0));
  EXPECT_THAT(Outputs_Of(wires[4]), ElementsAre(0, 2, 1, 1, 2));
  for (std::size_t chord : {5U, 6U, 7U}) {
    EXPECT_EQ(wires[chord].Step, 5);
    EXPECT_THAT(Outputs_Of(wires[chord]), ElementsAre(1, 1, 1, 1, 2));
  }
  EXPECT_THAT(Outputs_Of(wires[8]), ElementsAre(1, 1, 1, 1, 0));
  EXPECT_THAT(Outputs_Of(wires[9]), ElementsAre(1, 1, 1, 1, 0));
  EXPECT_EQ(Wire_Pass.Wire_Count, 9);
}

// An arc too short for a chord must not lose the command that starts the spindle.
TEST_F(Wire_Pass_Test, A_Command_Waits_For_Its_Wire) {
  Add(1, Record_Type::Line, {{0, 0, 0}});
  LineArc& speck = Add(2, Record_Type::Arc, {{0.00001, 0, 0}});
  speck.CenterI = 0.000005;
  speck.CenterJ = 0;
  speck.ArcDirection = 0;
  speck.Out = {{2, 0, 1, 1, 1}};
  Add(3, Record_Type::Line, {{1, 0, 0}});
  const auto wires = Convert();
  ASSERT_EQ(wires.size(), 2U);
  EXPECT_THAT(Outputs_Of(wires[1]), ElementsAre(2, 0, 1, 1, 1));
}

TEST_F(Wire_Pass_Test, Other_Classes_Are_Skipped_And_Lines_Without_Axes_Are_Not) {
  Add(1, Record_Type::Line, {{1, 1}});
  Add(2, Record_Type::Other, {{5, 5}});
  Add(3, Record_Type::Line, {}).Start = {{1, 1}};
  const auto wires = Convert();
  ASSERT_EQ(wires.size(), 2U);
  EXPECT_EQ(wires[1].Step, 3);
  EXPECT_EQ(wires[1].End, wires[1].Start);
  EXPECT_EQ(Wire_Pass.Wire_Count, 2);
}

TEST_F(Wire_Pass_Test, Escape_Ends_The_Pass_After_One_Record) {
  for (int line = 1; line <= 3; ++line) Add(line, Record_Type::Line, {{line}});
  Application.EscFlag = true;
  EXPECT_EQ(Convert().size(), 1U);
  EXPECT_FALSE(Application.EscFlag);
  EXPECT_EQ(Convert().size(), 3U);
}

// The taken table gives the same wires, and nothing of one run reaches the next.
TEST_F(Wire_Pass_Test, Taking_The_Records_Changes_Nothing) {
  for (int line = 1; line <= 3000; ++line) {
    Add(line, line % 7 == 0 ? Record_Type::Control : Record_Type::Line, {{line, -line}}).Out[4] = 2;
  }
  const auto kept = Convert();
  EXPECT_TRUE(NIST_ConvertLineArctoWire(std::move(Records)).Rows == kept);
  EXPECT_EQ(kept[0].Out[4], 2);
}

// What the executing table cannot hold is never read; one wire more shows that there is more.
TEST_F(Wire_Pass_Test, A_Program_Beyond_The_Table_Is_Cut) {
  MachineSetup.Arc_Resolution = 32'000;
  MachineSetup.Arc_Max_Segments = 32'000;
  Add(1, Record_Type::Line, {{0, 0, 0}});
  for (int line = 2; line < 100; ++line) Add_Quarter(line);
  EXPECT_EQ(Convert().size(), Wire_Table_Limit + 1);
}

}  // namespace
}  // namespace norvik
