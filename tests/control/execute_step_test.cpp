// What one step does: waits, dwells, repeats, outputs, and where it ends early.
#include "control/run/execute_step.h"

#include "control/safety/safety.h"
#include "control_fixture.h"

namespace norvik {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;

class Execute_Step_Test : public Control_Test {
 protected:
  Execute_Step_Test() {
    Run_Plot_Host.Draw_Segment = [this](std::size_t k, const Wire&) { Drawn.push_back(k); };
  }
  std::vector<std::size_t> Drawn;
};

TEST_F(Execute_Step_Test, Wires_of_a_step_run_in_table_order_wherever_they_stand) {
  Load({{2, 0.1}, {1, 0.2}, {2, 0.3}, {1, 0.4}, {2, 0.5}});
  std::int32_t step = 2;
  EXPECT_TRUE(Execute_Step(step, Move_And_Draw));
  EXPECT_THAT(Drawn, ElementsAre(0, 2, 4));
  EXPECT_DOUBLE_EQ(Machine.Position[1], 0.5);
  EXPECT_EQ(CNC_Controls.Text_Program_Messages.Text, "block");
  EXPECT_THAT(scripted.Pointers, ElementsAre(Mouse_Pointer::Busy, Mouse_Pointer::Normal));
}

TEST_F(Execute_Step_Test, Drawing_waits_for_nothing_and_moves_nothing) {
  Load({{1, 0.1, {}, {}, {}, 100, 3.0, std::int16_t{1}}, {1, 0.2}});
  std::int32_t step = 1;
  EXPECT_TRUE(Execute_Step(step, Draw_Only));
  EXPECT_THAT(Drawn, ElementsAre(0, 1));
  EXPECT_EQ(Machine.Position[1], 0);
  EXPECT_EQ(scripted.Now, 0);
  EXPECT_FALSE(Controller.Repeat_Step);
}

TEST_F(Execute_Step_Test, Outputs_act_on_records_without_motion) {
  Load({{1, 5, {}, {}, {}, 0, {}, {}, {2, 0, 1, 2, 1}, 0},
        {1, {}, {}, {}, {}, 0, {}, {}, {0, 1, 1, 1, 2}, 2}});
  std::int32_t step = 1;
  EXPECT_TRUE(Execute_Step(step, Move_And_Draw));
  EXPECT_EQ(Machine.Position[1], 0);  // Motion is not 1
  EXPECT_FALSE(Simulated_Machine.Outputs[1].On);
  EXPECT_TRUE(Simulated_Machine.Outputs[4].On);
  EXPECT_TRUE(Simulated_Machine.Outputs[5].On);
  EXPECT_EQ(Simulated_Machine.Outputs[1].Switchings, 2);
}

// A count above 0 marks the step to come back to, a count of 0 further down leads back to it.
TEST_F(Execute_Step_Test, A_repeat_runs_its_range_once_more_than_it_counts) {
  Load({{1, 0.1}, {2, 0.2, {}, {}, {}, 0, 2.0}, {3, 0.3}, {4, 0.4, {}, {}, {}, 0, 0.0}, {5, 0.5}});
  Command_CNC_Play_Click();
  EXPECT_THAT(Drawn, ElementsAre(0, 1, 2, 3, 2, 3, 2, 3, 4));
  EXPECT_EQ(Machine.CNCMode, CNC_Stopped);
}

TEST_F(Execute_Step_Test, A_dwell_lasts_as_long_as_it_says) {
  Load({{1, {}, {}, {}, {}, 1.5}});
  std::int32_t step = 1;
  EXPECT_TRUE(Execute_Step(step, Move_And_Draw));
  EXPECT_NEAR(static_cast<double>(scripted.Now), 1.5e9, 0.01e9);
  EXPECT_GT(scripted.Yields, 100);
}

TEST_F(Execute_Step_Test, The_aux_wait_wants_a_rising_edge) {
  Load({{1, 0.25, {}, {}, {}, 0, {}, std::int16_t{1}}});
  Force_Input(Auxiliary_Input, Input_Force::On);  // high before: waited out first
  std::vector<std::string> texts;
  scripted.On_Yield = [&, n = 0]() mutable {
    texts.push_back(Messages.Panel[1]);
    if (++n == 20) Force_Input(Auxiliary_Input, Input_Force::Off);
    if (n == 40) Force_Input(Auxiliary_Input, Input_Force::On);
    EXPECT_TRUE(n <= 41 || Half_Steps > 0);
  };
  std::int32_t step = 1;
  EXPECT_TRUE(Execute_Step(step, Move_And_Draw));
  EXPECT_EQ(texts.front(), "Waiting for Aux Input.");
  EXPECT_EQ(Messages.Panel[1], "");
  EXPECT_DOUBLE_EQ(Machine.Position[1], 0.25);
}

TEST_F(Execute_Step_Test, From_rest_is_used_up_by_the_first_wire_with_steps) {
  MachineSetup.Axis_Ramping = true;
  Load({{1, {}, {}, {}, {}, 0, {}, {}, {2, 1, 1, 1, 1}}, {2, 0.1}, {3, 0.2}});
  std::vector<double> starts;
  Run_Plot_Host.Draw_Segment = [&](std::size_t, const Wire&) {
    starts.push_back(Step_Engine.IPM_St);
  };
  Command_CNC_Play_Click();
  starts.push_back(Step_Engine.IPM_St);
  EXPECT_THAT(starts, ElementsAre(0, 0, 10, 60));
}

TEST_F(Execute_Step_Test, A_fault_ends_the_run_and_is_called_one) {
  Load({{1, 0.1}, {2, 0.2, {}, {}, {}, 0, 1e9}, {3, 0.3}});  // no count of repeats
  Command_CNC_Play_Click();
  EXPECT_EQ(Machine.CNCMode, CNC_Stopped);
  EXPECT_EQ(Messages.Panel[1], control_text::Ended_By_Failure);
  EXPECT_DOUBLE_EQ(Machine.Position[1], 0.1);
}

// --- Everything that ends a step -----------------------------------------------------------------

struct Ending_Row {
  const char* Name;
  std::function<void()> Act;
  const char* Text;
};
void Trip_Input() {
  Force_Input(EStop_Input, Input_Force::On);
}
const Ending_Row Ending_Rows[] = {
    {"Esc", [] { Application.EscFlag = true; }, "Stopped by ESC."},
    {"Stop", [] { Command_CNC_Stop_Click(); }, "Stopped by the operator."},
    {"EStop_button", [] { Command_EStop_Click(); }, "Stopped by the E-stop."},
    {"EStop_input", Trip_Input, "Stopped: the E-stop input is on."},
    {"Closing", [] { Application.Closing_Program = true; }, ""},
};

class Ending : public Execute_Step_Test, public ::testing::WithParamInterface<Ending_Row> {
 protected:
  void Expect_Ended() {
    EXPECT_EQ(Machine.CNCMode, CNC_Stopped);
    EXPECT_THAT(Messages.Panel[1], HasSubstr(GetParam().Text));
    EXPECT_FALSE(Anything_Moves());
    Expect_Position_True();
  }
};

TEST_P(Ending, Ends_a_dwell_and_nothing_follows) {
  Load({{1, 0.1}, {2, 0.5, {}, {}, {}, 1e9F}, {2, 0.6}});
  In_Yield(50, GetParam().Act);
  Command_CNC_Play_Click();
  EXPECT_LT(scripted.Now, 1'000'000'000);
  EXPECT_DOUBLE_EQ(Machine.Position[1], 0.1);
  Expect_Ended();
}

TEST_P(Ending, Ends_a_wait_for_an_input_that_never_comes) {
  for (const auto level : {Input_Force::Off, Input_Force::On}) {
    Force_Input(Auxiliary_Input, level);
    Load({{1, 0.1, {}, {}, {}, 0, {}, std::int16_t{1}}, {2, 0.2}});
    In_Yield(50, GetParam().Act);
    Command_CNC_Play_Click();
    EXPECT_EQ(Machine.Position[1], 0);
    Expect_Ended();
    if (Machine.EStop_Flag || Application.Closing_Program) break;
  }
}

TEST_P(Ending, Ends_the_chords_of_an_arc_between_two_wires_at_the_latest) {
  std::vector<Row> rows;
  for (int chord = 1; chord <= 40; ++chord) rows.push_back({1, chord * 0.1, chord * 0.05});
  Load(rows);
  In_Yield_After(500, GetParam().Act);
  Command_CNC_Play_Click();
  EXPECT_GT(Machine.Position[1], 0.4);
  EXPECT_LT(Machine.Position[1], 1.2);
  Expect_Ended();
  // What was not executed is not owed: the next run starts over from where the machine stands.
  if (!Machine.EStop_Flag && !Application.Closing_Program) {
    Force_Input(EStop_Input, Input_Force::Automatic);
    Command_CNC_Play_Click();
    EXPECT_NEAR(Machine.Position[1], 4, 1e-9);
    EXPECT_NEAR(Machine.Position[2], 2, 0.5 / 400);
    Expect_Position_True();
  }
}

TEST_P(Ending, Before_the_first_wire_switches_nothing_on) {
  Load({{1, {}, {}, {}, {}, 0, {}, {}, {2, 1, 1, 1, 1}, 0}, {2, 0.1}});
  Run_Plot_Host.Refresh = GetParam().Act;  // as the run begins
  Command_CNC_Play_Click();
  EXPECT_EQ(Simulated_Machine.Outputs[1].Switchings, 0);
  EXPECT_EQ(Half_Steps, 0);
  Expect_Ended();
}
INSTANTIATE_TEST_SUITE_P(Rows, Ending, ::testing::ValuesIn(Ending_Rows),
                         [](const auto& row) { return std::string(row.param.Name); });

}  // namespace
}  // namespace norvik
