// Goto: its memories and the line that it executes.
#include "control/run/goto.h"

#include "control_fixture.h"

namespace norvik {
namespace {

using ::testing::HasSubstr;
using ::testing::StartsWith;

class Goto_Test : public Control_Test {
 protected:
  Goto_Test() {
    Free_Axes();
    Load_Goto_Controls();
  }
  static void Go(const std::string& text) {
    CNC_Controls.Text_Goto.Text = text;
    Command_Goto_Click();
  }
};

TEST_F(Goto_Test, A_line_moves_from_where_the_machine_stands_and_replaces_the_program) {
  Load({{1, 1}, {2, 2}});
  Machine.Position[1] = 0.5;  // as a jog leaves it
  Reset_Simulated_Machine();
  Free_Axes();
  Go("G01 X1.5 Y.25 (to the corner)");
  EXPECT_NEAR(Machine.Position[1], 1.5, 1e-9);
  EXPECT_NEAR(Machine.Position[2], 0.25, 1e-9);
  EXPECT_EQ(Program_Wire.Count(), 1U);
  EXPECT_EQ(Program_Wire.Rows()[0].Step, 0);
  EXPECT_EQ(Machine.CNCMode, CNC_Stopped);
  EXPECT_FALSE(Anything_Moves());
  Expect_Position_True();
}

TEST_F(Goto_Test, G91_counts_from_zero_after_a_question_or_from_the_position_as_corrected) {
  Go("G1 X0.5");
  scripted.Answer_Box(Box_Answer::Cancel);
  Go("G91 G1 X0.2");
  EXPECT_THAT(scripted.Boxes.back().Text, HasSubstr("ends at X0.2."));
  EXPECT_EQ(Messages.Panel[1], control_text::Goto_Not_Done);
  EXPECT_NEAR(Machine.Position[1], 0.5, 1e-9);
  scripted.Answer_Box(Box_Answer::Ok);
  Go("G91 G1 X0.2");
  EXPECT_NEAR(Machine.Position[1], 0.2, 1e-9);

  MachineSetup.Goto_From_Position = true;
  const std::size_t boxes = scripted.Boxes.size();
  Go("G91 G1 X0.2 Y0.1");
  EXPECT_NEAR(Machine.Position[1], 0.4, 1e-9);
  EXPECT_NEAR(Machine.Position[2], 0.1, 1e-9);
  Go("G1 X0.1 (G91)");
  EXPECT_NEAR(Machine.Position[1], 0.1, 1e-9);
  EXPECT_EQ(scripted.Boxes.size(), boxes);
}

TEST_F(Goto_Test, With_ramps_the_first_wire_is_ramped) {
  MachineSetup.Axis_Ramping = true;
  MachineSetup.Axis_Ramp_Start = 10.75F;
  MachineSetup.Axis_Ramp_Rate = 15;
  Go("G01 X1 F50");
  const Wire& wire = Program_Wire.Rows()[0];
  EXPECT_EQ(wire.IPM_S, 10.75F);
  EXPECT_EQ(wire.IPM_R, 50);
  EXPECT_EQ(wire.IPM_E, 10);
}

TEST_F(Goto_Test, Refused_while_a_run_is_paused_or_the_EStop_is_set) {
  Load({{1, 1}, {2, {}, {}, {}, {}, -1}, {3, 0}});
  Command_CNC_Play_Click();
  Go("G1 X3");
  EXPECT_EQ(Messages.Panel[1], control_text::Goto_Needs_Stop);
  EXPECT_EQ(Program_Wire.Count(), 3U);
  Command_CNC_Play_Click();
  Machine.EStop_Flag = true;
  Go("G1 X3");
  EXPECT_EQ(Messages.Panel[1], control_text::Motors_Are_Disabled);
  EXPECT_NEAR(Machine.Position[1], 0, 1e-9);
}

TEST_F(Goto_Test, Finds_nothing_once_the_step_pointer_has_moved) {
  Compile_Status.CurrentStep = 4;
  Go("G1 X1");
  EXPECT_EQ(Machine.Position[1], 0);
  EXPECT_EQ(Messages.Panel[1], control_text::Goto_Needs_Reset);
}

TEST_F(Goto_Test, A_line_that_asks_for_a_pause_leaves_the_machine_stopped) {
  for (const char* text : {"M06 T2", "M00"}) {
    Messages = {};
    Go(text);
    EXPECT_EQ(Machine.CNCMode, CNC_Stopped) << text;
    EXPECT_EQ(CNC_Controls.Label_CNC_Status.Caption, "CNC Stopped");
    EXPECT_EQ(Messages.Panel[1], control_text::Goto_Has_No_Run) << text;
  }
  Go("G1 X1");
  EXPECT_NEAR(Machine.Position[1], 1, 1e-9);
}

TEST_F(Goto_Test, Stop_ends_a_cycle_between_two_wires) {
  In_Yield_After(300, [] { Command_CNC_Stop_Click(); });
  Go("G81 X1 Y1 Z-1 R0.5");
  EXPECT_EQ(Program_Wire.Count(), 4U);
  EXPECT_GT(Machine.Position[3], -1);
  EXPECT_EQ(Messages.Panel[1], control_text::Ended_By_Operator);
  Expect_Position_True();
}

TEST_F(Goto_Test, Every_key_writes_the_memory_and_Enter_executes_it) {
  EXPECT_THAT(CNC_Controls.Combo_Goto.List[0], "01: G01 X.25 Y.25 Z.25 [Default]");
  EXPECT_THAT(CNC_Controls.Combo_Goto.List[9], StartsWith("10: "));
  CNC_Controls.Combo_Goto.ListIndex = 6;
  Combo_Goto_Click();
  EXPECT_EQ(ReadSetup("General", "Goto_Command_Index"), "6");
  CNC_Controls.Text_Goto.Text = "G0 X.5 (home)";
  Text_Goto_KeyUp(')');
  EXPECT_EQ(ReadSetup("General", "Goto_Command6"), "G0 X.5 (home)");
  EXPECT_EQ(CNC_Controls.Combo_Goto.List[6], "07: G0 X.5 (home)");
  EXPECT_EQ(CNC_Controls.Combo_Goto.Text, "07: G0 X.5 (home)");
  EXPECT_EQ(Machine.Position[1], 0);
  Text_Goto_KeyUp(Key_Enter);
  EXPECT_NEAR(Machine.Position[1], 0.5, 1e-9);
}

TEST_F(Goto_Test, A_line_that_is_no_motion_moves_nothing_and_leaves_the_panel_usable) {
  for (const char* text : {"", "(only words)", "G1 X--1", "M5"}) Go(text);
  EXPECT_EQ(Half_Steps, 0);
  EXPECT_FALSE(Anything_Moves());
  Go("(nothing)");
  EXPECT_EQ(Messages.Panel[1], control_text::Goto_Is_Empty);
  Go("G1 X.25");
  EXPECT_NEAR(Machine.Position[1], 0.25, 1e-9);
}

}  // namespace
}  // namespace norvik
