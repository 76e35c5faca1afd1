// E-stop button, switches, outputs, knob and the panel's timer.
#include "control/safety/safety.h"

#include "control_fixture.h"
#include "drive/drive_status.h"

namespace norvik {
namespace {

using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::HasSubstr;

class Safety_Test : public Control_Test {};

TEST_F(Safety_Test, The_EStop_button_toggles) {
  MachineSetup.E_Stop_Output_Disable = true;
  CNC_Controls.Check_Outputs[0].Value = true;
  Toggle_Outputs(0);
  Machine.CNCMode = CNC_Paused;
  Command_EStop_Click();
  EXPECT_TRUE(Machine.EStop_Flag);
  EXPECT_EQ(Machine.CNCMode, CNC_Stopped);
  EXPECT_EQ(CNC_Controls.Command_EStop.Caption, "MOTORS DISABLED");
  EXPECT_EQ(CNC_Controls.Command_EStop.Color, Control_Color::Red);
  EXPECT_EQ(CNC_Controls.Label_CNC_Status.Caption, "EStop Pressed");
  EXPECT_FALSE(Simulated_Machine.Outputs[1].On);
  EXPECT_FALSE(CNC_Controls.Check_Outputs[0].Value);
  EXPECT_THAT(scripted.Sounds, ElementsAre("5"));
  Tick();  // the panel's timer leaves the words where they are
  EXPECT_EQ(CNC_Controls.Label_CNC_Status.Caption, "EStop Pressed");
  EXPECT_EQ(CNC_Controls.Label_EStop_State.Caption, "E-Stop Tripped");

  Command_EStop_Click();
  EXPECT_FALSE(Machine.EStop_Flag);
  EXPECT_EQ(CNC_Controls.Command_EStop.Caption, "MOTORS ENABLED");
  EXPECT_EQ(CNC_Controls.Label_CNC_Status.Caption, "CNC Stopped");
  Tick();
  EXPECT_EQ(CNC_Controls.Label_EStop_State.Caption, "E-Stop Cleared");
  const std::string log = Read_Whole_File(Application.ErrorFile);
  EXPECT_THAT(log, HasSubstr("Motor Enable Tripped"));
  EXPECT_THAT(log, HasSubstr("Motor Enable Cleared"));
  EXPECT_THAT(Messages.MessageLog[1], HasSubstr("E-stop: the motors are disabled"));
  EXPECT_THAT(Messages.MessageLog[0], HasSubstr("the motors are enabled"));
}

TEST_F(Safety_Test, The_one_way_form_makes_no_log_line_and_never_clears) {
  EStop_Engage();
  EStop_Engage();
  EXPECT_TRUE(Machine.EStop_Flag);
  EXPECT_FALSE(FileExists(Application.ErrorFile));
  EXPECT_EQ(CNC_Controls.Label_CNC_Status.Caption, "EStop Pressed");
}

// Two presses in one yield of a move: the second would otherwise take back the first unseen.
TEST_F(Safety_Test, A_double_click_in_a_move_still_stops_it) {
  Load({{1, 2}, {2, 0}});
  In_Yield_After(100, [] {
    Command_EStop_Click();
    Command_EStop_Click();
  });
  Command_CNC_Play_Click();
  EXPECT_TRUE(Machine.EStop_Flag);
  EXPECT_LT(Machine.Position[1], 1);
  EXPECT_THAT(Messages.MessageLog, ::testing::Contains("Stopped by the E-stop."));
  EXPECT_THAT(Messages.MessageLog, ::testing::Contains(control_text::EStop_Stays_Set));
  Command_EStop_Click();
  EXPECT_FALSE(Machine.EStop_Flag);
  EXPECT_EQ(Machine.CNCMode, CNC_Stopped);  // clearing moves nothing
  Expect_Position_True();
}

TEST_F(Safety_Test, The_watch_trips_the_EStop_for_X_Y_Z_in_a_run_only) {
  MachineSetup.LimitDisableinRunMode = 1;
  struct {
    int Switch;
    std::int16_t Mode, Watch, Disable;
    bool Trips;
  } const rows[] = {{1, CNC_Running, 1, 0, true},  {3, CNC_Stepped, 1, 0, true},
                    {4, CNC_Running, 1, 0, false}, {2, CNC_Paused, 1, 0, false},
                    {2, CNC_Running, 0, 0, false}, {2, CNC_Running, 1, 1, false}};
  for (const auto& row : rows) {
    Force_Input(row.Switch, Input_Force::On);
    MachineSetup.LimitDisableinRunMode = row.Watch;
    MachineSetup.LimitSwitchDisable = row.Disable;
    Machine.EStop_Flag = false;
    Machine.CNCMode = row.Mode;
    Tick();
    EXPECT_EQ(Machine.EStop_Flag, row.Trips) << row.Switch << " in mode " << row.Mode;
    if (row.Trips) {
      EXPECT_THAT(Messages.MessageLog[0], HasSubstr("a limit switch tripped"));
    }
    Force_Input(row.Switch, Input_Force::Automatic);
    Drive_Status.Limit_State = {};
  }
}

TEST_F(Safety_Test, The_panels_timer_stops_a_paused_run_at_the_EStop_input) {
  Load({{1, 1}});
  Machine.CNCMode = CNC_Paused;
  Press_EStop(true);
  Tick();
  EXPECT_EQ(Machine.CNCMode, CNC_Stopped);
  EXPECT_FALSE(Machine.EStop_Flag);
  EXPECT_THAT(Messages.Panel[1], HasSubstr("E-stop input"));
  EXPECT_EQ(CNC_Controls.Label_EStop_State.Caption, "E-Stop Tripped");
  Messages = {};
  Tick();  // at rest it stays quiet
  EXPECT_EQ(Messages.Panel[1], "");
}

TEST_F(Safety_Test, A_switch_closed_at_the_start_blocks_nothing_until_all_are_off) {
  Force_Input(1, Input_Force::On);
  Home_Safety_Check();
  Tell_Home_Safety();
  EXPECT_TRUE(Drive_Status.Home_Safety_Off);
  ASSERT_EQ(scripted.Boxes.size(), 1U);
  EXPECT_EQ(scripted.Boxes[0].Title, "Caution");
  EXPECT_THAT(scripted.Boxes[0].Text, HasSubstr("which direction to needs to be halted"));
  Tick();
  EXPECT_EQ(CNC_Controls.Label_Home_Safety.Caption, control_text::Home_Safety_Off);
  Load({{1, 0.5}});
  Command_CNC_Play_Click();
  EXPECT_NEAR(Machine.Position[1], 0.5, 1e-9);

  Force_Input(1, Input_Force::Automatic);
  Tick();
  EXPECT_FALSE(Drive_Status.Home_Safety_Off);
  EXPECT_EQ(CNC_Controls.Label_Home_Safety.Caption, "");
}

TEST_F(Safety_Test, The_check_at_start_is_quiet_without_switches_or_with_unread_ones) {
  Home_Safety_Check();
  Tell_Home_Safety();
  MachineSetup.Input_Port[2] = 1;  // never read: counts as on
  Home_Safety_Check();
  Tell_Home_Safety();
  EXPECT_FALSE(Drive_Status.Home_Safety_Off);
  EXPECT_TRUE(scripted.Boxes.empty());
}

TEST_F(Safety_Test, The_spindle_directions_exclude_each_other_off_first) {
  CNC_Controls.Check_Outputs[0].Value = true;
  Toggle_Outputs(0);
  Tick();
  EXPECT_EQ(CNC_Controls.Label_Spindle_State.Caption, "Spindle On");
  bool both = false;
  Platform.Port_Write = [&, inner = Platform.Port_Write](std::uint16_t port, std::uint8_t value) {
    inner(port, value);
    both = both || (port == Output_Port_Address && (value & 3) == 3);
  };
  CNC_Controls.Check_Outputs[1].Value = true;
  Toggle_Outputs(1);
  EXPECT_FALSE(both || Simulated_Machine.Outputs[1].On || CNC_Controls.Check_Outputs[0].Value);
  EXPECT_TRUE(Simulated_Machine.Outputs[2].On);
  CNC_Controls.Check_Outputs[4].Value = true;
  Toggle_Outputs(4);
  CNC_Controls.Check_Outputs[1].Value = false;
  Toggle_Outputs(1);
  EXPECT_FALSE(Simulated_Machine.Outputs[2].On);
  EXPECT_TRUE(Simulated_Machine.Outputs[5].On);
  Tick();
  EXPECT_EQ(CNC_Controls.Label_Spindle_State.Caption, "Spindle Off");
}

TEST_F(Safety_Test, While_the_EStop_is_set_an_output_goes_off_but_not_on) {
  MachineSetup.E_Stop_Output_Disable = false;
  CNC_Controls.Check_Outputs[1].Value = true;
  Toggle_Outputs(1);
  Command_EStop_Click();
  for (int index = 0; index <= 4; ++index) {
    if (index == 1) continue;  // on from before
    Messages = {};
    CNC_Controls.Check_Outputs[index].Value = true;
    Toggle_Outputs(index);
    EXPECT_FALSE(Simulated_Machine.Outputs[index + 1].On ||
                 CNC_Controls.Check_Outputs[index].Value);
    EXPECT_EQ(Messages.Panel[1], control_text::Outputs_Stay_Off);
  }
  EXPECT_TRUE(Simulated_Machine.Outputs[2].On);
  CNC_Controls.Check_Outputs[1].Value = false;
  Toggle_Outputs(1);
  EXPECT_FALSE(Simulated_Machine.Outputs[2].On);
}

TEST_F(Safety_Test, With_its_key_the_EStop_input_takes_the_outputs_off_and_keeps_them_off) {
  for (const bool key : {false, true}) {
    MachineSetup.E_Stop_Output_Disable = key;
    Force_Input(EStop_Input, Input_Force::Automatic);
    CNC_Controls.Check_Outputs[2].Value = true;
    Toggle_Outputs(2);
    ASSERT_TRUE(Drive_Status.Output_Commanded[3]);
    Force_Input(EStop_Input, Input_Force::On);
    Tick();  // at rest
    EXPECT_EQ(Drive_Status.Output_Commanded[3], !key);
    EXPECT_EQ(CNC_Controls.Check_Outputs[2].Value, !key);

    CNC_Controls.Check_Outputs[3].Value = true;
    Toggle_Outputs(3);
    EXPECT_EQ(Drive_Status.Output_Commanded[4], !key);
    if (key) {
      EXPECT_EQ(Messages.Panel[1], control_text::Outputs_Wait_For_Input);
    }
  }
}

TEST_F(Safety_Test, The_EStop_input_takes_the_outputs_off_when_it_ends_a_move) {
  MachineSetup.E_Stop_Output_Disable = true;
  CNC_Controls.Check_Outputs[0].Value = true;
  Toggle_Outputs(0);
  Load({{1, 0.5}});
  At_Half_Step(50, [] { Force_Input(EStop_Input, Input_Force::On); });
  Command_CNC_Play_Click();
  EXPECT_LT(Machine.Position[1], 0.5);
  EXPECT_FALSE(Drive_Status.Output_Commanded[1]);
}

TEST_F(Safety_Test, Without_limit_switches_the_spindle_label_still_follows_the_read_back) {
  MachineSetup.LimitSwitchDisable = 1;
  Force_Input(2, Input_Force::On);
  CNC_Controls.Check_Outputs[0].Value = true;
  Toggle_Outputs(0);
  Tick();
  EXPECT_EQ(CNC_Controls.Label_Spindle_State.Caption, "Spindle On");
  EXPECT_FALSE(Drive_Status.Limit_State[2]);
  PPSetPort(Output_Port_Address, 0, true);
  Tick();
  EXPECT_EQ(CNC_Controls.Label_Spindle_State.Caption, "Spindle Off");
}

// A box that a refresh unticks would need two clicks to switch its output off.
TEST_F(Safety_Test, The_output_boxes_show_what_was_told_on_a_port_that_reads_back_nothing) {
  Platform.Port_Read = [inner = Platform.Port_Read](std::uint16_t port) {
    return port == Output_Port_Address ? std::uint8_t{0} : inner(port);
  };
  for (const int index : {2, 4}) {
    Check_Control& box = CNC_Controls.Check_Outputs[index];
    box.Value = true;
    Toggle_Outputs(index);
    Tick();
    EXPECT_TRUE(box.Value) << index;
    box.Value = false;
    Toggle_Outputs(index);
    Tick();
    EXPECT_FALSE(box.Value) << index;
  }
  // A program switches them too, the end of all outputs clears them, and one without a pin stays
  // off.
  Load({{.Step = 1, .X = 0.1, .Out = {1, 1, 2, 1, 2}}});
  MachineSetup.Parallel_Output_Bit[Output_Slot(3)] = "99";
  Command_CNC_Play_Click();
  Tick();
  EXPECT_FALSE(CNC_Controls.Check_Outputs[2].Value);
  EXPECT_TRUE(CNC_Controls.Check_Outputs[4].Value);
  All_Outputs_Off();
  Tick();
  EXPECT_FALSE(CNC_Controls.Check_Outputs[4].Value);
}

TEST_F(Safety_Test, Limit_lamps_follow_and_latch) {
  Force_Input(2, Input_Force::On);
  Tick();
  Force_Input(2, Input_Force::Automatic);
  Tick();
  EXPECT_EQ(CNC_Controls.Command_Limit1[2].Color, Control_Color::Normal);
  EXPECT_EQ(CNC_Controls.Command_Lim_Latch[2].Color, Control_Color::Red);
  Command_Lim_Latch_Click(2);
  EXPECT_EQ(CNC_Controls.Command_Lim_Latch[2].Color, Control_Color::Normal);
}

TEST_F(Safety_Test, The_panel_shows_step_timer_and_positions) {
  Load({{1, 1}, {2, 1.5}});
  std::vector<std::string> steps, to_go;
  scripted.On_Yield = [&] {
    Tick();
    if (!Runs(Operation::Move)) return;
    steps.push_back(CNC_Controls.Label_CNC_Step.Caption);
    to_go.push_back(CNC_Controls.Label_Axis_DTG[1].Caption);
  };
  Command_CNC_Play_Click();
  EXPECT_THAT(steps, Contains("Step 1 of 2"));
  EXPECT_THAT(steps, Contains("Step 2 of 2"));
  EXPECT_THAT(to_go, Contains(HasSubstr("00.7")));
  EXPECT_EQ(CNC_Controls.Label_Run_Timer.Caption, "Timer: 00:00:01");
  CNC_Axis_Display();
  EXPECT_EQ(CNC_Controls.Label_Axis_Pos[1].Caption, "01.5000000");
}

TEST_F(Safety_Test, The_retool_button_blinks_with_a_period_of_ten_ticks) {
  Controller.Retool_Active = true;
  std::string lamps;
  for (int tick = 0; tick < 20; ++tick) {
    Tick();
    lamps += CNC_Controls.Command_AutoRetool[1].Color == Control_Color::Red ? '#' : '.';
  }
  EXPECT_EQ(lamps, "####.....#####.....#");
}

// --- Knob ----------------------------------------------------------------------------------------

TEST_F(Safety_Test, The_knob_maps_its_ends_to_the_limits) {
  MachineSetup.ThrottleMaxLim = 200;
  MachineSetup.ThrottleMinLim = 50;
  EXPECT_EQ(Knob_Override(100), 2048);
  EXPECT_EQ(Knob_Override(75), 1536);
  EXPECT_EQ(Knob_Override(50), 1024);
  EXPECT_EQ(Knob_Override(0), 512);
  Knob.Knob_Position = 120;
  Knob_Process();  // the parallel port stays at 100 percent
  EXPECT_EQ(Knob.Knob_Position, 100);
  EXPECT_EQ(CNC_Controls.Label_Feed_Overide.Caption, "100%");
  EXPECT_EQ(Drive_Status.Feed_Override_Target, 1);
  MachineSetup.Parallel_Port_Type = 2;
  Knob_Process();
  EXPECT_EQ(CNC_Controls.Label_Feed_Overide.Caption, "200%");
  EXPECT_EQ(Knob.Override, 2048);
}

TEST_F(Safety_Test, A_drag_turns_the_knob_and_a_double_click_centres_it) {
  Pic_Knob_MouseMove(400);
  EXPECT_EQ(Knob.Knob_Position, 50);  // no button is down
  Pic_Knob_MouseDown(1, 100);
  Pic_Knob_MouseMove(141);
  EXPECT_EQ(Knob.Knob_Position, 70);  // 70.5: to the even neighbour
  Pic_Knob_MouseMove(900);
  EXPECT_EQ(Knob.Knob_Position, 100);
  EXPECT_GT(CNC_Controls.Pic_Knob_Pointer.X, 0.7);
  Pic_Knob_MouseUp();
  Pic_Knob_MouseMove(0);
  EXPECT_EQ(Knob.Knob_Position, 100);
  Label_Feed_Overide_DblClick();
  EXPECT_EQ(Knob.Knob_Position, 50);
  EXPECT_NEAR(CNC_Controls.Pic_Knob_Pointer.Y, 1, 1e-12);
}

}  // namespace
}  // namespace norvik
