// Latency of every stop, in half steps of the recorded pulses, and the inputs that misbehave.
#include "compiler/compile/compile.h"
#include "control/manual/home.h"
#include "control/manual/panel_jog.h"
#include "control/manual/timing_edits.h"
#include "control/run/goto.h"
#include "control/safety/safety.h"
#include "control_fixture.h"
#include "drive/drive.h"

#include <random>

namespace norvik {
namespace {

using ::testing::HasSubstr;

// The half step in which the last real edge of a step pin left.
class Latency : public Control_Test, public ::testing::WithParamInterface<int> {
 protected:
  Latency() { Record_Edges(); }
  std::int64_t Last_Edge() const { return Edges.empty() ? 0 : Edges.back(); }
};

// An input or a key changes in the delay of half step n; the loop looks at the input before the
// edges of n + 1, at the key behind those of every second one.
TEST_P(Latency, EStop_input_lets_no_further_edge_out) {
  Load({{1, 2, 1}, {2, 0}});
  At_Half_Step(GetParam(), [] { Press_EStop(true); });
  Command_CNC_Play_Click();
  EXPECT_EQ(Last_Edge(), GetParam());
  EXPECT_THAT(Messages.Panel[1], HasSubstr("E-stop input"));
  Expect_Position_True();
}

TEST_P(Latency, EStop_flag_lets_no_further_edge_out) {
  Load({{1, 2, 1}, {2, 0}});
  At_Half_Step(GetParam(), [] { Command_EStop_Click(); });
  Command_CNC_Play_Click();
  EXPECT_EQ(Last_Edge(), GetParam());
  EXPECT_EQ(CNC_Controls.Label_CNC_Status.Caption, "EStop Pressed");
  Expect_Position_True();
}

TEST_P(Latency, Escape_acts_within_two_half_steps_however_short_the_press) {
  Load({{1, 2, 1}, {2, 0}});
  At_Half_Step(GetParam(), [this] { scripted.Press(key::Escape); });
  Command_CNC_Play_Click();
  EXPECT_LE(Last_Edge(), GetParam() + 1);
  EXPECT_EQ(Messages.Panel[1], control_text::Ended_By_Esc);
  EXPECT_TRUE(Application.EscFlag);
  Expect_Position_True();
}

TEST_P(Latency, A_released_jog_ends_at_the_next_full_step) {
  At_Half_Step(GetParam(), [] { Jog_MouseUp(1, 1); });
  Jog_MouseDown(1, 1);
  EXPECT_LE(Last_Edge(), GetParam() + 2);
  EXPECT_TRUE(Machine.Jog_Stop_Request);
  Expect_Position_True();
}

TEST_P(Latency, A_limit_switch_ends_the_move_at_the_next_half_step) {
  Load({{1, 2, 1}, {2, 0}});
  At_Half_Step(GetParam(), [] { Force_Input(1, Input_Force::On); });
  Command_CNC_Play_Click();
  EXPECT_EQ(Last_Edge(), GetParam());
  EXPECT_EQ(Machine.CNCMode, CNC_Stopped);
  // Both end switches of an axis share a line; the way it came is free.
  EXPECT_EQ(Messages.Panel[1],
            "Stopped: a limit switch ended the move. Free: X-. Jog that way, "
            "then start again.");
  Expect_Position_True();
}

// Pause and Stop stand still at the end of the step and of the wire.
TEST_P(Latency, Pause_and_Stop_end_with_the_step_and_with_the_wire) {
  Load({{1, 1}, {1, 2}, {2, 3}});
  In_Yield_After(GetParam(), [] { Command_CNC_Pause_Click(); });
  Command_CNC_Play_Click();
  EXPECT_EQ(Last_Edge(), 2 * 2 * 400);
  Command_CNC_Stop_Click();
  In_Yield_After(GetParam(), [] { Command_CNC_Stop_Click(); });
  const std::int64_t before = Half_Steps;
  Command_CNC_Play_Click();
  EXPECT_LE(Last_Edge(), before + 2 * 400);
  Expect_Position_True();
}
INSTANTIATE_TEST_SUITE_P(Half_Steps, Latency, ::testing::Values(1, 2, 7, 100, 333));

class Stops_Test : public Control_Test {};

const std::function<void()> Jogs[] = {[] { Jog_MouseDown(1, 1); }, [] { Jog_XY_MouseDown(1); },
                                      [] {
                                        Start_Key_Jog({{1, false}});
                                      }};

TEST_F(Stops_Test, A_jog_says_that_the_EStop_input_ended_it) {
  for (const auto& jog : Jogs) {
    Messages = {};
    At_Half_Step(100, [] { Press_EStop(true); });
    jog();
    EXPECT_EQ(Messages.Panel[1], control_text::Ended_By_EStop_Input);
    Press_EStop(false);
  }
  Expect_Position_True();
}

TEST_F(Stops_Test, A_late_release_does_not_swallow_a_move) {
  Load({{1, 0.5}});
  Jog_MouseUp(1, 0);  // no jog runs
  Machine.Jog_Stop_Request = false;
  Command_CNC_Play_Click();
  EXPECT_DOUBLE_EQ(Machine.Position[1], 0.5);
  // The release of a jog that has ended by itself arrives in the yield of a run.
  Program_Wire.Rows()[0].End[1] = 2;
  In_Yield_After(50, [] { Jog_MouseUp(1, 0); });
  Command_CNC_Play_Click();
  EXPECT_NEAR(Machine.Position[1], 2, 1e-9);
}

TEST_F(Stops_Test, An_EStop_held_at_the_start_lets_nothing_out) {
  Press_EStop(true);
  Load({{1, {}, {}, {}, {}, 0, {}, {}, {2, 1, 1, 1, 1}, 0}, {2, 1}});
  Command_CNC_Play_Click();
  EXPECT_EQ(Half_Steps, 0);
  EXPECT_EQ(Simulated_Machine.Outputs[1].Switchings, 0);
  EXPECT_EQ(Messages.Panel[1], control_text::Ended_By_EStop_Input);
  for (const auto& jog : Jogs) {
    Messages = {};
    jog();
    EXPECT_EQ(Messages.Panel[1], control_text::Ended_By_EStop_Input);
  }
  MachineSetup.Axis_HomePos[1] = "1";
  Command_Home_Click();
  EXPECT_EQ(Half_Steps, 0);
  EXPECT_EQ(Simulated_Machine.Axes[1].Edges, 0);
  Press_EStop(false);
  Command_CNC_Play_Click();
  EXPECT_NEAR(Machine.Position[1], 1, 1e-9);
}

TEST_F(Stops_Test, A_limit_in_mid_arc_leaves_the_commanded_position_where_the_machine_is) {
  std::vector<Row> rows;
  for (int chord = 1; chord <= 10; ++chord) rows.push_back({1, chord * 0.1, chord * 0.05});
  Load(rows);
  Simulated_Machine.Inputs[1].Zones[1] = {0.4275, 2};
  Settings_Changed(1);
  Command_CNC_Play_Click();
  EXPECT_NEAR(Machine.Position[1], 0.4275, 2.0 / 400);
  Expect_Position_True();
  // The next run leaves the switch in the free direction.
  Load({{1, 0, 0}});
  Command_CNC_Play_Click();
  EXPECT_NEAR(Machine.Position[1], 0, 1e-9);
  Expect_Position_True();
}

struct Port_Row {
  const char* Name;
  std::uint8_t Answer;
};
void PrintTo(const Port_Row& row, std::ostream* out) {
  *out << row.Name;
}
class Dead_Port : public Control_Test, public ::testing::WithParamInterface<Port_Row> {};
// A port that answers the same for ever: all inputs on (0) or off (255).
TEST_P(Dead_Port, Neither_hangs_nor_loses_the_position) {
  Platform.Port_Read = [answer = GetParam().Answer](std::uint16_t) { return answer; };
  Load({{1, 0.1, 0.2}, {2, 0, 0, 0, 0, 0, {}, std::int16_t{1}}, {3, 0.5}});
  In_Yield(3000, [] { Application.EscFlag = true; });
  Command_CNC_Play_Click();
  EXPECT_EQ(Machine.CNCMode, CNC_Stopped);
  EXPECT_NEAR(Machine.Position[1], GetParam().Answer == 0 ? 0 : 0.1, 1e-9);
  EXPECT_EQ(Machine.Theoretical_Pos[1], Machine.Position[1]);
}
INSTANTIATE_TEST_SUITE_P(Rows, Dead_Port,
                         ::testing::Values(Port_Row{"zero", 0}, Port_Row{"ones", 255}),
                         [](const auto& row) { return std::string(row.param.Name); });

TEST_F(Stops_Test, A_chattering_switch_never_breaks_the_count) {
  std::mt19937 random(20240506);
  int arrived = 0, cut = 0;
  for (int round = 0; round < 40; ++round) {
    const double target = (round % 2 == 0) ? 0.5 : 0.0;
    Load({{1, target, 0.25}});
    for (int n = 0; n < 3; ++n) {
      const bool on = random() % 2 == 0;
      At_Half_Step(1 + static_cast<std::int64_t>(random() % 300),
                   [on] { Force_Input(1, on ? Input_Force::On : Input_Force::Off); });
    }
    Command_CNC_Play_Click();
    Expect_Position_True();
    const bool there = std::abs(Machine.Position[1] - target) < 1e-9;
    // A cut run says so, and one that says nothing arrived.
    EXPECT_EQ(!Messages.Panel[1].starts_with(control_text::Limit_Ended), there) << round;
    ++(there ? arrived : cut);
    Actions.clear();
  }
  EXPECT_GT(arrived, 5);
  EXPECT_GT(cut, 5);
}

// The contact chatters for 5 ms after it is met. As told, the first reading off turns the free
// side round: the retreat is refused, the words point into the switch, and the way through it is
// free.
TEST_F(Stops_Test, A_bouncing_switch_lets_the_axis_back_off_with_the_filter_only) {
  for (const std::int32_t filter : {0, 20}) {
    MachineSetup.Limit_Filter_Steps = filter;
    Drive().Begin_Session();
    Machine.Position[1] = 0;
    Reset_Simulated_Machine();
    Free_Axes();
    Simulated_Machine.Inputs[1].Zones[1] = {1, 9};
    Simulated_Machine.Inputs[1].Hysteresis = 0.05;
    Settings_Changed(1);
    Set_Input_Bounce(1, true);
    scripted.Run_For(0.1);  // the first look at the switch has come to rest
    const auto run_to = [this](double x) {
      Load({{1, x}});
      Command_CNC_Play_Click();
    };
    run_to(2);
    EXPECT_NEAR(Machine.Position[1], 1, 0.01);
    EXPECT_THAT(Messages.Panel[1], HasSubstr("Free: X-"));
    run_to(0);
    const bool backed_off = std::abs(Machine.Position[1]) < 1e-9;
    EXPECT_EQ(backed_off, filter > 0);
    if (!backed_off) {
      EXPECT_THAT(Messages.Panel[1], HasSubstr("Free: X+"));
    }
    run_to(2);
    EXPECT_EQ(Machine.Position[1]<1.01, filter> 0) << Machine.Position[1];
    Expect_Position_True();
  }
}

// Without a memory of what was written, the step loses the direction and X runs to plus.
TEST_F(Stops_Test, A_port_that_does_not_read_back_is_told_and_works_with_the_shadow) {
  for (const bool shadow : {false, true}) {
    Messages = {};
    MachineSetup.Port_Shadow = shadow;
    Machine.Position[1] = Machine.Theoretical_Pos[1] = 0;
    Reset_Simulated_Machine();
    Free_Axes();
    Simulated_Machine.Output_Read_Back = Read_Back::Zero;
    Follow_Setup();
    Drive().Begin_Session();
    EXPECT_EQ(std::ranges::any_of(Messages.MessageLog,
                                  [](const auto& text) {
                                    return text.starts_with("Port &H378 does not read back");
                                  }),
              !shadow);
    EXPECT_THAT(Drive().Health(), HasSubstr("&H378 does not read back"));
    EXPECT_EQ(True_Position(1), 0);
    Load({{1, -1}});
    Command_CNC_Play_Click();
    EXPECT_EQ(std::abs(True_Position(1) + 1) < 0.01, shadow) << True_Position(1);
    if (shadow) {
      EXPECT_THAT(View_Simulated_Machine().Findings,
                  ::testing::Not(::testing::Contains(HasSubstr("put the pin"))));
    }
  }
  Simulated_Machine.Output_Read_Back = Read_Back::Latch;
  Drive().Begin_Session();
  EXPECT_THAT(Drive().Health(), HasSubstr("every access"));
}

// Without a scale an axis would stay behind while the others cut.
TEST_F(Stops_Test, Absurd_scales_move_no_axis_and_say_so) {
  constexpr float infinity = std::numeric_limits<float>::infinity();
  for (const float scale : {0.0F, -400.0F, 1e-6F, 0.0009F, 3e8F, 3e38F, infinity, -infinity,
                            std::numeric_limits<float>::quiet_NaN()}) {
    const std::function<void()> moves[] = {[] { Command_CNC_Play_Click(); },
                                           [] { Jog_XY_MouseDown(1); },
                                           [] {
                                             Start_Key_Jog({{1, true}, {2, true}});
                                           }};
    MachineSetup.Axis_SPI[2] = scale;
    Load({{1, 4, 8}, {2, 0}});
    for (const auto& move : moves) {
      Messages = {};
      move();
      EXPECT_EQ(Messages.Panel[1], control_text::Ended_By_Failure) << scale;
      EXPECT_EQ(Machine.CNCMode, CNC_Stopped) << scale;
      EXPECT_EQ(Half_Steps, 0) << scale;
      EXPECT_EQ(Machine.Position[1] + Machine.Position[2], 0) << scale;
    }
    EXPECT_THAT(Read_Whole_File(Application.ErrorFile), HasSubstr("Check Axis_SPI_2"));
  }
  Load({{1, 0.5, 0}});  // an axis that stays needs no scale
  Command_CNC_Play_Click();
  EXPECT_DOUBLE_EQ(Machine.Position[1], 0.5);
}

// Everything that makes the machine move.
const std::function<void()> Motion_Requests[] = {[] { Command_CNC_Play_Click(); },
                                                 [] { Command_CNC_Step_Click(); },
                                                 [] { Jog_MouseDown(1, 0); },
                                                 [] { Command_Home_Click(); },
                                                 [] { Command_ReTool_Click(); },
                                                 [] { Command_AutoRetool_Click(0); },
                                                 [] { CNC_Retool(); },
                                                 [] { Command_Goto_Click(); },
                                                 [] {
                                                   Start_Key_Jog({{2, false}});
                                                 }};

// The table that runs is still that of the program before.
TEST_F(Stops_Test, Motion_is_refused_in_words_in_a_yield_of_a_compile) {
  Load({{1, 1}});
  CNC_Controls.Text_Goto.Text = "G1 X1";
  GCode_Program.Text = std::make_shared<const GCode_Text>("G1 X2 F60\r\n");
  bool asked = false;
  scripted.On_Yield = [&] {
    const auto ask = [&](const std::function<void()>& request) {
      Messages = {};
      request();
      EXPECT_EQ(Messages.Panel[1], control_text::Compile_Runs);
    };
    if (!Program_Is_Held() || std::exchange(asked, true)) return;
    for (const auto& request : Motion_Requests) ask(request);
    ask(Panel_Get_Time_Constant_Click);
    ask(Timing_Test_Start_Click);
    // Another text would get the table of this one.
    ask([] { EXPECT_FALSE(Stopped_For("Can't open file")); });
  };
  EXPECT_TRUE(CompileProgram());
  EXPECT_TRUE(asked);
  EXPECT_EQ(Half_Steps, 0);
  Command_CNC_Play_Click();
  EXPECT_GT(Half_Steps, 0);
}

TEST_F(Stops_Test, Motion_is_refused_in_words_while_the_EStop_is_set) {
  Load({{1, 1}});
  Command_EStop_Click();
  for (const auto& request : Motion_Requests) {
    Messages = {};
    request();
    EXPECT_EQ(Messages.Panel[1], control_text::Motors_Are_Disabled);
  }
  EXPECT_EQ(Half_Steps, 0);
  EXPECT_FALSE(Controller.Retool_Request);
  EXPECT_FALSE(Controller.Retool_Active);
}

}  // namespace
}  // namespace norvik
