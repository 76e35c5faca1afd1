// What the run loop costs a program step, and how long a stop takes.
//
//   run_loop_bench                              all
//   run_loop_bench --benchmark_filter=Step      cost of a step at the start and at the end of a
//                                               program of 900,000 wires, on the virtual clock
//   run_loop_bench --benchmark_filter=Latency   real clock, simulated machine, half steps of 50 us:
//                                               from the event to the last step edge, in
//                                               microseconds: median and worst of the rounds
//
// The trace of the moves is off, as in an estimate, except where its name says otherwise.
#include "compiler/tables/program_wire.h"
#include "control/manual/panel_jog.h"
#include "control/motion/machine_move.h"
#include "control/motion/motion.h"
#include "control/panel/connect.h"
#include "control/panel/run_program.h"
#include "control/run/cnc_controller.h"
#include "control/safety/safety.h"
#include "control/state/controller_state.h"
#include "core/application.h"
#include "core/setup.h"
#include "parallel/pin_map.h"
#include "parallel/step_engine.h"
#include "parallel/timing.h"
#include "platform/linux/linux_platform.h"
#include "platform/platform.h"
#include "simulate/simulated_machine.h"
#include "simulate/virtual_clock.h"

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <vector>

#include <benchmark/benchmark.h>

namespace norvik {
namespace {

constexpr std::int32_t Step_Port = 888;

void Start_Machine() {
  Machine = {};
  Controller = {};
  Step_Engine = {};
  Timing = {};
  Pins = {};
  Move_Trace = {};
  Move_Trace.Path = "";
  Restore_Factory_Setup();
  for (int slot = 1; slot <= 12; ++slot) {
    const int axis = (slot - 1) / 3, role = (slot - 1) % 3;
    MachineSetup.Output_Port[slot] = role == 2 ? 890 : Step_Port;
    MachineSetup.Parallel_Output_Bit[slot] = std::to_string(role == 2 ? axis : 2 * axis + role);
  }
  for (int slot = 0; slot <= 4; ++slot) {
    MachineSetup.Input_Port[slot] = 889;
    MachineSetup.Parallel_Input_Bit[slot] = std::to_string(slot == 0 ? 7 : slot + 2);
  }
  MachineSetup.Axis_SPI.Fill(1000);
  MachineSetup.Axis_Depth.Fill(1e6F);
  MachineSetup.Axis_Max_Feed_Rate.Fill(2000);
  MachineSetup.Axis_Ramping = false;
  MachineSetup.Parallel_MotorEnable_Option = 1;
  MachineSetup.Parallel_Time_Constant = 0;
  Reset_Simulated_Machine();
  Install_Simulated_Machine();
  Simulated_Machine.Access_Time = 0;
  Connect_Control();
}

void Load_Program(std::int32_t wires, double stroke, float feed) {
  Table<Wire> table;
  for (std::int32_t i = 1; i <= wires; ++i) {
    Wire wire;
    wire.Step = i;
    wire.Motion = 1;
    wire.End[1] = (i % 2) * stroke;
    wire.IPM_D = wire.IPM_S = wire.IPM_R = wire.IPM_E = feed;
    table.Rows.push_back(wire);
  }
  Install_Table(std::move(table));
  Machine.StartingStep = 1;
  Machine.EndingStep = wires;
}

// --- Cost of a step ------------------------------------------------------------------------------

// Runs 10,000 steps of 2 half steps each, at the start or at the end of the program.
void Run_Steps(benchmark::State& state, bool at_end, const std::string& trace) {
  const Platform_Operations before = Platform;
  Start_Machine();
  Install_Virtual_Clock();
  constexpr std::int32_t wires = 900'000, part = 10'000;
  Load_Program(wires, 0.001, 1000);
  Move_Trace.Path = trace;
  for (auto _ : state) {
    Machine.StartingStep = at_end ? wires - part + 1 : 1;
    Machine.EndingStep = Machine.StartingStep + part - 1;
    Command_CNC_Play_Click();
  }
  const double steps = static_cast<double>(state.iterations()) * part;
  state.counters["step"] =
      benchmark::Counter(steps, benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
  Remove_Virtual_Clock();
  Platform = before;
}
void Step_At_Start(benchmark::State& state) {
  Run_Steps(state, false, "");
}
void Step_At_End(benchmark::State& state) {
  Run_Steps(state, true, "");
}
void Step_With_Trace(benchmark::State& state) {
  const auto path = std::filesystem::temp_directory_path() / "norvik_trace_bench.csv";
  Run_Steps(state, false, path.string());
  std::filesystem::remove(path);
}
BENCHMARK(Step_At_Start)->Unit(benchmark::kMillisecond);
BENCHMARK(Step_At_End)->Unit(benchmark::kMillisecond);
BENCHMARK(Step_With_Trace)->Unit(benchmark::kMillisecond);

// --- Latency of a stop ---------------------------------------------------------------------------

std::int64_t Now() {
  return Platform.Monotonic_Clock();
}

// Lets `act` happen in the delay of a half step, as hardware would, and measures to the last edge.
template <class Act, class Start>
void Measure_Stop(benchmark::State& state, Act act, Start start) {
  const Platform_Operations before = Platform;
  Install_Linux_Clock();
  Start_Machine();
  std::int64_t last_edge = 0, acted = 0, due = 0;
  std::uint8_t last = 0;
  Platform.Port_Write = [&, inner = Platform.Port_Write](std::uint16_t port, std::uint8_t value) {
    inner(port, value);
    if (port == Step_Port && ((value ^ last) & 1) != 0) last_edge = Now();
    if (port == Step_Port) last = value;
  };
  const auto watch = [&] {
    if (acted == 0 && Step_Engine.Iteration >= due) {
      acted = Now();
      act();
    }
  };
  Platform.Delay_In_Period = [&, inner = Platform.Delay_In_Period](std::int32_t us,
                                                                   std::int64_t period) {
    inner(us, period);
    watch();
  };
  std::vector<double> late;
  for (auto _ : state) {
    acted = 0;
    due = 501 + static_cast<std::int64_t>(late.size() * 7 % 100);
    Machine.Position = Machine.Theoretical_Pos = {};
    Reset_Simulated_Machine();
    start();
    late.push_back(std::max(0.0, static_cast<double>(last_edge - acted) / 1000));
    Application.EscFlag = false;
  }
  std::ranges::sort(late);
  state.counters["median_us"] = late[late.size() / 2];
  state.counters["worst_us"] = late.back();
  Platform = before;
}

constexpr float Feed_Of_50_us = 600;  // 1000 steps per unit
void Play_Long_Wire() {
  Load_Program(2, 5, Feed_Of_50_us);
  Command_CNC_Play_Click();
}
void Latency_EStop_Input(benchmark::State& state) {
  Measure_Stop(
      state, [] { Press_EStop(true); },
      [] {
        Press_EStop(false);
        Play_Long_Wire();
      });
}
void Latency_Escape(benchmark::State& state) {
  Measure_Stop(
      state, [] { Application.EscFlag = true; }, Play_Long_Wire);
}
void Latency_EStop_Button(benchmark::State& state) {
  Measure_Stop(
      state, [] { Command_EStop_Click(); },
      [] {
        if (Machine.EStop_Flag) Command_EStop_Click();
        Play_Long_Wire();
      });
}
void Latency_Jog_Release(benchmark::State& state) {
  Measure_Stop(
      state, [] { Jog_MouseUp(1, 1); },
      [] {
        MachineSetup.Axis_Feed_Rate_Jogging = Feed_Of_50_us;
        Jog_MouseDown(1, 1);
      });
}
// The running step is finished first: of its 1000 half steps 399 to 498 are left then.
void Latency_Pause(benchmark::State& state) {
  Measure_Stop(state, Command_CNC_Pause_Click, [] {
    CNC_Stop();
    Load_Program(3, 0.5, Feed_Of_50_us);
    Command_CNC_Play_Click();
  });
}
BENCHMARK(Latency_EStop_Input)->Iterations(200)->Unit(benchmark::kMillisecond);
BENCHMARK(Latency_Escape)->Iterations(200)->Unit(benchmark::kMillisecond);
BENCHMARK(Latency_EStop_Button)->Iterations(200)->Unit(benchmark::kMillisecond);
BENCHMARK(Latency_Jog_Release)->Iterations(200)->Unit(benchmark::kMillisecond);
BENCHMARK(Latency_Pause)->Iterations(200)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace norvik

BENCHMARK_MAIN();
