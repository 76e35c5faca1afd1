// import_stages.h: processor seconds of an import by stage, as the importer benchmarks print them.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdio>
#include <ctime>
#include <filesystem>
#include <string>

namespace norvik::bench {

inline double Seconds(const auto& body) {
  const std::clock_t start = std::clock();
  body();
  return static_cast<double>(std::clock() - start) / CLOCKS_PER_SEC;
}

inline constexpr int Runs = 5;

// The best of several runs, stage by stage.
struct Stages {
  double Load = 1e9, Sort = 1e9, Write = 1e9;
  std::size_t Records = 0;

  void Take(double load, double sort, double write) {
    Load = std::min(Load, load);
    Sort = std::min(Sort, sort);
    Write = std::min(Write, write);
  }
};

// `plain` gives the seconds of the plain sort, which grows beyond all bounds: it is asked for up to
// `plain_limit` records.
inline void Print_Stages(const std::string& path, const char* how, const Stages& stages,
                         std::size_t plain_limit, const auto& plain) {
  const double total = stages.Load + stages.Sort + stages.Write;
  const auto records = static_cast<double>(std::max<std::size_t>(stages.Records, 1));
  std::printf(
      "%-28s %-8s %6zu records  load %.4f  sort %.4f  write %.4f  total %.4f s  %.0f ns each",
      std::filesystem::path(path).filename().c_str(), how, stages.Records, stages.Load, stages.Sort,
      stages.Write, total, total / records * 1e9);
  if (stages.Records <= plain_limit) {
    const double seconds = plain();
    std::printf("  plain sort %.3f s, ratio %.0f", seconds, seconds / std::max(stages.Sort, 1e-9));
  }
  std::printf("\n");
}

}  // namespace norvik::bench
