// Jogs: panel buttons, keys, joystick, and everything that ends a held one.
#include "control/manual/jog_guard.h"
#include "control/manual/panel_edits.h"
#include "control/manual/panel_jog.h"
#include "control/manual/table_setup_keys.h"
#include "control/safety/safety.h"
#include "control_fixture.h"
#include "core/setup_keys.h"

namespace norvik {
namespace {

using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::HasSubstr;

class Jog_Test : public Control_Test {
 protected:
  Jog_Test() { Free_Axes(); }
  static double At(int axis) { return Machine.Position[axis]; }
};

// --- Panel ---------------------------------------------------------------------------------------

TEST_F(Jog_Test, A_held_jog_runs_until_it_is_released) {
  In_Yield_After(1000, [] { Jog_MouseUp(2, 0); });
  Jog_MouseDown(2, 0);
  EXPECT_LT(At(2), -1);
  EXPECT_GT(At(2), -2);
  EXPECT_FALSE(Anything_Moves() || Controller.Jog_Held);
  EXPECT_TRUE(Controller.Jog_Dir[2]);
  EXPECT_EQ(Messages.Panel[1], "");
  EXPECT_TRUE(Machine.Jog_Stop_Request);
  Expect_Position_True();
}

TEST_F(Jog_Test, A_jog_that_is_never_released_ends_after_1000_units) {
  MachineSetup.Axis_SPI.Fill(20);
  MachineSetup.Axis_Feed_Rate_Jogging = 900;
  Reset_Simulated_Machine();
  Free_Axes();
  Jog_MouseDown(1, 1);
  EXPECT_NEAR(At(1), 1000, 1e-6);
}

struct Single_Row {
  const char* Name;
  int Axis, Index;
  bool Step_Z, Invert_Z;
  const char* Slave;
  std::array<double, 4> Expected;  // units
};
class Single_Step : public Jog_Test, public ::testing::WithParamInterface<Single_Row> {};
TEST_P(Single_Step, Moves_one_increment) {
  const Single_Row& row = GetParam();
  CNC_Controls.Check_SingleStep.Value = true;
  MachineSetup.CNC_Jog_Increment = 0.01F;
  MachineSetup.Axis_Z_Jog_Step_Enable = row.Step_Z;
  MachineSetup.Display_Z_Coordinate_Invert = row.Invert_Z;
  MachineSetup.Slave_A_Axis_to = row.Slave;
  row.Axis == 0 ? Jog_XY_MouseDown(row.Index) : Jog_MouseDown(row.Axis, row.Index);
  for (int axis = 1; axis <= 4; ++axis)
    EXPECT_NEAR(At(axis), row.Expected[static_cast<std::size_t>(axis - 1)], 1e-9) << axis;
  Expect_Position_True();
}
INSTANTIATE_TEST_SUITE_P(
    Rows, Single_Step,
    ::testing::Values(Single_Row{"x_minus", 1, 0, false, false, "None", {-.01, 0, 0, 0}},
                      Single_Row{"x_slave", 1, 1, false, false, "X Axis", {.01, 0, 0, .01}},
                      Single_Row{"y_not_slave", 2, 1, false, false, "X Axis", {0, .01, 0, 0}},
                      Single_Row{"z", 3, 1, true, false, "None", {0, 0, .01, 0}},
                      Single_Row{
                          "z_inverted_slave", 3, 1, true, true, "Z Axis", {0, 0, -.01, -.01}},
                      Single_Row{"a", 4, 0, false, false, "None", {0, 0, 0, -.01}},
                      Single_Row{"a_slaved", 4, 0, false, false, "Y Axis", {0, 0, 0, 0}},
                      Single_Row{"corner_0", 0, 0, false, false, "None", {-.01, .01, 0, 0}},
                      Single_Row{"corner_1", 0, 1, false, false, "None", {.01, .01, 0, 0}},
                      Single_Row{"corner_2", 0, 2, false, false, "None", {-.01, -.01, 0, 0}},
                      Single_Row{"corner_3", 0, 3, false, false, "Y Axis", {.01, -.01, 0, -.01}}),
    [](const auto& row) { return std::string(row.param.Name); });

TEST_F(Jog_Test, A_slaved_A_says_why_it_does_not_jog) {
  MachineSetup.Slave_A_Axis_to = "Y Axis";
  Jog_MouseDown(4, 0);
  EXPECT_EQ(Messages.Panel[1], control_text::A_Is_Slaved);
  Messages = {};
  Form_KeyDown(106);
  EXPECT_EQ(Messages.Panel[1], control_text::A_Is_Slaved);
  EXPECT_EQ(Half_Steps, 0);
}

TEST_F(Jog_Test, A_release_leaves_a_single_step_alone_but_ends_Z_without_its_own_key) {
  CNC_Controls.Check_SingleStep.Value = true;
  MachineSetup.CNC_Jog_Increment = 2;
  In_Yield_After(100, [] { Jog_MouseUp(1, 1); });
  Jog_MouseDown(1, 1);
  EXPECT_NEAR(At(1), 2, 1e-9);
  In_Yield_After(100, [] { Jog_MouseUp(3, 1); });
  Jog_MouseDown(3, 1);
  EXPECT_LT(At(3), 1);
  EXPECT_GT(At(3), 0);
}

TEST_F(Jog_Test, Speeds_of_held_and_single_jogs) {
  MachineSetup.Axis_Ramping = true;
  MachineSetup.Axis_Ramp_Rate = 15;
  In_Yield_After(2000, [] { Jog_MouseUp(1, 1); });
  Jog_MouseDown(1, 1);
  EXPECT_EQ(Step_Engine.IPM_St, 10);
  EXPECT_EQ(Step_Engine.IPM_En, 60);
  CNC_Controls.Check_SingleStep.Value = true;
  MachineSetup.CNC_Jog_Increment = 0.5F;
  Jog_MouseDown(1, 1);
  EXPECT_EQ(Step_Engine.IPM_En, 10);
}

TEST_F(Jog_Test, Jogs_are_refused_while_anything_else_moves) {
  Load({{1, 1}});
  In_Yield_After(100, [] {
    Jog_MouseDown(2, 1);
    Form_KeyDown(102);
    Start_Key_Jog({{3, true}});
    EXPECT_EQ(Messages.Panel[1], control_text::Still_Moving);
    Form_KeyUp(102);
  });
  Command_CNC_Play_Click();
  EXPECT_EQ(At(2), 0);
  EXPECT_NEAR(At(1), 1, 1e-9);
}

// --- What ends a held jog besides its release ----------------------------------------------------

struct Guard_Row {
  const char* Name;
  std::function<void()> Act;
};
class Guard : public Jog_Test, public ::testing::WithParamInterface<Guard_Row> {};
TEST_P(Guard, Ends_a_held_jog_of_the_panel) {
  In_Yield_After(500, GetParam().Act);
  Jog_MouseDown(1, 1);
  EXPECT_LT(At(1), 2);
  Expect_Position_True();
}
TEST_P(Guard, Leaves_a_single_step_and_a_run_alone) {
  CNC_Controls.Check_SingleStep.Value = true;
  MachineSetup.CNC_Jog_Increment = 2;
  In_Yield_After(200, GetParam().Act);
  Jog_MouseDown(1, 1);
  EXPECT_NEAR(At(1), 2, 1e-9);
  Load({{1, 4}});
  In_Yield_After(200, GetParam().Act);
  Command_CNC_Play_Click();
  EXPECT_NEAR(At(1), 4, 1e-9);
}
const Guard_Row Guard_Rows[] = {
    {"window_lost", Jog_Guard_Window_Lost},
    {"message_box", [] { Platform.Message_Box("t", "x", Box_Buttons::Ok); }},
    {"input_box", [] { Platform.Input_Box("t", "x", "0"); }},
    {"file_dialog", [] { Platform.Open_File_Dialog({}); }},
    {"no_button_down",
     [] {
       CNC_Controls_Host.Mouse_Button_Down = [] { return false; };
       Tick();
     }},
};
INSTANTIATE_TEST_SUITE_P(Rows, Guard, ::testing::ValuesIn(Guard_Rows),
                         [](const auto& row) { return std::string(row.param.Name); });

// --- Keys ----------------------------------------------------------------------------------------

struct Key_Row {
  int Key;
  std::array<int, 4> Signs;
};
// How the windows call a key that moves so: "X - Y +", "Z up".
std::string Name_Of_Way(const std::array<int, 4>& signs) {
  std::string name;
  for (std::size_t n = 0; n < signs.size(); ++n) {
    if (signs[n] == 0) continue;
    const bool plus = signs[n] > 0;
    if (!name.empty()) name += ' ';
    name += "XYZA"[n];
    name += n == 2 ? (plus ? " up" : " down") : (plus ? " +" : " -");
  }
  return name;
}
TEST_F(Jog_Test, Keys_move_as_the_table_says) {
  const Key_Row rows[] = {{100, {-1, 0, 0, 0}}, {102, {1, 0, 0, 0}},  {98, {0, -1, 0, 0}},
                          {104, {0, 1, 0, 0}},  {107, {0, 0, -1, 0}}, {109, {0, 0, 1, 0}},
                          {97, {-1, -1, 0, 0}}, {105, {1, 1, 0, 0}},  {103, {-1, 1, 0, 0}},
                          {99, {1, -1, 0, 0}},  {106, {0, 0, 0, -1}}, {111, {0, 0, 0, 1}},
                          {65, {0, 0, 0, 0}}};
  JogKey_Form_Load();
  for (const auto& row : rows) {
    const auto before = Machine.Position;
    In_Yield_After(100, [key = row.Key] { Form_KeyUp(key); });
    Form_KeyDown(row.Key);
    if (row.Key == 65) Form_KeyUp(65);
    for (int axis = 1; axis <= 4; ++axis) {
      const double moved = At(axis) - before[axis];
      const int sign = moved > 0 ? 1 : moved < 0 ? -1 : 0;
      EXPECT_EQ(sign, row.Signs[static_cast<std::size_t>(axis - 1)]) << row.Key << " axis " << axis;
    }
    EXPECT_FALSE(JogKey.Key_Moving || Runs(Operation::Key_Jog));
    for (int entry = 0; entry <= 14; ++entry) {
      if (MachineSetup.KeyJog_KeyValue[entry] != row.Key) continue;
      EXPECT_EQ(Setting_Entry(*Find_Setup_Key("KeyJog_KeyValue_0")->Row, entry),
                Name_Of_Way(row.Signs));
    }
  }
  Expect_Position_True();
}

TEST_F(Jog_Test, A_held_key_runs_100_units_once_and_repeats_do_nothing) {
  MachineSetup.Axis_SPI.Fill(20);
  MachineSetup.Axis_Feed_Rate_Jogging = 600;
  Reset_Simulated_Machine();
  Free_Axes();
  In_Yield_After(100, [] { Form_KeyDown(104); });  // a second key is ignored
  Form_KeyDown(102);
  EXPECT_NEAR(At(1), 100, 1e-6);
  EXPECT_EQ(At(2), 0);
  EXPECT_EQ(JogKey_Form.Picture1[1].Color, Control_Color::Green);
  Form_KeyDown(102, true);
  Form_KeyDown(102);
  EXPECT_NEAR(At(1), 100, 1e-6);
  Form_KeyUp(102);
  EXPECT_EQ(JogKey_Form.Picture1[1].Color, Control_Color::Normal);
  Form_KeyDown(102, true);  // still repeating from before: starts nothing
  EXPECT_NEAR(At(1), 100, 1e-6);
}

TEST_F(Jog_Test, The_divisor_and_the_feed_keys) {
  MachineSetup.Axis_Ramping = true;
  JogKey_Form_Load();
  for (const char* text : {"/2", "/10", "/1", "/2", "/10"}) {
    Form_KeyDown(191);
    Form_KeyPress();
    Form_KeyUp(191);
    EXPECT_EQ(JogKey_Form.Label_JogToggle.Caption, text);
  }
  In_Yield_After(100, [] { Form_KeyUp(0); });
  Form_KeyDown(102);
  EXPECT_NEAR(Step_Engine.IPM_Rn, 6, 1e-6);
  EXPECT_EQ(Step_Engine.IPM_St, 10);

  const auto press = [](int key, float start) {
    MachineSetup.Axis_Feed_Rate_Jogging = start;
    Form_KeyDown(key);
    Form_KeyPress();
    Form_KeyUp(key);
    return MachineSetup.Axis_Feed_Rate_Jogging;
  };
  EXPECT_EQ(press(188, 60), 59);
  EXPECT_EQ(press(190, 60), 61);
  EXPECT_EQ(press(188, 1), 1);
  EXPECT_EQ(press(190, 2500), 2500);
  EXPECT_EQ(JogKey_Form.Label_FeedRate_Jogging.Caption, "2500.00");
}

TEST_F(Jog_Test, Without_ramps_the_divisor_counts_too) {
  JogKey.Jog_Divisor = 10;
  In_Yield_After(100, [] { Form_KeyUp(102); });
  Form_KeyDown(102);
  EXPECT_NEAR(Step_Engine.Current_IPM, 6, 1e-6);
}

TEST_F(Jog_Test, The_first_of_two_entries_with_one_code_acts) {
  MachineSetup.KeyJog_KeyValue[7] = 100;  // also X negative
  In_Yield_After(100, [] {
    EXPECT_EQ(JogKey_Form.Picture1[7].Color, Control_Color::Green);
    Form_KeyUp(100);
  });
  Form_KeyDown(100);
  EXPECT_LT(At(1), 0);
  EXPECT_EQ(At(2), 0);
}

TEST_F(Jog_Test, A_key_up_that_was_never_delivered_is_noticed) {
  scripted.Keys_Held.insert(102);
  In_Yield_After(300, [this] { scripted.Keys_Held.clear(); });
  const Timer_Id timer = Platform.Start_Timer(10, JogKey_Timer1);
  Form_KeyDown(102);
  Platform.Stop_Timer(timer);
  EXPECT_LT(At(1), 2);
  EXPECT_FALSE(JogKey.Key_Moving);
}

TEST_F(Jog_Test, A_lost_focus_forgets_the_key) {
  In_Yield_After(300, Jog_Guard_Window_Lost);
  Form_KeyDown(102);
  EXPECT_LT(At(1), 2);
  EXPECT_FALSE(JogKey.Key_Moving);
  EXPECT_EQ(JogKey_Form.Picture1[1].Color, Control_Color::Normal);
}

// --- Joystick ------------------------------------------------------------------------------------

class Joystick_Test : public Jog_Test {
 protected:
  Joystick_Test() {
    MachineSetup.KeyJog_Device = 1;
    Timers = {Platform.Start_Timer(10, JogKey_Timer1), Platform.Start_Timer(250, JogKey_Timer2)};
    Stick({});
    JogKey_Form_Load();
  }
  void Stick(const Joystick_State& state) { scripted.Joysticks[0] = state; }
  static Joystick_State X(std::int32_t x) {
    Joystick_State state;
    state.Axis_X = x;
    return state;
  }
  static Joystick_State Buttons(std::uint32_t buttons) {
    Joystick_State state;
    state.Buttons = buttons;
    return state;
  }
  std::array<Timer_Id, 2> Timers{};
};

TEST_F(Joystick_Test, A_deflection_jogs_until_the_stick_is_back) {
  scripted.Run_For(0.1);
  Stick(X(60000));
  In_Yield_After(800, [this] { Stick(X(33000)); });
  scripted.Run_For(0.1);
  EXPECT_GT(At(1), 0.9);
  EXPECT_LT(At(1), 1.7);  // a quarter of a second late at most
  EXPECT_EQ(At(2), 0);
  scripted.Run_For(1);
  const double rest = At(1);
  scripted.Run_For(1);
  EXPECT_EQ(At(1), rest);
  Expect_Position_True();
}

// Between two ticks the set of directions is never seen empty.
TEST_F(Joystick_Test, A_stick_thrown_to_its_other_side_turns_the_axis_round) {
  scripted.Run_For(0.1);
  Stick(X(60000));
  double thrown_at = 0, furthest = 0;
  scripted.On_Yield = [&] {
    furthest = std::max(furthest, At(1));
    if (thrown_at == 0 && At(1) > 1) {
      thrown_at = At(1);
      Stick(X(0));
    }
    if (thrown_at > 0 && At(1) < 0.5) Stick({});
  };
  scripted.Run_For(3);
  EXPECT_GT(thrown_at, 1);
  EXPECT_LT(furthest, thrown_at + 0.7);  // two ticks late at most
  EXPECT_LT(At(1), 0.5);
  EXPECT_GT(At(1), -0.3);
  Expect_Position_True();
}

TEST_F(Joystick_Test, A_stick_let_go_while_a_button_is_held_stops_its_axis_alone) {
  MachineSetup.JoyJog_KeyValue[1] = "1";   // Z up
  MachineSetup.JoyJog_KeyValue[2] = "NU";  // Z down: button 1 in a fresh setup
  scripted.Run_For(0.1);
  Joystick_State both = Buttons(1);
  both.Axis_X = 60000;
  Stick(both);
  bool let_go = false;
  scripted.On_Yield = [&] {
    if (At(1) > 1 && !std::exchange(let_go, true)) Stick(Buttons(1));
    if (std::abs(At(3)) > 3) Stick({});
  };
  scripted.Run_For(5);
  EXPECT_TRUE(let_go);
  EXPECT_LT(At(1), 1.7);
  EXPECT_GT(std::abs(At(3)), 3);
  EXPECT_LT(std::abs(At(3)), 3.7);
  Expect_Position_True();
}

TEST_F(Joystick_Test, Small_deflections_and_a_stick_held_from_the_start_move_nothing) {
  Stick(X(60000));
  scripted.Run_For(1);
  EXPECT_EQ(At(1), 0);
  Stick(X(36000));
  scripted.Run_For(0.5);
  EXPECT_EQ(At(1), 0);
  Stick(X(60000));  // once it was at rest
  In_Yield_After(200, [this] { Stick({}); });
  scripted.Run_For(1);
  EXPECT_GT(At(1), 0);
}

TEST_F(Joystick_Test, A_lost_joystick_ends_the_jog_and_moves_nothing_when_it_comes_back) {
  scripted.Run_For(0.1);
  Stick(X(0));
  In_Yield_After(800, [this] { scripted.Joysticks.clear(); });
  scripted.Run_For(0.1);
  const double rest = At(1);
  EXPECT_LT(rest, -0.9);
  EXPECT_GT(rest, -1.7);
  scripted.Run_For(0.5);
  Stick(X(0));
  scripted.Run_For(1);
  EXPECT_EQ(At(1), rest);
  Expect_Position_True();
}

TEST_F(Joystick_Test, Buttons_move_Z_and_step_feed_and_divisor_once_a_press) {
  scripted.Run_For(0.1);
  Stick(Buttons(1U << 1));  // button 2: Z up
  In_Yield_After(100, [this] { Stick({}); });
  scripted.Run_For(1);
  EXPECT_GT(At(3), 0);
  Stick(Buttons(1U << 9 | 1U << 11));  // buttons 10 and 12
  scripted.Run_For(1);
  EXPECT_EQ(MachineSetup.Axis_Feed_Rate_Jogging, 61);
  EXPECT_EQ(JogKey.Jog_Divisor, 2);
  Stick(Buttons(3));  // Z up and Z down at once
  const double z = At(3);
  scripted.Run_For(1);
  EXPECT_EQ(At(3), z);
  MachineSetup.JoyJog_KeyValue[1] = "NU";
  Stick({});
  scripted.Run_For(0.1);
  Stick(Buttons(1U << 1));
  scripted.Run_For(1);
  EXPECT_EQ(At(3), z);
}

TEST_F(Joystick_Test, Forward_is_Y_positive_and_the_second_stick_turns_the_knob) {
  scripted.Run_For(0.1);
  Joystick_State state;
  state.Axis_Y = 0;
  Stick(state);
  In_Yield_After(100, [this] { Stick({}); });
  scripted.Run_For(1);
  EXPECT_GT(At(2), 0);
  state = {};
  state.Axis_Z = 65535;
  Stick(state);
  scripted.Run_For(0.2);
  EXPECT_GT(Knob.Knob_Position, 50);
  EXPECT_LT(Knob.Knob_Position, 100);
  scripted.Run_For(1);
  EXPECT_EQ(Knob.Knob_Position, 100);
  EXPECT_EQ(CNC_Controls.Label_Feed_Overide.Caption, "100%");
  EXPECT_THAT(JogKey_Form.List1, Contains("Axis Z  =65535"));
  EXPECT_THAT(JogKey_Form.List1, Contains("Button 16  =False"));
}

// --- Edits ---------------------------------------------------------------------------------------

TEST_F(Jog_Test, The_single_step_distance_is_stored_as_it_is_typed) {
  CNC_Controls.Combo_SStep_Distance.Text = "0,025";
  Combo_SStep_Distance_Change();
  EXPECT_FLOAT_EQ(MachineSetup.CNC_Jog_Increment, 0.025F);
  EXPECT_EQ(ReadSetup("Jog", "CNC_Jog_Increment"), "0.025");
  for (const char* text : {"", ".", "abc", "-1", "0"}) {
    CNC_Controls.Combo_SStep_Distance.Text = text;
    Combo_SStep_Distance_Change();
  }
  Combo_SStep_Distance_LostFocus();
  EXPECT_EQ(CNC_Controls.Combo_SStep_Distance.Text, ".025");
}

TEST_F(Jog_Test, The_jog_feed_is_taken_on_Enter_and_not_below_the_ramp_start) {
  auto& text = CNC_Controls.Text_Jog_IPM.Text;
  text = "4";
  Text_Jog_IPM_KeyUp('4');
  EXPECT_EQ(MachineSetup.Axis_Feed_Rate_Jogging, 60);
  Text_Jog_IPM_KeyUp(Key_Enter);
  EXPECT_EQ(MachineSetup.Axis_Feed_Rate_Jogging, 10);
  EXPECT_EQ(text, "10");
  text = "77";
  Text_Jog_IPM_LostFocus();
  EXPECT_EQ(text, "10");
  text = "fast";
  Text_Jog_IPM_KeyUp(Key_Enter);
  EXPECT_EQ(text, "10");
}

TEST_F(Jog_Test, Positions_levels_and_feeds_are_edited_in_boxes) {
  scripted.Input_Answers = {"2,5", "", "03.2500", "x", "25", "30", "-3"};
  Label_Axis_Pos_DblClick(1);
  EXPECT_DOUBLE_EQ(At(1), 2.5);
  EXPECT_EQ(scripted.Inputs[0].Title, "Axis");
  EXPECT_EQ(scripted.Inputs[0].Prompt, "Change X Axis Position");
  EXPECT_EQ(ReadSetup("Axis Position", "Axis_Cur_Pos_1"), "2.5");
  EXPECT_EQ(View_Simulated_Machine().Axes[1].Steps_Apart, 0);  // given, not lost
  Label_Axis_Pos_DblClick(1);                                  // empty: nothing changes
  EXPECT_DOUBLE_EQ(At(1), 2.5);
  Label_Tool_Height_Click(2);
  EXPECT_EQ(scripted.Inputs[2].Prompt, "Change Z Axis Deep Cut Depth");
  EXPECT_EQ(ReadSetup("Tool", "Axis_Tool_Height(2)"), "3.25");
  EXPECT_EQ(ReadSetup("Tool", "Axis_Tool_Height(0)"), "1");  // the three together
  Label_FeedRate_Cut_Click();                                // no number
  EXPECT_EQ(MachineSetup.Axis_Feed_Rate_Cut, 60);
  EXPECT_THAT(Messages.Panel[1], HasSubstr("\"x\" is no number"));
  Label_FeedRate_Travel_Click();
  EXPECT_EQ(ReadSetup("Axis", "Axis_Feed_Rate_Travel"), "25");
  Label_FeedRate_Jogging_Click();
  EXPECT_EQ(scripted.Inputs[5].Initial, "60.00");
  EXPECT_EQ(CNC_Controls.Text_Jog_IPM.Text, "30");
  EXPECT_EQ(JogKey_Form.Label_FeedRate_Jogging.Caption, "30.00");
  Label_FeedRate_Cut_Click();  // negative
  EXPECT_EQ(MachineSetup.Axis_Feed_Rate_Cut, 60);
  Command_Zero_Pos_Click(1);
  EXPECT_EQ(At(1), 0);
  EXPECT_EQ(Machine.Theoretical_Pos[1], 0);
}

TEST_F(Jog_Test, No_box_opens_while_the_machine_moves) {
  Load({{1, 1}});
  In_Yield_After(100, [] {
    Label_Axis_Pos_DblClick(1);
    Command_Zero_Pos_Click(1);
    Label_FeedRate_Cut_Click();
    EXPECT_EQ(Messages.Panel[1], control_text::Not_While_Moving);
    Messages = {};
    EXPECT_FALSE(Platform.Open_File_Dialog({}));  // of any other window
    EXPECT_EQ(Messages.Panel[1], control_text::Not_While_Moving);
  });
  Command_CNC_Play_Click();
  EXPECT_TRUE(scripted.Inputs.empty() && scripted.Open_Dialogs.empty());
  EXPECT_NEAR(At(1), 1, 1e-9);
}

TEST_F(Jog_Test, No_dialog_opens_between_the_moves_of_an_operation_but_any_in_a_pause) {
  scripted.Input_Answers = {"1", "1", "1", "1"};
  const auto open_all = [] {
    Platform.Input_Box("t", "x", "0");
    Platform.Open_File_Dialog({});
    Platform.Save_File_Dialog({});
    Platform.Print_Lines({"G0"});
  };
  const auto opened = [this] {
    return scripted.Inputs.size() + scripted.Open_Dialogs.size() + scripted.Save_Dialogs.size() +
           scripted.Prints.size();
  };
  Load({{1, 0.1}, {2, {}, {}, {}, {}, 2}, {3, {}, {}, {}, {}, -1}, {4, 0}});
  bool asked = false;
  scripted.On_Yield = [&] {
    if (Runs(Operation::Move) || Machine.Run_Step != 2 || std::exchange(asked, true)) return;
    open_all();
    EXPECT_EQ(Messages.Panel[1], control_text::Not_While_Moving);
    EXPECT_EQ(Messages.MessageLog[0], control_text::Not_While_Moving);
  };
  Command_CNC_Play_Click();
  EXPECT_TRUE(asked);
  EXPECT_EQ(opened(), 0U);
  EXPECT_EQ(Machine.CNCMode, CNC_Paused);
  open_all();
  EXPECT_EQ(opened(), 4U);
}

TEST_F(Jog_Test, The_key_page_reads_keys_and_restores_its_defaults) {
  Command_JogKey(3);
  JogKey_Test_KeyDown(87);
  EXPECT_EQ(JogKey_Test.Label_Current_Key_Value.Caption, "87");
  JogKey_Test_KeyUp();
  EXPECT_EQ(JogKey_Test.Label_Current_Key_Value.Caption, "None");
  Display_Jog_Tables();
  Command_JogKey(3);
  JogKey_Test_KeyDown(87);
  Table_Setup_Keys.Text_KeyJog_Code[4].Text = "junk";
  Save_Jog_Tables();
  EXPECT_EQ(MachineSetup.KeyJog_KeyValue[3], 87);
  EXPECT_EQ(MachineSetup.KeyJog_KeyValue[4], 107);
  Command_KeyJog_RestoreDefaults();
  Command_JoyJog_RestoreDefaults();
  Save_Jog_Tables();
  const auto keys = MachineSetup.KeyJog_KeyValue;
  const auto buttons = MachineSetup.JoyJog_KeyValue;
  Restore_Factory_Setup();
  EXPECT_EQ(keys, MachineSetup.KeyJog_KeyValue);
  EXPECT_EQ(buttons, MachineSetup.JoyJog_KeyValue);
}

}  // namespace
}  // namespace norvik
