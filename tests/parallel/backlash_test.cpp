// Crossing the play before a reversed move.
#include "parallel/backlash.h"

#include "parallel/drive_test.h"

namespace norvik {
namespace {

class Backlash_Test : public Drive_Test {
 protected:
  Backlash_Test() {
    MachineSetup.Axis_Backlash_Enable = true;
    MachineSetup.Axis_Backlash = {{0.0015f, 0.002f, 0, 0}};
    MachineSetup.Axis_SPI.Fill(1000);
    Drive_Host.Live_Feed = [] { return std::optional(300.0); };
    MachineSetup.LimitSwitchDisable = 1;
  }
  static Step_Request Negative(std::int32_t x, std::int32_t y) {
    Step_Request request = Move(x, y, 0, 0, 300);
    request.Negative = {{true, true, true, true}};
    return request;
  }
};

struct Toggle_Row {
  float Scale, Backlash;
  std::int64_t Toggles;
};

TEST_F(Backlash_Test, Toggles_Are_Two_N_And_One) {
  for (const Toggle_Row& row : {Toggle_Row{1000, 0.002f, 5},
                                {1000, 0.0015f, 4},
                                {1000, 0.0013f, 3},
                                {1000, 0, 1},
                                {1000, -0.001f, 0},
                                {4000, 0.25f, 2001}}) {
    MachineSetup.Axis_SPI[1] = row.Scale;
    MachineSetup.Axis_Backlash[1] = row.Backlash;
    EXPECT_EQ(Backlash_Toggles(1), row.Toggles) << row.Backlash;
  }
}

TEST_F(Backlash_Test, Corrected_Toggles_Are_Whole_Steps) {
  MachineSetup.Backlash_Even = true;
  for (const Toggle_Row& row : {Toggle_Row{1000, 0.002f, 4},
                                {1000, 0.0013f, 2},
                                {1000, 0.0004f, 0},
                                {1000, 0, 0},
                                {1000, -0.001f, 0},
                                {4000, 0.25f, 2000}}) {
    MachineSetup.Axis_SPI[1] = row.Scale;
    MachineSetup.Axis_Backlash[1] = row.Backlash;
    EXPECT_EQ(Backlash_Toggles(1), row.Toggles) << row.Backlash;
  }
}

// Where the carriage stands is told by the rising edges of the step pin. As stated, the pin of Y is
// left high by five toggles, so that a step of the move behind makes no edge of its own.
TEST_F(Backlash_Test, Corrected_Take_Up_Leaves_The_Step_Pin_As_It_Was) {
  for (const bool even : {false, true}) {
    MachineSetup.Backlash_Even = even;
    Forget_Driven_Machine();
    scripted.Ports[888] = 0;
    for (const bool negative : {true, false}) {
      Step_Request request = Move(0, 1, 0, 0, 300);
      request.Negative = {{negative, negative, negative, negative}};
      EXPECT_EQ(Step_Engine_Move(request), Move_End::Done);
      const bool high = (scripted.Ports[888] & 4) != 0;
      EXPECT_EQ(high, !even && negative) << "even " << even << ", negative " << negative;
    }
  }
}

// X (four toggles) then Y (five), each with its motor on for the time, at the live feed of 100
// microseconds; then the move. Positions count the move alone.
TEST_F(Backlash_Test, Reversal_Takes_Up_Before_The_Move) {
  EXPECT_EQ(Step_Engine_Move(Negative(1, 1)), Move_End::Done);
  EXPECT_EQ(Writes(888),
            "0=2 0=3 100=2 200=3 300=2 "                  // X: direction, toggles
            "400=10 400=14 500=10 600=14 700=10 800=14 "  // Y; its pin stays high
            "900=14 900=14 "                              // directions of the move
            "900=15 900=11 1000=10 1000=14 ");            // X rises, Y falls, X falls, Y rises
  EXPECT_EQ(Writes(890), "0=1 400=0 400=2 900=0 900=1 900=3 1100=2 1100=0 1100=0 1100=0 ");
  EXPECT_NEAR(Machine.Position[1], -0.001, 1e-12);
  EXPECT_NEAR(Machine.Position[2], -0.001, 1e-12);
  EXPECT_TRUE(Step_Engine.Last_Dir[1]);
  scripted.Delays.clear();
  Step_Engine_Move(Negative(1, 0));
  EXPECT_EQ(scripted.Delays.size(), 2u) << "same direction: no take-up";
}

TEST_F(Backlash_Test, Off_Or_Resting_Axes_Take_Nothing_Up) {
  MachineSetup.Axis_Backlash_Enable = false;
  Step_Engine_Move(Negative(1, 0));
  EXPECT_EQ(scripted.Delays.size(), 2u);
}

struct Cut_Row {
  const char* Event;
  Move_End End;
};

// Stops act between two toggles, and no step of the move is made. The rest of the play is taken up
// by the next move: together as many toggles as without the stop.
TEST_F(Backlash_Test, Stop_Cuts_The_Take_Up_And_The_Rest_Follows) {
  for (const Cut_Row& row : {Cut_Row{"escape", Move_End::Escape},
                             {"estop", Move_End::EStop},
                             {"stop", Move_End::Stopped},
                             {"closing", Move_End::Stopped}}) {
    Step_Engine = {};
    Machine = {};
    Machine.CNCMode = CNC_Running;
    Application = {};
    Timing.Yield_Time.reset();  // the first toggle of X yields
    scripted.Delays.clear();
    scripted.On_Yield = [&] {
      const std::string event = row.Event;
      if (event == "escape") scripted.Press(key::Escape);
      if (event == "estop") Machine.EStop_Flag = true;
      if (event == "stop") Machine.CNCMode = CNC_Stopped;
      if (event == "closing") Application.Closing_Program = true;
    };
    EXPECT_EQ(Step_Engine_Move(Negative(3, 3)), row.End) << row.Event;
    EXPECT_EQ(scripted.Delays.size(), 1u) << row.Event;
    EXPECT_EQ(Machine.Position[1], 0);
    EXPECT_EQ(scripted.Ports[890], 0) << "motors off";
    EXPECT_FALSE(Step_Engine.Last_Dir[1]);
    EXPECT_FALSE(Step_Engine.Last_Dir[2]);

    scripted.On_Yield = {};
    Application = {};
    Machine.EStop_Flag = false;
    Step_Engine_Move(Negative(3, 3));
    EXPECT_EQ(scripted.Delays.size(), 4 + 5 + 6u) << row.Event;
    EXPECT_TRUE(Step_Engine.Last_Dir[1]);
  }
}

// Cut after one of four toggles, then back: one toggle leads to where the nut came from.
TEST_F(Backlash_Test, Going_Back_After_A_Cut_Undoes_Its_Part) {
  scripted.On_Yield = [&] { scripted.Press(key::Escape); };
  EXPECT_EQ(Step_Engine_Move(Negative(3, 0)), Move_End::Escape);
  scripted.On_Yield = {};
  scripted.Delays.clear();
  Application = {};
  EXPECT_EQ(Step_Engine_Move(Move(3, 0, 0, 0)), Move_End::Done);
  EXPECT_EQ(scripted.Delays.size(), 1 + 6u);
  scripted.Delays.clear();
  Step_Engine_Move(Move(3, 0, 0, 0));
  EXPECT_EQ(scripted.Delays.size(), 6u);
}

// The motor timer runs in the yields of a long take-up and leaves the motor on, also with the
// option that switches resting motors off.
TEST_F(Backlash_Test, A_Yield_In_The_Take_Up_Keeps_The_Motor_On) {
  MachineSetup.Parallel_MotorEnable_Option = 0;
  MachineSetup.Axis_Backlash[1] = 3;
  int ticks = 0;
  scripted.On_Yield = [&] {
    if (Machine.Position[1] != 0) return;
    ++ticks;
    Motor_Timer_Tick();
    EXPECT_EQ(scripted.Ports[890] & 1, 1);
  };
  EXPECT_EQ(Step_Engine_Move(Negative(1, 0)), Move_End::Done);
  EXPECT_GT(ticks, 1);
  EXPECT_EQ(scripted.Ports[890] & 1, 0);
}

}  // namespace
}  // namespace norvik
