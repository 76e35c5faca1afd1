// Frames in words and back, against bytes worked out by hand.
#include "simulate/board/frame_words.h"

#include "board_fixture.h"

#include <gmock/gmock.h>

namespace norvik {
namespace {

using ::testing::HasSubstr;
constexpr auto Dravon = Board_Generation::Dravon_V4, Pelmar = Board_Generation::Pelmar_V5;

std::string Decoded(Board_Generation generation, std::string_view hex,
                    Frame_Side side = Frame_Side::Command) {
  const Frame_Words words = Words_Of_Line(generation, side, hex);
  return words.Fault.empty() ? words.Words : "FAULT " + words.Fault;
}
std::string Encoded(Board_Generation generation, std::string_view words,
                    Frame_Side side = Frame_Side::Command) {
  const Frame_Bytes frame = Frame_Of_Words(generation, side, words);
  return frame.Fault.empty() ? Hex_Of(frame.Bytes) : "FAULT " + frame.Fault;
}

struct Known_Frame {
  Board_Generation Generation;
  Frame_Side Side;
  const char *Hex, *Words;
};

// Each way gives the other.
TEST(Frame_Words, Frames_And_Words_Stand_For_Each_Other) {
  constexpr auto command = Frame_Side::Command, reply = Frame_Side::Reply;
  const Known_Frame frames[] = {
      {Dravon, command, "1b0c2700", "StopMotion"},
      {Dravon, command, "1b0d032b00", "OutputOn output=3"},
      {Pelmar, command, "1b133d006b00", "ReadMemory address=61"},
      {Pelmar, command, "1b1ee8032401", "JogStop rate=1000"},
      {Dravon, command, "1b12ffffff00000100000a00000035030000", ""},  // two bytes too many
      {Dravon, command, "1b12ffffff00000100000a0000003503", "LoadStepCounters x=-1 y=1 z=10 a=0"},
      {Pelmar, command, "1b12ffffff00000100000a000000003503", "LoadStepCounters x=-1 y=1 z=10 a=0"},
      {Dravon, reply,
       "1b0a05"
       "2a00",
       "MoveSteps used=5"},
      {Pelmar, reply,
       "1b0ab20c"
       "e300",
       "MoveSteps free=3250"},
      {Dravon, reply,
       "1b1527"
       "5700",
       ""},  // a refusal is no reply by itself
      {Pelmar, reply,
       "1b092adb05"
       "2e01",
       "ReadPresence mark_1=42 mark_2=219 version=5"},
  };
  for (const Known_Frame& frame : frames) {
    const std::string words = Decoded(frame.Generation, frame.Hex, frame.Side);
    if (*frame.Words == 0) {
      EXPECT_THAT(words, ::testing::StartsWith("FAULT")) << frame.Hex;
      continue;
    }
    EXPECT_EQ(words, frame.Words);
    EXPECT_EQ(Encoded(frame.Generation, frame.Words, frame.Side), frame.Hex);
  }
}

TEST(Frame_Words, A_Move_Shows_Its_Parts_And_A_Dwell_Its_Time) {
  for (const auto generation : {Dravon, Pelmar}) {
    const Bytes move = Frame_Of(
        10, Move_Payload(generation,
                         {.X = 2000, .Y = -500, .Rate = 300, .Up = 50, .Down = 40, .Index = 7}));
    const std::string words = Decoded(generation, Hex_Of(move));
    EXPECT_THAT(words, HasSubstr("MoveSteps counts=2000 x=10000 y=40000 z=none a=none "
                                 "start_rate=300 run_ramp=1950 down_ramp=40 reverse=y high=0 low=0 "
                                 "pwm_high=255 pwm_low=255"));
    EXPECT_EQ(Encoded(generation, words), Hex_Of(move));
    const Bytes dwell = Frame_Of(10, Dwell_Payload_Of(250));
    const std::string pause = Decoded(generation, Hex_Of(dwell));
    EXPECT_EQ(pause,
              "Dwell milliseconds=250 reverse=- high=0 low=0 "
              "pwm_high=255 pwm_low=255 index=77");
    EXPECT_EQ(Encoded(generation, pause), Hex_Of(dwell));
  }
}

// What is left out has the value that changes nothing.
TEST(Frame_Words, Missing_Fields_Move_And_Change_Nothing) {
  const std::string words = Decoded(Pelmar, Encoded(Pelmar, "movesteps counts=5"));
  EXPECT_THAT(words, HasSubstr("x=none y=none z=none a=none"));
  EXPECT_THAT(words, HasSubstr("pwm_high=255 pwm_low=255"));
}

TEST(Frame_Words, Status_Names_Its_Bits) {
  const std::string hex = Encoded(Pelmar,
                                  "ReadStatus x=-5 encoder_a=-6 limits=first-x+second-a "
                                  "flags=moving+home-z outputs=1+7 rate=300 index=9",
                                  Frame_Side::Reply);
  EXPECT_EQ(hex.size(), 38U * 2);
  const std::string words = Decoded(Pelmar, hex, Frame_Side::Reply);
  EXPECT_THAT(words, HasSubstr("x=-5 y=0"));
  EXPECT_THAT(words, HasSubstr("limits=first-x+second-a flags=moving+home-z outputs=1+7 rate=300"));
  EXPECT_EQ(Encoded(Pelmar, words, Frame_Side::Reply), hex);
}

TEST(Frame_Words, Every_Command_And_Reply_Is_Known_In_Its_Length) {
  for (const auto generation : {Dravon, Pelmar}) {
    for (const Board_Command& command : Board_Commands()) {
      if (!command.Known_To(generation)) continue;
      const Frame_Bytes sent = Frame_Of_Words(generation, Frame_Side::Command, command.Name);
      EXPECT_EQ(sent.Bytes.size(), command.Payload_Of(generation) + 4) << command.Name;
      const Frame_Bytes reply = Frame_Of_Words(generation, Frame_Side::Reply, command.Name);
      EXPECT_EQ(reply.Bytes.size(), command.Reply_Of(generation)) << command.Name;
    }
  }
}

TEST(Frame_Words, An_Exchange_Is_One_Line) {
  EXPECT_EQ(Decoded(Dravon, "12 1b0f2a00 1b0f073100"), "12  > ReadBuffer  < ReadBuffer used=7");
  EXPECT_EQ(Decoded(Dravon, "12 1B 0F 2A 00 / 1B 0F 07 31 00"),
            "12  > ReadBuffer  < ReadBuffer used=7");
  EXPECT_EQ(Decoded(Dravon, "13 1B 0C 27 00 / -"), "13  > StopMotion  < nothing");
  EXPECT_EQ(Decoded(Dravon, "13, 1b0c2700, -"), "13  > StopMotion  < nothing");
  EXPECT_THAT(Decoded(Dravon, "14 1B 0C 27 00 /"), ::testing::StartsWith("FAULT"));
  EXPECT_EQ(Decoded(Dravon, "1b 0c 27 00"), "StopMotion");
  EXPECT_EQ(Decoded(Dravon, "14 1b0f2a00 1b15104000"),
            "14  > ReadBuffer  < ReadBuffer answer=21 used=16");
}

TEST(Frame_Words, Faults_Are_Named) {
  EXPECT_THAT(Decoded(Dravon, "1b0c2800"), HasSubstr("StopMotion with a wrong checksum"));
  EXPECT_THAT(Decoded(Dravon, "1b0c2"), HasSubstr("odd number"));
  EXPECT_THAT(Decoded(Dravon, "1b0cxx00"), HasSubstr("\"xx\""));
  EXPECT_THAT(Decoded(Dravon, "1a0c2600"), HasSubstr("begins with 1b"));
  EXPECT_THAT(Decoded(Dravon, "1b632000"), HasSubstr("99"));
  EXPECT_THAT(Encoded(Dravon, "Fly"), HasSubstr("There are: Dwell ReadFirmware"));
  EXPECT_THAT(Encoded(Dravon, "OutputOn port=3"), HasSubstr("There are: output"));
  EXPECT_THAT(Encoded(Dravon, "OutputOn output=300"), HasSubstr("output=300"));
  EXPECT_THAT(Encoded(Dravon, "LoadStepCounters x=8388608"), HasSubstr("x=8388608"));
  EXPECT_THAT(Encoded(Dravon, "MoveSteps reverse=q"), HasSubstr("reverse=q"));
}

}  // namespace
}  // namespace norvik
