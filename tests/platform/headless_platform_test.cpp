// The environment without windows: real clocks, signals as ESC.
#include "platform/headless/headless_platform.h"

#include "platform/platform.h"

#include <csignal>
#include <cstdlib>

#include <gmock/gmock.h>

namespace norvik {
namespace {

struct Headless_Test : testing::Test {
  Headless_Test() { Install_Headless_Platform(); }
  ~Headless_Test() override {
    Platform = {};
    Headless = {};
    std::signal(SIGINT, SIG_DFL);
    std::signal(SIGTERM, SIG_DFL);
    std::signal(SIGHUP, SIG_DFL);
  }
};

TEST_F(Headless_Test, First_Interrupt_Is_Escape_And_The_Second_Ends) {
  int ended = 0;
  Headless.On_End = [&] { ++ended; };
  EXPECT_FALSE(Platform.Key_Down(key::Escape));
  std::raise(SIGINT);
  DoEvents();
  EXPECT_EQ(ended, 0);
  EXPECT_FALSE(Platform.Key_Down(key::F4));
  EXPECT_TRUE(Platform.Key_Down(key::Escape));
  EXPECT_FALSE(Platform.Key_Down(key::Escape));  // seen once
  std::raise(SIGTERM);
  DoEvents();
  DoEvents();
  EXPECT_EQ(ended, 1);
}

TEST_F(Headless_Test, Second_Interrupt_Ends_The_Process) {
  EXPECT_EXIT(
      {
        std::raise(SIGINT);
        std::raise(SIGINT);
        DoEvents();
      },
      testing::ExitedWithCode(130), "");
  EXPECT_EXIT(
      {
        for (int i = 0; i < 3; ++i) std::raise(SIGINT);  // no yield comes
      },
      testing::KilledBySignal(SIGINT), "");
}

// While a machine is driven only the orderly end ends the process, however hasty the operator.
TEST_F(Headless_Test, A_Driven_Machine_Is_Switched_Off_Whatever_Comes) {
  EXPECT_EXIT(
      {
        Headless.On_End = [] { std::_Exit(42); };
        std::raise(SIGINT);
        std::raise(SIGINT);  // before the guard: the next would end it
        Guard_Driven_Machine();
        for (const int signal : {SIGINT, SIGTERM, SIGHUP, SIGINT, SIGPIPE, SIGTSTP}) {
          std::raise(signal);
        }
        DoEvents();
      },
      testing::ExitedWithCode(42), "");
}

TEST_F(Headless_Test, Clocks_Run_And_Timers_Fire) {
  const std::int64_t start = Platform.Monotonic_Clock();
  int ticks = 0;
  const Timer_Id timer = Platform.Start_Timer(2, [&] { ++ticks; });
  Platform.Delay_Microseconds(5'000);
  EXPECT_GE(Platform.Monotonic_Clock() - start, 5'000'000);
  EXPECT_EQ(ticks, 0);  // only a yield runs them
  DoEvents();
  EXPECT_EQ(ticks, 1);
  Platform.Stop_Timer(timer);
  Platform.Delay_Microseconds(5'000);
  DoEvents();
  EXPECT_EQ(ticks, 1);
  EXPECT_GE(Platform.Day_Clock(), 0);
  EXPECT_LT(Platform.Day_Clock(), 86'401);
  EXPECT_GT(Platform.Local_Time().Year, 2000);
}

TEST_F(Headless_Test, Questions_Are_Cancelled) {
  testing::internal::CaptureStderr();
  EXPECT_EQ(Platform.Message_Box("Title", "Text", Box_Buttons::Yes_No_Cancel), Box_Answer::Cancel);
  EXPECT_EQ(Platform.Message_Box("", "Bare", Box_Buttons::Ok), Box_Answer::Ok);
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "Title: Text\nBare\n");
  EXPECT_FALSE(Platform.Open_File_Dialog({}));
}

}  // namespace
}  // namespace norvik
