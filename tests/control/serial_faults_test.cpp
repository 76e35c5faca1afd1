// Every fault of the simulated boards in the middle of everything that an operator does: at the end
// the counters are right, or it stopped with words. One board, one virtual clock, for each case.
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
#include "simulate/board_port.h"
#include "simulate/virtual_clock.h"

#include <cmath>

namespace norvik {
namespace {

// What an operation has come to.
struct Fault_Outcome {
  bool Finished = false;        // it says that all of it was done
  bool Ended_By_Guard = false;  // it would have waited for ever
  std::string Words;
  double X = 0, Y = 0;  // where it should have ended, when it finished
};

class Serial_Faults_Test : public Control_Test, public ::testing::WithParamInterface<int> {
 public:
  Serial_Faults_Test() {
    Free_Axes();
    MachineSetup.Axis_Depth.Fill(1e4F);
    MachineSetup.Parallel_Port_Type = static_cast<std::int16_t>(2 + GetParam());
    MachineSetup.Axis_Ramp_Rate = 5;
    MachineSetup.Axis_Ramp_Start = 12;
    MachineSetup.Dravon_SASF = 1;
    MachineSetup.Axis_HomePos = {{"1", "-2", "0.5", ""}};
    MachineSetup.Axis_Feed_Rate_Travel = 60;
    for (int axis = 1; axis <= 2; ++axis) {
      MachineSetup.Dravon_Enc_Enable[axis] = MachineSetup.Dravon_Enc_StopOnFault[axis] = 1;
      MachineSetup.Dravon_Enc_MaxError[axis] = 20;
    }
    MachineSetup.Dravon_Enc_CFactor.Fill(1);
    Connect_Control();
    Install_Virtual_Clock();
    Install_Simulated_Boards();
    Serial_Session_Host.Choose_Device = [](int generation, const std::string&, const std::string&) {
      return std::string(generation > 0 ? Simulated_Pelmar_Device : Simulated_Dravon_Device);
    };
    Ticks = Platform.Start_Timer(100, [] {
      Drive().Tick();
      Watch_Machine();
    });
  }
  ~Serial_Faults_Test() override {
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

  // Another board, another session, everything at 0.
  void Begin_Anew() {
    Drive().End_Session();
    Forget_Simulated_Boards();
    Machine = {};
    Controller = {};
    Messages = {};
    Position_Memory = {};
    Drive_Status = {};
    Application.EscFlag = false;
    Drive().Begin_Session();
    EXPECT_EQ(Drive().Missing(), "");
  }

  // Calls `act` once, so many seconds from now, in a yield.
  struct Once {
    Once(double seconds, std::function<void()> act)
        : Id(Platform.Start_Timer(static_cast<int>(seconds * 1'000), [this, act = std::move(act)] {
            if (!std::exchange(Done, true)) act();
          })) {}
    ~Once() { Platform.Stop_Timer(Id); }
    Once(const Once&) = delete;
    Once& operator=(const Once&) = delete;
    bool Done = false;
    Timer_Id Id;
  };

  static std::vector<Row> Fault_Contour() {
    std::vector<Row> rows;
    for (int i = 1; i <= 40; ++i) {
      Row row;
      row.Step = i;
      row.X = std::sin(i * 0.1);
      row.Y = 1 - std::cos(i * 0.1);
      row.Feed = 40;
      rows.push_back(row);
    }
    return rows;
  }

  Fault_Outcome Run_Rows(const std::vector<Row>& rows) {
    Load(rows);
    Fault_Outcome outcome;
    const Once guard(60, [&] {
      outcome.Ended_By_Guard = true;
      Command_CNC_Stop_Click();
    });
    const Run_Summary summary = Run_Compiled_Program({""});
    outcome.Finished = summary.Finished;
    outcome.Words = summary.Ended_By;
    outcome.X = *rows.back().X;
    outcome.Y = *rows.back().Y;
    return outcome;
  }

  Fault_Outcome Contour_Case() { return Run_Rows(Fault_Contour()); }

  Fault_Outcome Jog_Case() {
    Step_Request jog;
    jog.Steps[1] = 400'000;
    jog.Start = 12, jog.Run = jog.End = 40;
    jog.No_Rate_Check = true;
    const Operation_Scope scope(Operation::Jog);
    const Once release(1.5, [] { Release_Jog(); });
    Run_Jog(jog, true);
    return {true, false, "", Machine.Position[1], 0};
  }

  Fault_Outcome Home_Case() {
    const Once guard(60, [] { Command_CNC_Stop_Click(); });
    Command_Home_Click();
    const bool there = std::abs(Machine.Theoretical_Pos[1] - 1) < 0.01 &&
                       std::abs(Machine.Theoretical_Pos[2] + 2) < 0.01;
    return {there && Controller.Stop_Text.empty(), guard.Done, Controller.Stop_Text, 1, -2};
  }

  static Row Line_To(int step, double x) {
    Row row;
    row.Step = step;
    row.X = x;
    row.Y = 0;
    return row;
  }

  Fault_Outcome Dwell_Case() {
    Row dwell;
    dwell.Step = 2;
    dwell.Motion = 0;
    dwell.Dwell = 3;
    return Run_Rows({Line_To(1, 0.5), dwell, Line_To(3, 1)});
  }

  Fault_Outcome Aux_Case() {
    Row wait;
    wait.Step = 2;
    wait.Motion = 0;
    wait.Aux_Wait = std::int16_t{1};
    const Once on(2, [this] { Set_Board_Input(Board(), "aux", 1); });
    return Run_Rows({Line_To(1, 0.5), wait, Line_To(3, 1)});
  }

  Fault_Outcome Pause_Case() {
    const Once pause(1.5, [] {
      if (Machine.CNCMode == CNC_Running) Command_CNC_Pause_Click();
    });
    return Run_Rows(Fault_Contour());
  }

  Fault_Outcome EStop_Case() {
    const Once stop(1.5, [] { Command_EStop_Click(); });
    Fault_Outcome outcome = Run_Rows(Fault_Contour());
    outcome.Finished = false;
    return outcome;
  }

  // Everything that the operator can read by now.
  static std::string All_Words(const Fault_Outcome& outcome) {
    return outcome.Words + Position_Memory.Doubt + std::string(Drive().Missing()) +
           std::string(Drive().Alarm()) + Dravon_Stream.Failure;
  }

  void Judge(const Fault_Outcome& outcome) {
    EXPECT_EQ(Board_Finding_Count(Board().Findings, Board_Finding_Kind::Doubled_Move), 0);
    const std::string words = All_Words(outcome);
    if (!outcome.Finished) {
      EXPECT_NE(words, "");
      EXPECT_EQ(Machine.CNCMode, CNC_Stopped);
    }
    // Told as uncertain: nothing moves before the operator has looked.
    if (!Position_Memory.Doubt.empty() || !Drive().Missing().empty()) return;
    Follow_Simulated_Board();
    EXPECT_FALSE(In_Motion(Board())) << words;
    for (int axis = 1; axis <= 2; ++axis) {
      const double place = static_cast<double>(Counter_Of(Board(), axis)) / 400;
      EXPECT_NEAR(Machine.Position[axis], place, 1e-9) << "axis " << axis << " " << words;
    }
    if (!outcome.Finished) return;
    constexpr double slack = 3.0 / 400;  // steps that whole dividers add
    EXPECT_NEAR(Machine.Position[1], outcome.X, slack);
    EXPECT_NEAR(Machine.Position[2], outcome.Y, slack);
  }

  struct Situation {
    const char* Name;
    Fault_Outcome (Serial_Faults_Test::*Run)();
    std::vector<const char*> Moments;
    bool May_Wait = false;  // for a level that a fault keeps away
  };

  Timer_Id Ticks = 0;
};

TEST_P(Serial_Faults_Test, Every_fault_in_every_operation_ends_right_or_with_words) {
  using Case = Serial_Faults_Test;
  const std::vector<Situation> situations = {
      {"contour", &Case::Contour_Case, {"time=1.2", "code=MoveSteps:15", "code=AxisPrepare:20"}},
      {"jog", &Case::Jog_Case, {"time=0.8", "code=JogStop"}},
      {"homing", &Case::Home_Case, {"time=0.7", "code=ReadMemory:3"}},
      {"dwell", &Case::Dwell_Case, {"code=MoveSteps:2", "time=2"}},
      {"aux wait", &Case::Aux_Case, {"time=1.5", "code=ReadStatus:20"}, true},
      {"pause", &Case::Pause_Case, {"time=1.6", "code=ReadMemory:2"}},
      {"E-stop", &Case::EStop_Case, {"time=1.45", "code=StopMotion"}},
  };
  const char* const faults[] = {
      "lose=3:2",      "flip=2:5",    "no-reply",     "cut=3",          "checksum=low",
      "checksum=high", "delay=100",   "delay=600",    "twice",          "noise=1B0A0700",
      "bursts=2:30",   "silence=400", "silence=5000", "disconnect=300", "disconnect=4000",
      "restart",       "jump=X:300",  "input=aux:on", "input=low-x:on", "slip=X:50",
      "capacity=10",   "config=14:9", "watchdog=3",
  };
  for (const Situation& situation : situations) {
    for (const char* moment : situation.Moments) {
      for (const char* fault : faults) {
        SCOPED_TRACE(std::string(situation.Name) + ": " + moment + " " + fault);
        Begin_Anew();
        const std::string wrong = Add_Board_Fault(Board(), std::string(moment) + " " + fault);
        if (!wrong.empty()) {
          ADD_FAILURE() << wrong;
          continue;
        }
        const Fault_Outcome outcome = (this->*situation.Run)();
        EXPECT_TRUE(!outcome.Ended_By_Guard || situation.May_Wait);
        Judge(outcome);
      }
    }
  }
}

TEST_P(Serial_Faults_Test, An_encoder_fault_switches_the_outputs_off_where_the_E_stop_does) {
  if (GetParam() == 0) GTEST_SKIP() << "has no encoders";
  for (const bool off : {false, true}) {
    Begin_Anew();
    MachineSetup.E_Stop_Output_Disable = off;
    Drive().Switch_Output(3, true);
    Board().Axes[2].Encoder_Fault = true;
    for (int i = 0; i < 20; ++i) {
      Advance_Virtual_Clock(50'000'000);
      Platform.Do_Events();
    }
    EXPECT_EQ(Drive().Alarm(), "Dravon Fault");
    EXPECT_EQ(Board().Outputs, off ? 0 : 4);
  }
}

INSTANTIATE_TEST_SUITE_P(Both_Boards, Serial_Faults_Test, ::testing::Values(0, 1));

}  // namespace
}  // namespace norvik
