// Moves worked out by hand, compared with the recorded writes and delays.
#include "parallel/step_engine.h"

#include "core/operation.h"
#include "drive/drive_status.h"
#include "parallel/drive_test.h"

namespace norvik {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

using Step_Engine_Test = Drive_Test;

// Two steps of all axes: all pins in each half step, in the order X, Y, Z, A; directions and
// enables before the first edge, all four enables off at the end.
TEST_F(Step_Engine_Test, Equal_Axes_Toggle_In_Every_Half_Step) {
  Step_Request request = Move(2, 2, 2, 2);
  request.Negative = {{true, false, false, true}};
  EXPECT_EQ(Step_Engine_Move(request), Move_End::Done);
  EXPECT_EQ(Writes(888),
            "0=2 0=2 0=2 0=130 "                // directions of X and A
            "0=131 0=135 0=151 0=215 "          // all step pins rise
            "50=214 50=210 50=194 50=130 "      // fall
            "100=131 100=135 100=151 100=215 "  // rise
            "150=214 150=210 150=194 150=130 ");
  EXPECT_EQ(Writes(890), "0=1 0=3 0=7 0=15 200=14 200=12 200=8 200=0 ");
  EXPECT_THAT(scripted.Delays, ElementsAre(50, 50, 50, 50));
  EXPECT_EQ(Machine.Position.Items, (std::array<double, 6>{-0.002, 0.002, 0.002, -0.002, 0, 0}));
  EXPECT_EQ(Step_Engine.StepSkip.Items, (std::array<double, 4>{1, 1, 1, 1}));
}

// The accesses of one half step: the four switches, the read-back of outputs 1 to 4, the E-stop,
// then a read and a write for each pin.
TEST_F(Step_Engine_Test, Order_Of_Accesses_In_An_Iteration) {
  Step_Engine_Move(Move(1, 1, 0, 0));
  const std::string guard = "R889 R889 R889 R889 R632 R632 R632 R632 ", estop = "R889 ";
  const std::string toggles = "R888 W888 R888 W888 ";
  EXPECT_EQ(Accesses, "R888 W888 R888 W888 R890 W890 R890 W890 " +  // directions, enables
                          guard + estop + toggles + guard + estop + toggles +
                          "R890 W890 R890 W890 R890 W890 R890 W890 ");
  Accesses.clear();
  MachineSetup.LimitSwitchDisable = 1;
  MachineSetup.Parallel_Input_Bit[EStop_Input] = "99";
  MachineSetup.Parallel_MotorEnable_Option = 1;
  Step_Engine_Move(Move(1, 0, 0, 0));
  EXPECT_EQ(Accesses, "R888 W888 R890 W890 R888 W888 R888 W888 ");
}

TEST_F(Step_Engine_Test, Minor_Axis_Gets_Its_Share) {
  EXPECT_EQ(Step_Engine_Move(Move(100, 33, 0, 0)), Move_End::Done);
  Stop_Port_Recorder();
  std::vector<std::int64_t> half_steps;  // in which Y toggles, from 1
  std::uint8_t before = 0;
  for (const Port_Write_Record& record : Written) {
    if (record.Port != 888) continue;
    if (((record.Value ^ before) & 4) != 0) half_steps.push_back(record.Time / 50'000 + 1);
    before = record.Value;
  }
  ASSERT_EQ(half_steps.size(), 66u);  // 33 rising edges
  for (std::size_t j = 1; j <= 66; ++j) {
    // The j-th multiple of 100 / 33, rounded up: 4, 7, 10, 13, ...
    EXPECT_EQ(half_steps[j - 1], static_cast<std::int64_t>((100 * j + 32) / 33)) << j;
  }
  EXPECT_NEAR(Machine.Position[2], 0.033, 1e-12);
  EXPECT_DOUBLE_EQ(Step_Engine.StepSkip[2], 100.0 / 33);
  EXPECT_EQ(Step_Engine.StepSkip[3], 201);  // never reached
}

// Z has four times the scale of X: 600 IPM of Z are half steps of 12.5 microseconds. As stated they
// last 50 like those of X, and Z runs at 150. The longest axis times a move of several.
TEST_F(Step_Engine_Test, Delays_Go_By_X_Or_By_The_Leading_Axis) {
  MachineSetup.Axis_SPI[3] = 4000;
  for (const bool corrected : {false, true}) {
    MachineSetup.Axis_Scale_Delay = corrected;
    for (const auto& move : {Move(0, 0, 1, 0), Move(1, 0, 2, 0), Move(2, 0, 1, 0)}) {
      scripted.Delays.clear();
      EXPECT_EQ(Step_Engine_Move(move), Move_End::Done);
      const bool by_z = corrected && move.Steps[3] > move.Steps[1];
      EXPECT_THAT(scripted.Delays, testing::Each(by_z ? 12 : 50));
    }
  }
  MachineSetup.Axis_SPI[1] = 0;  // then X need not have a scale
  EXPECT_EQ(Step_Engine_Move(Move(0, 0, 1, 0)), Move_End::Done);
  MachineSetup.Axis_Scale_Delay = false;
  EXPECT_EQ(Step_Engine_Move(Move(0, 0, 1, 0)), Move_End::Failed);
}

// Half steps last 500000 / IPM microseconds at 60 steps per unit.
struct Ramp_Row {
  const char* Why;
  std::int32_t Steps;
  double Start, Run, End;
  float Axis_Max;
  std::vector<double> Speeds;  // of each half step
  float Up, Down;
};

class Ramp_Test : public Drive_Test, public testing::WithParamInterface<Ramp_Row> {};

TEST_P(Ramp_Test, Speed_Of_Each_Half_Step) {
  const Ramp_Row& row = GetParam();
  MachineSetup.Axis_SPI.Fill(60);
  MachineSetup.Axis_Ramping = true;
  MachineSetup.Axis_Ramp_Rate = 10;  // 0.1 IPM a half step
  MachineSetup.Axis_Max_Feed_Rate.Fill(row.Axis_Max);
  Step_Request request = Move(row.Steps, 0, 0, 0);
  request.Start = row.Start;
  request.Run = row.Run;
  request.End = row.End;
  EXPECT_EQ(Step_Engine_Move(request), Move_End::Done);
  std::vector<double> speeds;
  for (const std::int32_t delay : scripted.Delays) {
    speeds.push_back(std::round(500'000.0 / delay * 1000) / 1000);
  }
  EXPECT_EQ(speeds, row.Speeds) << row.Why;
  EXPECT_FLOAT_EQ(Step_Engine.RampUp_Val, row.Up);
  EXPECT_FLOAT_EQ(Step_Engine.RampDN_Val, row.Down);
}

INSTANTIATE_TEST_SUITE_P(
    Rows, Ramp_Test,
    testing::Values(Ramp_Row{"ramps do not meet: the ninth increase is the last, 1.9 is cruise",
                             15,
                             1,
                             2,
                             1,
                             99,
                             {1,   1.1, 1.2, 1.3, 1.4, 1.5, 1.6, 1.7, 1.8, 1.9,
                              1.9, 1.9, 1.9, 1.9, 1.9, 1.9, 1.9, 1.9, 1.9, 1.9,
                              1.9, 1.8, 1.7, 1.6, 1.5, 1.4, 1.3, 1.2, 1.1, 1},
                             10,
                             20},
                    Ramp_Row{"too short: both ramps are cut to the middle",
                             4,
                             1,
                             2,
                             1,
                             99,
                             {1, 1.1, 1.2, 1.3, 1.3, 1.2, 1.1, 1},
                             4,
                             4},
                    Ramp_Row{"no ramps between equal speeds", 2, 2, 2, 2, 99, {2, 2, 2, 2}, 0, 4},
                    Ramp_Row{"only down", 3, 2, 2, 1.8, 99, {2, 2, 2, 2, 2, 1.9}, 0, 4},
                    Ramp_Row{"overlapping ramps cancel out where both act",
                             4,
                             1,
                             1.6,
                             1,
                             99,
                             {1, 1.1, 1.2, 1.2, 1.2, 1.2, 1.1, 1},
                             6,
                             2},
                    Ramp_Row{"an axis limit below the start holds from the first half step",
                             2,
                             3,
                             4,
                             3,
                             1.5f,
                             {1.5, 1.5, 1.5, 1.5},
                             -15,
                             19}));

// X leads at its own limit; Y is within its limit and does not count.
TEST_F(Step_Engine_Test, Axis_Limit_Takes_The_Limit_Itself) {
  MachineSetup.Axis_Max_Feed_Rate = {{400, 100, 9, 9}};
  Step_Engine_Move(Move(100, 10, 0, 0, 500));
  EXPECT_EQ(Step_Engine.Rn_Limit, 400);
  Step_Engine_Move(Move(100, 30, 0, 0, 500));  // Y would run at 150: the whole move goes at 100
  EXPECT_EQ(Step_Engine.Rn_Limit, 100);
  EXPECT_EQ(Step_Engine.IPM_Rn, 100);
}

TEST_F(Step_Engine_Test, Live_Feed_Acts_Inside_A_Move_Without_Ramps) {
  double live = 600;
  Drive_Host.Live_Feed = [&] { return std::optional(live); };
  scripted.On_Yield = [&] { live = 300; };  // in the first monitor call, after two half steps
  MachineSetup.Axis_Max_Feed_Rate.Fill(375);
  Step_Engine_Move(Move(3, 0, 0, 0));
  EXPECT_THAT(scripted.Delays, ElementsAre(80, 80, 80, 100, 100, 100));
}

TEST_F(Step_Engine_Test, Outputs_Change_First_And_Without_Steps) {
  Step_Request request = Move(0, 0, 0, 0);
  request.Out = {{2, 0, 1, 2, 7}};
  scripted.Ports[632] = 0b00110;
  EXPECT_EQ(Step_Engine_Move(request), Move_End::No_Steps);
  EXPECT_EQ(Accesses, "R632 W632 R632 W632 R632 W632 ");  // no enable, nothing else
  EXPECT_EQ(scripted.Ports[632], 0b01101);
  EXPECT_EQ(scripted.Yields, 0);
}

TEST_F(Step_Engine_Test, End_Far_From_The_Asked_Speed_Is_Reported) {
  int marks = 0;
  Drive_Host.Mark_Rate_Error = [&] { ++marks; };
  MachineSetup.Axis_Ramping = true;
  MachineSetup.Axis_Ramp_Rate = 1;
  Step_Request request = Move(5, 0, 0, 0, 100);
  request.End = 98.4;
  request.Start = 98.3;  // 0.1 is gained and lost on the way: 0.1 from 98.3, more than 1.5 from 96
  Step_Engine_Move(request);
  EXPECT_EQ(marks, 0);
  request.End = 96;
  Step_Engine_Move(request);
  EXPECT_EQ(marks, 1);
  EXPECT_EQ(scripted.Beeps, 1);
  request.No_Rate_Check = true;
  Step_Engine_Move(request);
  EXPECT_EQ(scripted.Beeps, 1);
}

// --- Stops ---------------------------------------------------------------------------------------

// An event that a handler or the machine brings at the n-th half step (counted by the E-stop
// reads).
struct Stop_Row {
  const char* Event;  // "escape", "flag", "input", "release", "closing"
  int Half_Step;
  int Half_Steps_Made;
  Move_End End;
  bool Stops_Run;
};

class Stop_Test : public Drive_Test, public testing::WithParamInterface<Stop_Row> {
 protected:
  void Bring(const std::string& event) {
    if (event == "escape") scripted.Press(key::Escape);
    if (event == "flag") Machine.EStop_Flag = true;
    if (event == "input") scripted.Ports[889] = 255 - 128;
    if (event == "release") Machine.Jog_Stop_Request = false;
    if (event == "closing") Application.Closing_Program = true;
  }
};

TEST_P(Stop_Test, Ends_The_Move_Where_It_Stands) {
  const Stop_Row& row = GetParam();
  int reads = 0;
  On_Read = [&](std::uint16_t port) {  // five reads of 889 a half step; the first is at its top
    if (port == 889 && ++reads == 5 * row.Half_Step - 4) Bring(row.Event);
  };
  EXPECT_EQ(Step_Engine_Move(Move(10, 5, 0, 0)), row.End);
  EXPECT_EQ(scripted.Delays.size(), static_cast<std::size_t>(row.Half_Steps_Made));
  EXPECT_NEAR(Machine.Position[1], (row.Half_Steps_Made + 1) / 2 / 1000.0, 1e-12);
  EXPECT_EQ(Stops > 0, row.Stops_Run);
  EXPECT_EQ(scripted.Ports[890], 0) << "motors off";
  EXPECT_TRUE(Machine.Jog_Stop_Request);
  EXPECT_EQ(Application.EscFlag, row.End == Move_End::Escape);
  EXPECT_FALSE(Runs(Operation::Move));
  EXPECT_FALSE(Pins.Axis_Stepping[1]);
}

INSTANTIATE_TEST_SUITE_P(
    Rows, Stop_Test,
    testing::Values(
        // ESC is looked at after every odd half step.
        Stop_Row{"escape", 1, 1, Move_End::Escape, true},
        Stop_Row{"escape", 2, 3, Move_End::Escape, true},
        Stop_Row{"escape", 20, 20, Move_End::Done, false},
        // The E-stop acts before the next pin moves.
        Stop_Row{"flag", 1, 0, Move_End::EStop, true},
        Stop_Row{"flag", 2, 1, Move_End::EStop, true},
        Stop_Row{"flag", 11, 10, Move_End::EStop, true},
        Stop_Row{"input", 1, 0, Move_End::EStop, true},
        Stop_Row{"input", 2, 1, Move_End::EStop, true},
        Stop_Row{"input", 20, 19, Move_End::EStop, true},
        // A release ends it in the true phase: the pins of the major axis are high.
        Stop_Row{"release", 1, 1, Move_End::Released, false},
        Stop_Row{"release", 2, 1, Move_End::Released, false},
        Stop_Row{"release", 3, 3, Move_End::Released, false},
        Stop_Row{"release", 20, 19, Move_End::Released, false},
        Stop_Row{"closing", 4, 3, Move_End::Stopped, false}));

// The pin stays where the stop left it and the bit memory with it: no step is lost or doubled.
TEST_F(Step_Engine_Test, Next_Move_After_A_Release_Makes_All_Its_Steps) {
  Machine.Jog_Stop_Request = false;
  EXPECT_EQ(Step_Engine_Move(Move(3, 0, 0, 0)), Move_End::Released);
  EXPECT_EQ(scripted.Ports[888], 1);
  EXPECT_EQ(Step_Engine_Move(Move(3, 0, 0, 0)), Move_End::Done);
  EXPECT_NEAR(Machine.Position[1], 0.004, 1e-12);
  EXPECT_EQ(Writes(888), "0=0 0=1 50=1 50=0 100=1 150=0 200=1 250=0 300=1 ");
}

TEST_F(Step_Engine_Test, Old_Escape_Does_Not_End_A_New_Move) {
  Application.EscFlag = true;
  EXPECT_EQ(Step_Engine_Move(Move(10, 0, 0, 0)), Move_End::Done);
  // Latched by another poll in a yield, though the key is up again.
  Application.EscFlag = false;
  Timing.Yield_Time.reset();
  scripted.On_Yield = [] { Application.EscFlag = true; };
  EXPECT_EQ(Step_Engine_Move(Move(10, 0, 0, 0)), Move_End::Escape);
}

// --- Limit guard ---------------------------------------------------------------------------------

constexpr std::uint8_t X_Switch = 8, Y_Switch = 16;

TEST_F(Step_Engine_Test, Switch_Blocks_The_Way_It_Was_Met_And_Frees_The_Other) {
  int reads = 0;
  On_Read = [&](std::uint16_t port) {  // the X switch closes before the sixth half step
    if (port == 889 && ++reads == 26) scripted.Ports[889] = 255 - X_Switch;
  };
  Step_Request there = Move(10, 4, 0, 0);
  EXPECT_EQ(Step_Engine_Move(there), Move_End::Limit);
  EXPECT_NEAR(Machine.Position[1], 0.003, 1e-12);
  EXPECT_FALSE(Step_Engine.Axis_Enabled[1]);
  EXPECT_EQ(Stops, 0);
  EXPECT_EQ(Drive_Status.Home_Distance[1], 0);
  EXPECT_EQ(Step_Engine_Move(there), Move_End::Limit);
  EXPECT_NEAR(Machine.Position[1], 0.003, 1e-12);
  EXPECT_EQ(Step_Engine_Move(Move(0, 5, 0, 0)), Move_End::Done) << "X does not move";
  Step_Request back = there;
  back.Negative[1] = true;
  EXPECT_EQ(Step_Engine_Move(back), Move_End::Done);
  // A released jog in the blocked direction also stops the run.
  Machine.Jog_Stop_Request = false;
  EXPECT_EQ(Step_Engine_Move(there), Move_End::Limit);
  EXPECT_EQ(Stops, 1);
}

TEST_F(Step_Engine_Test, Guard_Can_Be_Off) {
  scripted.Ports[889] = 255 - X_Switch - Y_Switch;
  Step_Engine.Safe_Dir.Fill(true);
  EXPECT_EQ(Step_Engine_Move(Move(2, 0, 0, 0)), Move_End::Limit);
  Drive_Status.Home_Safety_Off = true;
  EXPECT_EQ(Step_Engine_Move(Move(2, 0, 0, 0)), Move_End::Done);
  Drive_Status.Home_Safety_Off = false;
  MachineSetup.LimitSwitchDisable = 1;
  EXPECT_EQ(Step_Engine_Move(Move(2, 0, 0, 0)), Move_End::Done);
}

// Switches that close and open at every read: the move ends or goes on, position equals the edges.
TEST_F(Step_Engine_Test, Chattering_Switches_Lose_No_Count) {
  int reads = 0, edges = 0;
  On_Read = [&](std::uint16_t port) {
    if (port == 889) scripted.Ports[889] = ++reads % 7 == 0 ? 255 - X_Switch : 255;
  };
  for (int move = 0; move < 20; ++move) {
    Step_Request request = Move(7, 3, 0, 0);
    request.Negative[1] = move % 3 == 0;
    Step_Engine_Move(request);
  }
  Stop_Port_Recorder();
  bool high = false, negative = false;
  for (const Port_Write_Record& record : Written) {
    if (record.Port != 888) continue;
    negative = (record.Value & 2) != 0;
    if ((record.Value & 1) != 0 && !high) edges += negative ? -1 : 1;
    high = (record.Value & 1) != 0;
  }
  EXPECT_NEAR(Machine.Position[1], edges / 1000.0, 1e-9);
}

// --- Faults --------------------------------------------------------------------------------------

// A port that always reads 0 or 255: nothing hangs. 0 reads as E-stop and all switches on.
TEST_F(Step_Engine_Test, Dead_Port) {
  scripted.On_Port_Read = [](std::uint16_t) { return std::uint8_t{0}; };
  EXPECT_EQ(Step_Engine_Move(Move(5, 0, 0, 0)), Move_End::EStop);
  MachineSetup.Parallel_Input_Bit[EStop_Input] = "99";
  Step_Engine.Safe_Dir.Fill(true);
  EXPECT_EQ(Step_Engine_Move(Move(5, 0, 0, 0)), Move_End::Limit);
  EXPECT_EQ(Machine.Position[1], 0);
  scripted.On_Port_Read = [](std::uint16_t) { return std::uint8_t{255}; };
  EXPECT_EQ(Step_Engine_Move(Move(5, 0, 0, 0)), Move_End::Done);
  EXPECT_NEAR(Machine.Position[1], 0.005, 1e-12);
}

// From the 12th write on nothing arrives: every access is still made in its order, and the position
// stays where the motors do.
TEST_F(Step_Engine_Test, A_Port_That_Fails_In_A_Move) {
  EXPECT_EQ(Step_Engine_Move(Move(9, 4, 0, 0)), Move_End::Done);
  const std::string whole = std::exchange(Accesses, "");
  Machine.Position.Fill(0);
  Drive_Status.Home_Distance.Fill(0);
  scripted.On_Port_Write = [&, arrives = scripted.On_Port_Write, count = 0](
                               std::uint16_t port, std::uint8_t value) mutable {
    if (++count < 12) return arrives(port, value);
    Accesses += "W" + std::to_string(port) + " ";
    throw std::runtime_error("gone");
  };
  EXPECT_EQ(Step_Engine_Move(Move(9, 4, 0, 0)), Move_End::Done);
  EXPECT_EQ(Accesses, whole);
  // Two directions and two enables, then X up, down, up (Y up), down, up, down.
  EXPECT_NEAR(Machine.Position[1], 0.003, 1e-12);
  EXPECT_NEAR(Machine.Position[2], 0.001, 1e-12);
  EXPECT_NEAR(Drive_Status.Home_Distance[1], 0.003, 1e-7);
  EXPECT_EQ(Port_Failures.Writes.Count, std::count(whole.begin(), whole.end(), 'W') - 11);
}

struct Refused_Row {
  const char* Why;
  float Scale_X, Scale_Y;
  bool Ramping;
  std::int16_t Ramp_Rate;
  std::int32_t Steps;
};

class Refused_Test : public Drive_Test, public testing::WithParamInterface<Refused_Row> {};

// Refused before a pin moves, with a line in the log.
TEST_P(Refused_Test, Moves_No_Pin) {
  const Refused_Row& row = GetParam();
  MachineSetup.Axis_SPI[1] = row.Scale_X;
  MachineSetup.Axis_SPI[2] = row.Scale_Y;
  MachineSetup.Axis_Ramping = row.Ramping;
  MachineSetup.Axis_Ramp_Rate = row.Ramp_Rate;
  EXPECT_EQ(Step_Engine_Move(Move(0, row.Steps, 0, 0)), Move_End::Failed) << row.Why;
  EXPECT_EQ(Writes(888), "");
  EXPECT_EQ(scripted.Ports[890], 0);
  EXPECT_EQ(Machine.Position[2], 0);
}

INSTANTIATE_TEST_SUITE_P(Rows, Refused_Test,
                         testing::Values(Refused_Row{"X times it", 0, 1000, false, 1, 5},
                                         Refused_Row{"own scale", 1000, 0, false, 1, 5},
                                         Refused_Row{"negative", 1000, -4, false, 1, 5},
                                         Refused_Row{"no number", NAN, 1000, false, 1, 5},
                                         Refused_Row{"no ramp", 1000, 1000, true, 0, 5}));

TEST_F(Step_Engine_Test, Absurd_Scales_End) {
  MachineSetup.Axis_SPI.Fill(1e-30f);
  EXPECT_EQ(Step_Engine_Move(Move(1, 0, 0, 0)), Move_End::Done);
  EXPECT_THAT(scripted.Delays, ElementsAre(2'000'000, 2'000'000));
  scripted.Delays.clear();
  MachineSetup.Axis_SPI.Fill(1e30f);
  EXPECT_EQ(Step_Engine_Move(Move(1, 0, 0, 0)), Move_End::Done);
  EXPECT_THAT(scripted.Delays, ElementsAre(1, 1));
}

TEST_F(Step_Engine_Test, No_Move_Inside_A_Move) {
  std::optional<Move_End> inner;
  scripted.On_Yield = [&] { inner = Step_Engine_Move(Move(1, 1, 1, 1)); };
  EXPECT_EQ(Step_Engine_Move(Move(4, 0, 0, 0)), Move_End::Done);
  EXPECT_EQ(inner, Move_End::Failed);
  EXPECT_NEAR(Machine.Position[1], 0.004, 1e-12);
  EXPECT_EQ(Machine.Position[2], 0);
}

TEST_F(Step_Engine_Test, Diagnostics_Name_The_Numbers_Of_The_Move) {
  Step_Engine_Move(Move(100, 50, 0, 0, 300));
  EXPECT_EQ(Diagnostics_Text(),
            "MaxSteps=100\r\nXSteps=100\r\nYSteps=50\r\nZSteps=0\r\nASteps=0\r\nStepSkip(1)=1\r\n"
            "StepSkip(2)=2\r\nStepSkip(3)=201\r\nStepSkip(4)=201\r\nRampUp_Val=0\r\n"
            "RampDN_Val=200\r\nIPM_St=300\r\nIPM_Rn=300\r\nIPM_En=300");
}

}  // namespace
}  // namespace norvik
