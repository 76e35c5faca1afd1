// escape_bench: from the press of ESC to the last edge on a step pin.
//
// Half steps of 100 us on the real clock, ports that only note the time, an X server without a
// screen; another process presses the key at a moment of its own choice. No window of this program
// exists, so that nothing but the server tells of the key. One line of figures:
//
//   half step 100 us   presses 40   median 0.61 ms   worst 1.42 ms   goal 2 ms
#include "core/application.h"
#include "core/setup.h"
#include "drive/drive_host.h"
#include "parallel/pin_map.h"
#include "parallel/step_engine.h"
#include "platform/linux/linux_platform.h"
#include "platform/platform.h"
#include "platform/x11/escape_key.h"
#include "support/x11_server.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <vector>

namespace {

using namespace norvik;

std::int64_t Now() {
  return std::chrono::duration_cast<std::chrono::nanoseconds>(
             std::chrono::steady_clock::now().time_since_epoch())
      .count();
}

void Set_Up_Machine() {
  Restore_Factory_Setup();
  MachineSetup.Output_Port[Step_Slot(1)] = MachineSetup.Output_Port[Direction_Slot(1)] = 888;
  MachineSetup.Parallel_Output_Bit[Step_Slot(1)] = "0";
  MachineSetup.Parallel_Output_Bit[Direction_Slot(1)] = "1";
  MachineSetup.Axis_SPI.Fill(1000);
  MachineSetup.Axis_Max_Feed_Rate.Fill(10'000);
  MachineSetup.Axis_Ramping = false;
  MachineSetup.Parallel_Time_Constant = 1;
}

// The key goes down after `wait_us` in another process, which writes down when.
pid_t Press_Later(X11_Server& server, int wait_us, int pipe_end) {
  const pid_t process = ::fork();
  if (process != 0) return process;
  X11_Server::Finger finger(server.Display);
  ::usleep(static_cast<useconds_t>(wait_us));
  const std::int64_t pressed = Now();
  finger.Key(X11_Server::Escape_Code, true);
  [[maybe_unused]] const auto written = ::write(pipe_end, &pressed, sizeof pressed);
  ::usleep(30'000);
  finger.Key(X11_Server::Escape_Code, false);
  std::_Exit(0);
}

// Milliseconds from the press to the last edge of a move that it ends.
double Measure(X11_Server& server, int wait_us) {
  int ends[2];
  if (::pipe(ends) != 0) return 0;
  std::int64_t last_edge = 0;
  Platform.Port_Write = [&](std::uint16_t, std::uint8_t) { last_edge = Now(); };
  Application.EscFlag = false;
  const auto process = Press_Later(server, wait_us, ends[1]);
  Step_Request request;
  request.Steps[1] = 20'000;  // four seconds
  request.Start = request.Run = request.End = 300;
  request.No_Rate_Check = true;
  const Move_End end = Step_Engine_Move(request);
  std::int64_t pressed = 0;
  [[maybe_unused]] const auto count = ::read(ends[0], &pressed, sizeof pressed);
  ::waitpid(process, nullptr, 0);
  ::close(ends[0]);
  ::close(ends[1]);
  return end == Move_End::Escape ? static_cast<double>(last_edge - pressed) / 1e6 : 1e9;
}

}  // namespace

int main() {
  X11_Server server;
  if (server.Display.empty() || !Install_Escape_Key(server.Display).empty()) {
    std::puts("Xvfb is not installed");
    return 1;
  }
  Drive_Host.Escape_Held = Escape_Key_Held;
  Set_Up_Machine();
  Platform.Monotonic_Clock = Now;
  Platform.Port_Read = [](std::uint16_t) { return std::uint8_t{255}; };
  Install_Linux_Clock();
  constexpr int presses = 40;
  std::vector<double> times;
  for (int i = 0; i < presses; ++i) times.push_back(Measure(server, 50'000 + i * 1'237));
  std::ranges::sort(times);
  std::printf("half step 100 us   presses %d   median %.2f ms   worst %.2f ms   goal 2 ms\n",
              presses, times[presses / 2], times.back());
  return times[presses / 2] < 2 ? 0 : 1;
}
