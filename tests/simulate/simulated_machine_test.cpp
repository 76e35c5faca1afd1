// The machine seen from its port: every test writes and reads bytes as a program would.
#include "machine_fixture.h"

namespace norvik {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;

TEST_F(Simulated_Machine_Test, Steps_Count_On_Rising_Edges_In_Their_Direction) {
  Step(250);
  EXPECT_DOUBLE_EQ(True_Position(1), 2.5);
  Step(50, true);
  EXPECT_DOUBLE_EQ(True_Position(1), 2);
  Write(Data, 2);  // again the same level: no edge
  EXPECT_EQ(X().Edges, 300);
  MachineSetup.Parallel_Output_Bit_Invert[2] = true;
  Start();
  Step(50);
  EXPECT_DOUBLE_EQ(True_Position(1), -0.2 - 0.0) << "until the hard stop";
  EXPECT_EQ(Finding_Count(Finding_Kind::Hard_Stop, 1), 30);
}

TEST_F(Simulated_Machine_Test, Disabled_Axis_Stands_Still) {
  Write(Control, 0);
  Step(3);
  EXPECT_EQ(True_Position(1), 0);
  EXPECT_EQ(X().Lost, 3);
  EXPECT_EQ(First_Text(Finding_Kind::Step_While_Disabled), "X: a step while the axis is disabled");
  EXPECT_EQ(Finding_Count(Finding_Kind::Step_While_Disabled), 3);
  EXPECT_THAT(Findings_Text(), Contains(HasSubstr("(3 times)")));
}

// Late, and only with `Strict` lost.
TEST_F(Simulated_Machine_Test, Driver_Limits) {
  for (const bool strict : {false, true}) {
    Start();
    Findings = {};
    Settings().Strict = strict;
    Write(Data, 2);  // direction, and the step one microsecond later
    Wait(1);
    Write(Data, 3);
    EXPECT_EQ(First_Text(Finding_Kind::Direction_Before_Step),
              "X: direction changed before a step by 1.0 us (at least 2.0 us)");
    EXPECT_EQ(X().Commanded, strict ? 0 : -1);
    Write(Data, 2);  // high for no time
    EXPECT_EQ(Finding_Count(Finding_Kind::Short_Pulse), 1);
    Wait(50);
    Write(Data, 3);
    Write(Data, 1);
    EXPECT_EQ(Finding_Count(Finding_Kind::Direction_After_Step), 1);
  }
}

TEST_F(Simulated_Machine_Test, Top_Rate_Loses_Steps_Until_The_Motor_Catches_On) {
  Settings().Top_Rate = 2000;
  Settings().Pull_In_Rate = 500;
  Step(100, false, 600);
  EXPECT_EQ(X().Lost, 0);
  Step(100, false, 400);  // 2500 steps/s; the first interval is still slow
  EXPECT_THAT(First_Text(Finding_Kind::Too_Fast), HasSubstr("2500.0 steps/s is too fast"));
  EXPECT_EQ(X().Lost, 99);
  Step(10, false, 600);  // above the pull-in rate: it stands
  EXPECT_EQ(X().Lost, 109);
  Step(10, false, 2500);
  EXPECT_EQ(X().Lost, 110);
  EXPECT_EQ(X().Commanded, 220);
  EXPECT_DOUBLE_EQ(True_Position(1), 1.1);
}

struct Ramp_Row {
  const char* Why;
  double From, To;  // steps/s
  double Per_Step;  // steps/s more in each step
  bool Follows;
};

// a = 10000 steps/s2 from a pull-in rate of 500: v dv per step allows dv = a / v, 20 at 500 and 5
// at 2000.
TEST_F(Simulated_Machine_Test, Acceleration) {
  Settings().Pull_In_Rate = 500;
  Settings().Acceleration = 10'000;
  for (const Ramp_Row& row : {Ramp_Row{"gentle", 400, 2000, 4, true},
                              {"start at speed", 1500, 1500, 0, false},
                              {"start below pull-in", 450, 450, 0, true},
                              {"too steep", 400, 2000, 40, false}}) {
    Place_Carriage(1, 0);
    Findings = {};
    X().Lost = 0;
    Wait(100'000);
    double rate = row.From;
    for (int i = 0; i < 600; ++i, rate = std::min(rate + row.Per_Step, row.To)) {
      Step(1, false, static_cast<std::int32_t>(1e6 / rate) - 10);
    }
    EXPECT_EQ(X().Lost == 0, row.Follows) << row.Why;
    EXPECT_EQ(Finding_Count(Finding_Kind::Stall) == 0, row.Follows) << row.Why;
  }
}

TEST_F(Simulated_Machine_Test, Carriage_Lies_Behind_The_Motor_By_The_Play) {
  Settings().Backlash = 0.025;  // two and a half steps
  struct Row {
    int Steps;
    double Carriage;
  };
  for (const Row& row :
       {Row{10, 10}, {-1, 10}, {-1, 10}, {-1, 9.5}, {-4, 5.5}, {2, 5.5}, {1, 6}, {5, 11}}) {
    Step(std::abs(row.Steps), row.Steps < 0);
    EXPECT_DOUBLE_EQ(X().Carriage, row.Carriage) << row.Steps;
  }
  EXPECT_EQ(X().Motor, 11);
}

TEST_F(Simulated_Machine_Test, Hard_Stop_Loses_Steps) {
  Settings().Travel_High = 1;
  Settings().Overtravel = 0.05;
  Settings_Changed(1);
  Step(120);
  EXPECT_NEAR(True_Position(1), 1.05, 1e-9);
  EXPECT_EQ(X().Lost, 15);
  EXPECT_EQ(X().Commanded, 120);
  EXPECT_EQ(First_Text(Finding_Kind::Hard_Stop), "X: ran into the end stop: steps are lost");
  Step(10, true);
  EXPECT_NEAR(True_Position(1), 0.95, 1e-9);
}

// --- Inputs --------------------------------------------------------------------------------------

constexpr int Switch_Bit = 8, EStop_Bit = 128;
bool Low(int mask) {
  return (Platform.Port_Read(Status) & mask) == 0;
}

// On from 2.00 to 3.00 with a hysteresis of 0.1: on at 2.00 going up, off above 3.10; on again
// at 3.00 going down, off below 1.90.
TEST_F(Simulated_Machine_Test, Switch_Zone_With_Hysteresis) {
  Simulated_Machine.Inputs[1].Zones = {Switch_Zone{2, 3}, std::nullopt};
  Simulated_Machine.Inputs[1].Hysteresis = 0.1;
  Settings_Changed(1);
  std::vector<int> changes;  // carriage in steps at each change of the level
  bool before = Low(Switch_Bit);
  for (int i = 0; i < 800; ++i) {
    Step(1, i >= 400);
    if (Low(Switch_Bit) == before) continue;
    before = !before;
    changes.push_back(static_cast<int>(X().Carriage));
  }
  EXPECT_THAT(changes, ElementsAre(200, 311, 300, 189));
}

struct Wiring_Row {
  Contact Wiring;
  bool Invert;  // of the setup
  Input_Fault Fault;
  bool Low_Released, Low_Pressed;
};

TEST_F(Simulated_Machine_Test, Levels_By_Wiring_And_Fault) {
  using enum Contact;
  using enum Input_Fault;
  for (const Wiring_Row& row : {Wiring_Row{Matches_Setup, false, None, false, true},
                                {Matches_Setup, true, None, true, false},
                                {Normally_Open, true, None, false, true},
                                {Normally_Closed, false, None, true, false},
                                {Normally_Open, false, Wire_Broken, false, false},
                                {Normally_Closed, true, Wire_Broken, false, false},
                                {Matches_Setup, false, Stuck_On, true, true},
                                {Matches_Setup, true, Stuck_On, false, false},
                                {Matches_Setup, false, Stuck_Off, false, false}}) {
    MachineSetup.Parallel_Input_Bit_Invert[0] = row.Invert;
    Start();
    Simulated_Machine.Inputs[0].Wiring = row.Wiring;
    Set_Input_Fault(0, row.Fault);
    EXPECT_EQ(Low(EStop_Bit), row.Low_Released);
    Press_EStop(true);
    EXPECT_EQ(Low(EStop_Bit), row.Low_Pressed);
  }
}

TEST_F(Simulated_Machine_Test, Bounce_Ends_At_The_New_Level) {
  Simulated_Machine.Inputs[0].Bounce = 1'000'000;
  Press_EStop(true);
  std::string levels;
  for (int i = 0; i < 12; ++i, Wait(100)) levels += Low(EStop_Bit) ? '_' : '~';
  EXPECT_EQ(levels, "__~~__~~____");
}

TEST_F(Simulated_Machine_Test, Noise_Pulses_And_The_Operators_Finger) {
  Simulated_Machine.Inputs[1].Noise_Period = 1'000'000;
  Simulated_Machine.Inputs[1].Noise_Width = 100'000;
  Input_Changed(1);
  Wait(1000 - static_cast<int>(Virtual_Clock.Now / 1000 % 1000));
  int low = 0;
  for (int i = 0; i < 100; ++i, Wait(50)) low += Low(Switch_Bit) ? 1 : 0;
  EXPECT_EQ(low, 10);
  Simulated_Machine.Inputs[1].Noise_Period = 0;
  Force_Input(1, Input_Force::On);
  EXPECT_TRUE(Low(Switch_Bit));
  Force_Input(1, Input_Force::Off);
  EXPECT_FALSE(Low(Switch_Bit));
  Press_Auxiliary(true);
  EXPECT_TRUE(Low(16));
}

TEST_F(Simulated_Machine_Test, EStop_May_Cut_The_Power) {
  Press_EStop(true);
  Step(5);
  EXPECT_EQ(X().Lost, 0);
  Simulated_Machine.EStop_Cuts_Power = true;
  Step(5);
  EXPECT_EQ(X().Lost, 5);
  EXPECT_TRUE(View_Simulated_Machine().Power_Cut);
  EXPECT_EQ(Finding_Count(Finding_Kind::Step_Without_Power, 1), 5);
}

// --- Outputs and ports ---------------------------------------------------------------------------

TEST_F(Simulated_Machine_Test, Spindle_Runs_Up_And_Coasts) {
  Write(Second, 0b00001);
  Wait(1'000'000);
  EXPECT_NEAR(View_Simulated_Machine().Spindle_Speed, 0.5, 1e-9);
  Wait(2'000'000);
  EXPECT_NEAR(View_Simulated_Machine().Spindle_Speed, 1, 1e-9);
  Write(Second, 0b01000);  // spindle off and flood on in one write
  EXPECT_EQ(Finding_Count(Finding_Kind::Two_Functions), 1);
  EXPECT_EQ(Finding_Count(Finding_Kind::Coolant_Without_Spindle), 1);
  Wait(2'000'000);
  EXPECT_NEAR(View_Simulated_Machine().Spindle_Speed, 0.5, 1e-9);
  Write(Second, 0b00010);
  EXPECT_EQ(Finding_Count(Finding_Kind::Spindle_Reversed), 1);
  Write(Second, 0b00011);
  EXPECT_EQ(Finding_Count(Finding_Kind::Both_Spindle_Directions), 1);
  EXPECT_NEAR(View_Simulated_Machine().Outputs[1].On_Seconds, 3, 1e-9);
  EXPECT_EQ(View_Simulated_Machine().Outputs[4].Switchings, 2);
}

TEST_F(Simulated_Machine_Test, What_Ports_Answer) {
  Write(Data, 0b1010'0000);
  EXPECT_EQ(Read(Data), 0b1010'0000);
  EXPECT_EQ(Read(1000), 255) << "a floating bus";
  Write(Data + 12, 1);  // the dummy address
  EXPECT_EQ(Finding_Count(Finding_Kind::Unmapped_Write), 0);
  Write(1000, 1);
  EXPECT_EQ(Finding_Count(Finding_Kind::Unmapped_Write), 1);
  Write(Status, 0);  // inputs cannot be written
  EXPECT_TRUE((Read(Status) & EStop_Bit) != 0);
}

// Pins of a changed setup are wired as soon as they are used.
TEST_F(Simulated_Machine_Test, Follows_A_Changed_Setup) {
  Step(100);
  MachineSetup.Axis_SPI[1] = 200;
  Wire_Output(1, 956, 0);
  Write(956, 1);
  EXPECT_DOUBLE_EQ(True_Position(1), 1.005);
  EXPECT_EQ(Finding_Count(Finding_Kind::Unmapped_Write), 0);
}

struct Setup_Row {
  std::function<void()> Change;
  const char* Text;
};

TEST_F(Simulated_Machine_Test, Faults_Of_The_Pin_Map_Are_Told) {
  const auto input = [](int slot, int port, const char* bit) {
    MachineSetup.Input_Port[slot] = port;
    MachineSetup.Parallel_Input_Bit[slot] = bit;
  };
  EXPECT_THAT(Findings.List, testing::IsEmpty());
  for (const Setup_Row& row :
       {Setup_Row{[] { Wire_Output(13, Data, 1); }, "X direction and output 1"},
        {[] { Wire_Output(14, Data + 12, 2); }, "would reach output 2"},
        {[] { Wire_Output(4, Data, 2); }, "Y has a step pin but no direction pin"},
        {[] { Wire_Output(17, Status, 0); }, "status register"},
        {[&] { input(2, 1, "3"); }, "never accessed"},
        {[&] { input(3, Status, "9"); }, "has the bit \"9\""},
        {[&] { input(0, Status, "99"); }, "No E-stop input"}}) {
    const Machine_Setup before = MachineSetup;
    row.Change();
    Reset_Simulated_Machine();
    EXPECT_THAT(Findings_Text(), Contains(HasSubstr(row.Text)));
    MachineSetup = before;
  }
}

TEST_F(Simulated_Machine_Test, View_Shows_What_The_Application_Believes) {
  Step(100, false, 1000);
  Machine.Position[1] = 1.03;
  const Simulated_Machine_View view = View_Simulated_Machine();
  EXPECT_EQ(view.Axes[1].Steps_Apart, 3);
  EXPECT_NEAR(view.Axes[1].Rate, 600, 1e-6);
  EXPECT_TRUE(view.Axes[1].Enabled);
  EXPECT_TRUE(view.Virtual_Time);
  Wait(100'000);
  EXPECT_EQ(View_Simulated_Machine().Axes[1].Rate, 0);
  Align_With_Application();
  EXPECT_EQ(View_Simulated_Machine().Axes[1].Steps_Apart, 0);
  Step(2);
  EXPECT_EQ(View_Simulated_Machine().Axes[1].Steps_Apart, -2);
}

// A travel that does not hold the carriage is moved so that it does.
TEST_F(Simulated_Machine_Test, Travel_Holds_The_Carriage) {
  Machine.Position = {{-3, 25, 0, 0, 0, 0}};
  Reset_Simulated_Machine();
  EXPECT_EQ(Simulated_Machine.Axes[1].Settings.Travel_Low, -3);
  EXPECT_EQ(Simulated_Machine.Axes[2].Settings.Travel_High, 25);
  EXPECT_EQ(True_Position(2), 25);
}

}  // namespace
}  // namespace norvik
