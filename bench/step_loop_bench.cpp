// What an iteration of the step loop costs on the simulated port, and how many half steps a second
// the virtual clock makes.
//
//   step_loop_bench                             all
//   step_loop_bench --benchmark_filter=Own      the loop's own cost on the real clock, no waiting
//
// `half_step` is the time of one iteration, `allocations` counts those of the whole measurement.
// All pins are wired and the limit guard is on: nine reads in each iteration and a read and a write
// for each pin that toggles.
#include "core/application.h"
#include "core/setup.h"
#include "parallel/pin_map.h"
#include "parallel/step_engine.h"
#include "parallel/timing.h"
#include "platform/linux/linux_platform.h"
#include "platform/platform.h"
#include "simulate/simulated_machine.h"
#include "simulate/virtual_clock.h"

#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <new>

#include <benchmark/benchmark.h>
#include <sys/resource.h>

namespace {
std::int64_t Allocations = 0;
}  // namespace

// Not inlined: the compiler would take the pair of them for a mismatch.
[[gnu::noinline]] void* operator new(std::size_t size) {
  ++Allocations;
  if (void* memory = std::malloc(size)) return memory;
  throw std::bad_alloc();
}
[[gnu::noinline]] void operator delete(void* memory) noexcept {
  std::free(memory);
}
[[gnu::noinline]] void operator delete(void* memory, std::size_t) noexcept {
  std::free(memory);
}

namespace norvik {
namespace {

void Wire_All_Pins() {
  for (int slot = 1; slot <= 12; ++slot) {
    const int axis = (slot - 1) / 3, role = (slot - 1) % 3;
    MachineSetup.Output_Port[slot] = role == 2 ? 890 : 888;
    MachineSetup.Parallel_Output_Bit[slot] = std::to_string(role == 2 ? axis : 2 * axis + role);
  }
  for (int n = 1; n <= 5; ++n) {
    MachineSetup.Output_Port[12 + n] = 632;
    MachineSetup.Parallel_Output_Bit[12 + n] = std::to_string(n - 1);
  }
  for (int slot = 0; slot <= 5; ++slot) {
    MachineSetup.Input_Port[slot] = slot == 5 ? 633 : 889;
    MachineSetup.Parallel_Input_Bit[slot] = std::to_string(slot == 0   ? 7
                                                           : slot == 5 ? 3
                                                                       : slot + 2);
  }
}

// A machine whose travel holds every move of the benchmark.
void Start_Machine() {
  Machine = {};
  Step_Engine = {};
  Timing = {};
  Pins = {};
  Drive_Status = {};
  Restore_Factory_Setup();
  Wire_All_Pins();
  MachineSetup.Axis_SPI.Fill(1000);
  MachineSetup.Axis_Depth.Fill(1e6f);
  MachineSetup.Axis_Max_Feed_Rate.Fill(100'000);
  MachineSetup.Parallel_Time_Constant = 0;
  Reset_Simulated_Machine();
  Install_Simulated_Machine();
  Simulated_Machine.Access_Time = 0;
  Idle_All_Outputs();
}

Step_Request Four_Axes(std::int32_t steps) {
  Step_Request request;
  request.Steps = {{steps, steps * 3 / 4, steps / 2, steps / 3}};
  request.Start = request.End = 60;
  request.Run = 600;
  request.No_Rate_Check = true;
  return request;
}

// Moves back and forth; counts half steps and allocations.
void Run_Moves(benchmark::State& state, Step_Request request) {
  for (const bool way : {false, true}) {  // what is allocated once
    request.Negative.Fill(way);
    Step_Engine_Move(request);
  }
  const std::int64_t allocations = Allocations;
  std::int64_t half_steps = 0;
  for (auto _ : state) {
    for (bool& negative : request.Negative) negative = !negative;
    if (Step_Engine_Move(request) != Move_End::Done) state.SkipWithError("the move ended early");
    half_steps += 2 * std::int64_t{Step_Engine.MaxSteps};
  }
  const std::int64_t allocated = Allocations - allocations;
  state.counters["half_step"] = benchmark::Counter(
      static_cast<double>(half_steps), benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
  state.counters["half_steps_per_s"] =
      benchmark::Counter(static_cast<double>(half_steps), benchmark::Counter::kIsRate);
  state.counters["allocations"] = static_cast<double>(allocated);
}

void Own_Cost(benchmark::State& state, Step_Request request) {
  Install_Linux_Clock();
  Platform.Delay_In_Period = [](std::int32_t, std::int64_t) {};
  Start_Machine();
  for (int axis = 1; axis <= Axis_Count; ++axis) {
    // Without waits the steps come faster than any motor or driver takes them.
    Simulated_Axis_Settings& s = Simulated_Machine.Axes[axis].Settings;
    s.Top_Rate = 0;
    s.Shortest_Pulse = s.Direction_Setup = s.Direction_Hold = 0;
  }
  Run_Moves(state, request);
  Platform = {};
}

void Own_Cost_Equal_Axes(benchmark::State& state) {
  Step_Request request = Four_Axes(20'000);
  request.Steps.Fill(20'000);
  Own_Cost(state, request);
}
BENCHMARK(Own_Cost_Equal_Axes)->Unit(benchmark::kMillisecond);

void Own_Cost_Four_Axes(benchmark::State& state) {
  Own_Cost(state, Four_Axes(20'000));
}
BENCHMARK(Own_Cost_Four_Axes)->Unit(benchmark::kMillisecond);

// A toggle that moves its pin (0) and one of a blocked axis, whose byte goes to the dummy address
// (1), with port accesses of one microsecond as a real port has them.
void Cost_Of_A_Toggle(benchmark::State& state) {
  Install_Linux_Clock();
  Start_Machine();
  Simulated_Machine.Access_Time = 1'000;
  const bool enabled = state.range(0) == 0;
  for (auto _ : state) Toggle_Step(1, false, enabled, false);
  Platform = {};
}
BENCHMARK(Cost_Of_A_Toggle)->Arg(0)->Arg(1);

void Virtual_Time_Four_Axes(benchmark::State& state) {
  Install_Virtual_Clock();
  Start_Machine();
  Run_Moves(state, Four_Axes(20'000));
  Remove_Virtual_Clock();
  Platform = {};
}
BENCHMARK(Virtual_Time_Four_Axes)->Unit(benchmark::kMillisecond);

void Virtual_Time_Plane(benchmark::State& state) {
  Install_Virtual_Clock();
  Start_Machine();
  Step_Request request = Four_Axes(20'000);
  request.Steps[3] = request.Steps[4] = 0;
  Run_Moves(state, request);
  Remove_Virtual_Clock();
  Platform = {};
}
BENCHMARK(Virtual_Time_Plane)->Unit(benchmark::kMillisecond);

double Memory_MB() {
  rusage usage{};
  ::getrusage(RUSAGE_SELF, &usage);
  return static_cast<double>(usage.ru_maxrss) / 1024;
}

// 900,000 short moves in a row: the first tenth against the last.
void Virtual_Time_Of_Many_Moves(benchmark::State& state) {
  Install_Virtual_Clock();
  Start_Machine();
  constexpr int moves = 900'000, tenth = moves / 10;
  Step_Request request = Four_Axes(12);
  for (auto _ : state) {
    const double memory = Memory_MB();
    const auto seconds = [&](int count) {
      const std::clock_t begin = std::clock();
      for (int i = 0; i < count; ++i) {
        request.Negative.Fill(i % 2 == 1);
        Step_Engine_Move(request);
      }
      return static_cast<double>(std::clock() - begin) / CLOCKS_PER_SEC;
    };
    const double first = seconds(tenth);
    seconds(moves - 2 * tenth);
    state.counters["last_over_first"] = seconds(tenth) / first;
    state.counters["more_memory_MB"] = Memory_MB() - memory;
    state.counters["first_move_us"] = first / tenth * 1e6;
  }
  Remove_Virtual_Clock();
  Platform = {};
}
BENCHMARK(Virtual_Time_Of_Many_Moves)->Unit(benchmark::kMillisecond)->Iterations(1);

}  // namespace
}  // namespace norvik

BENCHMARK_MAIN();
