// Targets to steps, and the trace of the moves.
#include "control/manual/panel_jog.h"
#include "control_fixture.h"
#include "core/error_log.h"

#include <fstream>

namespace norvik {
namespace {

using ::testing::HasSubstr;

class Machine_Move_Test : public Control_Test {
 protected:
  static Move_End Move(Nullable x, Nullable y = {}, Nullable z = {}, Nullable a = {}) {
    Move_Order order;
    order.Target = {{x, y, z, a}};
    order.Start = order.Run = order.End = 60;
    return Machine_Move(order);
  }
};

TEST_F(Machine_Move_Test, Rounding_never_adds_up) {
  Free_Axes();
  for (int i = 1; i <= 300; ++i) Move(i / 3.0, -i / 7.0);
  EXPECT_NEAR(Machine.Position[1], 100, 0.5 / 400 + 1e-9);
  EXPECT_NEAR(Machine.Position[2], -300 / 7.0, 0.5 / 400 + 1e-9);
  EXPECT_EQ(Controller.Step_Counter[1], 40000);
  Expect_Position_True();
}

struct Steps_Row {
  double Delta;  // target minus position, in steps of 1/400
  std::int64_t Steps;
};
TEST_F(Machine_Move_Test, Halves_go_to_the_even_neighbour) {
  const Steps_Row rows[] = {{0.5, 0}, {1.5, 2}, {2.5, 2}, {2.51, 3}, {-1.5, 2}, {0, 0}};
  for (const auto& row : rows) {
    Machine.Position = Machine.Theoretical_Pos = {};
    const std::int64_t before = Simulated_Machine.Axes[1].Edges;
    Move(row.Delta / 400);
    EXPECT_EQ(Simulated_Machine.Axes[1].Edges - before, row.Steps) << row.Delta;
  }
}

TEST_F(Machine_Move_Test, A_move_of_nothing_counts_as_negative_on_X_and_Y_only) {
  Move(1, 1, 1, 1);
  EXPECT_FALSE(Controller.Last_Move_Dir[1] || Controller.Last_Move_Dir[3]);
  Move(1, 1, 1, 1);
  EXPECT_TRUE(Controller.Last_Move_Dir[1] && Controller.Last_Move_Dir[2]);
  EXPECT_FALSE(Controller.Last_Move_Dir[3] || Controller.Last_Move_Dir[4]);
}

TEST_F(Machine_Move_Test, A_slaved_A_takes_the_target_of_its_master) {
  MachineSetup.Slave_A_Axis_to = "Y Axis";
  Move(0.1, 0.5, {}, 3);
  EXPECT_DOUBLE_EQ(Machine.Position[4], 0.5);
  Move(0.2);
  EXPECT_DOUBLE_EQ(Machine.Position[4], 0.5);
  Expect_Position_True();
}

TEST_F(Machine_Move_Test, Absent_targets_stay_and_the_EStop_moves_nothing) {
  EXPECT_EQ(Move({}, {}, {}, {}), Move_End::No_Steps);
  Machine.EStop_Flag = true;
  EXPECT_EQ(Move(1), Move_End::EStop);
  EXPECT_EQ(Simulated_Machine.Axes[1].Edges, 0);
}

TEST_F(Machine_Move_Test, Faults_in_a_target_are_logged_and_the_next_move_works) {
  EXPECT_EQ(Move(std::numeric_limits<double>::infinity()), Move_End::Failed);
  EXPECT_EQ(Move(1e300), Move_End::Failed);
  EXPECT_THAT(Read_Whole_File(Application.ErrorFile), HasSubstr("Machine_Move_Error # 6"));
  EXPECT_EQ(Move(0.5), Move_End::Done);
  Expect_Position_True();
}

TEST_F(Machine_Move_Test, An_axis_without_a_step_pin_is_told_once_for_each_setup) {
  const auto told = [](const std::string& axis) {
    return std::ranges::count(Messages.MessageLog,
                              axis + std::string(control_text::Has_No_Step_Pin));
  };
  Free_Axes();
  MachineSetup.Parallel_Output_Bit[Step_Slot(2)] = "99";
  MachineSetup.Parallel_Output_Bit[Step_Slot(4)] = "99";
  Move(1, 0, 0, 0);
  EXPECT_EQ(told("Y") + told("A"), 0);  // no steps for them
  Move(0, 1);
  EXPECT_EQ(told("Y"), 1);
  EXPECT_THAT(Messages.Panel[1], HasSubstr("Y has no step pin"));
  Move(0, 2);
  At_Half_Step(10, [] { Jog_MouseUp(4, 1); });
  Jog_MouseDown(4, 1);
  EXPECT_THAT(Messages.Panel[1], HasSubstr("A has no step pin"));
  Move(0, 3, 0, 1);
  EXPECT_EQ(told("Y"), 1);
  EXPECT_EQ(told("A"), 1);
  EXPECT_EQ(told("X"), 0);
  Forget_Operations();  // another setup
  Messages = {};
  Move(0, 4);
  EXPECT_EQ(told("Y"), 1);
}

TEST_F(Machine_Move_Test, Every_move_is_traced_and_a_blocked_trace_stops_nothing) {
  Move_Trace.Path.reset();  // the usual file
  Move(0.5, {}, -0.25);
  Machine.EStop_Flag = true;
  Move({}, 1);
  Machine.EStop_Flag = false;
  EXPECT_EQ(Read_Whole_File((Folder / "TestFile.csv").string()),
            "0.5,#NULL#,-0.25,#NULL#,60,60,60,1,1,1,1,1\r\n"
            "#NULL#,1,#NULL#,#NULL#,60,60,60,1,1,1,1,1\r\n");
  Move_Trace.Path = (Folder / "missing" / "trace.csv").string();
  EXPECT_EQ(Move(1), Move_End::Done);
  EXPECT_EQ(Move(2), Move_End::Done);
  const std::string log = Read_Whole_File(Application.ErrorFile);
  EXPECT_EQ(log.find("trace"), log.rfind("move trace") + 5) << "reported once";
}

TEST_F(Machine_Move_Test, A_trace_keeps_within_its_limit) {
  Log_Limits.Trace = 1000;
  Move_Trace.Path = (Folder / "bounded.csv").string();
  for (int i = 0; i < 50; ++i) Move(0.001 * i);
  EXPECT_LT(Read_Whole_File(*Move_Trace.Path).size(), 1100U);
  EXPECT_GE(Read_Whole_File((Folder / "bounded.1.csv").string()).size(), 1000U);
}

// However a move is cut short, the next one starts from where the machine is.
TEST_F(Machine_Move_Test, A_cut_move_resynchronises) {
  At_Half_Step(101, [this] { scripted.Press(key::Escape); });
  EXPECT_EQ(Move(1, 0.5), Move_End::Escape);
  EXPECT_LT(Machine.Position[1], 0.2);
  Expect_Position_True();
  EXPECT_EQ(Controller.Step_Counter[1], std::llround(Machine.Position[1] * 400));
  EXPECT_EQ(Move(1, 0.5), Move_End::Done);
  EXPECT_NEAR(True_Position(1), 1, 0.5 / 400);
}

}  // namespace
}  // namespace norvik
