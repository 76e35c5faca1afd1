// When step edges really leave the computer, beside the best that a bare loop over the clock gets.
//
//   step_timing_bench [SECONDS [LEVEL]]     10 seconds for each period and loop, priority level 1
//
// Half steps of 100, 50 and 25 microseconds of one axis, on the real clock and the simulated port.
// In turns of a quarter second the step engine and a bare loop run with the same period, so that
// both meet the same load. Lateness of an edge: the time since the edge before it, less the period
// asked for (the bare loop waits for its last reading plus the period and is measured the same
// way). The time constant is first settled by autotune at 100 microseconds. `rate` is the mean rate
// of the edges over the commanded one; it needs no fault of the system, so it shows whether lost
// time is made good. `>5 us` counts the edges later than that, in thousandths: those that an
// interrupt of the system fell on.
//
// 40 half steps of 100 microseconds are one tick of the system's timer, so that a loop which keeps
// its period exactly stays at one place beside the ticks. The engine moves out of their way when
// two in a row fall on its edges, the bare loop is pushed out by each. Each turn begins at another
// place; the bare loop drifts through all of them.
//
// At the end: how long after a stop the last edge leaves, over a hundred moves at 50 microseconds.
// The stop comes with an edge: the E-stop input changes its level, the ESC key goes down, or a
// released jog's flag falls (handlers set it in a yield of the move, every quarter second).
#include "core/application.h"
#include "core/setup.h"
#include "parallel/pin_map.h"
#include "parallel/step_engine.h"
#include "parallel/timing.h"
#include "platform/linux/linux_platform.h"
#include "platform/linux/time_stamp_counter.h"
#include "platform/platform.h"
#include "simulate/simulated_machine.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <vector>

namespace norvik {
namespace {

constexpr double Turn_Seconds = 0.25;
constexpr double Scale = 1000;  // steps per unit

// Time for both loops: the counter, scaled by the clock over the whole program.
double Ns_Per_Tick = 0;

void Calibrate_Ticks() {
  const std::int64_t ns = Platform.Monotonic_Clock();
  const std::uint64_t ticks = Read_Time_Stamp_Counter();
  while (Platform.Monotonic_Clock() < ns + 200'000'000) {
  }
  Ns_Per_Tick = static_cast<double>(Platform.Monotonic_Clock() - ns) /
                static_cast<double>(Read_Time_Stamp_Counter() - ticks);
}

// Microseconds between edges and what they came to.
struct Series {
  std::vector<double> Late;  // microseconds, by edge
  double Time = 0, Edges = 0;

  void Take(const std::vector<std::uint64_t>& edges, double period) {
    for (std::size_t i = 1; i < edges.size(); ++i) {
      Late.push_back(static_cast<double>(edges[i] - edges[i - 1]) * Ns_Per_Tick / 1e3 - period);
    }
    if (edges.size() < 2) return;
    Time += static_cast<double>(edges.back() - edges.front()) * Ns_Per_Tick / 1e3;
    Edges += static_cast<double>(edges.size() - 1);
  }
  double Thousandths_Later_Than(double limit) const {
    const auto late = std::count_if(Late.begin(), Late.end(), [&](double l) { return l > limit; });
    return 1e3 * static_cast<double>(late) / static_cast<double>(Late.size());
  }
  double At(double part) {
    std::sort(Late.begin(), Late.end());
    return Late[static_cast<std::size_t>(part * static_cast<double>(Late.size() - 1))];
  }
};

std::vector<std::uint64_t> Edge_Ticks;

// What happens with the edge of this number; 0: nothing.
struct Event_At_Edge {
  std::size_t Edge = 0;
  std::function<void()> Happen;
};
Event_At_Edge Event;

std::vector<std::uint64_t> Bare_Turn(double period, std::size_t edges) {
  std::vector<std::uint64_t> ticks;
  ticks.reserve(edges);
  const auto wait = static_cast<std::uint64_t>(period * 1e3 / Ns_Per_Tick);
  ticks.push_back(Read_Time_Stamp_Counter());
  while (ticks.size() < edges) {
    const std::uint64_t deadline = ticks.back() + wait;
    std::uint64_t now = 0;
    do {
      now = Read_Time_Stamp_Counter();
    } while (now < deadline);
    ticks.push_back(now);
  }
  return ticks;
}

// Turns begin evenly spread over a timer tick of 4 milliseconds.
void Shift_Phase(int turn) {
  constexpr double golden_part = 0.6180339887, tick_ns = 4e6;
  const double part = turn * golden_part - std::floor(turn * golden_part);
  const std::int64_t start = Platform.Monotonic_Clock();
  const auto shift = static_cast<std::int64_t>(part * tick_ns);
  while (Platform.Monotonic_Clock() < start + shift) {
  }
}

Step_Request One_Axis(double period, double seconds, bool negative) {
  Step_Request request;
  request.Steps[1] = static_cast<std::int32_t>(seconds * 1e6 / period / 2);
  request.Negative[1] = negative;
  request.Start = request.Run = request.End = 60e6 / (2 * period * Scale);
  return request;
}

std::vector<std::uint64_t> Engine_Turn(double period, bool negative) {
  Edge_Ticks.clear();
  Step_Engine_Move(One_Axis(period, Turn_Seconds, negative));
  return Edge_Ticks;
}

void Start_Machine(int level) {
  Install_Linux_Clock();
  Install_Linux_Priority();
  const std::string refused = Platform.Set_Priority(level);
  if (!refused.empty()) std::printf("%s\n", refused.c_str());
  Restore_Factory_Setup();
  const char* const bits[] = {"0", "1", "99"};
  for (int slot = 1; slot <= 12; ++slot) {
    MachineSetup.Parallel_Output_Bit[slot] = slot <= 3 ? bits[slot - 1] : "99";
  }
  for (int slot = 0; slot <= 4; ++slot) {
    MachineSetup.Parallel_Input_Bit[slot] = std::to_string(slot == 0 ? 7 : slot + 2);
  }
  MachineSetup.Axis_SPI.Fill(static_cast<float>(Scale));
  MachineSetup.Axis_Depth.Fill(1e6f);
  MachineSetup.Axis_Max_Feed_Rate.Fill(100'000);
  MachineSetup.Axis_Ramping = false;
  MachineSetup.Parallel_MotorEnable_Option = 1;
  Reset_Simulated_Machine();
  Install_Simulated_Machine();
  Simulated_Machine.Access_Time = 0;
  Idle_All_Outputs();
}

void Note_Edges() {
  Edge_Ticks.reserve(1'000'000);
  const auto write = Platform.Port_Write;
  Platform.Port_Write = [write](std::uint16_t port, std::uint8_t value) {
    if (port == 888) Edge_Ticks.push_back(Read_Time_Stamp_Counter());
    write(port, value);
    if (Event.Edge != 0 && Edge_Ticks.size() == Event.Edge) Event.Happen();
  };
}

// Autotune at an easy rate until the constant has not moved for some seconds.
void Settle_Time_Constant() {
  Timing.FeedRate_Autotune = true;
  MachineSetup.Parallel_Time_Constant = 20;
  for (int i = 0; i < 2; ++i) {
    Edge_Ticks.clear();
    Step_Engine_Move(One_Axis(100, 12, i == 1));
  }
  Timing.FeedRate_Autotune = false;
  std::printf("time constant: %d\n", MachineSetup.Parallel_Time_Constant);
}

void Print(const char* name, double period, Series& series) {
  constexpr double interrupted = 5;  // microseconds
  std::printf("%6.0f  %-6s  %8.3f  %8.3f  %8.3f  %9.1f  %7.3f  %9.5f\n", period, name,
              series.At(0.5), series.At(0.99), series.At(0.999), series.At(1),
              series.Thousandths_Later_Than(interrupted), series.Edges * period / series.Time);
}

void Run(double seconds) {
  std::printf("%6s  %-6s  %8s  %8s  %8s  %9s  %7s  %9s\n", "us", "loop", "median", "p99", "p99.9",
              "worst", ">5 us", "rate");
  for (const double period : {100.0, 50.0, 25.0}) {
    Series bare, engine;
    const int turns = std::max(1, static_cast<int>(seconds / Turn_Seconds));
    for (int turn = 0; turn < turns; ++turn) {
      const auto edges = static_cast<std::size_t>(Turn_Seconds * 1e6 / period);
      bare.Take(Bare_Turn(period, edges), period);
      Shift_Phase(turn);
      std::vector<std::uint64_t> ticks = Engine_Turn(period, turn % 2 == 1);
      ticks.erase(ticks.begin());  // the write of the direction
      engine.Take(ticks, period);
    }
    Print("bare", period, bare);
    Print("engine", period, engine);
  }
}

struct Stop_Kind {
  const char* Name;
  std::function<void()> Begin, End;
};

void Measure_Stops() {
  bool escape = false;
  Platform.Key_Down = [&](int) { return escape; };
  const std::vector<Stop_Kind> kinds{
      {"E-stop input", [] { Press_EStop(true); }, [] { Press_EStop(false); }},
      {"ESC", [&] { escape = true; }, [&] { escape = false; }},
      {"released jog", [] { Machine.Jog_Stop_Request = false; }, [] {}}};
  constexpr double period = 50;
  std::printf("\n%-14s  %10s  %12s  %12s\n", "stop", "half steps", "median us", "longest us");
  for (const Stop_Kind& kind : kinds) {
    std::vector<double> micros;
    std::size_t half_steps = 0;
    for (std::size_t i = 0; i < 100; ++i) {
      Edge_Ticks.clear();
      Application.EscFlag = false;
      Event = {100 + i, kind.Begin};
      Step_Engine_Move(One_Axis(period, Turn_Seconds, i % 2 == 1));
      kind.End();
      half_steps = std::max(half_steps, Edge_Ticks.size() - Event.Edge);
      const std::uint64_t happened = Edge_Ticks[Event.Edge - 1];
      micros.push_back(static_cast<double>(Edge_Ticks.back() - happened) * Ns_Per_Tick / 1e3);
    }
    std::sort(micros.begin(), micros.end());
    std::printf("%-14s  %10zu  %12.1f  %12.1f\n", kind.Name, half_steps, micros[50], micros[99]);
  }
  Event = {};
  Platform.Key_Down = [](int) { return false; };
}

}  // namespace
}  // namespace norvik

int main(int argc, char** argv) {
  using namespace norvik;
  Start_Machine(argc > 2 ? std::atoi(argv[2]) : 1);
  Calibrate_Ticks();
  Note_Edges();
  Settle_Time_Constant();
  Run(argc > 1 ? std::atof(argv[1]) : 10);
  Measure_Stops();
}
