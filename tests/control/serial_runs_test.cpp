// Whole programs and operations on the simulated controller boards, on the virtual clock.
#include "control/manual/home.h"
#include "control/panel/run_program.h"
#include "control_fixture.h"
#include "drive/drive.h"
#include "serial/monitor.h"
#include "serial/serial_link.h"
#include "serial/serial_session.h"
#include "serial/stream.h"
#include "simulate/board/board_axes.h"
#include "simulate/board/board_faults.h"
#include "simulate/board/board_findings.h"
#include "simulate/board/board_motion.h"
#include "simulate/board/board_state.h"
#include "simulate/board/running_entry.h"
#include "simulate/board_port.h"
#include "simulate/virtual_clock.h"

#include <cmath>
#include <random>

namespace norvik {
namespace {

using ::testing::HasSubstr;

class Serial_Runs_Test : public Control_Test, public ::testing::WithParamInterface<int> {
 protected:
  Serial_Runs_Test() {
    Free_Axes();
    MachineSetup.Axis_Depth.Fill(1e4F);
    MachineSetup.Parallel_Port_Type = static_cast<std::int16_t>(2 + GetParam());
    MachineSetup.Axis_Ramp_Rate = 5;
    MachineSetup.Axis_Ramp_Start = 12;
    MachineSetup.Dravon_SASF = 1;
    Connect_Control();
    Install_Virtual_Clock();
    Before = Platform;
    Install_Simulated_Boards();
    Serial_Session_Host.Choose_Device = [](int generation, const std::string&, const std::string&) {
      return std::string(generation > 0 ? Simulated_Pelmar_Device : Simulated_Dravon_Device);
    };
    Drive().Begin_Session();
    Ticks = Platform.Start_Timer(100, [] {
      Drive().Tick();
      Watch_Machine();
    });
  }
  ~Serial_Runs_Test() override {
    Platform.Stop_Timer(Ticks);
    Drive().End_Session();
    Forget_Simulated_Boards();
    Serial_Session_Host = {};
    Remove_Virtual_Clock();
    Dravon_Stream = {};
    Dravon = {};
    Serial_Link = {};
  }

  Simulated_Board& Board() {
    return Simulated_Line(GetParam() > 0 ? Board_Generation::Pelmar_V5
                                         : Board_Generation::Dravon_V4)
        .Board;
  }
  double Count(int axis) { return static_cast<double>(Counter_Of(Board(), axis)); }
  void Harm(const std::string& fault) { ASSERT_EQ(Add_Board_Fault(Board(), fault), "") << fault; }

  // A chain of short chords, as of a contour.
  std::vector<Row> Contour(int count) {
    std::vector<Row> rows;
    for (int i = 1; i <= count; ++i) {
      Row row;
      row.Step = i;
      row.X = std::sin(i * 0.1);
      row.Y = 1 - std::cos(i * 0.1);
      row.Feed = 40;
      rows.push_back(row);
    }
    return rows;
  }
  void Expect_Arrived(const std::vector<Row>& rows) {
    const Row& last = rows.back();
    EXPECT_NEAR(Count(1), *last.X * 400, 2.5 + static_cast<double>(Dravon_Stream.Excess[1]));
    EXPECT_NEAR(Count(2), *last.Y * 400, 2.5 + static_cast<double>(Dravon_Stream.Excess[2]));
    EXPECT_NEAR(Machine.Position[1], Count(1) / 400, 1e-9);
  }

  Platform_Operations Before;
  Timer_Id Ticks = 0;
};

TEST_P(Serial_Runs_Test, A_program_ends_where_it_should_and_takes_its_time) {
  ASSERT_EQ(Drive().Missing(), "");
  const auto rows = Contour(200);
  Load(rows);
  const Run_Summary summary = Run_Compiled_Program({""});
  EXPECT_TRUE(summary.Finished) << summary.Ended_By;
  Expect_Arrived(rows);
  // 200 chords of 0.1 at 40 units a minute would take half a minute; the boards count the feed on
  // the axis with the most steps, so that chords across the axes take up to 0.7 of their time.
  EXPECT_GT(summary.Machine_Run_Time, 26);
  EXPECT_LT(summary.Machine_Run_Time, 60);
  EXPECT_EQ(Serial_Link.ErrorCount, 0);
}

// Whatever happens on the line: the counters are right at the end, or the run stopped with words.
TEST_P(Serial_Runs_Test, Faults_on_the_line_end_right_or_with_words) {
  for (const char* fault :
       {"code=MoveSteps:20 no-reply", "code=MoveSteps:20 cut=2", "code=MoveSteps:20 checksum=low",
        "code=MoveSteps:20 noise=1B0A07", "code=MoveSteps:20 twice", "code=MoveSteps:20 delay=400",
        "code=ReadStatus:30 no-reply", "code=AxisPrepare:30 no-reply", "code=MoveSteps:20 restart",
        "code=MoveSteps:20 silence=5000", "code=MoveSteps:20 disconnect=3000"}) {
    SCOPED_TRACE(fault);
    Clear_Board_Faults(Board());
    Advance_Virtual_Clock(6'000'000'000);
    Serial_Begin_Session();
    Machine.Position = {};
    Drive().Set_Position();
    Position_Memory = {};
    Application.EscFlag = false;
    const std::string wrong = Add_Board_Fault(Board(), fault);
    if (!wrong.empty()) {
      ADD_FAILURE() << wrong;
      continue;
    }
    const auto rows = Contour(60);
    Load(rows);
    const Run_Summary summary = Run_Compiled_Program({""});
    if (summary.Finished) {
      Expect_Arrived(rows);
    } else {
      EXPECT_NE(summary.Ended_By, "");
      EXPECT_EQ(Machine.CNCMode, CNC_Stopped);
    }
    EXPECT_EQ(Board_Finding_Count(Board().Findings, Board_Finding_Kind::Doubled_Move), 0);
  }
}

TEST_P(Serial_Runs_Test, A_pause_ends_at_a_wire_and_goes_on) {
  const auto rows = Contour(100);
  Load(rows);
  const Timer_Id once = Platform.Start_Timer(3'000, [] {
    if (Machine.CNCMode == CNC_Running) Command_CNC_Pause_Click();
  });
  Command_CNC_Play_Click();
  Platform.Stop_Timer(once);
  EXPECT_EQ(Machine.CNCMode, CNC_Paused);
  EXPECT_FALSE(In_Motion(Board()));
  for (int axis = 1; axis <= 2; ++axis)
    EXPECT_NEAR(Machine.Position[axis], Machine.Theoretical_Pos[axis], 0.02);
  EXPECT_LT(Machine.Run_Step, 100);
  Command_CNC_Play_Click();
  EXPECT_EQ(Machine.CNCMode, CNC_Stopped);
  Expect_Arrived(rows);
}

TEST_P(Serial_Runs_Test, Stop_and_E_stop_leave_nothing_in_the_board) {
  for (const bool emergency : {false, true}) {
    Load(Contour(200));
    const Timer_Id once = Platform.Start_Timer(4'000, [&] {
      if (Machine.CNCMode != CNC_Running) return;
      emergency ? Command_EStop_Click() : Command_CNC_Stop_Click();
    });
    Command_CNC_Play_Click();
    Platform.Stop_Timer(once);
    EXPECT_EQ(Machine.CNCMode, CNC_Stopped);
    EXPECT_FALSE(In_Motion(Board()));
    EXPECT_EQ(Queue_Used(Board()), 0);
    EXPECT_EQ(Machine.Position[1], Count(1) / 400);
    EXPECT_EQ(Machine.Theoretical_Pos[1], Machine.Position[1]);
    EXPECT_EQ(Position_Memory.Doubt, "");
    if (emergency) Command_EStop_Click();
    EXPECT_EQ(Machine.EStop_Flag, false);
  }
}

TEST_P(Serial_Runs_Test, A_held_jog_ends_soon_after_its_release) {
  MachineSetup.Axis_Feed_Rate_Jogging = 40;
  Step_Request jog;
  jog.Steps[1] = 400'000'000;
  jog.Start = 12, jog.Run = jog.End = 40;
  jog.No_Rate_Check = true;
  const Operation_Scope scope(Operation::Jog);
  double released = 0;
  const Timer_Id once = Platform.Start_Timer(2'000, [&] {
    if (released == 0) released = Machine.Position[1];
    Release_Jog();
  });
  Run_Jog(jog, true);
  Platform.Stop_Timer(once);
  EXPECT_GT(released, 0.5);
  EXPECT_LT(Machine.Position[1] - released, 0.3);
  EXPECT_FALSE(In_Motion(Board()));
  EXPECT_EQ(Machine.Theoretical_Pos[1], Machine.Position[1]);
}

// How far X goes in a jog that is held for two seconds, and how far behind that moment. `cut`: the
// cable is pulled then in place of the release.
struct Jog_Ways {
  double Held = 0, Behind = 0;
};

class Serial_Jog_Test : public Serial_Runs_Test {
 protected:
  Jog_Ways Jog(bool cut) {
    Step_Request jog;
    jog.Steps[1] = 400'000;
    jog.Start = 12, jog.Run = jog.End = 40;
    jog.No_Rate_Check = true;
    const Operation_Scope scope(Operation::Jog);
    double held = 0;
    const Timer_Id once = Platform.Start_Timer(2'000, [&] {
      if (held != 0) return;
      held = Count(1) / 400;
      cut ? Harm("now disconnect=20000") : Release_Jog();
    });
    Run_Jog(jog, true);
    Platform.Stop_Timer(once);
    Advance_Virtual_Clock(5'000'000'000);
    Follow_Simulated_Board();
    return {held, Count(1) / 400 - held};
  }
};

TEST_P(Serial_Jog_Test, A_jog_in_one_piece_runs_on_when_the_cable_is_pulled) {
  EXPECT_GT(Jog(true).Behind, 3);  // five seconds at 40 units a minute
}

TEST_P(Serial_Jog_Test, A_jog_in_pieces_ends_by_itself_when_the_cable_is_pulled) {
  MachineSetup.Serial_Jog_Pieces = true;
  const Jog_Ways ways = Jog(true);
  EXPECT_GT(ways.Held, 1.2);  // 1.33 less the ramp: the pieces join
  EXPECT_LT(ways.Behind, 0.25);
  EXPECT_NE(Position_Memory.Doubt, "");
}

TEST_P(Serial_Jog_Test, A_jog_in_pieces_slows_down_behind_its_release) {
  MachineSetup.Serial_Jog_Pieces = true;
  const Jog_Ways ways = Jog(false);
  EXPECT_GT(ways.Held, 1.2);
  EXPECT_LT(ways.Behind, 0.35);
  EXPECT_EQ(Machine.Position[1], Count(1) / 400);
  EXPECT_EQ(Machine.Theoretical_Pos[1], Machine.Position[1]);
  EXPECT_EQ(Position_Memory.Doubt, "");
  EXPECT_EQ(Board_Finding_Count(Board().Findings, Board_Finding_Kind::Rate_Jump), 0);
}

TEST_P(Serial_Runs_Test, The_feed_is_that_of_the_longest_axis_or_that_along_the_path) {
  MachineSetup.Axis_SPI[3] = 1'600;
  Drive().Refresh_Parameters();
  Row slanting;
  slanting.X = 3, slanting.Y = 4, slanting.Z = 0;
  Row up;
  up.Step = 2;
  up.Z = 2;
  const auto seconds = [&] {
    Drive().Begin_Session();
    Machine.Position = {};
    Drive().Set_Position();
    Load({slanting, up});
    const Run_Summary summary = Run_Compiled_Program({""});
    EXPECT_TRUE(summary.Finished) << summary.Ended_By;
    EXPECT_NEAR(Count(2), 1'600, 1);
    return summary.Machine_Run_Time;
  };
  // 60 units a minute: the 4 of Y in 4 s, and Z with four times the scale in 8 s.
  EXPECT_NEAR(seconds(), 12, 0.3);
  MachineSetup.Serial_Path_Feed = true;
  EXPECT_NEAR(seconds(), 7, 0.3);
}

INSTANTIATE_TEST_SUITE_P(Both_Boards, Serial_Jog_Test, ::testing::Values(0, 1));
INSTANTIATE_TEST_SUITE_P(Both_Boards, Serial_Runs_Test, ::testing::Values(0, 1));

}  // namespace
}  // namespace norvik
