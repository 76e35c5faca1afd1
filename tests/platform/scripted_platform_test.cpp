// The virtual clock and the timers of the scripted environment.
#include "platform/scripted/scripted_platform.h"

#include <gmock/gmock.h>

namespace norvik {
namespace {

TEST(Scripted_Platform, Runs_Timers_When_Due) {
  Scripted_Platform scripted;
  std::string trace;
  Platform.Start_Timer(100, [&] { trace += 'a'; });
  Timer_Id second = 0;
  second = Platform.Start_Timer(250, [&] {
    trace += 'b';
    Platform.Stop_Timer(second);
  });
  scripted.Run_For(0.55);
  EXPECT_EQ(trace, "aabaaa");
  EXPECT_EQ(scripted.Running_Timers(), 1);
  scripted.Yield_Nanoseconds = 0;
  trace.clear();
  scripted.Run_For(0.3);
  EXPECT_EQ(trace, "aaa");
  trace.clear();
  Platform.Delay_Microseconds(1'000'000);  // a long block gives one late tick, not ten
  DoEvents();
  DoEvents();
  EXPECT_EQ(trace, "a");
}

TEST(Scripted_Platform, Timer_Never_Runs_Inside_Itself) {
  Scripted_Platform scripted;
  int depth = 0, deepest = 0, others = 0;
  Platform.Start_Timer(10, [&] {
    deepest = std::max(deepest, ++depth);
    for (int i = 0; i < 50; ++i) {
      scripted.Advance(0.01);
      DoEvents();
    }
    --depth;
  });
  Platform.Start_Timer(10, [&] { ++others; });
  scripted.Run_For(0.1);
  EXPECT_EQ(deepest, 1);
  EXPECT_GT(others, 40);  // while the first one yields, others run
}

TEST(Scripted_Platform, Restores_What_Was_There) {
  int beeps = 0;
  Platform.Beep = [&] { ++beeps; };
  {
    Scripted_Platform scripted;
    scripted.Answer_Box(Box_Answer::Yes);
    Platform.Beep();
    EXPECT_EQ(Platform.Message_Box("t", "x", Box_Buttons::Yes_No), Box_Answer::Yes);
    EXPECT_EQ(Platform.Message_Box("t", "y", Box_Buttons::Yes_No), Box_Answer::Cancel);
    EXPECT_EQ(scripted.Boxes[1].Text, "y");
    scripted.Press(key::F4);
    EXPECT_TRUE(Platform.Key_Down(key::F4));
    EXPECT_FALSE(Platform.Key_Down(key::F4));
    Platform.Port_Write(888, 5);
    EXPECT_EQ(Platform.Port_Read(888), 5);
    EXPECT_EQ(Platform.Port_Read(889), 255);
    EXPECT_EQ(scripted.Beeps, 1);
  }
  Platform.Beep();
  EXPECT_EQ(beeps, 1);
  Platform = {};
}

}  // namespace
}  // namespace norvik
