// The machine behind a board: switches, hard stops, encoders; and what the
// board notices.
#include "board_fixture.h"
#include "simulate/board/board_options.h"

#include <cmath>

#include <gmock/gmock.h>

namespace norvik {
namespace {

class Pelmar_Machine : public Board_Test {
 protected:
  void SetUp() override {
    Power_Up(Board_Generation::Pelmar_V5);
    Board.Axes[1].Settings.Low_Switch = -100;
    Board.Axes[1].Settings.High_Switch = 1000;
    Board.Axes[1].Settings.Hysteresis = 4;
  }
  Board_Axis& X() { return Board.Axes[1]; }
  // Encoders of X enabled, two steps a count, an error of `most` steps.
  void Watch_X(std::uint32_t most, std::uint8_t mode = 128 + 64 + 1) {
    Bytes payload{mode, 1, 1, 1};
    for (int i = 0; i < 4; ++i) Append_Number(payload, 2000, 3);
    for (int i = 0; i < 4; ++i) Append_Number(payload, most, 3);
    payload.push_back(0);
    Ask(44, payload);
  }
  int Limits() { return Ask(11)[26]; }
};

TEST_F(Pelmar_Machine, A_Switch_Stops_Everything_On_The_Step_Where_It_Is_Reached) {
  Move({.X = 5000, .Y = 2500});
  Move({.X = -5000});
  Wait_Until_Idle();
  EXPECT_EQ(Counter_Of(Board, 1), 1000);
  EXPECT_EQ(Counter_Of(Board, 2), 500);
  EXPECT_EQ(Limits(), 16);  // the second switch of X
  EXPECT_EQ(Move({.X = 1}), 21);
  EXPECT_EQ(Move({.X = -3}), 10);  // away from it
  Wait_Until_Idle();
  Ask(24);
  EXPECT_EQ(Limits(), 16);  // still on by its hysteresis
  Move({.X = -10});
  Wait_Until_Idle();
  EXPECT_EQ(Limits(), 16);
  Ask(24);
  EXPECT_EQ(Limits(), 0);
  Ask(21);  // without limits
  EXPECT_EQ(Move({.X = 100}), 10);
  Wait_Until_Idle();
  EXPECT_EQ(Counter_Of(Board, 1), 1087);
  EXPECT_EQ(Limits(), 0);
}

TEST_F(Pelmar_Machine, A_Switch_May_Stop_Its_Axis_Alone) {
  Board.Settings.Limit_Stops_All = false;
  Move({.X = -300, .Y = 600});
  Move({.Y = 100});
  Wait_Until_Idle();
  EXPECT_EQ(Counter_Of(Board, 1), -100);
  EXPECT_EQ(Counter_Of(Board, 2), 700);
  EXPECT_EQ(Limits(), 1);
}

TEST_F(Pelmar_Machine, A_Hand_On_A_Switch_Stops_A_Move_Under_Way) {
  Move({.X = 900});
  Wait(400 * Test_Millisecond);
  ASSERT_TRUE(Set_Board_Input(Board, "high-x", 1));
  Wait(1);
  EXPECT_FALSE(In_Motion(Board));
  EXPECT_EQ(Counter_Of(Board, 1), 400);
  EXPECT_FALSE(Set_Board_Input(Board, "high-q", 1));
}

TEST_F(Pelmar_Machine, Beyond_A_Hard_Stop_The_Motor_Goes_On_Alone) {
  X().Settings.High_Stop = 1010;
  Ask(21);
  Move({.X = 1500});
  Wait(1200 * Test_Millisecond);
  EXPECT_EQ(Counter_Of(Board, 1), 1200);
  EXPECT_EQ(Carriage_Of(Board, 1), 1010);
  Wait_Until_Idle();
  Move({.X = -100});
  Wait_Until_Idle();
  EXPECT_EQ(Counter_Of(Board, 1), 1400);
  EXPECT_EQ(Carriage_Of(Board, 1), 910);
  EXPECT_TRUE(Noticed(Board_Finding_Kind::Hard_Stop, 1));
}

TEST_F(Pelmar_Machine, Home_And_Aux_Inputs_Are_Told) {
  X().Settings.Home_To = 0;
  Board.Axes[4].Settings.Home_From = 5;
  EXPECT_EQ(Ask(11)[27], 4);
  Set_Board_Aux(Board, Input_State::On);
  Set_Board_Aux(Board, Input_State::Off);
  Place_Board_Carriage(Board, 4, 10);
  Place_Board_Carriage(Board, 1, 1);
  EXPECT_EQ(Ask(11)[27], 64 + 1);  // the flag has kept the edge
  Ask(24);
  Set_Board_Aux(Board, Input_State::On);
  EXPECT_EQ(Ask(11)[27], 64 + 32 + 1);
}

TEST_F(Pelmar_Machine, Encoders_Agree_Until_The_Carriage_Slips) {
  Watch_X(20);
  Move({.X = 500});
  Wait_Until_Idle();
  EXPECT_EQ(Encoder_Of(Board, 1), 250);
  EXPECT_EQ(Ask(45)[30], 0);
  ASSERT_EQ(Add_Board_Fault(Board, "now slip=X:10"), "");
  EXPECT_EQ(Encoder_Of(Board, 1), 250);
  Move({.X = -400});
  Wait_Until_Idle();
  // A tenth is lost: more than 20 steps apart after 201.
  EXPECT_EQ(Counter_Of(Board, 1), 500 - 201);
  EXPECT_NEAR(Encoder_Error_Of(Board, 1), -20.1, 0.01);
  EXPECT_EQ(Ask(45)[30], 128 + 1);
  EXPECT_EQ(Move({.Y = 10}), 21);  // in fault
  Ask(18, Bytes(13));
  Ask(41, Bytes(13));
  Ask(24);
  EXPECT_EQ(Ask(45)[30], 0);
  EXPECT_EQ(Move({.Y = 10}), 10);
}

TEST_F(Pelmar_Machine, An_Encoder_That_Does_Not_Stop_Only_Says_So) {
  Watch_X(20, 128 + 1);
  X().Settings.Slip = 0.5;
  Move({.X = 300});
  Wait_Until_Idle();
  EXPECT_EQ(Counter_Of(Board, 1), 300);
  EXPECT_EQ(Ask(45)[30], 128 + 1);
  EXPECT_EQ(Move({.X = 10}), 10);
}

TEST_F(Pelmar_Machine, A_Lag_Is_There_While_The_Axis_Moves) {
  Watch_X(20);
  X().Settings.Lag = 12;
  Move({.X = 500});
  Wait(100 * Test_Millisecond);
  EXPECT_NEAR(Encoder_Error_Of(Board, 1), 12, 1e-9);
  Wait_Until_Idle();
  EXPECT_NEAR(Encoder_Error_Of(Board, 1), 0, 1e-9);
  X().Settings.Lag = 30;
  Move({.X = -100});
  Wait_Until_Idle();
  EXPECT_EQ(Counter_Of(Board, 1), 500);
}

// --- Counting
// ----------------------------------------------------------------------------------

// A divider that was cut lets an axis run over on a long move; meant steps are
// exact.
TEST_F(Pelmar_Machine, Truncated_Dividers_Show_And_Can_Be_Left_Out) {
  const Test_Move move{.Y = 9'000'000, .Z = 8'999'999, .Rate = 60'000};
  Move(move);
  Wait_Until_Idle();
  EXPECT_EQ(Counter_Of(Board, 2), 9'000'000);
  EXPECT_EQ(Counter_Of(Board, 3),
            9'000'000);  // 9e6 * 10000 / 8999999 = 10000.001, cut to 10000
  EXPECT_TRUE(Noticed(Board_Finding_Kind::Counter_Wrap, 2));
  Board.Settings.Exact_Count = true;
  const std::int64_t z = Counter_Of(Board, 3);
  Move({.Y = 5000, .Z = -3333});
  Wait_Until_Idle();
  EXPECT_EQ(Counter_Of(Board, 3), z - 3333);
}

// Entries follow each other without a gap, and the sum of their times is kept
// over thousands.
TEST_F(Pelmar_Machine, Entries_Join_Without_A_Pause) {
  constexpr int moves = 3000;
  for (int i = 0; i < moves; ++i) ASSERT_EQ(Move({.Y = i % 2 == 0 ? 7 : -3, .Rate = 700}), 10);
  const std::int64_t begin = Board.Now;
  Wait(7001 * Test_Millisecond);
  // 10 ms and 3/700 s in turn: 490 pairs in 7 s, and half a step.
  EXPECT_EQ(Counter_Of(Board, 2), 490 * 4);
  while (In_Motion(Board)) Follow_Board(Board, *Next_Board_Event(Board));
  EXPECT_NEAR(static_cast<double>(Board.Now - begin) / 1e9, moves / 2 * (10.0 / 700), 1e-5);
  EXPECT_EQ(Counter_Of(Board, 2), moves / 2 * 4);
}

TEST_F(Pelmar_Machine, Notices_What_A_Machine_Would_Suffer_From) {
  X().Settings.Max_Rate = 1500;
  X().Settings.Max_Jump = 400;
  Move({.X = 100, .Rate = 2000});
  Wait_Until_Idle();
  EXPECT_TRUE(Noticed(Board_Finding_Kind::Too_Fast, 1));
  EXPECT_TRUE(Noticed(Board_Finding_Kind::Rate_Jump, 1));
  Ask(10, Move_Payload(Board.Generation, {.Y = 10, .Rate = 50}));
  EXPECT_TRUE(Noticed(Board_Finding_Kind::Unprepared_Axis, 2));
  EXPECT_FALSE(Noticed(Board_Finding_Kind::Unprepared_Axis, 1));
  EXPECT_TRUE(Noticed(Board_Finding_Kind::Rate_Too_Low));
  Board.Settings.Unprepared = Unprepared_Steps::Refuse;
  EXPECT_EQ(Ask(10, Move_Payload(Board.Generation, {.Y = 10}))[1], 21);
  Board.Settings.Unprepared = Unprepared_Steps::Ignore_Axis;
  Wait_Until_Idle();
  Ask(10, Move_Payload(Board.Generation, {.Y = 10}));
  Wait_Until_Idle();
  EXPECT_EQ(Counter_Of(Board, 2), 10);
  Move({.Y = 10, .Up = 8, .Down = 9});
  EXPECT_TRUE(Noticed(Board_Finding_Kind::Ramps_Too_Long));
}

TEST_F(Pelmar_Machine, A_Stream_That_Runs_Dry_Is_Noticed_And_An_End_Is_Not) {
  for (int i = 0; i < 5; ++i) Move({.Y = 10});
  Wait_Until_Idle();
  Move({.Y = 10});  // a new beginning
  EXPECT_FALSE(Noticed(Board_Finding_Kind::Ran_Empty));
  for (int i = 0; i < 5; ++i) Move({.Y = 10});
  Wait(70 * Test_Millisecond);
  Move({.Y = 10});
  EXPECT_TRUE(Noticed(Board_Finding_Kind::Ran_Empty));
  EXPECT_EQ(Board.Counts.Smallest_Queue, 0);
}

// --- Options
// -----------------------------------------------------------------------------------

TEST(Board_Options_Test, Options_And_Machines_Are_Taken_By_Name) {
  Board_Line line;
  line.Board = Make_Board(Board_Generation::Dravon_V4);
  EXPECT_EQ(Set_Board_Option(line, "usb_latency=16"), "");
  EXPECT_EQ(line.Usb_Latency, 16 * Test_Millisecond);
  EXPECT_EQ(Set_Board_Option(line, "pace=off"), "");
  EXPECT_EQ(line.Byte_Time, 0);
  EXPECT_EQ(Set_Board_Option(line, "limit=stop_axis"), "");
  EXPECT_FALSE(line.Board.Settings.Limit_Stops_All);
  EXPECT_EQ(Set_Board_Option(line, "x.high_switch=500"), "");
  EXPECT_EQ(line.Board.Axes[1].Settings.High_Switch, 500);
  EXPECT_EQ(Set_Board_Option(line, "x.high_switch="), "");
  EXPECT_FALSE(line.Board.Axes[1].Settings.High_Switch);
  for (const char* wrong : {"pace=maybe", "pace", "q.lag=1", "lag=1", "x.lag=", "capacity=0",
                            "capacity=99999", "fly=1"}) {
    EXPECT_NE(Set_Board_Option(line, wrong), "") << wrong;
  }
  EXPECT_TRUE(Take_Board_Preset(line, "router"));
  EXPECT_TRUE(line.Board.Axes[3].Settings.Low_Switch);
  EXPECT_FALSE(line.Board.Axes[4].Settings.Low_Switch);
  EXPECT_FALSE(Take_Board_Preset(line, "lathe"));
}

}  // namespace
}  // namespace norvik
