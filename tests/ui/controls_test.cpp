// The panel, the jog window and the port display: what ticks, what a hand moves, what ends it.
#include "ui_fixture.h"

namespace norvik {
namespace {

using testing::HasSubstr;

struct Controls_Test : Ui_Test {
  // Runs the program; how often the panel's timer ticked meanwhile.
  int Ticks_Of_A_Run() {
    int ticks = 0;
    std::int16_t last = Controller.Blink_Ticks;
    scripted.On_Yield = [&] {
      QCoreApplication::processEvents();
      if (Controller.Blink_Ticks != last) ++ticks;
      last = Controller.Blink_Ticks;
    };
    Click("Command_CNC_Play");
    scripted.On_Yield = [] { QCoreApplication::processEvents(); };
    return ticks;
  }
};

// Each move is shorter than the interval of the timer, which watches switches and shows the run.
TEST_F(Controls_Test, The_Panel_Ticks_On_Through_A_Run_Of_Many_Short_Moves) {
  std::string program = "G1 F60\n";
  for (int pair = 0; pair < 20; ++pair) program += "G1 X0.01 Y0.01\nG1 X0 Y0.01\nG1 X0 Y0\n";
  Open("short.gc", program);
  Click("Command_Update");
  int timers = 0;
  const auto start_timer = Platform.Start_Timer;
  Platform.Start_Timer = [&](int interval_ms, std::function<void()> handler) {
    ++timers;
    return start_timer(interval_ms, std::move(handler));
  };
  const std::int64_t began = scripted.Now;
  const int ticks = Ticks_Of_A_Run();
  const double seconds = static_cast<double>(scripted.Now - began) * 1e-9;
  EXPECT_EQ(Machine.CNCMode, CNC_Stopped);
  EXPECT_GT(seconds, 3);
  EXPECT_GE(ticks, static_cast<int>(seconds * 3));
  EXPECT_EQ(timers, 0) << "a move starts no timer";
}

}  // namespace
}  // namespace norvik
