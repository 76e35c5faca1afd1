// Home, ReTool and the way back, on the switches of the simulated machine.
#include "control/manual/home.h"

#include "control/manual/panel_edits.h"
#include "control/safety/safety.h"
#include "control_fixture.h"
#include "drive/drive_status.h"

namespace norvik {
namespace {

using ::testing::AllOf;
using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::Not;

class Home_Test : public Control_Test {
 protected:
  Home_Test() {
    Free_Axes();
    auto& setup = MachineSetup;
    setup.Axis_HomePos = {{"1", "2", "0.5", ""}};
    setup.Axis_ReToolPos = {{"3", "", "-0.5", "1"}};
    setup.Axis_Tool_Height = {{1.5F, 0.5F, 0}};
    setup.Axis_HomeIPM = {{60, 5}};
    Drive_Host.Mark_Rate_Error = [] {};
  }

  // Validation of Z towards plus and of X and Y towards minus; the counters are wrong by
  // `wrong` to begin with.
  void Set_Up_Validation(double wrong) {
    auto& setup = MachineSetup;
    setup.Validate_Home_Position = true;
    setup.Axis_HomePath = {{"-20", "-20", "20", ""}};
    setup.Axis_HomeTarget = {{"-0.5", "-0.25", "2", ""}};
    Machine.Position = {{wrong, wrong, wrong}};
    Switch_At(1, -9, -0.5);
    Switch_At(2, -9, -0.25);
    Switch_At(3, 2, 9);
  }
  static void Switch_At(int axis, double from, double to) {
    Simulated_Machine.Inputs[axis].Zones[0] = {from, to};
    Simulated_Machine.Inputs[axis].Hysteresis = 0.01;
    Settings_Changed(axis);
  }
  // Where each move of the machine ended.
  void Watch_Moves() {
    Drive_Host.Set_Panel_Interval = [this](int) {
      Ends.push_back({Machine.Position[1], Machine.Position[2], Machine.Position[3]});
    };
  }
  std::vector<std::array<double, 3>> Ends;
};

TEST_F(Home_Test, Plain_home_rises_goes_across_and_down) {
  Watch_Moves();
  Command_Home_Click();
  ASSERT_EQ(Ends.size(), 3U);
  EXPECT_THAT(Ends[0], ElementsAre(0, 0, ::testing::DoubleNear(1.5, 1e-9)));
  EXPECT_NEAR(Ends[1][0], 1, 1e-9);
  EXPECT_NEAR(Ends[1][1], 2, 1e-9);
  EXPECT_NEAR(Ends[2][2], 0.5, 1e-9);
  EXPECT_EQ(Messages.Panel[1], "Homing Completed!");
  EXPECT_EQ(Messages.MessageLog[0], "Homing Completed.");
  EXPECT_EQ(Messages.MessageLog[1], "Homing the Axis.");
  Expect_Position_True();
  EXPECT_TRUE(Begin_Operation(Operation::Jog));
  EXPECT_EQ(Messages.Panel[1], "");  // what is over is not said of what comes next
}

TEST_F(Home_Test, Without_a_Z_position_only_the_rise_is_left_of_Z) {
  MachineSetup.Axis_HomePos[3] = "";
  Command_Home_Click();
  EXPECT_NEAR(Machine.Position[3], 1.5, 1e-9);
  EXPECT_NEAR(Machine.Position[2], 2, 1e-9);
}

TEST_F(Home_Test, A_move_that_does_not_arrive_ends_the_sequence) {
  Switch_At(3, 1.2, 9);
  for (const auto& click : {Command_Home_Click, Command_ReTool_Click}) {
    click();
    EXPECT_EQ(Machine.Position[1], 0) << "across although Z never came up";
    EXPECT_THAT(Messages.MessageLog, Not(Contains(HasSubstr("Error"))));
    Expect_Position_True();
  }
  EXPECT_THAT(Messages.Panel[1], HasSubstr(control_text::Limit_Ended));
}

TEST_F(Home_Test, A_switch_that_is_not_met_is_told_and_sets_a_position_only_as_told) {
  for (const bool needed : {false, true}) {
    Messages = {};
    Set_Up_Validation(0);
    Simulated_Machine.Inputs[3].Fault = Input_Fault::Stuck_Off;
    Input_Changed(3);
    MachineSetup.Home_Needs_Switch = needed;
    Command_Home_Click();
    EXPECT_THAT(Messages.MessageLog, Contains(HasSubstr("The Z switch was not met")));
    EXPECT_EQ(Messages.Panel[1] == "Homing Completed!", !needed) << Messages.Panel[1];
    if (needed) {
      EXPECT_NEAR(Machine.Position[3], 20, 1e-9);  // the end of the way, where it believes to be
      EXPECT_EQ(Machine.Position[1], 0) << "X may not search before Z is known";
    } else {
      EXPECT_NEAR(Machine.Position[1], 1, 1e-9);
    }
  }
}

// The counter is wrong by -200, so that the tap to -40 (400 steps per unit) would run away from the
// switch; with the correction it goes the way of the seek.
TEST_F(Home_Test, Tap_goes_where_the_switch_is_with_the_correction) {
  for (const bool corrected : {false, true}) {
    Messages = {};
    Set_Up_Validation(0);
    Reset_Simulated_Machine();
    Free_Axes();
    MachineSetup.Axis_HomePath = {{"-220", "", "", ""}};
    MachineSetup.Axis_HomeTarget = {{"-0.5", "", "", ""}};
    MachineSetup.Axis_HomePos = {{"", "", "", ""}};
    Switch_At(1, -9, -0.5);
    Machine.Position = {{-200, 0, 0}};
    MachineSetup.Home_Tap_Target = corrected;
    MachineSetup.Home_Needs_Switch = true;
    Command_Home_Click();
    const auto lost = HasSubstr("The X switch was not met");
    if (corrected) {
      EXPECT_THAT(Messages.MessageLog, Not(Contains(lost)));
      EXPECT_NEAR(Machine.Position[1], True_Position(1), 3.0 / 400);
    } else {
      EXPECT_THAT(Messages.MessageLog, Contains(lost));
    }
  }
}

TEST_F(Home_Test, ReTool_and_back) {
  Machine.Position = {{0.5, 0.25, -1}};
  Reset_Simulated_Machine();
  Free_Axes();
  Command_AutoRetool_Click(0);
  EXPECT_NEAR(Machine.Position[1], 3, 1e-9);
  EXPECT_NEAR(Machine.Position[2], 0.25, 1e-9);  // empty text
  EXPECT_NEAR(Machine.Position[3], -0.5, 1e-9);
  EXPECT_NEAR(Machine.Position[4], 1, 1e-9);
  EXPECT_FALSE(CNC_Controls.Command_AutoRetool[0].Enabled);
  EXPECT_TRUE(CNC_Controls.Command_AutoRetool[1].Enabled && Controller.Retool_Active);
  Command_AutoRetool_Click(1);
  for (int axis = 1; axis <= 3; ++axis)
    EXPECT_NEAR(Machine.Position[axis], Controller.Return_Pos[axis], 1e-9);
  EXPECT_TRUE(CNC_Controls.Command_AutoRetool[0].Enabled);
  EXPECT_FALSE(CNC_Controls.Command_AutoRetool[1].Enabled || Controller.Retool_Active);
  Expect_Position_True();
}

// Where to return to is known in the coordinates of before.
TEST_F(Home_Test, A_given_position_takes_the_way_back_from_ReTool) {
  const std::function<void()> edits[] = {[] { Command_Zero_Pos_Click(1); },
                                         [] { Label_Axis_Pos_DblClick(2); },
                                         [] { Set_Axis_Position(3, 7); }};
  scripted.Input_Answers = {"5"};
  for (const auto& edit : edits) {
    Command_AutoRetool_Click(0);
    EXPECT_TRUE(CNC_Controls.Command_AutoRetool[1].Enabled);
    edit();
    EXPECT_FALSE(CNC_Controls.Command_AutoRetool[1].Enabled || Controller.Retool_Active);
    EXPECT_TRUE(CNC_Controls.Command_AutoRetool[0].Enabled);
  }
}

TEST_F(Home_Test, The_retool_request_of_the_run_loop_ends_with_the_motors_disabled) {
  Load({{1, 0.1}, {2, 0.2}});
  Command_CNC_Step_Click();
  CNC_Retool();
  EXPECT_NEAR(Machine.Position[1], 3, 1e-9);
  EXPECT_TRUE(Machine.EStop_Flag);
  EXPECT_EQ(Machine.CNCMode, CNC_Stopped);
  EXPECT_EQ(CNC_Controls.Command_EStop.Caption, "MOTORS DISABLED");
  EXPECT_EQ(CNC_Controls.Command_EStop.Color, Control_Color::Red);
  EXPECT_THAT(scripted.Sounds, Contains("5"));
  Command_EStop_Click();
  Command_CNC_Play_Click();
  EXPECT_NEAR(Machine.Position[1], 0.2, 1e-9);
  Expect_Position_True();
}

TEST_F(Home_Test, Stop_in_a_retool_request_ends_the_sequence_once) {
  In_Yield_After(100, [] { Command_CNC_Stop_Click(); });
  CNC_Retool();
  EXPECT_NEAR(Machine.Position[3], 1.5, 1e-9);  // the running move is finished
  EXPECT_EQ(Machine.Position[1], 0);
  EXPECT_TRUE(Machine.EStop_Flag);
  EXPECT_FALSE(Controller.Retool_Request || Anything_Moves());
  EXPECT_FALSE(FileExists(Application.ErrorFile));
  Expect_Position_True();
}

TEST_F(Home_Test, Validation_sets_the_counters_at_the_switches) {
  Set_Up_Validation(0.125);  // the machine really stands at 0
  MachineSetup.Axis_Backlash_Enable = true;
  Command_Home_Click();
  // Every axis is at its home position, by the machine's own measure; the switch is met within a
  // step and its tap runs at a tenth of the seek.
  EXPECT_NEAR(True_Position(1), 1, 3.0 / 400);
  EXPECT_NEAR(True_Position(2), 2, 3.0 / 400);
  EXPECT_NEAR(True_Position(3), 0.5, 3.0 / 400);
  EXPECT_NEAR(Machine.Position[1], 1, 1e-3);
  EXPECT_THAT(Messages.MessageLog,
              Contains(AllOf(HasSubstr("The X Axis Position Error was -0.1"))));
  EXPECT_THAT(Messages.MessageLog, Contains(HasSubstr("The Z Axis Position Error was -0.1")));
  EXPECT_THAT(Messages.MessageLog, Not(Contains(HasSubstr("The A Axis"))));
  EXPECT_TRUE(MachineSetup.Axis_Backlash_Enable);
  EXPECT_EQ(ReadSetup("Axis Position", "Axis_Cur_Pos_1"), "-0.5");
  for (int axis = 1; axis <= 3; ++axis) {
    EXPECT_EQ(View_Simulated_Machine().Axes[axis].Steps_Apart, 0) << axis;
  }
}

TEST_F(Home_Test, An_axis_without_a_target_takes_no_part) {
  Set_Up_Validation(0);
  MachineSetup.Axis_HomeTarget[3] = "";
  MachineSetup.Axis_HomeIPM[1] = 0;  // runs the tap at 0.1
  Command_Home_Click();
  EXPECT_NEAR(Machine.Position[3], 0.5, 1e-9);
  EXPECT_THAT(Messages.MessageLog, Not(Contains(HasSubstr("The Z Axis"))));
  EXPECT_THAT(Messages.MessageLog, Contains(HasSubstr("The Y Axis")));
}

struct Abort_Row {
  const char* Name;
  std::function<void()> Act;
};
class Home_Abort : public Home_Test, public ::testing::WithParamInterface<Abort_Row> {};
// Whatever ends the seek, the position stays what was counted.
TEST_P(Home_Abort, Leaves_and_sets_no_position) {
  Set_Up_Validation(0.125);
  Reset_Simulated_Machine();  // the counters are right after all
  Free_Axes();
  Switch_At(3, 5, 9);
  At_Half_Step(400, GetParam().Act);
  MachineSetup.Axis_Backlash_Enable = true;
  Command_Home_Click();
  EXPECT_GT(Machine.Position[3], 0.2);
  EXPECT_NEAR(Machine.Position[1], 0.125, 1e-9);
  EXPECT_EQ(Messages.Panel[1], "Homing Completed!");
  EXPECT_THAT(Messages.MessageLog[1], HasSubstr("Stopped"));
  EXPECT_THAT(Messages.MessageLog, Not(Contains(HasSubstr("Position Error"))));
  EXPECT_TRUE(MachineSetup.Axis_Backlash_Enable);
  EXPECT_FALSE(Anything_Moves());
  Expect_Position_True();
}
INSTANTIATE_TEST_SUITE_P(Rows, Home_Abort,
                         ::testing::Values(Abort_Row{"Esc", [] { Application.EscFlag = true; }},
                                           Abort_Row{"EStop_button", [] { Command_EStop_Click(); }},
                                           Abort_Row{"EStop_input", [] { Press_EStop(true); }}),
                         [](const auto& row) { return std::string(row.param.Name); });

TEST_F(Home_Test, Validation_without_switches_is_refused_in_a_box) {
  Set_Up_Validation(0);
  MachineSetup.LimitSwitchDisable = 1;
  Command_Home_Click();
  MachineSetup.LimitSwitchDisable = 0;
  Drive_Status.Home_Safety_Off = true;
  Command_Home_Click();
  ASSERT_EQ(scripted.Boxes.size(), 2U);
  EXPECT_EQ(scripted.Boxes[0].Title, "Homing Aborted");
  EXPECT_EQ(scripted.Boxes[1].Text, "Auto Homing cannot be done with limit switchs disabled!");
  EXPECT_EQ(Half_Steps, 0);
  EXPECT_EQ(Messages.Panel[1], "Homing Completed!");
}

TEST_F(Home_Test, A_text_that_is_no_number_moves_nothing) {
  MachineSetup.Axis_HomePos[2] = "two";
  MachineSetup.Axis_ReToolPos[1] = "x";
  Command_Home_Click();
  Command_ReTool_Click();
  EXPECT_EQ(Half_Steps, 0);
  EXPECT_THAT(Read_Whole_File(Application.ErrorFile),
              AllOf(HasSubstr("Home_Move_Error # 13"), HasSubstr("ReTool_Error # 13")));
}

}  // namespace
}  // namespace norvik
