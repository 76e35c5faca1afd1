// Every command of the boards, in both directions, against frames worked out by hand.
#include "board_fixture.h"

#include <gmock/gmock.h>

namespace norvik {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

INSTANTIATE_TEST_SUITE_P(Generations, Both_Boards,
                         ::testing::Values(Board_Generation::Dravon_V4,
                                           Board_Generation::Pelmar_V5),
                         [](const auto& run) { return Name_Of(run.param); });

TEST_P(Both_Boards, Says_Who_It_Is) {
  const std::uint8_t version = Is_Pelmar() ? 5 : 4;
  // 27 + 9 + 42 + 219 = 297, and the generation.
  EXPECT_THAT(Ask(9), ElementsAre(27, 9, 42, 219, version, (297 + version) % 256, 1));
  const Bytes firmware = Ask(8);
  ASSERT_EQ(firmware.size(), 11U);
  EXPECT_EQ(firmware[2], version);
  EXPECT_EQ(firmware[7] * 100 + firmware[8], Is_Pelmar() ? 2021 : 2014);
  EXPECT_TRUE(Checksum_Is_Right(firmware));
}

// Length of the answer, with the echo where the command has one.
TEST_P(Both_Boards, Answers_Each_Command_In_Its_Length) {
  const auto pad = [&](Bytes payload) {
    if (Is_Pelmar()) payload.push_back(0);
    return payload;
  };
  struct Case {
    std::uint8_t Code;
    Bytes Payload;
    std::size_t Dravon, Pelmar;
  };
  const Case cases[] = {
      {8, {}, 11, 11},
      {9, {}, 7, 7},
      {11, {}, 23, 38},
      {12, {}, 4, 4},
      {13, {7}, 5, 5},
      {14, {7}, 5, 5},
      {15, {}, 5, 6},
      {17, {4}, 5, 5},
      {18, pad(Bytes(12)), 4, 4},
      {19, {0x3D, 0}, 5, 5},
      {21, {}, 4, 4},
      {22, {}, 4, 4},
      {24, {}, 4, 4},
      {25, {}, 4, 4},
      {26, {}, 4, 4},
      {25, {}, 4, 4},
      {28, {200}, 5, 5},
      {29, {201}, 5, 5},
      {30, {77, 0}, 4, 4},
      {31, {9}, 5, 5},
      {32, {0, 4}, 4, 4},
      {41, pad(Bytes(12)), 4, 4},
      {44, Bytes(29), 0, 4},
      {45, {}, 33, 33},
      {46, {}, 58, 58},
  };
  for (const Case& c : cases) {
    if (c.Code == 44 && !Is_Pelmar()) continue;  // not known to the first board
    const Bytes answer = Ask(c.Code, c.Payload);
    EXPECT_EQ(answer.size(), Is_Pelmar() ? c.Pelmar : c.Dravon) << int{c.Code};
    ASSERT_FALSE(answer.empty()) << int{c.Code};
    EXPECT_EQ(answer[0], 27) << int{c.Code};
    EXPECT_EQ(answer[1], c.Code) << int{c.Code};
    EXPECT_TRUE(Checksum_Is_Right(answer)) << int{c.Code};
    if (answer.size() == 5 && c.Payload.size() == 1) {
      EXPECT_EQ(answer[2], c.Payload[0]);
    }
  }
  EXPECT_TRUE(Board.Findings.List.empty()) << Board_Findings_Text(Board.Findings).front();
  EXPECT_EQ(Board.Receiver.Discarded_Bytes, 0);
}

TEST_P(Both_Boards, Counters_Are_Loaded_And_Read_With_Their_Sign) {
  Bytes payload;
  for (const std::int32_t value : {-1, 8'388'607, -8'388'608, 1000}) {
    Append_Number(payload, static_cast<std::uint32_t>(value) & 0xFFFFFF, 3);
  }
  if (Is_Pelmar()) payload.push_back(0);
  Ask(18, payload);
  const Bytes status = Ask(11);
  EXPECT_EQ(Number_24(status, 3), -1);
  EXPECT_EQ(Number_24(status, 6), 8'388'607);
  EXPECT_EQ(Number_24(status, 9), -8'388'608);
  EXPECT_EQ(Number_24(status, 12), 1000);
  if (!Is_Pelmar()) return;
  Ask(41, payload);
  EXPECT_EQ(Number_24(Ask(11), 15), -1);
  EXPECT_EQ(Number_24(Ask(11), 24), 1000);
}

TEST_P(Both_Boards, A_Move_Runs_And_Its_Place_Is_Told_At_Any_Moment) {
  Ask(31, {100});  // hertz a count
  EXPECT_EQ(Move({.X = 2000, .Y = -1000, .Rate = 1000, .Index = 0x012345}), 10);
  const std::size_t flags = Is_Pelmar() ? 28 : 16, rate = Is_Pelmar() ? 30 : 18;
  Wait(500 * Test_Millisecond);  // 500 counts at 1000 Hz
  Bytes status = Ask(11);
  EXPECT_EQ(Number_24(status, 3), 500);
  EXPECT_EQ(Number_24(status, 6), -250);
  EXPECT_EQ(status[flags - 1], 2);
  EXPECT_EQ(status[rate - 1] * 256 + status[rate], Is_Pelmar() ? 100 : 1000);
  EXPECT_EQ(Ask(19, {0x3D, 0})[2], 3);
  Wait(1500 * Test_Millisecond);
  status = Ask(11);
  EXPECT_EQ(Number_24(status, 3), 2000);
  EXPECT_EQ(Number_24(status, 6), -1000);
  EXPECT_EQ(status[flags - 1], 0);
  EXPECT_EQ(status[rate - 1] * 256 + status[rate], 0);
  EXPECT_EQ(Ask(19, {0x3D, 0})[2], 1);
  EXPECT_EQ(Board.Finished_Index, Is_Pelmar() ? 0x012345U : 0U);
  if (!Is_Pelmar()) return;
  EXPECT_EQ(Number_24(status, 34), 0x012345);
}

TEST_P(Both_Boards, The_Queue_Tells_Its_Room_And_Refuses_When_It_Is_Full) {
  const int capacity = Is_Pelmar() ? 3250 : 39;
  const auto free = [&](const Bytes& answer) {
    return Is_Pelmar() ? answer[2] + 256 * answer[3] : capacity - answer[2];
  };
  EXPECT_EQ(free(Ask(15)), capacity);
  EXPECT_EQ(Move({.X = 100}), 10);  // runs at once
  EXPECT_EQ(free(Ask(15)), capacity);
  for (int i = 0; i < capacity; ++i) ASSERT_EQ(Move({.X = 100}), 10) << i;
  EXPECT_EQ(free(Ask(15)), 0);
  EXPECT_EQ(Move({.X = 100}), 21);
  EXPECT_TRUE(Noticed(Board_Finding_Kind::Refused_Move));
  Wait(250 * Test_Millisecond);  // 100 ms each
  EXPECT_EQ(free(Ask(15)), 2);
  Wait_Until_Idle();
  EXPECT_EQ(Counter_Of(Board, 1), 100 * (capacity + 1));
}

TEST_P(Both_Boards, A_Dwell_Has_One_Form_On_Both_And_Moves_Nothing) {
  const std::size_t length = Is_Pelmar() ? 6 : 5;
  const Bytes answer = Ask(10, Dwell_Payload_Of(3'600'000));
  ASSERT_EQ(answer.size(), length);
  EXPECT_EQ(answer[1], 10);
  Wait(std::int64_t{3599} * Test_Second);
  EXPECT_TRUE(In_Motion(Board));
  Wait(1001 * Test_Millisecond);
  EXPECT_FALSE(In_Motion(Board));
  EXPECT_EQ(Board.Finished_Index, 77U);
  for (int axis = 1; axis <= 4; ++axis) EXPECT_EQ(Counter_Of(Board, axis), 0) << axis;
  Ask(10, Dwell_Payload_Of(0));
  EXPECT_EQ(Board.Receiver.Count,
            39U);  // taken as one frame, longer than a move of the first board
  EXPECT_EQ(Board.Counts.Finished, 1);
  Wait(1);
  EXPECT_EQ(Board.Counts.Finished, 2);
}

TEST_P(Both_Boards, Outputs_Go_By_Command_And_By_The_Masks_Of_A_Move) {
  Ask(13, {6});
  Ask(13, {7});
  Ask(14, {7});
  // Channels 1 and 4 on, 2 off, 5 on.
  EXPECT_EQ(Move({.X = 10, .High = 0b10'00'01'10, .Low = 0b10, .Pwm_High = 200, .Pwm_Low = 3}), 10);
  EXPECT_EQ(Board.Outputs, 0b0111001);
  EXPECT_EQ(Pwm_Value(Board), 803);
  EXPECT_EQ(Move({.X = 10, .High = 1}), 10);
  EXPECT_EQ(Board.Outputs, 0b0111001);  // waits for its entry
  Wait_Until_Idle();
  EXPECT_EQ(Board.Outputs, 0b0111000);
  EXPECT_EQ(Pwm_Value(Board), 803);  // 255, 255: as it is
  Ask(10, Dwell_Payload_Of(1, 0b10));
  EXPECT_TRUE(Noticed(Board_Finding_Kind::Dwell_Output));
  Ask(13, {2});
  EXPECT_TRUE(Noticed(Board_Finding_Kind::Both_Spindle_Directions));
  Ask(13, {8});
  EXPECT_TRUE(Noticed(Board_Finding_Kind::Bad_Value));
}

// A move without steps still brings outputs and PWM, and takes no time.
TEST_P(Both_Boards, A_Move_Without_Steps_Switches) {
  const Bytes answer =
      Ask(10, Move_Payload(GetParam(), {.High = 2, .Pwm_High = 255, .Pwm_Low = 3}));
  ASSERT_EQ(answer.size(), Is_Pelmar() ? 6U : 5U);
  EXPECT_EQ(Board.Outputs, 1);
  EXPECT_EQ(Pwm_Value(Board), 1023);
  Wait(1);
  EXPECT_FALSE(In_Motion(Board));
}

TEST_P(Both_Boards, Stop_Keeps_The_Place_And_Drops_The_Queue) {
  Move({.X = 1000});
  Move({.X = 1000});
  Wait(300 * Test_Millisecond);
  Ask(12);
  EXPECT_FALSE(In_Motion(Board));
  Wait_Until_Idle();
  EXPECT_EQ(Counter_Of(Board, 1), 300);
  EXPECT_EQ(Move({.X = 1}), 10);
  EXPECT_TRUE(Noticed(Board_Finding_Kind::Move_After_Stop));
}

TEST_P(Both_Boards, Jog_Stop_Slows_With_The_Ramp_And_Drops_What_Follows) {
  Ask(31, {10});
  Move({.X = 100'000, .Rate = 2000});
  Move({.X = 1000});
  Wait(Test_Second);
  Ask(30, {232, 3});  // 1000 Hz, low byte first
  // From 2000 Hz to 1000 Hz by 10 Hz a count: 100 counts in ln 2 / 10 s.
  Wait(69 * Test_Millisecond);
  EXPECT_TRUE(In_Motion(Board));
  Wait(2 * Test_Millisecond);
  EXPECT_FALSE(In_Motion(Board));
  EXPECT_EQ(Counter_Of(Board, 1), 2100);
  Ask(30, {0, 0});
  EXPECT_EQ(Counter_Of(Board, 1), 2100);
}

TEST_P(Both_Boards, The_Throttle_Stretches_Time_Within_A_Move) {
  Move({.X = 1000});
  Wait(100 * Test_Millisecond);
  Ask(32, {0, 8});  // 2048: twice
  Wait(100 * Test_Millisecond);
  EXPECT_EQ(Counter_Of(Board, 1), 300);
  Ask(32, {0, 0});
  Wait(Test_Second);
  EXPECT_EQ(Counter_Of(Board, 1), 300);
  EXPECT_TRUE(In_Motion(Board));
  Ask(32, {0, 2});  // half
  Wait(1399 * Test_Millisecond);
  EXPECT_TRUE(In_Motion(Board));
  Wait(2 * Test_Millisecond);
  EXPECT_EQ(Counter_Of(Board, 1), 1000);
  EXPECT_FALSE(In_Motion(Board));
}

TEST_P(Both_Boards, Motors_Without_Enable_Take_No_Move) {
  Move({.X = 1000});
  Wait(100 * Test_Millisecond);
  Ask(26);
  EXPECT_FALSE(In_Motion(Board));
  EXPECT_EQ(Counter_Of(Board, 1), 100);
  EXPECT_EQ(Move({.X = 1000}), 21);
  Ask(25);
  EXPECT_EQ(Move({.X = 1000}), 10);
}

TEST_P(Both_Boards, Counters_Are_Not_Loaded_While_Axes_Move) {
  Move({.X = 1000});
  const Bytes payload(Is_Pelmar() ? 13 : 12);
  EXPECT_EQ(Ask(18, payload)[1], 21);
  Board.Settings.Load_While_Moving = true;
  Wait(500 * Test_Millisecond);
  EXPECT_EQ(Ask(18, payload)[1], 18);
  EXPECT_EQ(Counter_Of(Board, 1), 0);
  Wait_Until_Idle();
  EXPECT_EQ(Counter_Of(Board, 1), 500);
  EXPECT_TRUE(Noticed(Board_Finding_Kind::Load_While_Moving));
}

TEST_P(Both_Boards, A_Restart_Answers_First_And_Then_Is_Silent) {
  Ask(13, {1});
  Ask(28, {7});
  Ask(21);
  Move({.X = 1000});
  Wait(100 * Test_Millisecond);
  EXPECT_THAT(Ask(23), ElementsAre(27, 23, 50, 0));
  EXPECT_THAT(Ask(9), IsEmpty());
  Wait(399 * Test_Millisecond);
  EXPECT_THAT(Ask(9), IsEmpty());
  Wait(2 * Test_Millisecond);
  EXPECT_FALSE(Ask(9).empty());
  EXPECT_EQ(Counter_Of(Board, 1), 0);
  EXPECT_EQ(Board.Outputs, 0);
  EXPECT_TRUE(Board.Limits_On);
  EXPECT_EQ(Ask(19, {0x41, 0})[2], 255);
}

TEST_P(Both_Boards, Configuration_Is_Told_As_It_Was_Written) {
  Ask(31, {42});
  Ask(28, {11});
  Ask(29, {12});
  Ask(21);
  Bytes encoders{0x81, 0x42, 3, 0};
  for (const std::uint32_t factor : {1000U, 2500U, 70'000U, 16'777'215U})
    Append_Number(encoders, factor, 3);
  for (const std::uint32_t error : {20U, 50U, 255U, 300U}) Append_Number(encoders, error, 3);
  const Bytes written = encoders;
  encoders.push_back(0);
  if (Is_Pelmar()) Ask(44, encoders);
  const Bytes config = Ask(46);
  EXPECT_EQ(config[10] * 256 + config[11], Is_Pelmar() ? 3250 : 39);
  EXPECT_EQ(Bytes(config.begin() + 12, config.begin() + 16), Bytes({1, 42, 11, 12}));
  EXPECT_EQ(Ask(19, {0x41, 0})[2], 11);
  EXPECT_EQ(Ask(19, {0x42, 0})[2], 12);
  if (!Is_Pelmar()) return;
  EXPECT_EQ(Bytes(config.begin() + 28, config.begin() + 56), written);
  const Bytes read = Ask(45);
  EXPECT_EQ(Bytes(read.begin() + 2, read.begin() + 30), written);
  EXPECT_EQ(read[30], 0);
}

TEST_P(Both_Boards, Bad_Frames_Are_Silent_And_The_Next_One_Is_Heard) {
  Bytes wrong = Frame_Of(9);
  wrong[2] ^= 1;
  EXPECT_THAT(Send(wrong), IsEmpty());
  EXPECT_THAT(Ask(99), IsEmpty());
  EXPECT_THAT(Send({1, 2, 3, 27, 27}), IsEmpty());
  EXPECT_FALSE(Send({9, 36, 0}).empty());  // after the second 27
  EXPECT_THAT(Send({27, 10, 0, 0}), IsEmpty());
  Wait(21 * Test_Millisecond);  // the rest never comes
  EXPECT_FALSE(Ask(9).empty());
  EXPECT_EQ(Board.Receiver.Dropped_Frames, 1);
  EXPECT_EQ(Board.Receiver.Unknown_Codes, 1);
  EXPECT_EQ(Board_Finding_Count(Board.Findings, Board_Finding_Kind::Bad_Frame), 3);
  Board.Settings.Answer_Bad_Frames = true;
  EXPECT_EQ(Send(wrong)[1], 21);
}

}  // namespace
}  // namespace norvik
