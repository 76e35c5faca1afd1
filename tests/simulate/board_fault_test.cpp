// Faults between host and board: when they happen, what they do, and that they
// say so.
#include "board_fixture.h"
#include "simulate/board/board_line.h"

#include <random>

#include <gmock/gmock.h>

namespace norvik {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

class Board_Fault_Test : public Board_Test {
 protected:
  void SetUp() override {
    Board.Host.Event = [this](std::int64_t, const std::string& text) { Told.push_back(text); };
  }
  void Add(std::string_view fault) { ASSERT_EQ(Add_Board_Fault(Board, fault), "") << fault; }
  std::vector<std::string> Told;
};

TEST_F(Board_Fault_Test, Moments_Are_Counted_From_When_They_Are_Added) {
  Ask(15);
  Add("frame=2 no-reply");
  Add("code=OutputOn:2 no-reply");
  EXPECT_FALSE(Ask(15).empty());
  EXPECT_THAT(Ask(15), IsEmpty());
  EXPECT_FALSE(Ask(13, {1}).empty());
  EXPECT_THAT(Ask(13, {2}), IsEmpty());
  EXPECT_EQ(Board.Outputs, 3);  // it was carried out
  EXPECT_FALSE(Ask(13, {3}).empty());
  EXPECT_THAT(Told, ElementsAre("fault: frame=2 no-reply", "fault: code=OutputOn:2 no-reply"));
  EXPECT_THAT(Board_Faults_Text(Board)[0], "frame=2 no-reply (happened 1 time)");
  Add("frame=1 no-reply times=0");
  for (int i = 0; i < 5; ++i) EXPECT_THAT(Ask(15), IsEmpty());
  Clear_Board_Faults(Board);
  EXPECT_FALSE(Ask(15).empty());
  Add("chance=1 no-reply");
  Add("chance=0 no-reply times=0");
  EXPECT_THAT(Ask(15), IsEmpty());
  EXPECT_FALSE(Ask(15).empty());
}

TEST_F(Board_Fault_Test, Moments_Of_Time_Queue_And_Place) {
  Ask(31, {1});
  Add("time=0.5 restart");
  Move({.X = 1000});
  Wait_Until_Idle();
  EXPECT_EQ(Board_Finding_Count(Board.Findings, Board_Finding_Kind::Restart), 1);
  EXPECT_EQ(Carriage_Of(Board, 1), 500);
  EXPECT_EQ(Counter_Of(Board, 1), 0);
  Add("depth=1 watchdog=3");
  for (int i = 0; i < 4; ++i) Move({.X = 100});  // three wait
  EXPECT_EQ(Board.Watchdog_Errors, 0);
  Wait(250 * Test_Millisecond);  // two are done, one waits
  EXPECT_EQ(Board.Watchdog_Errors, 3);
  EXPECT_EQ(Ask(19, {0x88, 0})[2], 3);
  Wait_Until_Idle();
  Add("axis=X:450 jump=X:-100");
  Move({.X = 100});
  Wait_Until_Idle();
  EXPECT_EQ(Counter_Of(Board, 1), 400);
}

TEST_F(Board_Fault_Test, Bytes_On_Their_Way_In) {
  Add("frame=1 flip=3:0");
  EXPECT_THAT(Ask(13, {2}), IsEmpty());  // the checksum finds it
  EXPECT_EQ(Board.Outputs, 0);
  EXPECT_EQ(Board.Receiver.Bad_Checksums, 1);
  Add("frame=1 lose=3");
  EXPECT_THAT(Ask(13, {2}), IsEmpty());
  // What is missing is taken from the frame behind it.
  EXPECT_THAT(Ask(13, {2}), IsEmpty());
  Wait(21 * Test_Millisecond);
  EXPECT_FALSE(Ask(13, {2}).empty());
}

TEST_F(Board_Fault_Test, State_That_Is_Wrong) {
  Add("now capacity=1");
  Move({.X = 100});
  EXPECT_EQ(Move({.X = 100}), 10);
  EXPECT_EQ(Ask(15)[2], 1);
  EXPECT_EQ(Move({.X = 100}), 21);
  Add("now config=14:99");
  EXPECT_EQ(Ask(46)[13], 99);
  Add("now input=home-x:on");
  EXPECT_EQ(Ask(11)[15] & 4, 4);
  Add("now silence=100");
  EXPECT_THAT(Ask(15), IsEmpty());
  Wait(101 * Test_Millisecond);
  EXPECT_FALSE(Ask(15).empty());
}

TEST_F(Board_Fault_Test, A_Move_That_Is_Sent_Again_After_A_Lost_Reply_Is_Noticed) {
  Add("code=MoveSteps no-reply");
  const Bytes move = Frame_Of(10, Move_Payload(Board.Generation, {.X = 100}));
  Ask(17, {1});
  EXPECT_THAT(Send(move), IsEmpty());
  Ask(17, {1});
  EXPECT_FALSE(Send(move).empty());
  EXPECT_TRUE(Noticed(Board_Finding_Kind::Doubled_Move));
  Wait_Until_Idle();
  EXPECT_EQ(Counter_Of(Board, 1), 200);
}

TEST_F(Board_Fault_Test, What_Is_Wrong_In_A_Line_Is_Said) {
  for (const char* line :
       {"", "frame=1", "frame=0 twice", "frame=x twice", "code=Fly twice", "chance=2 twice",
        "axis=Q:1 restart", "now lose=0", "now flip=3:8", "now checksum=both", "now noise=1",
        "now input=door:on", "now config=99:1", "now no-reply=3", "now twice times=x",
        "now twice times=1 more"}) {
    EXPECT_NE(Add_Board_Fault(Board, line), "") << line;
  }
  EXPECT_THAT(Add_Board_Fault(Board, "now explode"), HasSubstr("There are: lose flip"));
  EXPECT_TRUE(Board.Faults.List.empty());
}

// --- On the line
// -------------------------------------------------------------------------------

class Board_Line_Fault : public ::testing::Test {
 protected:
  Board_Line_Fault() { Line.Board = Make_Board(Board_Generation::Dravon_V4); }
  // What the host has received some time after it has sent the frame.
  Bytes Exchange(const Bytes& frame, std::int64_t wait = 100 * Test_Millisecond) {
    Bytes answer;
    Write_To_Board(Line, frame, Line.Board.Now);
    Follow_Line(Line, Line.Board.Now + wait);
    Take_For_Host(Line, answer);
    return answer;
  }
  void Add(std::string_view fault) { ASSERT_EQ(Add_Board_Fault(Line.Board, fault), "") << fault; }
  Board_Line Line;
};

TEST_F(Board_Line_Fault, Replies_Are_Cut_Spoilt_Doubled_And_Late) {
  const Bytes stop = Frame_Of(12);
  Add("frame=1 cut=3");
  EXPECT_EQ(Exchange(stop), Bytes({27, 12, 39}));
  Add("frame=1 checksum=low");
  EXPECT_EQ(Exchange(stop), Bytes({27, 12, 38, 0}));
  Add("frame=1 checksum=high");
  EXPECT_EQ(Exchange(stop), Bytes({27, 12, 39, 1}));
  Add("frame=1 twice");
  EXPECT_EQ(Exchange(stop), Bytes({27, 12, 39, 0, 27, 12, 39, 0}));
  Add("frame=1 noise=1bff");
  EXPECT_EQ(Exchange(stop), Bytes({27, 255, 27, 12, 39, 0}));
  Add("frame=1 delay=200");
  EXPECT_THAT(Exchange(stop), IsEmpty());
  EXPECT_EQ(Exchange(stop, 200 * Test_Millisecond).size(), 8U);
  Add("frame=1 bursts=3:50");
  EXPECT_EQ(Exchange(stop, 40 * Test_Millisecond).size(), 3U);
  EXPECT_EQ(Exchange({}, 50 * Test_Millisecond).size(), 1U);
}

TEST_F(Board_Line_Fault, Bytes_Take_Their_Time_In_Both_Directions) {
  const std::int64_t byte = Board_Line::Byte_Time_At_115200;
  Write_To_Board(Line, Frame_Of(12), 0);
  Follow_Line(Line, 5 * byte - 1);
  EXPECT_EQ(Line.Board.Counts.Frames, 1);
  EXPECT_EQ(Bytes_For_Host(Line), 0U);
  Follow_Line(Line, 7 * byte);
  EXPECT_EQ(Bytes_For_Host(Line), 3U);
  EXPECT_EQ(All_Arrived(Line), 8 * byte);
  // Fifty one stops in one piece: each is answered.
  Bytes stops;
  for (int i = 0; i < 51; ++i) stops.insert(stops.end(), {27, 12, 39, 0});
  EXPECT_EQ(Exchange(stops).size(), 4U + 51 * 4);
}

TEST_F(Board_Line_Fault, A_Cable_Comes_Back_By_Itself_Or_By_Hand) {
  Add("code=StopMotion disconnect=500");
  EXPECT_THAT(Exchange(Frame_Of(12)), IsEmpty());
  EXPECT_FALSE(Line.Plugged);
  EXPECT_THAT(Exchange(Frame_Of(15)), IsEmpty());
  Follow_Line(Line, Line.Board.Now + 500 * Test_Millisecond);
  EXPECT_TRUE(Line.Plugged);
  EXPECT_EQ(Exchange(Frame_Of(15)).size(), 5U);
  Unplug(Line);
  Follow_Line(Line, Line.Board.Now + 10 * Test_Second);
  EXPECT_FALSE(Line.Plugged);
  Plug_In(Line);
  EXPECT_EQ(Exchange(Frame_Of(15)).size(), 5U);
  EXPECT_EQ(Line.Plugs, 2);
}

// A packet of the adapter goes at once when it is full, and with its latency
// otherwise.
TEST_F(Board_Line_Fault, An_Adapter_Sends_Full_Packets_At_Once) {
  Line.Usb_Latency = 16 * Test_Millisecond;
  Write_To_Board(Line, Frame_Of(46), 0);  // 58 bytes
  Write_To_Board(Line, Frame_Of(15), 0);  // 5 more
  Follow_Line(Line, (4 + 58) * Board_Line::Byte_Time_At_115200);
  EXPECT_EQ(Bytes_For_Host(Line), 0U);
  Follow_Line(Line, (4 + 62) * Board_Line::Byte_Time_At_115200);
  EXPECT_EQ(Bytes_For_Host(Line), 62U);
  Follow_Line(Line, 30 * Test_Millisecond);
  EXPECT_EQ(Bytes_For_Host(Line), 63U);
}

// Bytes of which every tenth begins a frame and most codes are known: whatever
// is answered is a frame, and the board is there for the next one.
TEST(Board_Receiver_Test, Any_Bytes_Leave_The_Board_Whole) {
  std::mt19937 random(11);
  const auto below = [&](std::uint32_t end) { return static_cast<std::uint32_t>(random() % end); };
  for (const auto generation : {Board_Generation::Dravon_V4, Board_Generation::Pelmar_V5}) {
    Board_Line line;
    line.Board = Make_Board(generation);
    std::int64_t answers = 0;
    line.Board.Host.Frame = [&](const Board_Frame_Event& event) {
      if (!event.To_Host) return;
      ++answers;
      ASSERT_TRUE(Checksum_Is_Right(event.Frame));
    };
    for (int round = 0; round < 20'000; ++round) {
      Bytes bytes;
      if (below(10) == 0) {
        const auto commands = Board_Commands();
        const Board_Command& command = commands[below(static_cast<std::uint32_t>(commands.size()))];
        Bytes payload;
        if (command.Known_To(generation)) payload.resize(command.Payload_Of(generation));
        for (std::uint8_t& byte : payload) byte = static_cast<std::uint8_t>(random());
        bytes = Frame_Of(command.Code, payload);
      }
      for (std::uint32_t i = below(6); i > 0; --i)
        bytes.push_back(static_cast<std::uint8_t>(random()));
      Write_To_Board(line, bytes, line.Board.Now);
      Follow_Line(line, line.Board.Now + std::int64_t{below(40)} * Test_Millisecond);
    }
    EXPECT_GT(answers, 500);
    Follow_Line(line, line.Board.Now + Test_Second);
    Bytes heard;
    Take_For_Host(line, heard);
    heard.clear();
    Write_To_Board(line, Frame_Of(9), line.Board.Now);
    Follow_Line(line, line.Board.Now + Test_Second);
    Take_For_Host(line, heard);
    EXPECT_EQ(heard.size(), 7U);
  }
}

}  // namespace
}  // namespace norvik
