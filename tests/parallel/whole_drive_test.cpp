// The drive on the simulated machine and the virtual clock: what left the computer is what was
// asked.
#include "parallel/backlash.h"
#include "parallel/drive_test.h"
#include "simulate/simulated_machine.h"
#include "simulate/virtual_clock.h"
#include "support/findings.h"
#include "support/reset.h"

#include <random>

namespace norvik {
namespace {

class Whole_Drive_Test : public testing::Test {
 protected:
  Whole_Drive_Test() {
    Set_Standard_Machine();
    Install_Virtual_Clock();
    Install_Simulated_Machine();
  }
  ~Whole_Drive_Test() override {
    Remove_Virtual_Clock();
    Reset_Parallel();
    Reset_Simulate();
  }

  // A machine without ends, so that any move fits.
  void Start_Machine() {
    Reset_Simulated_Machine();
    Simulated_Machine.Access_Time = 300;
    for (int axis = 1; axis <= Axis_Count; ++axis) {
      Simulated_Machine.Axes[axis].Settings.Limited = false;
      Simulated_Machine.Axes[axis].Settings.Top_Rate = 0;
      Simulated_Machine.Axes[axis].Settings.Direction_Setup = 0;
      Simulated_Machine.Inputs[axis].Zones = {};
      Settings_Changed(axis);
    }
    Idle_All_Outputs();
  }

  int Random(int from, int to) { return std::uniform_int_distribution(from, to)(Dice); }

  Step_Request Random_Move() {
    Step_Request request;
    for (int axis = 1; axis <= Axis_Count; ++axis) {
      const std::array<std::int32_t, 4> sizes{0, Random(1, 3), Random(1, 400), Random(1, 3000)};
      request.Steps[axis] = sizes[static_cast<std::size_t>(Random(0, 3))];
      request.Negative[axis] = Random(0, 1) == 1;
    }
    request.Start = Random(10, 900);
    request.Run = Random(100, 1500);
    request.End = Random(10, 900);
    request.No_Rate_Check = true;
    return request;
  }

  Scripted_Platform scripted;
  std::mt19937 Dice{4711};
};

// Every axis makes exactly the edges asked for, whatever the levels of its pins; the carriage
// stands where the position says; no delay is shorter than that of the cruise ceiling.
TEST_F(Whole_Drive_Test, Random_Moves) {
  std::int32_t shortest = 0;
  Platform.Delay_In_Period = {};
  Platform.Delay_Microseconds = [&](std::int32_t us) {
    shortest = std::min(shortest, us);
    Advance_Virtual_Clock(std::int64_t{us} * 1000);
  };
  for (int machine = 0; machine < 12; ++machine) {
    for (int slot = 1; slot <= 12; ++slot) {
      MachineSetup.Parallel_Output_Bit_Invert[slot] = Random(0, 1) == 1;
    }
    for (float& scale : MachineSetup.Axis_SPI) scale = static_cast<float>(Random(100, 4000));
    MachineSetup.Axis_SPI[1] = 1000;
    MachineSetup.Axis_Max_Feed_Rate.Fill(static_cast<float>(Random(200, 2000)));
    MachineSetup.Axis_Ramping = Random(0, 3) != 0;
    MachineSetup.Axis_Ramp_Rate = static_cast<std::int16_t>(Random(1, 15));
    Start_Machine();
    for (int move = 0; move < 20; ++move) {
      const Step_Request request = Random_Move();
      Indexed<std::int64_t, 1, 4> before;
      for (int a = 1; a <= 4; ++a) before[a] = Simulated_Machine.Axes[a].Edges;
      shortest = 1'000'000;
      const Move_End end = Step_Engine_Move(request);
      if (end == Move_End::No_Steps) continue;
      ASSERT_EQ(end, Move_End::Done);
      for (int a = 1; a <= 4; ++a) {
        EXPECT_EQ(Simulated_Machine.Axes[a].Edges - before[a], request.Steps[a]) << a;
      }
      EXPECT_GE(shortest, static_cast<std::int32_t>(
                              30'000'000 / (1000 * std::min(Step_Engine.Rn_Limit, 2000.0))) -
                              1);
    }
    for (int a = 1; a <= 4; ++a) {
      EXPECT_NEAR(Machine.Position[a], True_Position(a), 1e-6) << a;
      Machine.Position[a] = 0;
    }
    for (const auto& finding : Findings.List) ADD_FAILURE() << finding.Text;
  }
}

// Stops at random moments of a long chain of moves: no step is lost or doubled.
TEST_F(Whole_Drive_Test, Stops_Keep_Position_And_Machine_Together) {
  Start_Machine();
  int countdown = 0;
  Platform.Key_Down = [&](int) { return --countdown == 0; };
  for (int move = 0; move < 150; ++move) {
    countdown = Random(1, 3000);
    if (Random(0, 4) == 0) Machine.Jog_Stop_Request = false;
    if (Random(0, 4) == 0) Press_EStop(true);
    Application.EscFlag = false;
    Step_Engine_Move(Random_Move());
    Press_EStop(false);
    Machine.Jog_Stop_Request = true;
    for (int a = 1; a <= 4; ++a) ASSERT_NEAR(Machine.Position[a], True_Position(a), 1e-6) << move;
  }
}

// Three directions of approach to the end switches at which the program knows nothing: the guard
// stops the axis within the switch, far before the hard stop, and the way back is free.
TEST_F(Whole_Drive_Test, End_Switches_Stop_Each_Axis) {
  MachineSetup.Axis_Depth.Fill(2);
  for (int axis = 1; axis <= Axis_Count; ++axis) {
    for (const bool negative : {true, false}) {
      Machine.Position = {};
      Reset_Simulated_Machine();
      Idle_All_Outputs();
      Step_Request request;
      request.Start = request.Run = request.End = 600;
      request.Steps[axis] = 5000;
      request.Negative[axis] = negative;
      EXPECT_EQ(Step_Engine_Move(request), Move_End::Limit) << axis;
      EXPECT_NEAR(Machine.Position[axis], True_Position(axis), 1e-9);
      const auto& settings = Simulated_Machine.Axes[axis].Settings;
      const double border = negative ? settings.Travel_Low - settings.Overtravel / 2
                                     : settings.Travel_High + settings.Overtravel / 2;
      EXPECT_NEAR(True_Position(axis), border, 0.0021) << axis << negative;
      request.Negative[axis] = !negative;
      request.Steps[axis] = 500;
      EXPECT_EQ(Step_Engine_Move(request), Move_End::Done) << axis;
      EXPECT_EQ(Finding_Count(Finding_Kind::Hard_Stop), 0);
    }
  }
}

// With a play of five steps in the machine and in the setup, the carriage follows the position to a
// step for each reversal (a take-up is 2n + 1 toggles).
TEST_F(Whole_Drive_Test, Backlash_Take_Up_Meets_The_Play) {
  MachineSetup.Axis_Backlash_Enable = true;
  MachineSetup.Axis_Backlash.Fill(0.005f);
  Start_Machine();
  for (int a = 1; a <= 4; ++a) Simulated_Machine.Axes[a].Settings.Backlash = 0.005;
  for (int reversal = 1; reversal <= 6; ++reversal) {
    Step_Request request;
    request.Start = request.Run = request.End = 300;
    request.Steps = {{200, 100, 50, 0}};
    request.Negative.Fill(reversal % 2 == 1);
    Step_Engine_Move(request);
    for (int a = 1; a <= 4; ++a) {
      EXPECT_NEAR(Machine.Position[a], True_Position(a), 0.001 * reversal + 1e-9) << reversal;
    }
  }
}

// The virtual clock and the accesses give a move the time that its half steps were asked for.
TEST_F(Whole_Drive_Test, A_Move_Takes_Its_Time) {
  MachineSetup.Parallel_Time_Constant = 4;  // 13 accesses of 300 ns are 3.9 microseconds
  MachineSetup.Parallel_MotorEnable_Option = 1;
  Start_Machine();
  Step_Request request;
  request.Start = request.Run = request.End = 700;  // half steps of 42.857
  request.Steps[1] = 7000;
  Step_Engine_Move(request);
  const std::int64_t begin = Virtual_Clock.Now;
  Step_Engine_Move(request);
  EXPECT_NEAR(static_cast<double>(Virtual_Clock.Now - begin) / 1e9, 0.6, 0.0001);
}

}  // namespace
}  // namespace norvik
