// What the bytes of a controller board cost the computer. Target: 150 ns for a frame or a reply.
//
//   serial_frame_bench
#include "serial/move_entry.h"
#include "serial/serial_frame.h"

#include <vector>

#include <benchmark/benchmark.h>

namespace norvik {
namespace {

void Plan_And_Build_A_Move(benchmark::State& state) {
  const Entry_Rules rules{.ReferenceSPI = 2'000, .SASF = 2, .Generation = 1, .Ramp_Rate = 5};
  Move_Entry entry;
  std::int32_t steps = 400;
  for (auto _ : state) {
    Entry_Speeds speeds{12, 60, 30};
    Plan_Entry(rules, {{steps++ & 0xFFFF, 300, 20, 0}}, speeds, entry);
    benchmark::DoNotOptimize(Move_Frame(entry, 1));
  }
}
BENCHMARK(Plan_And_Build_A_Move);

void Build_A_Move(benchmark::State& state) {
  Move_Entry entry;
  for (auto _ : state) {
    ++entry.Index;
    benchmark::DoNotOptimize(Move_Frame(entry, 1));
  }
}
BENCHMARK(Build_A_Move);

void Read_A_Status(benchmark::State& state) {
  std::vector<std::uint8_t> bytes(36, 7);
  unsigned sum = 0;
  for (const std::uint8_t byte : bytes) sum += byte;
  bytes.push_back(static_cast<std::uint8_t>(sum & 0xFFU));
  bytes.push_back(static_cast<std::uint8_t>(sum >> 8U));
  Reply_Bytes reply;
  for (auto _ : state) {
    benchmark::DoNotOptimize(Look_At_Reply(bytes, 38));
    for (std::size_t i = 0; i < bytes.size(); ++i) reply[static_cast<long long>(i) + 1] = bytes[i];
    benchmark::DoNotOptimize(Status_Of(reply, 1));
  }
}
BENCHMARK(Read_A_Status);

}  // namespace
}  // namespace norvik

BENCHMARK_MAIN();
