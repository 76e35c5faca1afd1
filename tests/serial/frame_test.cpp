// Frames and replies, byte for byte: worked out by hand.
#include "platform/scripted/scripted_platform.h"
#include "serial/commands.h"
#include "serial/move_entry.h"
#include "serial/serial_frame.h"
#include "serial/serial_link.h"
#include "support/serial_port.h"

#include <random>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace norvik {
namespace {

Bytes Of(const Serial_Frame& frame) {
  return {frame.View().begin(), frame.View().end()};
}

TEST(Serial_Frame_Test, Commands_without_fields_are_four_bytes) {
  EXPECT_EQ(Of(Command_Frame(Serial_Code::StopMotion, 0)), (Bytes{27, 12, 39, 0}));
  EXPECT_EQ(Of(Command_Frame(Serial_Code::ReadConfig, 1)), (Bytes{27, 46, 73, 0}));
  EXPECT_EQ(Hex_Text(Bytes{27, 12, 39, 0}), "1B 0C 27 00");
}

TEST(Serial_Frame_Test, Counters_are_24_bits_with_sign_and_the_second_board_gets_a_pad) {
  Payload payload;
  payload.Add(1, 3).Add(-1, 3).Add(-65536, 3).Add(0x010203, 3);
  // 27 + 18 + 1 + 3*255 + 255 + 1+2+3 = 1072 = 0x430
  EXPECT_EQ(Of(Command_Frame(Serial_Code::LoadStepCounters, 0, payload)),
            (Bytes{27, 18, 0, 0, 1, 255, 255, 255, 255, 0, 0, 1, 2, 3, 0x30, 4}));
  EXPECT_EQ(Of(Command_Frame(Serial_Code::LoadStepCounters, 1, payload)),
            (Bytes{27, 18, 0, 0, 1, 255, 255, 255, 255, 0, 0, 1, 2, 3, 0, 0x30, 4}));
}

TEST(Serial_Frame_Test, A_reply_is_judged_by_length_and_checksum) {
  const Bytes good{27, 12, 39, 0};
  EXPECT_EQ(Look_At_Reply(good, 4), Reply_Fault::None);
  EXPECT_EQ(Look_At_Reply(good, 5), Reply_Fault::Length);
  EXPECT_EQ(Look_At_Reply(Bytes{27, 12, 39, 1}, 4), Reply_Fault::Checksum);
  EXPECT_EQ(Look_At_Reply(Bytes{27, 12, 38, 0}, 4), Reply_Fault::Checksum);
  // Longer than asked for: its checksum stands at its real end.
  EXPECT_EQ(Look_At_Reply(Framed({27, 200, 200, 9}), 4), Reply_Fault::None);
  EXPECT_EQ(Look_At_Reply(Framed(Bytes(97, 1)), 4), Reply_Fault::None);
  EXPECT_EQ(Look_At_Reply(Framed(Bytes(98, 1)), 4), Reply_Fault::Length);
  EXPECT_EQ(Look_At_Reply(Bytes{7}, 1), Reply_Fault::Length);
}

struct Serial_Link_Test : testing::Test {
  Scripted_Platform Scripted;
  Serial_Port Port;
  Serial_Link_Test() {
    Serial_Link = {};
    Serial_Session = {};
    OpenSerial("port", 0);
  }
  ~Serial_Link_Test() override { Serial_Link = {}; }
};

TEST_F(Serial_Link_Test, A_send_is_made_once_and_waits_a_quarter_of_a_second) {
  EXPECT_THAT(Port.Opened, testing::ElementsAre("port 115200"));
  const std::int64_t start = Scripted.Now;
  EXPECT_FALSE(Transmit(Serial_Code::StopMotion));
  EXPECT_EQ(Port.Sent.size(), 1U);
  EXPECT_NEAR(static_cast<double>(Scripted.Now - start), 250e6, 1e6);
  EXPECT_EQ(Scripted.Yields, 0);
  EXPECT_EQ(Serial_Link.LastTxError, "Transmit TX Error");
  EXPECT_EQ(Serial_Link.LengthErrorCount, 1);
  EXPECT_EQ(Serial_Link.ErrorCount, 1);
  EXPECT_FALSE(Serial_Link.TxBusy);
  EXPECT_THAT(Serial_Link.Last_Error, testing::HasSubstr("StopMotion"));
}

TEST_F(Serial_Link_Test, A_wrong_high_byte_of_the_checksum_is_no_length_error) {
  Port.Answer = [](const Bytes&) { return Bytes{27, 12, 39, 1}; };
  EXPECT_FALSE(Transmit(Serial_Code::StopMotion));
  EXPECT_EQ(Serial_Link.ChecksumErrorCount, 1);
  EXPECT_EQ(Serial_Link.LengthErrorCount, 0);
  Port.Answer = [](const Bytes&) { return Framed(Bytes(98, 1)); };
  EXPECT_FALSE(Transmit(Serial_Code::StopMotion));
  EXPECT_EQ(Serial_Link.LengthErrorCount, 1);
}

TEST_F(Serial_Link_Test, What_is_left_of_a_late_reply_is_thrown_away) {
  Port.Answer = [](const Bytes&) { return Bytes{9, 9, 9}; };
  EXPECT_FALSE(Transmit(Serial_Code::StopMotion));
  Port.Waiting = {1, 2, 3};
  Port.Answer = [](const Bytes&) { return Framed({27, 12}); };
  EXPECT_TRUE(Transmit(Serial_Code::StopMotion));
  EXPECT_EQ(Serial_Link.LastTxError, "");
}

TEST_F(Serial_Link_Test, A_busy_sender_refuses_and_stays_busy) {
  Serial_Link.TxBusy = true;
  EXPECT_FALSE(Transmit(Serial_Code::StopMotion));
  EXPECT_EQ(Serial_Link.LastTxError, "Transmit Busy");
  EXPECT_TRUE(Serial_Link.TxBusy);
  Serial_Link.TxBusy = false;
  CloseSerial();
  EXPECT_FALSE(Transmit(Serial_Code::StopMotion));
  EXPECT_TRUE(Port.Sent.empty());
  EXPECT_EQ(Serial_Link.CommsCount, 0);
}

TEST_F(Serial_Link_Test, The_emergency_stop_goes_out_51_times_whatever_comes_back) {
  const std::int64_t start = Scripted.Now;
  EXPECT_EQ(Transmit_Repeated(Command_Frame(Serial_Code::StopMotion, 0), 51), 0);
  EXPECT_EQ(Port.Sent.size(), 51U);
  EXPECT_LE(Scripted.Now - start, 501'000'000);
  Port.Answer = [](const Bytes&) { return Framed({27, 12}); };
  EXPECT_EQ(Transmit_Repeated(Command_Frame(Serial_Code::StopMotion, 0), 51), 51);
  Port.Unplugged = true;
  EXPECT_EQ(Transmit_Repeated(Command_Frame(Serial_Code::StopMotion, 0), 51), std::nullopt);
}

TEST_F(Serial_Link_Test, Values_are_held_to_what_their_fields_take) {
  Port.Answer = [](const Bytes& frame) { return Framed(Bytes(30, frame[1])); };
  const auto payload = [this] {
    return Bytes(Port.Sent.back().begin() + 2, Port.Sent.back().end() - 2);
  };
  EXPECT_TRUE(JogStop(-5));
  EXPECT_EQ(payload(), (Bytes{0, 0}));
  JogStop(70'000);
  EXPECT_EQ(payload(), (Bytes{255, 255}));
  JogStop(300);
  EXPECT_EQ(payload(), (Bytes{44, 1}));
  SetThrottle(40'000);
  EXPECT_EQ(payload(), (Bytes{255, 127}));
  ReadMemory(0x188);
  EXPECT_EQ(payload(), (Bytes{0x88, 1}));
  SetRampRate(9);
  EXPECT_EQ(payload(), (Bytes{9}));
  EXPECT_EQ(Serial_Session.LastRampRate, 9);
}

TEST_F(Serial_Link_Test, Free_places_are_told_in_two_ways) {
  Port.Answer = [](const Bytes&) { return Framed({27, 10, 5}); };
  EXPECT_EQ(ReadBuffer(), 34);
  EXPECT_EQ(MoveSteps({}).Free, 34);
  Serial_Link.ControllerGeneration = 1;
  Port.Answer = [](const Bytes&) { return Framed({27, 10, 5, 2}); };
  EXPECT_EQ(ReadBuffer(), 517);
  Port.Answer = [](const Bytes&) { return Framed({27, 21, 5, 2}); };
  const Move_Answer answer = MoveSteps({});
  EXPECT_TRUE(answer.Refused);
  EXPECT_FALSE(answer.Free);
}

TEST_F(Serial_Link_Test, Identity_of_a_board) {
  Port.Answer = [](const Bytes& frame) {
    return frame[1] == 8 ? Framed({27, 8, 4, 12, 3, 17, 5, 20, 9}) : Framed({27, 9, 42, 219, 4});
  };
  EXPECT_EQ(ReadFirmware().Revision, "4.12.3");
  EXPECT_EQ(ReadFirmware().Date, "05/17/2009");
  EXPECT_EQ(ReadPresence(), "4");
  Port.Answer = [](const Bytes&) { return Framed({27, 9, 42, 218, 4}); };
  EXPECT_EQ(ReadPresence(), "NA");
  EXPECT_EQ(ReadFirmware().Revision, "NA");
}

// --- Moves ---------------------------------------------------------------------------------------

constexpr Entry_Rules Plain{.ReferenceSPI = 400, .SASF = 1, .Generation = 0, .Ramp_Rate = 5};

TEST(Move_Entry_Test, A_move_of_two_axes_worked_out_by_hand) {
  // 12 IPM at 400 steps: 80 Hz; 60 IPM: 400 Hz; 30 IPM: 200 Hz. Up 320 / 5 = 64, down 200 / 5 = 40.
  Entry_Speeds speeds{12, 60, 30};
  Move_Entry entry;
  Plan_Entry(Plain, {{1000, 0, 300, 0}}, speeds, entry);
  EXPECT_EQ(entry.MajorSteps, 1000U);
  EXPECT_EQ(entry.Divider[1], 10'000U);
  EXPECT_EQ(entry.Divider[2], No_Divider);
  EXPECT_EQ(entry.Divider[3], 33'333U);
  EXPECT_EQ(entry.StartRate, 80U);
  EXPECT_EQ(entry.RunRamp, 936U);
  EXPECT_EQ(entry.DownRamp, 40U);
  entry.Directions = 5, entry.High_Mask = 6, entry.Low_Mask = 1, entry.PWM = 512, entry.Index = 258;
  const Bytes fields{0,   0x03, 0xE8, 0, 0,  0x27, 0x10, 255,  255, 255, 255, 0, 0, 0x82, 0x35, 255,
                     255, 255,  255,  0, 80, 0,    0x03, 0xA8, 0,   0,   40,  5, 6, 1,    128,  0};
  Bytes frame{27, 10};
  frame.insert(frame.end(), fields.begin(), fields.end());
  EXPECT_EQ(Of(Move_Frame(entry, 0)), Framed(frame));
  frame.insert(frame.end(), {0, 1, 2});
  EXPECT_EQ(Of(Move_Frame(entry, 1)), Framed(frame));
}

TEST(Move_Entry_Test, Rates_are_held_in_their_order_and_given_back) {
  Entry_Rules rules = Plain;
  EXPECT_EQ(Board_Rate(rules, 1), 77U);
  EXPECT_EQ(Board_Rate(rules, 6'000), 20'001U);
  rules.Generation = 1;
  EXPECT_EQ(Board_Rate(rules, 1e6), 65'535U);
  rules.SASF = 4;
  EXPECT_EQ(Board_Rate(rules, 12.1), 320U);  // Int(80.67) x 4
  Entry_Speeds speeds{90, 60, 90};           // never above the run speed
  Move_Entry entry;
  Plan_Entry(rules, {{100, 0, 0, 0}}, speeds, entry);
  EXPECT_EQ(speeds.Start, 60);
  EXPECT_EQ(speeds.Run, 60);
  EXPECT_EQ(entry.MajorSteps, 400U);
  EXPECT_EQ(entry.Divider[1], 40'000U);
  EXPECT_EQ(entry.RunRamp, 400U);
  EXPECT_EQ(entry.DownRamp, 0U);
}

TEST(Move_Entry_Test, Ramps_that_do_not_fit_share_the_move) {
  // Up 64, down 40 over 50 steps: 30.77 and 19.23, both cut.
  Entry_Speeds speeds{12, 60, 30};
  Move_Entry entry;
  Plan_Entry(Plain, {{0, 50, 0, 0}}, speeds, entry);
  EXPECT_EQ(entry.RunRamp, 20U);
  EXPECT_EQ(entry.DownRamp, 19U);
}

TEST(Move_Entry_Test, Long_moves_and_small_parts_reach_the_ends_of_their_fields) {
  Entry_Speeds speeds{12, 12, 12};
  Move_Entry entry;
  Entry_Rules rules = Plain;
  rules.SASF = 20;
  Plan_Entry(rules, {{0xFFFFFF, 1, 0, 0}}, speeds, entry);
  EXPECT_EQ(entry.MajorSteps, 0xFFFFFFU);
  EXPECT_EQ(entry.Divider[2], No_Divider);
  EXPECT_EQ(Effective_SASF(0), 1);
  EXPECT_EQ(Effective_SASF(25), 20);
}

TEST(Move_Entry_Test, A_dwell_counts_milliseconds_and_always_has_its_number) {
  Move_Entry entry;
  entry.Directions = 3, entry.Index = 7;
  Plan_Dwell(1.2345, entry);  // halves to even
  EXPECT_EQ(entry.MajorSteps, 1234U);
  const Bytes fields{0,   4,   0xD2, 255, 255, 255, 255, 255, 255,  255, 255, 255,
                     255, 255, 255,  255, 255, 255, 255, 3,   0xE8, 0,   4,   0xD2,
                     0,   0,   0,    3,   0,   0,   255, 255, 0,    0,   7};
  Bytes frame{27, 10};
  frame.insert(frame.end(), fields.begin(), fields.end());
  EXPECT_EQ(Of(Dwell_Frame(entry, 0)), Framed(frame));
  EXPECT_EQ(Of(Dwell_Frame(entry, 1)), Framed(frame));
  Plan_Dwell(-1, entry);
  EXPECT_EQ(entry.MajorSteps, 0U);
  Plan_Dwell(5'000, entry);
  EXPECT_EQ(entry.MajorSteps, 3'600'000U);
}

TEST(Move_Entry_Test, Outputs_and_spindle) {
  const Output_Masks masks = Masks_Of({{2, 0, 1, 2, 0}});
  EXPECT_EQ(masks.High, 2U | 4U | 128U);
  EXPECT_EQ(masks.Low, 1U);
  EXPECT_EQ(PWM_Bytes(1'023), (std::array<std::uint8_t, 2>{255, 3}));
  EXPECT_EQ(PWM_Bytes(0), (std::array<std::uint8_t, 2>{0, 0}));
  EXPECT_EQ(PWM_Bytes(Unchanged_PWM), (std::array<std::uint8_t, 2>{255, 255}));
}

TEST(Move_Entry_Test, Time_of_an_entry_agrees_with_a_walk_over_its_counts) {
  Entry_Speeds speeds{12, 60, 30};
  Move_Entry entry;
  Plan_Entry(Plain, {{1000, 0, 0, 0}}, speeds, entry);
  double seconds = 0;
  const double up = 1000 - double{1} * entry.RunRamp, down = entry.DownRamp;
  constexpr int fine = 100;
  for (int i = 0; i < 1000 * fine; ++i) {
    const double n = (i + 0.5) / fine;
    const double rate = 80 + 5 * std::min(n, up) - 5 * std::max(0.0, n - (1000 - down));
    seconds += 1.0 / fine / rate;
  }
  EXPECT_NEAR(Entry_Seconds(entry, 5), seconds, 1e-4);
  Plan_Dwell(2.5, entry);
  EXPECT_NEAR(Entry_Seconds(entry, 5), 2.5, 1e-9);
}

TEST(Move_Entry_Test, Random_moves_are_read_again_from_their_frames) {
  std::mt19937 random(5);
  const auto at = [](const Bytes& frame, std::size_t first, int bytes) {
    std::uint32_t value = 0;
    for (int i = 0; i < bytes; ++i)
      value = (value << 8U) | frame[first + static_cast<std::size_t>(i)];
    return value;
  };
  for (int round = 0; round < 2'000; ++round) {
    Move_Entry entry;
    Indexed<std::int32_t, 1, 4> steps;
    for (auto& n : steps) n = static_cast<std::int32_t>(random() % 100'000) * (random() % 3 != 0);
    Entry_Speeds speeds{double(random() % 100), double(random() % 300), double(random() % 100)};
    const int generation = round % 2;
    Entry_Rules rules{400.0 + static_cast<double>(random() % 4'000),
                      1 + static_cast<int>(random() % 20), generation,
                      1 + static_cast<int>(random() % 15)};
    Plan_Entry(rules, steps, speeds, entry);
    entry.Index = random() & 0xFFFFFFU;
    const Bytes frame = Of(Move_Frame(entry, generation));
    ASSERT_EQ(frame.size(), generation > 0 ? 39U : 36U);
    ASSERT_EQ(Look_At_Reply(frame, 4), Reply_Fault::None);
    ASSERT_EQ(at(frame, 2, 3), entry.MajorSteps);
    for (int axis = 1; axis <= 4; ++axis)
      ASSERT_EQ(at(frame, 1 + 4 * static_cast<std::size_t>(axis), 4), entry.Divider[axis]);
    ASSERT_EQ(at(frame, 21, 2), entry.StartRate);
    ASSERT_EQ(at(frame, 23, 3), entry.RunRamp);
    ASSERT_EQ(at(frame, 26, 3), entry.DownRamp);
    if (generation > 0) {
      ASSERT_EQ(at(frame, 34, 3), entry.Index);
    }
    ASSERT_GE(entry.RunRamp, entry.DownRamp);
    for (int axis = 1; axis <= 4; ++axis) {
      if (steps[axis] < 1 || entry.MajorSteps == 0xFFFFFF) continue;
      // The dividers never lose a step.
      ASSERT_GE(std::uint64_t{entry.MajorSteps} * 10'000 / entry.Divider[axis],
                static_cast<std::uint64_t>(steps[axis]));
    }
  }
}

TEST(Serial_Reply_Test, Status_of_both_boards) {
  Reply_Bytes reply;
  const auto fill = [&reply](const Bytes& bytes) {
    for (std::size_t i = 0; i < bytes.size(); ++i) reply[static_cast<long long>(i) + 1] = bytes[i];
  };
  fill({27, 11, 0, 1, 0, 255, 255, 255, 128, 0, 0, 127, 255, 255, 17, 2, 65, 1, 4});
  const Status_Reply first = Status_Of(reply, 0);
  EXPECT_EQ(first.Step_Count, (Indexed<std::int32_t, 1, 4>{{256, -1, -8'388'608, 8'388'607}}));
  EXPECT_EQ(first.Limits, 17);
  EXPECT_EQ(first.Inputs, 2);
  EXPECT_EQ(first.Outputs, 65);
  EXPECT_EQ(first.Rate, 260U);
  fill({27, 11, 0, 1, 0, 0, 0, 0, 0, 0,  0, 0, 0, 0, 255, 255, 254, 0,
        0,  9,  0, 0, 0, 0, 0, 0, 1, 32, 8, 1, 4, 0, 0,   1,   2,   3});
  const Status_Reply second = Status_Of(reply, 1);
  EXPECT_EQ(second.EncoderCount[1], -2);
  EXPECT_EQ(second.EncoderCount[2], 9);
  EXPECT_EQ(second.Rate, 2'600U);
  EXPECT_EQ(second.LastCommandIndex, 0x010203U);
}

}  // namespace
}  // namespace norvik
