// What happens to carriages beside their steps: weight, material, a gantry askew, hands, the trail.
#include "simulate/carriage_watch.h"

#include "machine_fixture.h"
#include "simulate/trail.h"

namespace norvik {
namespace {

using testing::Contains;
using testing::HasSubstr;

// Z and A beside X, on a third card without enables of their own; Z's enable is on the control
// register.
class Carriage_Watch_Test : public Simulated_Machine_Test {
 protected:
  static constexpr std::uint16_t Third = 956;
  Carriage_Watch_Test() {
    Wire_Output(7, Third, 0);
    Wire_Output(8, Third, 1);
    Wire_Output(9, Control, 2);
    Wire_Output(10, Third, 2);
    Wire_Output(11, Third, 3);
    Wire_Input(3, 5);
    Start();
    Write(Control, 5);
    Wait(10);
    for (const int axis : {3, 4}) Simulated_Machine.Axes[axis].Settings.Top_Rate = 0;
  }
  // Steps of Z or A, on the bits from `bit` on.
  static void Step_Third(int bit, int count, bool negative = false) {
    const int direction = negative ? 2 << bit : 0;
    Write(Third, direction);
    Wait(10);
    for (int i = 0; i < count; ++i) {
      Write(Third, direction | 1 << bit);
      Wait(500);
      Write(Third, direction);
      Wait(500);
    }
  }
  static void Step_Z(int count, bool negative = false) { Step_Third(0, count, negative); }
  static void Step_A(int count, bool negative = false) { Step_Third(2, count, negative); }
  static void Enable_Z(bool on) { Write(Control, on ? 5 : 1); }
  static Simulated_Axis& Z() { return Simulated_Machine.Axes[3]; }
};

// --- Weight --------------------------------------------------------------------------------------

// 6 units a minute are 10 steps a second.
TEST_F(Carriage_Watch_Test, A_Heavy_Z_Sinks_While_Its_Motor_Is_Off) {
  Z().Settings.Sink_Rate = 6;
  Step_Z(200);
  Wait(1'000'000);
  EXPECT_DOUBLE_EQ(True_Position(3), 2) << "held";
  Enable_Z(false);
  Wait(50'000);
  View_Simulated_Machine();
  EXPECT_EQ(Finding_Count(Finding_Kind::Sank), 0) << "less than a step";
  Wait(950'000);
  EXPECT_TRUE(View_Simulated_Machine().Axes[3].Sinking);
  EXPECT_NEAR(True_Position(3), 1.9, 1e-9);
  Enable_Z(true);
  Wait(1'000'000);
  EXPECT_NEAR(True_Position(3), 1.9, 1e-9);
  EXPECT_EQ(Z().Commanded, 200);
  EXPECT_EQ(Z().Motor, 190);
  EXPECT_EQ(Z().Lost, 10);
  EXPECT_EQ(First_Text(Finding_Kind::Sank),
            "Z: sank while its motor was off: keep the motors on, or fit a brake");
  Enable_Z(false);
  Wait(2'000'000);
  Enable_Z(true);
  EXPECT_EQ(Finding_Count(Finding_Kind::Sank, 3), 2) << "once each time the motor lets go";
}

TEST_F(Carriage_Watch_Test, A_Sinking_Z_Presses_Its_Switch_And_Ends_At_The_Hard_Stop) {
  Z().Settings.Sink_Rate = 60;
  Simulated_Machine.Inputs[3].Zones = {Switch_Zone{-100, -2}, std::nullopt};
  Settings_Changed(3);
  Enable_Z(false);
  const auto pressed = [] { return (Read(Status) & 32) == 0; };
  Wait(1'900'000);
  EXPECT_FALSE(pressed());
  Wait(200'000);
  EXPECT_TRUE(pressed()) << "seen by the read itself, without a step";
  Wait(60'000'000);
  View_Simulated_Machine();
  EXPECT_NEAR(True_Position(3), -5.2, 1e-9);
}

// The E-stop takes the power of the motors, and with it their hold.
TEST_F(Carriage_Watch_Test, What_Holds_A_Heavy_Z) {
  Z().Settings.Sink_Rate = 60;
  const auto sinks = [](const char* why, bool expected) {
    const double before = View_Simulated_Machine().Axes[3].Position;
    Wait(100'000);
    EXPECT_EQ(View_Simulated_Machine().Axes[3].Position < before, expected) << why;
  };
  Press_EStop(true);
  sinks("E-stop that only tells the program", false);
  Set_EStop_Cuts_Power(true);
  sinks("power cut", true);
  Press_EStop(false);
  sinks("power back", false);
  Enable_Z(false);
  Place_Carriage(3, 1);
  sinks("put down by hand", false);
  Enable_Z(true);
  Enable_Z(false);
  sinks("lifted by its motor, then let go", true);
  Z().Settings.Sink_Rate = -60;
  const double before = View_Simulated_Machine().Axes[3].Position;
  Wait(100'000);
  EXPECT_GT(View_Simulated_Machine().Axes[3].Position, before) << "positive is downwards here";
}

// --- Material ------------------------------------------------------------------------------------

TEST_F(Carriage_Watch_Test, Cutting_With_The_Spindle_Off) {
  const auto cuts = [] { return Finding_Count(Finding_Kind::Cut_Without_Spindle); };
  Step_Z(20, true);
  Step(5);
  EXPECT_EQ(cuts(), 0) << "no material given";
  Step_Z(20);
  Simulated_Machine.Material_Top = 0;
  for (int axis = 1; axis <= 4; ++axis) Settings_Changed(axis);
  Step(50);
  Step_Z(10, true);
  EXPECT_EQ(cuts(), 0) << "plunging alone";
  Step(1);
  EXPECT_EQ(cuts(), 1) << "the first step sideways";
  Step(300);
  EXPECT_EQ(cuts(), 1) << "one cut";
  Write(Second, 1);
  Step(50);
  Write(Second, 0);
  Step(1);
  EXPECT_EQ(cuts(), 2) << "spindle switched off in the cut";
  Step_Z(20);
  Step(50);
  EXPECT_EQ(cuts(), 2) << "above the material";
  // The top is one of the application's Z: after zeroing Z higher up the tool is above 0 again.
  Step_Z(20, true);
  Machine.Position[3] = 0.5;
  Align_With_Application();
  Step(50);
  EXPECT_EQ(cuts(), 2);
}

// --- Slave pair ----------------------------------------------------------------------------------

TEST_F(Carriage_Watch_Test, A_Gantry_That_Goes_Askew_Is_Told_At_The_First_Step_Too_Many) {
  MachineSetup.Slave_A_Axis_to = "X Axis";
  View_Simulated_Machine();
  const auto askew = [] { return Finding_Count(Finding_Kind::Skew, 4); };
  for (int i = 0; i < 100; ++i) {
    Step(1);
    Step_A(1);
  }
  EXPECT_EQ(askew(), 0);
  Step_A(Simulated_Machine.Skew_Limit);
  EXPECT_EQ(askew(), 0) << "at the limit";
  EXPECT_EQ(View_Simulated_Machine().Skew, 20);
  Step_A(1);
  EXPECT_EQ(askew(), 1);
  EXPECT_EQ(First_Text(Finding_Kind::Skew),
            "A: more than 20 steps away from X, which it is slaved to: the gantry is askew");
  Step(41);
  EXPECT_EQ(askew(), 1) << "came back through straight, to 20 steps behind";
  Step(1);
  EXPECT_EQ(askew(), 2) << "askew the other way";
  Place_Where_Believed();
  Step(20);
  EXPECT_EQ(askew(), 2) << "put straight by hand";
}

// A lost step of one motor is what racks a gantry: the carriages count, not the commands.
TEST_F(Carriage_Watch_Test, Lost_Steps_Of_One_Motor_Rack_The_Gantry) {
  MachineSetup.Slave_A_Axis_to = "X Axis";
  Reset_Simulated_Machine();
  EXPECT_EQ(Simulated_Machine.Axes[4].Settings.Travel_High,
            Simulated_Machine.Axes[1].Settings.Travel_High);
  Simulated_Machine.Axes[4].Settings.Top_Rate = 0;
  Write(Control, 4);  // X without its motor
  for (int i = 0; i < 30; ++i) {
    Step(1);
    Step_A(1);
  }
  EXPECT_EQ(Finding_Count(Finding_Kind::Skew), 1);
}

// --- Hands ---------------------------------------------------------------------------------------

TEST_F(Carriage_Watch_Test, Carriages_Are_Put_By_Hand) {
  Step(100);
  Machine.Position[1] = 4;
  Align_With_Application();  // given to the axis by the operator
  Machine.Position[1] = 4.5;
  Place_Where_Believed();
  EXPECT_DOUBLE_EQ(True_Position(1), 1.5);
  EXPECT_EQ(View_Simulated_Machine().Axes[1].Steps_Apart, 0);
  Place_Carriage(1, 7);
  EXPECT_DOUBLE_EQ(True_Position(1), 7);
  Place_Carriage(1, 99);
  EXPECT_DOUBLE_EQ(True_Position(1), 10.2) << "at the hard stop";
  EXPECT_TRUE(Simulated_Machine.Inputs[1].Pressed);
}

TEST_F(Carriage_Watch_Test, Cleared_Findings_Come_Back_While_They_Last) {
  MachineSetup.Parallel_Input_Bit[0] = "99";
  View_Simulated_Machine();
  Simulated_Machine.Material_Top = 1;
  Settings_Changed(1);
  Step(3);
  EXPECT_EQ(Finding_Count(Finding_Kind::Cut_Without_Spindle), 1);
  Clear_Findings();
  EXPECT_THAT(Findings_Text(), testing::ElementsAre(HasSubstr("No E-stop input")))
      << "the pin map is still wrong";
  Step(1);
  EXPECT_EQ(Finding_Count(Finding_Kind::Cut_Without_Spindle), 1);
}

TEST_F(Carriage_Watch_Test, Faults_In_Words) {
  Force_Input(1, Input_Force::On);
  Set_Input_Fault(1, Input_Fault::Wire_Broken);
  Set_Input_Noise(1, true);
  Set_Input_Bounce(1, true);
  EXPECT_EQ(Words_Of_Faults(View_Simulated_Machine().Inputs[1]),
            "held on, wire broken, bounces, noise");
  Force_Input(1, Input_Force::Automatic);
  Set_Input_Fault(1, Input_Fault::None);
  Set_Input_Noise(1, false);
  Set_Input_Bounce(1, false);
  EXPECT_EQ(Words_Of_Faults(View_Simulated_Machine().Inputs[1]), "");
}

// --- Trail ---------------------------------------------------------------------------------------

TEST_F(Carriage_Watch_Test, The_Trail_Follows_The_Tool) {
  Clear_Trail();
  Step(100);
  Write(Second, 1);
  Step(100, true);
  Step_Z(50, true);
  ASSERT_GT(Trail.Point_Count, 60) << "a point at least every three steps or so";
  const Trail_Point& last = Trail_Point_At(Trail.Point_Count - 1);
  EXPECT_NEAR(last.X, 0, 0.04);
  EXPECT_NEAR(last.Z, -0.5, 0.04);
  EXPECT_TRUE(last.Spindle_On);
  float farthest = 0;
  for (std::int64_t n = 0; n < Trail.Point_Count; ++n) {
    const Trail_Point& point = Trail_Point_At(n);
    farthest = std::max(farthest, point.X);
    EXPECT_EQ(point.Jump, n == 0) << n;
    EXPECT_TRUE(point.Spindle_On || farthest == point.X) << "off on the way out only";
  }
  EXPECT_FLOAT_EQ(farthest, 1) << "the switching itself is a point";
  Place_Carriage(1, 5);
  Step(10);
  EXPECT_EQ(std::count_if(Trail.Points.begin(), Trail.Points.end(),
                          [](const Trail_Point& point) { return point.Jump; }),
            2);
}

// A long run keeps the newest points in the same memory.
TEST_F(Carriage_Watch_Test, The_Trail_Is_Bounded) {
  Clear_Trail();
  for (int i = 0; i < 40; ++i) Step(900, i % 2 == 1);
  EXPECT_GT(Trail.Point_Count, std::int64_t{Trail_State::Most_Points});
  EXPECT_EQ(First_Trail_Point(), Trail.Point_Count - std::int64_t{Trail_State::Most_Points});
}

TEST_F(Carriage_Watch_Test, Places_Where_Steps_Were_Lost_Are_Marked_Once) {
  Settings().Travel_High = 0.5;
  Settings().Overtravel = 0;
  Settings_Changed(1);
  Step(80);
  ASSERT_EQ(Trail.Mark_Count, 1);
  EXPECT_EQ(Trail_Mark_At(0).Kind, Mark_Kind::Hard_Stop);
  EXPECT_NEAR(Trail_Mark_At(0).X, 0.5, 1e-6);
  Step(10, true);
  Settings().Top_Rate = 500;
  Step(20, true);
  ASSERT_EQ(Trail.Mark_Count, 2);
  EXPECT_EQ(Trail_Mark_At(1).Kind, Mark_Kind::Stall);
  EXPECT_EQ(Trail_Mark_At(1).Axis, 1);
}

// --- A port that does not read back --------------------------------------------------------------

struct Write_Row {
  const char* Why;
  int Before, Value;
  bool Stale, Two_Functions;
};

// Outputs 1 to 3 on bits 0 to 2 of the second card. Reads answer 0, so a program that switches one
// bit on and knows nothing else writes just that bit.
TEST_F(Carriage_Watch_Test, Writes_Of_Stale_Bits) {
  for (const Write_Row& row :
       {Write_Row{"on, the others off as they were", 0b000, 0b001, false, false},
        {"off", 0b001, 0b000, false, false},
        {"output 2 on puts output 1 off", 0b001, 0b010, true, false},
        {"output 2 on again puts output 1 off", 0b011, 0b010, true, false},
        {"one off of two on", 0b011, 0b000, true, false},
        {"a program that keeps its own memory", 0b001, 0b011, false, false},
        {"two on in one write", 0b000, 0b011, false, true}}) {
    Start();
    Write(Second, row.Before);
    Simulated_Machine.Output_Read_Back = Read_Back::Zero;
    Findings = {};
    Write(Second, row.Value);
    EXPECT_EQ(Finding_Count(Finding_Kind::Stale_Write) > 0, row.Stale) << row.Why;
    EXPECT_EQ(Finding_Count(Finding_Kind::Two_Functions) > 0, row.Two_Functions) << row.Why;
  }
}

}  // namespace
}  // namespace norvik
