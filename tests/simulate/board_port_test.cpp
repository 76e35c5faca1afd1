// The simulated boards as serial ports of the program.
#include "simulate/board_port.h"

#include "board_fixture.h"
#include "platform/platform.h"
#include "simulate/virtual_clock.h"

namespace norvik {
namespace {

class Board_Port_Test : public ::testing::Test {
 protected:
  void SetUp() override {
    Before = Platform;
    Platform = {};
    Platform.Serial_Ports = [] { return std::vector<Serial_Port_Info>{{"/dev/real", "", ""}}; };
    Platform.Serial_Open = [](const std::string& device, std::int32_t) {
      return device == "/dev/real" ? Serial_Opened{1, ""} : Serial_Opened{0, "missing"};
    };
    Platform.Serial_Available = [](int) { return std::int32_t{99}; };
    Forget_Simulated_Boards();
    Install_Simulated_Boards();
    Install_Virtual_Clock();
  }
  void TearDown() override {
    Remove_Virtual_Clock();
    Forget_Simulated_Boards();
    Platform = Before;
  }

  // As a link does it: writes, looks until enough is there or a quarter of a second has passed.
  static Bytes Exchange(int handle, const Bytes& frame, std::int32_t length) {
    Bytes answer;
    EXPECT_TRUE(Platform.Serial_Write(handle, frame));
    const std::int64_t begin = Platform.Monotonic_Clock();
    while (Platform.Serial_Available(handle) < length &&
           Platform.Monotonic_Clock() - begin < 250 * Test_Millisecond) {
    }
    EXPECT_TRUE(Platform.Serial_Read(handle, answer));
    return answer;
  }
  static int Open(std::string_view device) {
    return Platform.Serial_Open(std::string(device), 115'200).Handle;
  }

  Platform_Operations Before;
};

TEST_F(Board_Port_Test, Stands_In_Front_Of_The_Real_Ports) {
  const auto ports = Platform.Serial_Ports();
  ASSERT_EQ(ports.size(), 3U);
  EXPECT_EQ(ports[1].Device, "simulated:dravon");
  EXPECT_EQ(ports[2].Device, "simulated:pelmar");
  EXPECT_EQ(Platform.Serial_Available(Open("/dev/real")), 99);
  EXPECT_EQ(Platform.Serial_Open("/dev/other", 115'200).Problem, "missing");
  const int handle = Open("simulated:dravon");
  EXPECT_GT(handle, 0);
  EXPECT_FALSE(Platform.Serial_Open("simulated:dravon", 115'200).Problem.empty());
  Platform.Serial_Close(handle);
  EXPECT_EQ(Platform.Serial_Available(handle), -1);
  EXPECT_GT(Open("simulated:dravon"), handle);
}

// 4 bytes out and 7 back take 11 times 10 bits at 115200 baud of the virtual clock.
TEST_F(Board_Port_Test, A_Poll_Without_Yields_Lets_The_Time_Of_The_Line_Pass) {
  const int handle = Open("simulated:pelmar");
  const std::int64_t begin = Platform.Monotonic_Clock();
  EXPECT_EQ(Exchange(handle, Frame_Of(9), 7).size(), 7U);
  const double us = static_cast<double>(Platform.Monotonic_Clock() - begin) / 1e3;
  EXPECT_NEAR(us, 11 * 86.8, 25);
  // Without an answer the quarter of a second passes.
  Line_In_Use()->Board.Faults.Mute_Until = Platform.Monotonic_Clock() + Test_Second;
  const std::int64_t mute = Platform.Monotonic_Clock();
  EXPECT_TRUE(Exchange(handle, Frame_Of(9), 7).empty());
  EXPECT_NEAR(static_cast<double>(Platform.Monotonic_Clock() - mute) / 1e6, 250, 6);
}

TEST_F(Board_Port_Test, A_Late_Answer_Does_Not_Come_Early_Enough) {
  const int handle = Open("simulated:dravon");
  ASSERT_EQ(Add_Board_Fault(Line_In_Use()->Board, "frame=1 delay=300"), "");
  EXPECT_TRUE(Exchange(handle, Frame_Of(9), 7).empty());
  EXPECT_EQ(Exchange(handle, Frame_Of(15), 5).size(), 12U);  // the late one as well
}

TEST_F(Board_Port_Test, A_Pulled_Cable_Ends_The_Port_Until_It_Is_Opened_Again) {
  const int handle = Open("simulated:pelmar");
  Exchange(handle, Frame_Of(13, {3}), 5);
  ASSERT_EQ(Add_Board_Fault(Line_In_Use()->Board, "frame=1 disconnect=100"), "");
  EXPECT_TRUE(Platform.Serial_Write(handle, Frame_Of(9)));
  EXPECT_EQ(Platform.Serial_Available(handle), -1);
  Bytes bytes;
  EXPECT_FALSE(Platform.Serial_Read(handle, bytes));
  EXPECT_FALSE(Platform.Serial_Write(handle, Frame_Of(9)));
  EXPECT_FALSE(Platform.Serial_Open("simulated:pelmar", 115'200).Problem.empty());
  Advance_Virtual_Clock(100 * Test_Millisecond);
  EXPECT_EQ(Platform.Serial_Available(handle), -1);  // the port of before stays dead
  const int again = Open("simulated:pelmar");
  EXPECT_GT(again, 0);
  EXPECT_EQ(Exchange(again, Frame_Of(9), 7).size(), 7U);
  EXPECT_EQ(Line_In_Use()->Board.Outputs, 4);  // the board itself has gone on
}

// A latency of the adapter hands a long answer over in pieces.
TEST_F(Board_Port_Test, An_Adapter_Holds_Bytes_Back) {
  const int handle = Open("simulated:pelmar");
  Line_In_Use()->Usb_Latency = Test_Millisecond;
  Platform.Serial_Write(handle, Frame_Of(11));
  Advance_Virtual_Clock(4 * 86'806 + 86'806 + Test_Millisecond);
  Remove_Virtual_Clock();  // no look moves time
  Platform.Monotonic_Clock = [] { return std::int64_t{5} * 86'806 + Test_Millisecond; };
  EXPECT_EQ(Platform.Serial_Available(handle), 12);  // what had come when the millisecond was over
  Platform.Monotonic_Clock = [] { return std::int64_t{5} * 86'806 + 2 * Test_Millisecond; };
  EXPECT_EQ(Platform.Serial_Available(handle), 12);
  Platform.Monotonic_Clock = [] { return 20 * Test_Millisecond; };
  EXPECT_EQ(Platform.Serial_Available(handle), 38);
  Install_Virtual_Clock();
}

}  // namespace
}  // namespace norvik
