// best_time.h: how long work takes, for the benchmarks that print ratios of one run.
#pragma once

#include <algorithm>
#include <functional>
#include <limits>

#include <time.h>

namespace norvik::bench {

// Processor time of this process, kernel included.
inline double Cpu_Seconds() {
  timespec now{};
  clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &now);
  return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) * 1e-9;
}

// The shortest of several rounds, seconds.
inline double Best(const std::function<void()>& work, int rounds = 5) {
  double best = std::numeric_limits<double>::infinity();
  for (int round = 0; round < rounds; ++round) {
    const double start = Cpu_Seconds();
    work();
    best = std::min(best, Cpu_Seconds() - start);
  }
  return best;
}

}  // namespace norvik::bench
