// How fast moves go to a controller board.
//
//   serial_stream_bench virtual [MOVES]      through frames, link and simulated board on the
//   virtual
//                                            clock. Target: 100,000 moves a second
//   serial_stream_bench terminal [SECONDS]   to a board process on a pseudo-terminal at 115200
//   baud,
//                                            against what the bytes allow. Target: 95 %
//
// The moves are chords of two axes, short enough to keep the link busy all the time.
#include "core/application.h"
#include "core/setup.h"
#include "platform/linux/linux_platform.h"
#include "platform/platform.h"
#include "platform/scripted/scripted_platform.h"
#include "serial/monitor.h"
#include "serial/serial_link.h"
#include "serial/serial_session.h"
#include "serial/stream.h"
#include "simulate/board_port.h"
#include "simulate/process/board_process.h"
#include "simulate/virtual_clock.h"

#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <string_view>
#include <thread>

#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace norvik {
namespace {

using Clock = std::chrono::steady_clock;

double Since(Clock::time_point start) {
  return std::chrono::duration<double>(Clock::now() - start).count();
}

double Processor_Seconds() {
  rusage usage{};
  ::getrusage(RUSAGE_SELF, &usage);
  const auto seconds = [](const timeval& t) {
    return static_cast<double>(t.tv_sec) + static_cast<double>(t.tv_usec) / 1e6;
  };
  return seconds(usage.ru_utime) + seconds(usage.ru_stime);
}

void Set_Up(int generation, std::string device) {
  Restore_Factory_Setup();
  MachineSetup.Parallel_Port_Type = static_cast<std::int16_t>(2 + generation);
  MachineSetup.Axis_SPI.Fill(1'000);
  MachineSetup.Axis_Ramp_Rate = 5;
  MachineSetup.Axis_Ramp_Start = 12;
  Serial_Session_Host.Choose_Device =
      [device = std::move(device)](int, const std::string&, const std::string&) { return device; };
  Serial_Begin_Session();
  if (!Serial_Missing().empty()) {
    std::fprintf(stderr, "%s\n", std::string(Serial_Missing()).c_str());
    std::exit(1);
  }
}

// A chord of 2 to 3 steps there or back, so that it lasts less than its own line time.
bool Send_Chord(std::int32_t n) {
  Step_Request chord;
  chord.Steps[1] = 3;
  chord.Steps[2] = 2;
  chord.Negative[1] = chord.Negative[2] = n % 2 == 0;
  chord.Start = chord.Run = chord.End = 60;
  chord.Is_Arc = true;
  return Serial_Move(chord, std::nullopt, n) == Move_End::Done;
}

void Measure_Virtual(int generation, std::int32_t moves) {
  Scripted_Platform scripted;
  Install_Virtual_Clock();
  Install_Simulated_Boards();
  Set_Up(generation,
         std::string(generation > 0 ? Simulated_Pelmar_Device : Simulated_Dravon_Device));
  const auto start = Clock::now();
  for (std::int32_t n = 1; n <= moves; ++n)
    if (!Send_Chord(n)) std::exit(1);
  Serial_Wait_Empty();
  const double seconds = Since(start);
  std::printf("%s, virtual clock: %.0f moves/s, %.2f us a move\n",
              generation > 0 ? "Pelmar" : "Dravon", moves / seconds, seconds / moves * 1e6);
  Serial_End_Session();
  Forget_Simulated_Boards();
  Remove_Virtual_Clock();
}

std::int64_t Bytes_On_Line = 0;

void Measure_Terminal(int generation, double seconds, bool usb) {
  const std::string link = (std::filesystem::temp_directory_path() /
                            ("norvik_bench_board_" + std::to_string(::getpid())))
                               .string();
  const pid_t board = ::fork();
  Platform = {};
  Install_Linux_Clock();
  if (board == 0) {
    Board_Process_Options options;
    options.Generation = generation > 0 ? Board_Generation::Pelmar_V5 : Board_Generation::Dravon_V4;
    options.Link = link;
    if (usb) options.Options = {"usb_latency=1"};
    Run_Board_Process(options, {});
    std::_Exit(0);
  }
  Install_Serial_Ports();
  while (::access(link.c_str(), F_OK) != 0)
    std::this_thread::sleep_for(std::chrono::milliseconds(5));
  Set_Up(generation, link);
  Serial_Link_Host.Exchanged = [](std::span<const std::uint8_t> sent,
                                  std::span<const std::uint8_t> received) {
    Bytes_On_Line += static_cast<std::int64_t>(sent.size() + received.size());
  };
  Bytes_On_Line = 0;
  const double used = Processor_Seconds();
  const auto start = Clock::now();
  std::int32_t moves = 0;
  while (Since(start) < seconds && Send_Chord(++moves)) {
  }
  const double passed = Since(start);
  constexpr double byte_seconds = 10.0 / Default_Baud;
  const double allowed = passed / (static_cast<double>(Bytes_On_Line) * byte_seconds / moves);
  std::printf(
      "%s%s: %.1f moves/s; the bytes allow %.1f: %.1f %%; %.1f bytes a move, processor %.1f %%, "
      "errors %.0f\n",
      generation > 0 ? "Pelmar" : "Dravon", usb ? ", USB 1 ms" : "", moves / passed, allowed,
      moves / passed / allowed * 100, static_cast<double>(Bytes_On_Line) / moves,
      (Processor_Seconds() - used) / passed * 100, Serial_Link.ErrorCount);
  Serial_Link_Host = {};
  Serial_End_Session();
  ::kill(board, SIGKILL);
  ::waitpid(board, nullptr, 0);
  ::unlink(link.c_str());
}

}  // namespace
}  // namespace norvik

int main(int count, char** words) {
  using namespace norvik;
  const std::string_view what = count > 1 ? words[1] : "virtual";
  const double number = count > 2 ? std::atof(words[2]) : 0;
  for (const int generation : {0, 1}) {
    if (what == "virtual") {
      Measure_Virtual(generation, number > 0 ? static_cast<std::int32_t>(number) : 20'000);
      continue;
    }
    for (const bool usb : {false, true}) Measure_Terminal(generation, number > 0 ? number : 5, usb);
  }
  return 0;
}
