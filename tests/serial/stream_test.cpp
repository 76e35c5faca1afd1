// The stream of moves: what is sent, what is never sent twice, and how it ends.
#include "serial/stream.h"

#include "core/application.h"
#include "core/axis_memory.h"
#include "core/messages.h"
#include "core/operation.h"
#include "core/paths.h"
#include "core/setup.h"
#include "drive/drive.h"
#include "drive/drive_status.h"
#include "plain_board.h"
#include "platform/scripted/scripted_platform.h"
#include "serial/commands.h"
#include "serial/monitor.h"
#include "serial/serial_drive.h"
#include "serial/serial_link.h"
#include "serial/serial_session.h"
#include "serial/stream_trace.h"
#include "support/reset.h"
#include "support/temporary_folder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace norvik {
namespace {

using testing::HasSubstr;

template <int Generation>
const Drive_Operations& Of_Board() {
  static constexpr Drive_Operations drive = {.Board = Generation};
  return drive;
}
constexpr auto Of_First_Board = Of_Board<0>, Of_Second_Board = Of_Board<1>;

struct Stream_Test : testing::TestWithParam<int> {
  Scripted_Platform Scripted;
  Plain_Board Board{GetParam()};

  Stream_Test() {
    Reset_Serial();
    Restore_Factory_Setup();
    Drive_Choice.Of_Setup = GetParam() > 0 ? Of_Second_Board : Of_First_Board;
    for (auto& scale : MachineSetup.Axis_SPI) scale = 400;
    MachineSetup.Axis_Ramp_Rate = 5;
    MachineSetup.Axis_Ramp_Start = 12;
    MachineSetup.Axis_Backlash_Enable = false;
    Serial_Session_Host.Choose_Device = [](int, const std::string&, const std::string&) {
      return std::string("port");
    };
    Serial_Begin_Session();
    Board.Port.Sent.clear();
  }
  ~Stream_Test() override {
    Reset_Serial();
    Drive_Choice = {};
  }

  bool Second() const { return GetParam() > 0; }
  static Step_Request Along_X(std::int32_t steps) {
    Step_Request request;
    request.Steps[1] = std::abs(steps);
    request.Negative[1] = steps < 0;
    request.Start = 12, request.Run = 60, request.End = 12;
    return request;
  }
};

TEST_P(Stream_Test, The_session_finds_configures_and_loads_the_board) {
  EXPECT_EQ(Serial_Missing(), "");
  EXPECT_TRUE(Dravon.ControllerPresent);
  EXPECT_EQ(Serial_Session.LastRampRate, 5);
  EXPECT_EQ(Messages.Panel[3], "Dravon OK");
  Serial_Begin_Session();
  EXPECT_EQ(Board.Codes(),
            Second() ? "9 8 22 28 29 31 44 45 11 18 11 41 24" : "9 8 22 28 29 31 11 18 11");
}

TEST_P(Stream_Test, A_loaded_setup_goes_to_the_board_that_is_in_session_and_rests) {
  MachineSetup.Axis_Ramp_Rate = 8;
  Serial_Setup_Loaded();
  EXPECT_EQ(Serial_Session.LastRampRate, 8);
  EXPECT_EQ(Board.Codes(), Second() ? "22 28 29 31 44 45" : "22 28 29 31");
  {
    const Operation_Scope jog(Operation::Jog);
    Serial_Setup_Loaded();
    EXPECT_EQ(Board.Codes(), "");
  }
  Serial_End_Session();
  Board.Codes();
  Serial_Setup_Loaded();
  EXPECT_EQ(Board.Codes(), "");
}

TEST_P(Stream_Test, A_board_of_the_other_generation_gets_no_frame_that_moves) {
  Board.Generation = 1 - GetParam();
  Serial_Begin_Session();
  EXPECT_EQ(Board.Codes(), "9 8");
  EXPECT_THAT(std::string(Serial_Missing()), HasSubstr("choose the other one"));
}

TEST_P(Stream_Test, A_move_is_status_axes_steps_in_this_order) {
  Step_Request request = Along_X(1000);
  request.Steps[3] = 300;
  request.Negative[3] = true;
  EXPECT_EQ(Serial_Move(request, std::nullopt, 258), Move_End::Done);
  const Bytes move = Board.Last_Of(10);
  EXPECT_EQ(Board.Codes(), Second() ? "11 45 17 17 10" : "11 17 17 10");
  EXPECT_EQ(move[29], 4);  // Z negative
  if (Second()) {
    EXPECT_EQ(Bytes(move.begin() + 34, move.begin() + 37), (Bytes{0, 1, 2}));
  }
  EXPECT_EQ(Serial_Wait_Empty(), Move_End::Done);
  EXPECT_EQ(Machine.Position[1], 2.5);
  EXPECT_EQ(Machine.Position[3], -0.75);
}

TEST_P(Stream_Test, Directions_that_are_turned_round_keep_positions_the_programs) {
  MachineSetup.Axis_Polarity[1] = true;
  Machine.Position[1] = 1;
  ASSERT_TRUE(DravonLoadPosition({{1, 0, 0, 0}}));
  EXPECT_EQ(Board.Counter[0], -400);
  Serial_Move(Along_X(400), std::nullopt, 1);
  EXPECT_EQ(Board.Last_Of(10)[29], 1);
  EXPECT_EQ(Serial_Wait_Empty(), Move_End::Done);
  EXPECT_EQ(Board.Counter[0], -800);
  EXPECT_EQ(Machine.Position[1], 2);
}

TEST_P(Stream_Test, A_lost_reply_is_asked_after_and_the_move_not_sent_again) {
  Board.Lose_Replies = 1;
  EXPECT_EQ(Serial_Move(Along_X(1000), std::nullopt, 1), Move_End::Done);
  EXPECT_EQ(Board.Count_Of(10), 1);
  EXPECT_EQ(Serial_Wait_Empty(), Move_End::Done);
  EXPECT_EQ(Machine.Position[1], 2.5);
}

TEST_P(Stream_Test, A_lost_reply_of_a_move_that_is_already_done_is_told_by_the_counters) {
  Serial_Move(Along_X(100), std::nullopt, 1);
  Board.Port.Sent.clear();
  Board.Lose_Replies = 1;
  // Both are done before anybody can ask.
  const auto answer = Board.Port.Answer;
  Board.Port.Answer = [&](const Bytes& frame) {
    if (frame[1] == 15) Board.Finish(2);
    return answer(frame);
  };
  EXPECT_EQ(Serial_Move(Along_X(1000), std::nullopt, 2), Move_End::Done);
  EXPECT_EQ(Board.Count_Of(10), 1);
  EXPECT_EQ(Serial_Wait_Empty(), Move_End::Done);
  EXPECT_EQ(Machine.Position[1], 2.75);
}

TEST_P(Stream_Test, A_move_that_did_not_arrive_is_sent_again_from_rest) {
  Serial_Move(Along_X(100), std::nullopt, 1);
  Board.Lose_Moves = 1;
  Step_Request fast = Along_X(1000);
  fast.Start = 60;
  EXPECT_EQ(Serial_Move(fast, std::nullopt, 2), Move_End::Done);
  EXPECT_EQ(Board.Count_Of(10), 3);
  const Bytes& again = Board.Last_Of(10);
  EXPECT_EQ(again[21] * 256 + again[22], 80);  // 12 IPM at 400 steps
  EXPECT_EQ(Serial_Wait_Empty(), Move_End::Done);
  EXPECT_EQ(Machine.Position[1], 2.75);
}

TEST_P(Stream_Test, A_dead_link_ends_the_run_and_puts_the_positions_in_doubt) {
  Serial_Move(Along_X(400), std::nullopt, 7);
  Board.Dead = true;
  EXPECT_EQ(Serial_Move(Along_X(1000), std::nullopt, 8), Move_End::Failed);
  EXPECT_LE(Board.Count_Of(10), 2);
  EXPECT_THAT(Dravon_Stream.Failure, HasSubstr("at step 8"));
  EXPECT_THAT(Dravon_Stream.Failure, HasSubstr("Last known position"));
  EXPECT_NE(Position_Memory.Doubt, "");
  EXPECT_NE(Serial_Missing(), "");
  Board.Port.Sent.clear();
  EXPECT_EQ(Serial_Move(Along_X(1000), std::nullopt, 9), Move_End::Failed);
  EXPECT_EQ(Board.Count_Of(10), 0);

  // Plugged in again: the stop that could not be delivered comes first, the place is read back.
  Board.Dead = false;
  Scripted.Advance(2);
  Board.Port.Sent.clear();
  Board.Finish(1);
  Serial_Tick();
  EXPECT_EQ(Serial_Missing(), "");
  EXPECT_EQ(Board.Count_Of(12), 1);
  EXPECT_EQ(Board.Count_Of(18), 0);
  EXPECT_EQ(Machine.Position[1], 1);
  EXPECT_EQ(Machine.Theoretical_Pos[1], 1);
  EXPECT_NE(Position_Memory.Doubt, "");
}

TEST_P(Stream_Test, A_refused_move_stops_with_a_reason) {
  Board.Refuse_Moves = 100;
  EXPECT_EQ(Serial_Move(Along_X(1000), std::nullopt, 3), Move_End::Failed);
  EXPECT_EQ(Board.Count_Of(10), 5);
  EXPECT_THAT(Dravon_Stream.Failure, HasSubstr("refuses the move of step 3"));
  EXPECT_FALSE(Application.EscFlag);
}

TEST_P(Stream_Test, Room_in_the_queue_by_the_rule_of_each_board) {
  Stream_Limit.Seconds = 0;
  Board.Finishes_When_Asked = false;
  const int capacity = Second() ? 3'250 : 39;
  Board.Queue.resize(static_cast<std::size_t>(capacity - 5));
  Serial_Move(Along_X(1), std::nullopt, 1);  // 4 places are left
  EXPECT_TRUE(Dravon_Stream.BufferFull);
  int looks = 0;
  Scripted.On_Yield = [&] {
    if (Dravon_Stream.BufferFull && ++looks > 50) Board.Finish(1);
  };
  Board.Port.Sent.clear();
  DravonWaitForBuffer();
  const auto free = capacity - static_cast<int>(Board.Queue.size());
  EXPECT_EQ(free, Second() ? 21 : 4);
}

TEST_P(Stream_Test, The_stream_holds_no_more_seconds_than_it_should) {
  Stream_Limit.Seconds = 5;
  Board.Finishes_When_Asked = false;
  std::int64_t due = 0;
  Scripted.On_Yield = [&] {
    if (Scripted.Now < due) return;
    due = Scripted.Now + 2'000'000'000;
    Board.Finish(1);
  };
  std::size_t most = 0;
  for (int i = 1; i <= 20; ++i) {
    Serial_Move(Along_X(800), std::nullopt, i);  // about two seconds
    most = std::max(most, Board.Queue.size());
  }
  EXPECT_EQ(most, 9U);  // never fewer than 8
  Board.Finishes_When_Asked = true;
  EXPECT_EQ(Serial_Wait_Empty(), Move_End::Done);
}

TEST_P(Stream_Test, A_stop_goes_out_once_and_the_place_is_the_boards) {
  Serial_Move(Along_X(1000), std::nullopt, 1);
  Board.Counter[0] = 300;
  Board.Port.Sent.clear();
  Serial_Stop();
  EXPECT_EQ(Board.Count_Of(12), 1);
  EXPECT_EQ(Machine.Position[1], 0.75);
  EXPECT_EQ(Machine.Theoretical_Pos[1], 0.75);
  Serial_Stop();  // it stands
  EXPECT_EQ(Board.Count_Of(12), 1);
}

TEST_P(Stream_Test, A_stop_within_the_yield_of_a_move_keeps_that_move_back) {
  Serial_Move(Along_X(100), std::nullopt, 1);
  Board.Port.Sent.clear();
  bool stopped = false;
  Scripted.On_Yield = [&] {
    if (!std::exchange(stopped, true)) Serial_Stop();
  };
  EXPECT_EQ(Serial_Move(Along_X(1000), std::nullopt, 2), Move_End::Stopped);
  EXPECT_EQ(Board.Count_Of(10), 0);
  EXPECT_EQ(Board.Count_Of(12), 1);
}

TEST_P(Stream_Test, No_move_leaves_under_the_emergency_stop) {
  Serial_Move(Along_X(1000), std::nullopt, 1);
  Machine.EStop_Flag = true;
  Serial_EStop(true);
  EXPECT_EQ(Board.Count_Of(12), 51);
  Board.Port.Sent.clear();
  EXPECT_EQ(Serial_Move(Along_X(1000), std::nullopt, 2), Move_End::EStop);
  EXPECT_EQ(Board.Codes(), "");
  Machine.EStop_Flag = false;
  Serial_EStop(false);
  EXPECT_EQ(Board.Codes(), "25 12 25 11 24");
  // On a dead link it is over in half a second.
  Board.Dead = true;
  const std::int64_t start = Scripted.Now;
  EXPECT_FALSE(DravonEStop());
  EXPECT_LE(Scripted.Now - start, 501'000'000);
}

TEST_P(Stream_Test, Counters_elsewhere_end_the_run) {
  Serial_Move(Along_X(1000), std::nullopt, 1);
  Board.Queue.clear();  // a restart: everything is forgotten
  Board.Counter = {-4'000, 0, 0, 0};
  EXPECT_EQ(Serial_Move(Along_X(1000), std::nullopt, 2), Move_End::Failed);
  EXPECT_EQ(Board.Count_Of(10), 1);
  EXPECT_THAT(Dravon_Stream.Failure, HasSubstr("does not stand where it was sent"));
  EXPECT_NE(Position_Memory.Doubt, "");
}

TEST_P(Stream_Test, A_switch_or_an_encoder_ends_the_moves_with_its_axis) {
  for (int step = 1; step <= 3; ++step) Serial_Move(Along_X(1000), std::nullopt, step);
  // The first switch of X: the board stops within the first move and drops its queue.
  Board.Limits = 1;
  Board.Counter[0] = 500;
  Board.Queue.clear();
  Dravon_Stream.BufferFull = true;
  EXPECT_EQ(Serial_Move(Along_X(1000), std::nullopt, 4), Move_End::Limit);
  EXPECT_EQ(Drive_Status.Free_Negative[1], false);
  EXPECT_EQ(Machine.Position[1], 1.25);
  EXPECT_EQ(Board.Count_Of(10), 3);
  // Away from it the latch stands in no way.
  EXPECT_EQ(Position_Memory.Doubt, "");
  EXPECT_EQ(Serial_Move(Along_X(100), std::nullopt, 3), Move_End::Done);
  EXPECT_EQ(Serial_Wait_Empty(), Move_End::Done);
  // A seek meets it while it runs.
  Serial_Move(Along_X(-1000), std::nullopt, 4);
  Board.Queue.clear();
  EXPECT_EQ(Serial_Wait_Empty(), Move_End::Limit);
  if (!Second()) return;
  Serial_Move(Along_X(100), std::nullopt, 5);
  Board.Encoder_Faults = 2;
  EXPECT_EQ(Serial_Move(Along_X(100), std::nullopt, 6), Move_End::Failed);
  EXPECT_THAT(Dravon_Stream.Failure, HasSubstr("encoder of Y"));
}

TEST_P(Stream_Test, A_jog_ends_by_its_release) {
  Step_Request jog = Along_X(100'000);
  jog.No_Rate_Check = true;
  Machine.Jog_Stop_Request = true;
  EXPECT_EQ(Serial_Move(jog, std::nullopt, 0), Move_End::Done);
  Board.Counter[0] = 5;
  Serial_Release_Jog();
  const Bytes& stop = Board.Last_Of(30);
  EXPECT_EQ(stop[2] + 256 * stop[3], 80);
  Board.Queue.clear();
  EXPECT_EQ(Serial_Wait_Empty(), Move_End::Done);
  EXPECT_EQ(Dravon_Stream.Sent_To[1], 5);
  // Released before the move has left.
  Board.Port.Sent.clear();
  Machine.Jog_Stop_Request = false;
  EXPECT_EQ(Serial_Move(jog, std::nullopt, 0), Move_End::Released);
  EXPECT_EQ(Board.Count_Of(10), 0);
}

TEST_P(Stream_Test, Dwells_never_undo_a_switch_by_hand) {
  Step_Request on = Along_X(10);
  on.Out[2] = 2;
  Serial_Move(on, 5'000, 1);
  Serial_Dwell(0.5, 2);
  const Bytes same = Board.Last_Of(10);
  EXPECT_EQ(same.size(), 39U);
  EXPECT_EQ(same[4] + 256 * same[3], 500);
  EXPECT_EQ(same[30], 32);
  Dravon_Stream.Switched_By_Hand = true;
  Serial_Dwell(0.5, 3);
  const Bytes& after = Board.Last_Of(10);
  EXPECT_EQ(after[30], 0);
  EXPECT_EQ(after[32], 255);
  EXPECT_EQ(after[33], 255);
}

TEST_P(Stream_Test, Backlash_is_taken_up_within_the_move_and_is_no_way) {
  MachineSetup.Axis_Backlash_Enable = true;
  MachineSetup.Axis_Backlash[1] = 0.0138F;  // 5.52 steps
  Serial_Move(Along_X(-400), std::nullopt, 1);
  EXPECT_EQ(Serial_Wait_Empty(), Move_End::Done);
  EXPECT_EQ(Board.Counter[0], -406);
  EXPECT_EQ(Machine.Position[1], -1);
  Serial_Move(Along_X(-400), std::nullopt, 2);
  Serial_Move(Along_X(800), std::nullopt, 3);
  EXPECT_EQ(Serial_Wait_Empty(), Move_End::Done);
  EXPECT_EQ(Board.Counter[0], 0);
  EXPECT_EQ(Machine.Position[1], 0);
}

TEST_P(Stream_Test, Positions_become_whole_counts_and_must_fit) {
  MachineSetup.Axis_SPI[1] = 100;
  EXPECT_EQ((*Counts_Of({{2.3, -0.01, 0, 0}}))[1], 230);
  EXPECT_EQ((*Counts_Of({{2.3, -0.01, 0, 0}}))[2], -4);
  EXPECT_FALSE(Counts_Of({{90'000, 0, 0, 0}}));
  Board.Port.Sent.clear();
  EXPECT_FALSE(DravonLoadPosition({{90'000, 0, 0, 0}}));
  EXPECT_EQ(Board.Codes(), "");
  ASSERT_TRUE(DravonLoadPosition({{80'000, 0, 0, 0}}));
  Board.Port.Sent.clear();
  EXPECT_EQ(Serial_Move(Along_X(400'000), std::nullopt, 1), Move_End::Failed);
  EXPECT_EQ(Board.Count_Of(10), 0);
}

TEST_P(Stream_Test, Spindle_values) {
  MachineSetup.Dravon_Spindle_RPM = 10'000;
  EXPECT_EQ(PWM_Of(std::nullopt), Unchanged_PWM);
  EXPECT_EQ(PWM_Of(32'767), Unchanged_PWM);
  EXPECT_EQ(PWM_Of(5'000), 511);
  EXPECT_EQ(PWM_Of(-3), 0);
  EXPECT_EQ(PWM_Of(20'000), 1'023);
  MachineSetup.Dravon_PWM_Inv = true;
  EXPECT_EQ(PWM_Of(5'000), 512);
  EXPECT_EQ(PWM_Of(32'767), Unchanged_PWM);
  DravonSetPWM(2'000);
  EXPECT_EQ(Board.Last_Of(10)[32], 0);
}

TEST_P(Stream_Test, A_dry_queue_is_an_alarm_but_for_chords_of_an_arc) {
  Stream_Limit.Seconds = 0;
  Board.Finishes_When_Asked = false;
  for (const bool arc : {true, false}) {
    SCOPED_TRACE(arc);
    Messages = {};
    Begin_Stream();
    Step_Request chord = Along_X(100);
    chord.End = 60;
    for (int i = 1; i <= 6; ++i) Serial_Move(chord, std::nullopt, i);
    EXPECT_TRUE(Dravon_Stream.StreamStarted);
    Board.Finish(6);
    chord.Is_Arc = arc;
    Serial_Move(chord, std::nullopt, 7);
    EXPECT_EQ(Dravon_Stream.Ran_Dry, arc ? 0 : 1);
    EXPECT_EQ(Messages.Panel[2], arc ? "DravonBuffer= " + std::to_string(Second() ? 3'249 : 38)
                                     : "DravonBuffer Empty");
    Board.Finish(1);
    Serial_Stop();
  }
}

TEST_P(Stream_Test, The_trace_is_off_until_it_is_asked_for) {
  const Temporary_Folder folder;
  Application.Table_Folder = folder.Path;
  const std::string path = folder.File("TestFile2.csv");
  Serial_Move(Along_X(100), std::nullopt, 1);
  EXPECT_FALSE(FileExists(path));
  Dravon_Trace.Enabled = true;
  Step_Request request = Along_X(-1000);
  request.Steps[3] = 300;
  request.Is_Arc = true;
  request.Out[1] = 2;
  Serial_Move(request, 5'000, 258);
  EXPECT_EQ(Read_Whole_File(path), "258,-1000,0,300,0,12,60,12,1,1,2,1,1,1,5000\r\n");
  Application.Table_Folder = folder.File("missing");
  EXPECT_EQ(Serial_Move(request, std::nullopt, 259), Move_End::Done);
  EXPECT_THAT(Dravon_Trace.Failed_Path, HasSubstr("missing"));
}

TEST_P(Stream_Test, The_last_frames_stop_the_board_behind_a_frame_that_was_cut_off) {
  const auto bytes = Last_Frames_For_Board();
  EXPECT_EQ(Bytes(bytes.begin(), bytes.begin() + 4), (Bytes{27, 12, 39, 0}));
  EXPECT_EQ(Bytes(bytes.end() - 5, bytes.end()), (Bytes{27, 14, 5, 46, 0}));
  EXPECT_GT(bytes.size(), 4 * 51U);  // a frame has 39 bytes at most
}

TEST_P(Stream_Test, A_spindle_level_waits_for_the_line) {
  Dravon.DravonBusy = true;
  Serial_Drive.Set_Spindle_Level(300);
  Serial_Drive.Set_Spindle_Level(511);
  EXPECT_EQ(Board.Count_Of(10), 0);
  Dravon.DravonBusy = false;
  Serial_Drive.Tick();
  EXPECT_EQ(Board.Count_Of(10), 1);
  EXPECT_EQ(Board.Last_Of(10)[32], 127);
  EXPECT_EQ(Drive_Status.Spindle_Level, 511);
  Machine.EStop_Flag = true;
  Serial_Drive.Set_Spindle_Level(0);
  EXPECT_EQ(Board.Count_Of(10), 1);
}

INSTANTIATE_TEST_SUITE_P(Both_Boards, Stream_Test, testing::Values(0, 1));

}  // namespace
}  // namespace norvik
