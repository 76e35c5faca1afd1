// The run loop: states, order of steps, and what it leaves behind.
#include "control/manual/home.h"
#include "control/manual/panel_jog.h"
#include "control/panel/run_program.h"
#include "control/run/goto.h"
#include "control_fixture.h"
#include "drive/drive_status.h"

namespace norvik {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

// Notes each wire that is executed.
class Run_Loop_Test : public Control_Test {
 protected:
  Run_Loop_Test() {
    Run_Plot_Host.Draw_Segment = [this](std::size_t, const Wire& wire) {
      Executed.push_back(wire.Step);
    };
  }
  std::vector<std::int32_t> Take_Executed() { return std::exchange(Executed, {}); }
  std::vector<std::int32_t> Executed;
};

TEST_F(Run_Loop_Test, Play_runs_every_step_once_and_shows_the_run_time) {
  Load({{1, 0.5}, {2, 0.5, 0.25}, {4, 0, 0}});
  Command_CNC_Play_Click();
  EXPECT_THAT(Executed, ElementsAre(1, 2, 4));
  EXPECT_EQ(Machine.CNCMode, CNC_Stopped);
  EXPECT_EQ(Machine.Run_Step, 1);
  // 0.5 and 0.25 units and a diagonal of the same steps as its longer side, at 60 units a minute.
  EXPECT_EQ(Messages.Panel[1], "Machine Run Time: 00:00:01");
  EXPECT_NEAR(Controller.Machine_Run_Time, 1.25, 0.01);
  EXPECT_THAT(scripted.Sounds, ElementsAre("0", "7"));
  EXPECT_FALSE(Anything_Moves());
  EXPECT_TRUE(CNC_Controls.Text_StartingStep.Enabled);
  Expect_Position_True();
}

// Two passes over lines 2 and 3, as REPEAT leaves them in the table.
TEST_F(Run_Loop_Test, A_repeated_line_runs_all_its_rows_at_once_or_in_the_order_of_the_table) {
  for (const bool table_order : {false, true}) {
    MachineSetup.Run_In_Table_Order = table_order;
    Load({{1, 0.1}, {2, 0.2}, {2, 0.25}, {3, 0.3}, {2, 0.4}, {3, 0.5}, {4, 0.6}});
    Command_CNC_Play_Click();
    EXPECT_THAT(Take_Executed(),
                table_order ? ElementsAre(1, 2, 2, 3, 2, 3, 4) : ElementsAre(1, 2, 2, 2, 3, 3, 4));
    EXPECT_EQ(Machine.CNCMode, CNC_Stopped);
    EXPECT_EQ(Machine.Run_Step, 1);
    EXPECT_NEAR(Machine.Position[1], 0.6, 1e-9);
  }
}

TEST_F(Run_Loop_Test, In_the_order_of_the_table_steps_pauses_and_ranges_keep_their_place) {
  MachineSetup.Run_In_Table_Order = true;
  Load({{1, 0.1}, {2, 0.2}, {3, 0.3}, {2, 0.4}, {3, 0.5}, {5, 0.6}});
  for (int i = 0; i < 3; ++i) Command_CNC_Step_Click();
  EXPECT_THAT(Take_Executed(), ElementsAre(1, 2, 3));
  EXPECT_EQ(Machine.Run_Step, 2);
  Command_CNC_Pause_Click();
  Command_CNC_Play_Click();
  EXPECT_THAT(Take_Executed(), ElementsAre(2, 3, 5));

  // From the first row of one step to the last row of the other; step 4 has none.
  Machine.StartingStep = 2;
  Machine.EndingStep = 3;
  Command_CNC_Play_Click();
  EXPECT_THAT(Take_Executed(), ElementsAre(2, 3, 2, 3));
  Machine.StartingStep = 3;
  Machine.EndingStep = 4;
  Command_CNC_Play_Click();
  EXPECT_THAT(Take_Executed(), ElementsAre(3, 2, 3));

  // A Stop goes back to the start.
  Machine.StartingStep = 1;
  Machine.EndingStep = 5;
  Command_CNC_Step_Click();
  Command_CNC_Step_Click();
  Command_CNC_Stop_Click();
  Command_CNC_Step_Click();
  EXPECT_THAT(Take_Executed(), ElementsAre(1, 2, 1));
}

TEST_F(Run_Loop_Test, A_second_line_says_what_the_machine_does_and_Stop_works_for_as_long) {
  Load({{1, 1}, {2, 2}});
  std::vector<std::string> seen;
  const auto look = [&] {
    CNCMode_Display();
    seen.push_back(CNC_Controls.Label_CNC_Activity.Caption);
    EXPECT_TRUE(CNC_Controls.Command_CNC_Stop.Enabled);
  };
  // 400 half steps of 800 before the end of a move of 1 unit at 60 units a minute.
  At_Half_Step(400, [&] {
    look();
    Command_CNC_Pause_Click();
    look();
  });
  Command_CNC_Play_Click();
  EXPECT_THAT(seen, ElementsAre("", "pausing: ends with this move, 0.5 s"));
  Command_CNC_Stop_Click();
  EXPECT_FALSE(CNC_Controls.Command_CNC_Stop.Enabled);

  seen.clear();
  At_Half_Step(100, [&] {
    look();
    Command_CNC_Stop_Click();  // lets go of the jog
  });
  Jog_MouseDown(1, 1);
  EXPECT_THAT(seen, ElementsAre("jog X+"));
  EXPECT_NEAR(Machine.Position[1], 1 + 0.125, 0.01);
  EXPECT_EQ(CNC_Controls.Label_CNC_Activity.Caption, "");
  EXPECT_FALSE(CNC_Controls.Command_CNC_Stop.Enabled);

  seen.clear();
  MachineSetup.Validate_Home_Position = false;
  MachineSetup.Axis_HomePos[1] = "0";
  MachineSetup.Axis_Tool_Height[0] = 0.1F;
  At_Half_Step(10, look);
  At_Half_Step(200, look);
  Command_Home_Click();
  EXPECT_THAT(seen, ElementsAre("homing Z up", "homing X, Y and A across"));
}

TEST_F(Run_Loop_Test, An_ESC_that_closes_a_box_leaves_a_paused_run_but_stops_what_moves) {
  Load({{1, 1}, {2, 2}});
  Command_CNC_Step_Click();
  Command_CNC_Pause_Click();
  Operation_Host.Escape_Taken = [] { return true; };
  Application.EscFlag = true;
  CNC_Controls_Esc();
  EXPECT_EQ(Machine.CNCMode, CNC_Paused);
  EXPECT_FALSE(Application.EscFlag);
  In_Yield_After(100, [] {
    Application.EscFlag = true;
    CNC_Controls_Esc();
  });
  Command_CNC_Play_Click();
  EXPECT_EQ(Machine.CNCMode, CNC_Stopped);
  EXPECT_LT(Machine.Position[1], 2);

  Command_CNC_Step_Click();
  Operation_Host.Escape_Taken = [] { return false; };
  Command_CNC_Pause_Click();
  CNC_Controls_Esc();
  EXPECT_EQ(Machine.CNCMode, CNC_Stopped);
}

TEST_F(Run_Loop_Test, Step_runs_exactly_one_step_from_wherever_it_is_entered) {
  Load({{1, 0.1}, {2, 0.2}, {3, 0.3}});
  Command_CNC_Step_Click();
  EXPECT_EQ(Machine.CNCMode, CNC_Stepped);
  EXPECT_EQ(Machine.Run_Step, 2);
  Command_CNC_Step_Click();
  EXPECT_THAT(Take_Executed(), ElementsAre(1, 2));

  Command_CNC_Pause_Click();
  EXPECT_EQ(Machine.Run_Step, 3);
  Command_CNC_Play_Click();
  EXPECT_THAT(Take_Executed(), ElementsAre(3));
  EXPECT_EQ(Machine.CNCMode, CNC_Stopped);

  Command_CNC_Step_Click();
  Command_CNC_Stop_Click();
  Command_CNC_Step_Click();
  EXPECT_THAT(Take_Executed(), ElementsAre(1, 1));
}

TEST_F(Run_Loop_Test, Pause_while_stopped_leaves_the_step_alone) {
  Load({{2, 0.1}, {3, 0.2}});
  Machine.StartingStep = 2;
  Command_CNC_Pause_Click();
  EXPECT_EQ(Machine.CNCMode, CNC_Paused);
  Command_CNC_Play_Click();
  EXPECT_THAT(Executed, ElementsAre(2, 3));
}

TEST_F(Run_Loop_Test, Pause_without_a_run_only_says_so_while_something_moves) {
  MachineSetup.Axis_HomePos[1] = "1";
  CNC_Controls.Check_SingleStep.Value = true;
  MachineSetup.CNC_Jog_Increment = 1;
  CNC_Controls.Text_Goto.Text = "G1 Y1";
  const std::function<void()> moves[] = {[] { Jog_MouseDown(2, 1); }, [] { Command_Home_Click(); },
                                         [] { Command_Goto_Click(); }};
  for (const auto& move : moves) {
    bool pressed = false;
    In_Yield_After(100, [&] {
      pressed = true;
      Command_CNC_Pause_Click();
      EXPECT_EQ(Messages.Panel[1], control_text::No_Run_To_Pause);
    });
    move();
    EXPECT_TRUE(pressed);
    EXPECT_EQ(Machine.CNCMode, CNC_Stopped);
    Machine.Position = Machine.Theoretical_Pos = {};
  }
}

TEST_F(Run_Loop_Test, The_measured_feed_of_a_machine_at_rest_is_0) {
  Free_Axes();
  MachineSetup.Axis_HomePos[1] = MachineSetup.Axis_ReToolPos[2] = "4";
  CNC_Controls.Text_Goto.Text = "G1 Y-4";
  const std::function<void()> moves[] = {
      [] { Jog_MouseDown(2, 1); },
      [] {
        Start_Key_Jog({{1, true}});
      },
      [] { Command_Home_Click(); }, [] { Command_ReTool_Click(); }, [] { Command_Goto_Click(); }};
  for (const auto& move : moves) {
    float measured = 0;
    const std::int64_t begin = Half_Steps;
    scripted.On_Yield = [&] {
      measured = std::max(measured, Drive_Status.Actual_IPM);
      if (Half_Steps > begin + 2000) Release_Jog();
    };
    move();
    EXPECT_GT(measured, 0);
    EXPECT_EQ(Drive_Status.Actual_IPM, 0);
  }
}

TEST_F(Run_Loop_Test, A_pause_record_pauses_behind_its_step) {
  Load({{1, 0.1}, {2, {}, {}, {}, {}, -1}, {3, 0.3}});
  Command_CNC_Play_Click();
  EXPECT_EQ(Machine.CNCMode, CNC_Paused);
  EXPECT_EQ(Messages.Panel[1], "CNC Process: Paused for retooling");
  EXPECT_EQ(CNC_Controls.Label_CNC_Status.Caption, "CNC Paused");
  EXPECT_EQ(Machine.Run_Step, 3);
  scripted.Advance(600);  // the operator changes the tool
  Command_CNC_Play_Click();
  EXPECT_THAT(Executed, ElementsAre(1, 2, 3));
  EXPECT_EQ(Messages.Panel[1], "Machine Run Time: 00:00:00");
}

TEST_F(Run_Loop_Test, A_pause_record_on_the_last_step_ends_the_run) {
  Load({{1, 1}, {2, {}, {}, {}, {}, -1}});
  Command_CNC_Play_Click();
  EXPECT_EQ(Machine.CNCMode, CNC_Stopped);
  EXPECT_THAT(Messages.Panel[1], HasSubstr("Machine Run Time: 00:00:01"));
  EXPECT_EQ(Machine.Run_Step, 1);
}

TEST_F(Run_Loop_Test, Pause_in_a_move_finishes_the_step) {
  Load({{1, 1}, {1, 1, 1}, {2, 0, 0}});
  In_Yield_After(100, [] { Command_CNC_Pause_Click(); });
  Command_CNC_Play_Click();
  EXPECT_EQ(Machine.CNCMode, CNC_Paused);
  EXPECT_THAT(Executed, ElementsAre(1, 1));
  EXPECT_NEAR(Machine.Position[2], 1, 1e-9);
  Expect_Position_True();
  Command_CNC_Play_Click();
  EXPECT_THAT(Executed, ElementsAre(1, 1, 2));
  Expect_Position_True();
}

TEST_F(Run_Loop_Test, Stop_in_a_move_ends_the_step_between_two_wires) {
  Load({{1, 1}, {1, 1, 1}, {2, 0, 0}});
  In_Yield_After(100, [] { Command_CNC_Stop_Click(); });
  Command_CNC_Play_Click();
  EXPECT_EQ(Machine.CNCMode, CNC_Stopped);
  EXPECT_THAT(Take_Executed(), ElementsAre(1));
  EXPECT_NEAR(Machine.Position[1], 1, 1e-9);  // the wire itself is finished
  EXPECT_EQ(Machine.Run_Step, 1);
  EXPECT_EQ(Messages.Panel[1], control_text::Ended_By_Operator);
  Expect_Position_True();
  Command_CNC_Play_Click();
  EXPECT_THAT(Executed, ElementsAre(1, 1, 2));
  EXPECT_EQ(Machine.CNCMode, CNC_Stopped);
}

TEST_F(Run_Loop_Test, Play_and_Step_in_a_yield_of_a_run_do_nothing) {
  Load({{1, 1}, {2, 0}});
  In_Yield_After(100, [] {
    Command_CNC_Play_Click();
    Command_CNC_Step_Click();
    CNC_Retool();
  });
  Command_CNC_Play_Click();
  EXPECT_THAT(Executed, ElementsAre(1, 2));
  EXPECT_FALSE(Controller.Retool_Request);
}

struct Range_Row {
  const char* Name;
  std::int32_t Run_Step, Starting, Ending;
  std::vector<std::int32_t> Expected;
};
class Step_Range : public Run_Loop_Test, public ::testing::WithParamInterface<Range_Row> {};
TEST_P(Step_Range, Bounds_the_run) {
  Load({{1, 0.1}, {2, 0.2}, {3, 0.3}});
  const Range_Row& row = GetParam();
  Machine.CNCMode = CNC_Paused;
  Machine.Run_Step = row.Run_Step;
  Machine.StartingStep = row.Starting;
  Machine.EndingStep = row.Ending;
  Command_CNC_Play_Click();
  EXPECT_EQ(Executed, row.Expected);
  EXPECT_EQ(Machine.CNCMode, CNC_Stopped);
}
INSTANTIATE_TEST_SUITE_P(Rows, Step_Range,
                         ::testing::Values(Range_Row{"beyond_the_end", 9, 1, 3, {1, 2, 3}},
                                           Range_Row{"below_the_start", 1, 2, 3, {2, 3}},
                                           Range_Row{"at_the_end", 3, 1, 3, {3}},
                                           Range_Row{"start_behind_end", 1, 3, 2, {3}},
                                           Range_Row{"no_program", 0, 1, 0, {1}}),
                         [](const auto& row) { return std::string(row.param.Name); });

TEST_F(Run_Loop_Test, The_run_timer_starts_anew_with_each_run_of_a_single_step) {
  Load({{1, 1}});
  for (const double target : {1.0, 0.5, 1.0}) {
    Program_Wire.Rows()[0].End[1] = target;
    const double way = std::abs(target - Machine.Position[1]);
    Command_CNC_Play_Click();
    EXPECT_NEAR(Controller.Machine_Run_Time, way, 0.01);
  }
}

TEST_F(Run_Loop_Test, Jumping_clocks_neither_hang_nor_count) {
  Load({{1, 0.1}, {2, {}, {}, {}, {}, 2}, {3, 0.2}});
  scripted.Day_Start = 86'399.5;  // midnight comes within the dwell
  In_Yield(200, [this] { scripted.Day_Start -= 3600; });
  Command_CNC_Play_Click();
  EXPECT_THAT(Executed, ElementsAre(1, 2, 3));
  EXPECT_NEAR(Controller.Machine_Run_Time, 2.2, 0.02);
}

TEST_F(Run_Loop_Test, A_serial_board_that_does_not_answer_is_refused_in_words) {
  Load({{1, 1}});
  for (const int type : {2, 3}) {
    MachineSetup.Parallel_Port_Type = static_cast<std::int16_t>(type);
    Messages = {};
    Command_CNC_Play_Click();
    EXPECT_THAT(Messages.Panel[1], HasSubstr("board does not answer"));
  }
  EXPECT_THAT(Executed, IsEmpty());
  EXPECT_EQ(Machine.CNCMode, CNC_Stopped);
}

TEST_F(Run_Loop_Test, Opening_is_refused_unless_stopped) {
  Load({{1, 1}, {2, {}, {}, {}, {}, -1}, {3, 0}});
  bool while_moving = true;
  In_Yield_After(100, [&] { while_moving = Stopped_For("Can't open file"); });
  Command_CNC_Play_Click();
  EXPECT_FALSE(while_moving);
  EXPECT_FALSE(Stopped_For("Can't open file"));  // paused
  EXPECT_EQ(scripted.Beeps, 2);
  EXPECT_THAT(Messages.Panel[1], HasSubstr("Can't open file"));
  Command_CNC_Stop_Click();
  EXPECT_TRUE(Stopped_For("Can't open file"));
}

TEST_F(Run_Loop_Test, Buttons_follow_the_mode) {
  struct {
    std::int16_t Mode;
    bool Play, Pause, Step, Stop;
    const char* Text;
  } const rows[] = {{CNC_Stopped, true, true, true, false, "CNC Stopped"},
                    {CNC_Paused, true, true, true, true, "CNC Paused"},
                    {CNC_Stepped, true, true, true, true, "CNC Stepped"},
                    {CNC_Running, false, true, false, true, "CNC Running"}};
  for (const auto& row : rows) {
    Machine.CNCMode = row.Mode;
    CNCMode_Display();
    const auto& form = CNC_Controls;
    EXPECT_EQ(form.Command_CNC_Play.Enabled, row.Play) << row.Text;
    EXPECT_EQ(form.Command_CNC_Pause.Enabled, row.Pause) << row.Text;
    EXPECT_EQ(form.Command_CNC_Step.Enabled, row.Step) << row.Text;
    EXPECT_EQ(form.Command_CNC_Stop.Enabled, row.Stop) << row.Text;
    EXPECT_EQ(form.Label_CNC_Status.Caption, row.Text);
  }
}

TEST_F(Run_Loop_Test, Process_times) {
  EXPECT_EQ(Convert_Process_Time(0), "00:00:00");
  EXPECT_EQ(Convert_Process_Time(59.99), "00:00:59");
  EXPECT_EQ(Convert_Process_Time(3661), "01:01:01");
  EXPECT_EQ(Convert_Process_Time(360000), "100:00:00");
}

}  // namespace
}  // namespace norvik
