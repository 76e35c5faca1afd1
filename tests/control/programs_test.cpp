// Whole programs: where they end, how long they take, and what a kill leaves behind.
#include "compiler/compile/compile.h"
#include "control/manual/home.h"
#include "control/motion/waits.h"
#include "control/panel/run_program.h"
#include "control/run/estimate.h"
#include "control_fixture.h"
#include "simulate/virtual_clock.h"

#include <csignal>
#include <cstdlib>
#include <random>

#include <sys/wait.h>

namespace norvik {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;

class Programs_Test : public Control_Test {
 protected:
  Programs_Test() {
    Free_Axes();
    MachineSetup.Axis_Depth.Fill(1e6F);
  }
  ~Programs_Test() override { Remove_Virtual_Clock(); }

  // Chains of moves with planned-looking speeds, dwells and records without motion.
  std::vector<Row> Random_Program(unsigned seed, int count) {
    std::mt19937 random(seed);
    std::uniform_real_distribution<double> place(-2, 2), feed(20, 200);
    std::vector<Row> rows;
    for (int i = 1; i <= count; ++i) {
      Row row;
      row.Step = i;
      row.Feed = static_cast<float>(feed(random));
      if (random() % 3 != 0) row.X = place(random);
      if (random() % 3 != 0) row.Y = place(random);
      if (random() % 5 == 0) row.Z = place(random);
      if (random() % 7 == 0) row.A = place(random);
      if (random() % 10 == 0) row.Motion = 0;
      if (random() % 10 == 0) row.Dwell = 0.3F;
      rows.push_back(row);
    }
    return rows;
  }
  // Speeds that start and end low, as at sharp corners, the first of them from rest.
  static void Slow_Ends(float speed) {
    for (Wire& wire : Program_Wire.Rows()) wire.IPM_S = wire.IPM_E = speed;
    Program_Wire.Rows()[0].IPM_S = MachineSetup.Axis_Ramp_Start;
  }
};

TEST_F(Programs_Test, The_machine_ends_where_the_program_does) {
  for (const unsigned seed : {1U, 2U, 3U}) {
    Load(Random_Program(seed, 40));
    MachineSetup.Axis_Ramping = seed != 1;
    Slow_Ends(20);
    const Run_Summary summary = Run_Compiled_Program({""});
    EXPECT_TRUE(summary.Finished) << summary.Ended_By;
    EXPECT_EQ(summary.Steps, 40);
    Indexed<double, 1, 4> end;
    for (int axis = 1; axis <= 4; ++axis) end[axis] = summary.Position[axis];
    for (const Wire& wire : Program_Wire.Rows())
      for (int axis = 1; axis <= 4; ++axis)
        if (wire.Motion == 1 && wire.End[axis]) end[axis] = *wire.End[axis];
    for (int axis = 1; axis <= 4; ++axis)
      EXPECT_NEAR(True_Position(axis), end[axis], 0.5 / 400 + 1e-9) << axis;
    Expect_Position_True();
  }
}

// The walk over the wires and the run on the virtual clock agree.
TEST_F(Programs_Test, The_estimate_agrees_with_the_run) {
  struct {
    bool Ramping;
    std::int16_t Rate;
    float Ends, Highest;
    bool Corrected = false;  // ramps and delays by the leading axis
  } const rows[] = {{false, 1, 20, 1000},     {true, 1, 20, 1000},        {true, 15, 5, 1000},
                    {true, 4, 60, 50},        {false, 1, 20, 1000, true}, {true, 1, 20, 1000, true},
                    {true, 15, 5, 1000, true}};
  for (const auto& row : rows) {
    MachineSetup.Axis_Scale_Delay = MachineSetup.One_Acceleration = row.Corrected;
    MachineSetup.Axis_Ramping = row.Ramping;
    MachineSetup.Axis_Ramp_Rate = row.Rate;
    MachineSetup.Axis_Max_Feed_Rate.Fill(row.Highest);
    MachineSetup.Axis_SPI = {{400, 700, 400, 300}};
    Machine.Position = Machine.Theoretical_Pos = {};
    Reset_Simulated_Machine();
    Free_Axes();
    Simulated_Machine.Access_Time = 0;
    Load(Random_Program(7, 30));
    Slow_Ends(row.Ends);
    Indexed<double, 1, 4> from;
    double estimate = 0;
    for (const Wire& wire : Program_Wire.Rows()) estimate += Find_Material_ProcessTime(wire, from);
    const Run_Summary summary = Run_Compiled_Program({""});
    ASSERT_TRUE(summary.Finished) << summary.Ended_By;
    EXPECT_NEAR(estimate / summary.Machine_Run_Time, 1, 0.01)
        << "ramps " << row.Ramping << " rate " << row.Rate;
  }
}

// One plan for both: also where a wire begins faster than it cruises and so brakes from its first
// step on, down to the speed of its end.
TEST_F(Programs_Test, The_estimate_of_a_wire_ramps_as_the_machine_does) {
  MachineSetup.Axis_Ramping = true;
  MachineSetup.Axis_Ramp_Rate = 5;
  struct {
    float Start, Cruise, End;
  } const rows[] = {{10, 60, 10}, {100, 50, 10}, {10, 60, 60}, {60, 60, 5}};
  for (const auto& row : rows) {
    Machine.Position = Machine.Theoretical_Pos = {};
    Reset_Simulated_Machine();
    Free_Axes();
    Simulated_Machine.Access_Time = 0;
    Load({{1, 0.1}, {2, 1.1}});
    Wire& first = Program_Wire.Rows()[0];
    first.IPM_S = MachineSetup.Axis_Ramp_Start;  // a run begins so
    Wire& wire = Program_Wire.Rows()[1];
    wire.IPM_S = row.Start;
    wire.IPM_R = row.Cruise;
    wire.IPM_E = row.End;
    Indexed<double, 1, 4> from;
    const double estimate =
        Find_Material_ProcessTime(first, from) + Find_Material_ProcessTime(wire, from);
    const Run_Summary summary = Run_Compiled_Program({""});
    ASSERT_TRUE(summary.Finished) << summary.Ended_By;
    EXPECT_NEAR(estimate / summary.Machine_Run_Time, 1, 0.005) << row.Start << " " << row.Cruise;
  }
}

TEST_F(Programs_Test, Pauses_of_a_run_without_a_panel) {
  Load({{1, 0.1}, {2, {}, {}, {}, {}, -1}, {3, 0.3}, {4, {}, {}, {}, {}, -1}, {5, 0.5}});
  Program_Wire.Rows()[1].Tool = 1;  // in use, and not asked for
  Program_Wire.Rows()[1].Block_Text = "M60 (M6)";
  Program_Wire.Rows()[3].Tool = 2;
  Program_Wire.Rows()[3].Block_Text = "T2 M06";
  std::vector<std::string> pauses;
  std::string reason = "no reason";
  std::function<void()> meanwhile = [] {};
  Run_Options options{""};
  options.At_Pause = [&](const Run_Pause& pause) {
    pauses.push_back(std::to_string(pause.Step) + " " + pause.Block);
    meanwhile();
    return pause.Tool ? std::optional(reason) : std::nullopt;
  };
  Run_Summary summary = Run_Compiled_Program(options);
  EXPECT_THAT(pauses, ElementsAre("2 M60 (M6)", "4 T2 M06"));
  EXPECT_FALSE(summary.Finished);
  EXPECT_EQ(summary.Ended_By, "no reason");
  EXPECT_NEAR(summary.Position[1], 0.3, 1e-9);
  EXPECT_THAT(Summary_Text(summary), HasSubstr("Steps: 4 of 5"));
  reason = "";
  EXPECT_EQ(Run_Compiled_Program(options).Ended_By, control_text::Ended_By_Operator);

  // What stops the run in a pause ends it, whatever the answer was, and does not start it anew.
  meanwhile = [] {
    Press_EStop(true);
    (void)Look_At_Stops();
  };
  summary = Run_Compiled_Program(options);
  EXPECT_EQ(summary.Ended_By, control_text::Ended_By_EStop_Input);
  EXPECT_EQ(summary.Steps, 2);
  Press_EStop(false);
  meanwhile = [] { Application.EscFlag = true; };
  EXPECT_EQ(Run_Compiled_Program(options).Ended_By, control_text::Ended_By_Esc);
  EXPECT_EQ(Machine.CNCMode, CNC_Stopped);
}

TEST_F(Programs_Test, A_refused_run_says_why) {
  Load({{1, 0.1}});
  Machine.EStop_Flag = true;
  EXPECT_EQ(Run_Compiled_Program({""}).Ended_By, control_text::Motors_Are_Disabled);
  Machine.EStop_Flag = false;
  MachineSetup.Parallel_Port_Type = 3;
  EXPECT_THAT(Run_Compiled_Program({""}).Ended_By, HasSubstr("board does not answer"));
}

// The port dies in the first of three moves, so the summary must not read like that of a finished
// run, and the position is that of the motors.
TEST_F(Programs_Test, A_run_on_a_port_that_fails) {
  Load({{1, 0.1}, {2, 0.1, 0.1}, {3, 0.0, 0.2}});
  Platform.Port_Write = [inner = Platform.Port_Write, count = 0](std::uint16_t port,
                                                                 std::uint8_t value) mutable {
    if (++count > 40) throw std::runtime_error("gone");
    inner(port, value);
  };
  const Run_Summary summary = Run_Compiled_Program({""});
  EXPECT_FALSE(summary.Finished);
  EXPECT_THAT(summary.Ended_By, HasSubstr(control_text::Run_Without_Port));
  EXPECT_GT(summary.Position[1], 0);
  EXPECT_LT(summary.Position[1], 0.1);
  EXPECT_EQ(summary.Position[2], 0);
  Expect_Position_True();
}

TEST_F(Programs_Test, A_long_run_on_the_virtual_clock) {
  Install_Virtual_Clock();
  std::vector<Row> rows;
  for (int i = 1; i <= 4'000; ++i) rows.push_back({i, (i % 2) * 0.01, (i % 3) * 0.01});
  Load(rows);
  int ticks = 0;
  Run_Options options{""};
  options.Progress = [&](std::int32_t, std::int32_t) { ++ticks; };
  const Run_Summary summary = Run_Compiled_Program(options);
  EXPECT_TRUE(summary.Finished);
  EXPECT_EQ(summary.Steps, 4'000);
  EXPECT_NEAR(ticks, summary.Machine_Run_Time * 4, summary.Machine_Run_Time * 0.4 + 2);
  EXPECT_EQ(scripted.Running_Timers(), 0);
  Expect_Position_True();
}

// A process that is killed at any moment of a run leaves a whole machine file and one of the
// positions that were saved.
TEST_F(Programs_Test, A_kill_loses_no_file_and_no_saved_position) {
  ASSERT_TRUE(SaveMachineSetup());
  Set_Axis_Position(1, 0);
  std::mt19937 random(5);
  for (int round = 0; round < 8; ++round) {
    const pid_t child = ::fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
      Load({{1, 0.5, 0.25}, {2, 0, 0}});
      for (int saved = 0;; saved = (saved + 1) % 50) {
        ++MachineSetup.Parallel_Time_Constant;  // as autotune would, so that each move stores it
        MachineSetup.Parallel_Time_Constant %= 400;
        Run_Compiled_Program({""});
        Set_Axis_Position(1, saved * 0.125);
      }
    }
    ::usleep(static_cast<useconds_t>(3000 + random() % 30'000));
    ::kill(child, SIGKILL);
    ::waitpid(child, nullptr, 0);
    MachineSetup.INI_Save_Test = 0;
    MachineSetup.Axis_SPI.Fill(0);
    LoadMachineSetup();
    EXPECT_EQ(MachineSetup.INI_Save_Test, 123);
    EXPECT_EQ(MachineSetup.Axis_SPI[4], 400);
    const std::string saved = ReadSetup("Axis Position", "Axis_Cur_Pos_1");
    ASSERT_FALSE(saved.empty());
    const double eighths = std::stod(saved) * 8;
    EXPECT_EQ(eighths, std::round(eighths)) << saved;
  }
}

// --- Programs from their text --------------------------------------------------------------------

class Text_Test : public Programs_Test {
 protected:
  Text_Test() {
    Install_Virtual_Clock();
    MachineSetup.Axis_Ramping = true;
    MachineSetup.Axis_Ramp_Rate = 5;
    Simulated_Machine.Access_Time = 0;
  }
  // Runs a text from where the machine stands; it must end where its wires do.
  void Expect_Runs(const std::string& text, const std::string& name) {
    SaveChanges(text);
    const Run_Summary summary = Run_Program({""});
    EXPECT_TRUE(summary.Finished) << name << ": " << summary.Ended_By;
    EXPECT_EQ(summary.Steps, GCodeLineCount()) << name;
    for (int axis = 1; axis <= 4; ++axis) {
      Nullable end;
      for (const Wire& wire : Program_Wire.Rows())
        if (wire.Motion == 1 && wire.End[axis]) end = wire.End[axis];
      const double half_step = 0.5 / static_cast<double>(MachineSetup.Axis_SPI[axis]);
      if (!end) continue;
      EXPECT_NEAR(True_Position(axis), *end, half_step + 1e-6) << name << " axis " << axis;
    }
    Expect_Position_True();
  }
  void Expect_Folder_Runs(const std::filesystem::path& folder) {
    for (const auto& entry : std::filesystem::directory_iterator(folder)) {
      if (!entry.is_regular_file()) continue;
      Machine.Position = Machine.Theoretical_Pos = {};
      Reset_Simulated_Machine();
      Free_Axes();
      Simulated_Machine.Access_Time = 0;
      Expect_Runs(Read_Whole_File(entry.path().string()), entry.path().filename().string());
    }
  }
};

TEST_F(Text_Test, Lines_arcs_cycles_dwells_and_tool_changes) {
  Expect_Runs(
      "G90\nG0 X1 Y1 Z0.5\nM3\nG1 Z-0.1 F20\nG2 X2 Y0 I0 J-1 F60\nG3 X1 Y1 I-1 J0\nG4 P0.5\n"
      "M6 T2\nG81 X0.5 Y0.5 Z-0.2 R0.1\nX0.25\nG80\nG91\nG1 X-0.125 A0.5\nM30\n",
      "mixed");
  EXPECT_EQ(Simulated_Machine.Outputs[1].Switchings, 2);
}

TEST_F(Text_Test, A_compile_cut_short_is_not_run) {
  std::string text;
  for (int i = 0; i < 500; ++i) text += "G1 X" + std::to_string(i % 7) + "\n";
  SaveChanges(text);
  scripted.On_Yield = [this, n = 0]() mutable {
    if (++n == 3) scripted.Press(key::Escape);
  };
  const Run_Summary summary = Run_Program({""});
  EXPECT_FALSE(summary.Finished);
  EXPECT_THAT(summary.Ended_By, HasSubstr("ESC"));
  EXPECT_EQ(Half_Steps, 0);
}

TEST_F(Text_Test, Tables_that_cannot_be_written_are_not_run) {
  Application.Table_Folder = (Folder / "missing").string();
  SaveChanges("G1 X1\n");
  const Run_Summary summary = Run_Program({""});
  EXPECT_FALSE(summary.Finished);
  EXPECT_THAT(summary.Ended_By, HasSubstr("Cannot write"));
}

TEST_F(Text_Test, The_estimate_of_the_panel_agrees_with_the_run) {
  SaveChanges("G1 X1 F60\nG2 X2 Y0 I0 J-1 F60\nG4 P1\nG0 Z0.5\nX0 Y0\n");
  const Run_Summary summary = Run_Program({""});
  Machine.Position = Machine.Theoretical_Pos = {};
  Command_Estimate_Process_Time_Click();
  ASSERT_TRUE(Controller.Estimated_Process_Time);
  EXPECT_NEAR(*Controller.Estimated_Process_Time / summary.Machine_Run_Time, 1, 0.01);
  EXPECT_THAT(CNC_Controls.Label_MaterialProcess_Time.Caption,
              HasSubstr("Estimated Material Process Time 00:00:"));
}

// A crash has left a wire table of another compile beside the record table.
TEST_F(Text_Test, An_estimate_of_mixed_tables_compiles_again) {
  SaveChanges("G1 X3 F60\n");
  ASSERT_TRUE(CompileProgram());
  const std::string wires = Join_Path(Application.Table_Folder, Wire_Table_Name);
  const std::string other = Read_Whole_File(wires);
  SaveChanges("G1 X1 F60\n");
  ASSERT_TRUE(CompileProgram());
  Command_Estimate_Process_Time_Click();
  const auto right = Controller.Estimated_Process_Time;
  Replace_File(wires, other);
  Command_Estimate_Process_Time_Click();
  ASSERT_TRUE(right);
  EXPECT_EQ(Controller.Estimated_Process_Time, right);
  EXPECT_THAT(Messages.Status_Box, HasSubstr("not from one compile"));
}

TEST_F(Text_Test, An_estimate_waits_while_something_moves) {
  SaveChanges("G1 X1 F60\n");
  scripted.On_Yield = [done = false]() mutable {
    if (done || !Runs(Operation::Move)) return;
    done = true;
    Command_Estimate_Process_Time_Click();
  };
  EXPECT_TRUE(Run_Program({""}).Finished);
  EXPECT_FALSE(Controller.Estimated_Process_Time);
  EXPECT_EQ(scripted.Beeps, 1);
}

TEST_F(Text_Test, Every_sample_ends_where_it_should) {
  if (!std::filesystem::exists(NORVIK_SAMPLES_FOLDER)) GTEST_SKIP() << "no samples";
  MachineSetup.Axis_SPI.Fill(100);
  Expect_Folder_Runs(NORVIK_SAMPLES_FOLDER);
}

TEST_F(Text_Test, Every_program_of_a_corpus_ends_where_it_should) {
  const char* corpus = std::getenv("NORVIK_GCODE_CORPUS");
  if (corpus == nullptr) GTEST_SKIP() << "NORVIK_GCODE_CORPUS names no folder";
  MachineSetup.Axis_SPI.Fill(40);
  Expect_Folder_Runs(corpus);
}

}  // namespace
}  // namespace norvik
