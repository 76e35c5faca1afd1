// Delays, the measured speed, autotune and the calibration windows.
#include "parallel/timing.h"

#include "core/messages.h"
#include "core/operation.h"
#include "core/paths.h"
#include "parallel/drive_test.h"
#include "parallel/system_timing.h"
#include "support/temporary_folder.h"

namespace norvik {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

constexpr std::int64_t Second = 1'000'000'000;

class Timing_Test : public Drive_Test {
 protected:
  // One measurement: so many full steps in a little more than a second, at 1000 steps/s commanded.
  void Measure(std::int32_t steps) {
    Timing.Monitor_Count = steps - 1;
    scripted.Now += Second + 1;
    Feed_Monitor(1, 60);
  }
};

struct Delay_Row {
  float Scale;
  double IPM;
  std::int32_t Constant;
  std::int32_t Microseconds;
};

TEST_F(Timing_Test, Delay_Of_A_Half_Step) {
  for (const Delay_Row& row : {Delay_Row{1000, 600, 0, 50},
                               {1000, 600, 20, 30},
                               {1000, 600, 49, 1},
                               {1000, 600, 400, 1},  // longer than the half step
                               {1000, 700, 0, 42},   // 42.857: the whole part
                               {1000, 700, 12, 30},
                               {1000, 0, 0, 2'000'000},   // runs at 0.001: 30 s, held to 2 s
                               {100'000, 0, 0, 300'000},  // 0.001
                               {60, 9000, 0, 250},        // 2000 is the fastest
                               {1000, -5, 0, 2'000'000},
                               {1000, 600, 900, 1},  // the constant is held to 0..500
                               {1000, 600, -9, 50},
                               {-1000, 600, 0, 1}}) {
    MachineSetup.Axis_SPI[1] = row.Scale;
    MachineSetup.Parallel_Time_Constant = row.Constant;
    scripted.Delays.clear();
    Delay_Half_Step(1, row.IPM);
    EXPECT_THAT(scripted.Delays, ElementsAre(row.Microseconds)) << row.Scale << " " << row.IPM;
    EXPECT_GE(MachineSetup.Parallel_Time_Constant, 0);
    EXPECT_LE(MachineSetup.Parallel_Time_Constant, Time_Constant_Max);
  }
  MachineSetup.Axis_SPI[1] = 0;
  EXPECT_THROW(Delay_Half_Step(1, 600), Fault);
}

TEST_F(Timing_Test, A_Back_End_That_Keeps_Periods_Gets_The_Whole_Half_Step) {
  std::vector<std::int64_t> asked;
  Platform.Delay_In_Period = [&](std::int32_t us, std::int64_t ns) {
    asked.insert(asked.end(), {us, ns});
  };
  MachineSetup.Parallel_Time_Constant = 12;
  Delay_Half_Step(1, 700);
  Platform.Delay_In_Period = {};
  EXPECT_THAT(asked, ElementsAre(30, 42'857));
}

// 2000 half steps for each 100 percent, either way.
TEST_F(Timing_Test, Override_Follows_Its_Target_Slowly) {
  Timing.Feed_Override_Target = 2;
  for (int i = 0; i < 1000; ++i) Delay_Half_Step(1, 600);
  EXPECT_NEAR(Timing.Feed_Override, 1.5, 0.001);
  Timing.Feed_Override_Target = 0.5;
  for (int i = 0; i < 2100; ++i) Delay_Half_Step(1, 600);
  EXPECT_NEAR(Timing.Feed_Override, 0.5, 0.001);
}

struct Ratio_Row {
  std::int32_t Steps;  // of 1000 commanded
  std::int32_t Change;
};

TEST_F(Timing_Test, Autotune_Moves_The_Constant_By_The_Ratio) {
  Timing.FeedRate_Autotune = true;
  for (const Ratio_Row& row :
       {Ratio_Row{1000, 0}, {1002, -1}, {1025, -5}, {1500, -5}, {998, 1}, {975, 5}, {100, 5}}) {
    MachineSetup.Parallel_Time_Constant = 100;
    Timing.Settle_Count = 3;
    Measure(row.Steps);
    EXPECT_EQ(MachineSetup.Parallel_Time_Constant, 100 + row.Change) << row.Steps;
    EXPECT_NEAR(Timing.Actual_IPM, row.Steps * 0.06, 1e-4);
  }
  // A commanded speed of nothing has no ratio.
  MachineSetup.Parallel_Time_Constant = 100;
  scripted.Now += 2 * Second;
  EXPECT_FALSE(Feed_Monitor(1, 0).has_value());
  EXPECT_EQ(MachineSetup.Parallel_Time_Constant, 100);
}

TEST_F(Timing_Test, The_First_Three_Seconds_Change_Nothing) {
  Timing.FeedRate_Autotune = true;
  MachineSetup.Parallel_Time_Constant = 100;
  for (int second = 1; second <= 4; ++second) {
    EXPECT_EQ(MachineSetup.Parallel_Time_Constant, 100) << second;
    Measure(500);
  }
  EXPECT_EQ(MachineSetup.Parallel_Time_Constant, 105);
  Timing.FeedRate_Autotune = false;
  Measure(500);
  EXPECT_EQ(MachineSetup.Parallel_Time_Constant, 105);
}

TEST_F(Timing_Test, Yields_Four_Times_A_Second) {
  for (int i = 0; i < 1000; ++i, scripted.Now += 1'000'000) Feed_Monitor(1, 60);
  EXPECT_EQ(scripted.Yields, 4);
  // Without display updates only when input waits; with both, twice.
  MachineSetup.Axis_Position_Update_Disable = true;
  scripted.Now += Second;
  Feed_Monitor(1, 60);
  EXPECT_EQ(scripted.Yields, 4);
  scripted.Input_Waits = true;
  scripted.Now += Second;
  Feed_Monitor(1, 60);
  EXPECT_EQ(scripted.Yields, 5);
  MachineSetup.Axis_Position_Update_Disable = false;
  scripted.Now += Second;
  Feed_Monitor(1, 60);
  EXPECT_EQ(scripted.Yields, 7);
}

// Midnight and a clock set by an hour touch the day clock only; a monotonic clock that goes back
// all the same restarts the intervals, and the yields come back after a quarter second.
TEST_F(Timing_Test, Clocks_That_Jump_Back) {
  Feed_Monitor(1, 60);
  scripted.Day_Start -= 3600;
  for (int i = 0; i < 600; ++i, scripted.Now += 1'000'000) Feed_Monitor(1, 60);
  EXPECT_EQ(scripted.Yields, 3);
  scripted.Now -= 3600 * Second;
  for (int i = 0; i < 600; ++i, scripted.Now += 1'000'000) Feed_Monitor(1, 60);
  EXPECT_EQ(scripted.Yields, 5);
}

TEST_F(Timing_Test, Constant_Is_Stored_After_Moves_When_It_Changed) {
  Temporary_Folder folder;
  Application.MachineFile = folder.File("machine.ini");
  MachineSetup.Parallel_Time_Constant = 17;
  Step_Engine_Move(Move(1, 0, 0, 0));
  EXPECT_EQ(ReadSetup("General", "Parallel_Time_Constant"), "17");
  WriteSetup("General", "Parallel_Time_Constant", "not touched");
  Step_Engine_Move(Move(1, 0, 0, 0));
  EXPECT_EQ(ReadSetup("General", "Parallel_Time_Constant"), "not touched");
  MachineSetup.Parallel_Time_Constant = 18;
  Step_Engine_Move(Move(1, 0, 0, 0));
  EXPECT_EQ(ReadSetup("General", "Parallel_Time_Constant"), "18");
}

TEST_F(Timing_Test, Refused_Priority_Is_Said_Once) {
  Messages = {};
  scripted.Priority_Refusal = "High priority was refused: join the group.";
  Set_Application_Priority(1);
  EXPECT_THAT(Messages.MessageLog[0], HasSubstr("join the group"));
  Messages = {};
  Set_Application_Priority(1);
  EXPECT_EQ(Messages.MessageLog[0], "");
  EXPECT_THAT(scripted.Priorities, ElementsAre(1, 1));
}

// --- Calibration ---------------------------------------------------------------------------------

// Ports that cost time: nine reads by the guard and a read and a write, 2 microseconds each, are
// work of 20 microseconds in each pass.
class Calibration_Test : public Timing_Test {
 protected:
  Calibration_Test() {
    MachineSetup.Parallel_Input_Bit[EStop_Input] = "99";
    scripted.On_Port_Read = [this](std::uint16_t port) {
      scripted.Now += 2'000;
      return scripted.Ports.contains(port) ? scripted.Ports[port] : std::uint8_t{255};
    };
    scripted.On_Port_Write = [this](std::uint16_t, std::uint8_t) { scripted.Now += 2'000; };
    Drive_Host.Live_Feed = [this] { return std::optional(Feed); };
    Drive_Host.Set_Live_Feed = [this](double ipm) { Feed = ipm; };
    Stop_Port_Recorder();
    scripted.Record_Delays = false;
  }
  double Feed = 60;
};

TEST_F(Calibration_Test, Finds_The_Work_Of_The_Loop) {
  Pins.Step_Bit[2] = 1;
  MachineSetup.Parallel_Time_Constant = 50;
  EXPECT_EQ(Find_Time_Constant(), Calibration_End::Found);
  EXPECT_NEAR(MachineSetup.Parallel_Time_Constant, 20, 1);
  EXPECT_NEAR(Timing.Actual_IPM, 60, 0.6);
  EXPECT_EQ(Pins.Step_Bit[2], 1) << "the dummy axis is where it was";
  EXPECT_EQ(Machine.Position[2], 0);
  EXPECT_FALSE(Runs(Operation::Calibration));
  EXPECT_EQ(Feed, 60);
}

TEST_F(Calibration_Test, Escape_Cancels_And_Moves_Are_Refused_Meanwhile) {
  Application.EscFlag = true;  // stale
  int intervals = 0;
  Drive_Host.Set_Panel_Interval = [&](int) { ++intervals; };
  int yields = 0;
  std::optional<Move_End> inner;
  scripted.On_Yield = [&] {
    inner = Step_Engine_Move(Move(1, 0, 0, 0));
    if (++yields == 8) scripted.Press(key::Escape);
  };
  EXPECT_EQ(Find_Time_Constant(), Calibration_End::Cancelled);
  EXPECT_EQ(inner, Move_End::Failed);
  EXPECT_EQ(yields, 8);
  EXPECT_EQ(intervals, 2);
}

TEST_F(Calibration_Test, An_EStop_Pressed_Meanwhile_Ends_It_One_Pressed_Before_Does_Not) {
  Machine.EStop_Flag = true;
  EXPECT_EQ(Find_Time_Constant(), Calibration_End::Found);
  Machine.EStop_Flag = false;
  scripted.On_Yield = [] { Machine.EStop_Flag = true; };
  EXPECT_EQ(Find_Time_Constant(), Calibration_End::Cancelled);
}

TEST_F(Calibration_Test, System_Timing_Window) {
  MachineSetup.Parallel_Time_Constant = 33;
  System_Timing_Form_Load();
  EXPECT_EQ(System_Timing.Text_FeedRate, "60.00");
  EXPECT_EQ(System_Timing.Text_TimeConstant, "33");
  scripted.On_Yield = [] { System_Timing_Cancel_Click(); };
  System_Timing_Start_Click();
  EXPECT_EQ(System_Timing.Command_Start + System_Timing.Command_Cancel, "StartCancel");
  EXPECT_EQ(MachineSetup.Parallel_Time_Constant, 33);
  EXPECT_TRUE(System_Timing.Visible);

  scripted.On_Yield = {};
  System_Timing.Text_FeedRate = "0.01";
  std::vector<double> feeds;
  Drive_Host.Set_Live_Feed = [&](double ipm) { feeds.push_back(Feed = ipm); };
  System_Timing_Start_Click();  // a tenth of an inch a minute: too slow for any pass
  EXPECT_THAT(System_Timing.Label_Result, HasSubstr("did not settle"));
  EXPECT_EQ(System_Timing.Text_FeedRate, "00.10");
  EXPECT_THAT(feeds, ElementsAre(0.1, 0.1, 60));
  System_Timing.Text_FeedRate = "60";
  System_Timing_Start_Click();
  EXPECT_EQ(System_Timing.Command_Start + System_Timing.Command_Cancel, "DoneOK");
  EXPECT_EQ(System_Timing.Label_Result,
            "Time constant found: " + System_Timing.Text_TimeConstant + " microseconds.");
  EXPECT_NEAR(MachineSetup.Parallel_Time_Constant, 20, 1);
  EXPECT_EQ(Feed, 60);
  Temporary_Folder folder;
  Application.MachineFile = folder.File("machine.ini");
  System_Timing_Cancel_Click();
  EXPECT_FALSE(System_Timing.Visible);
  EXPECT_EQ(ReadSetup("General", "Parallel_Time_Constant"), System_Timing.Text_TimeConstant);
}

TEST_F(Timing_Test, Controls_Of_The_Panel) {
  Temporary_Folder folder;
  Application.MachineFile = folder.File("machine.ini");
  MachineSetup.Parallel_Time_Constant = Time_Constant_Max - 1;
  for (int i = 0; i < 3; ++i) Command_TC_Adjust(0);
  EXPECT_EQ(MachineSetup.Parallel_Time_Constant, Time_Constant_Max);
  Command_TC_Adjust(1);
  EXPECT_EQ(MachineSetup.Parallel_Time_Constant, Time_Constant_Max - 1);
  scripted.Input_Answers = {"12", "-4", "abc", std::nullopt};
  for (const std::int32_t expected : {12, 0, 0, 0}) {
    Label_Time_Constant_Click();
    EXPECT_EQ(MachineSetup.Parallel_Time_Constant, expected);
  }
  EXPECT_EQ(scripted.Inputs[0].Title, "Motor Time Constant");
  EXPECT_EQ(scripted.Inputs[0].Prompt, "Enter new time constant");
  Check_FeedRate_Autotune_Click(true);
  Timing = {};
  Load_FeedRate_Autotune();
  EXPECT_TRUE(Timing.FeedRate_Autotune);
}

}  // namespace
}  // namespace norvik
