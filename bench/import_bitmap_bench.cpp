// Picture import: seconds at three grids, for each picture.
//
//   import_bitmap_bench [PICTURE...]     without pictures: a relief of 2000 by 2000 pixels, smooth
//                                        and with noise, so that every point is a record
#include "bench_inputs.h"
#include "core/application.h"
#include "core/setup.h"
#include "import/picture/import.h"
#include "import/pipeline/pipeline.h"
#include "import/pipeline/report.h"
#include "plot/picture/picture_files.h"

#include <chrono>
#include <cmath>
#include <cstdlib>
#include <numbers>

#include <sys/resource.h>

namespace norvik {
namespace {

double Seconds(const auto& body) {
  const auto start = std::chrono::steady_clock::now();
  body();
  return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

Picture Relief(int size, bool noisy) {
  bench::Random random;
  Picture picture{size, size, {}};
  for (int y = 0; y < size; ++y) {
    for (int x = 0; x < size; ++x) {
      const double u = 2 * std::numbers::pi * x / size, v = 2 * std::numbers::pi * y / size;
      int grey = static_cast<int>(127 + 60 * std::sin(3 * u) * std::cos(2 * v));
      if (noisy) grey += random.Whole(-40, 40);
      picture.Rgb.insert(picture.Rgb.end(), 3, static_cast<std::uint8_t>(grey));
    }
  }
  return picture;
}

// As many points as `points` on each axis of a 7 by 7 inch plate.
void Set_Grid(int points) {
  MachineSetup.BMAP_Increment_X = MachineSetup.BMAP_Increment_Y =
      7.0F / static_cast<float>(points - 1);
}

void Measure(const std::string& path, int points) {
  Set_Grid(points);
  std::size_t lines = 0;
  Import_Host.Open_GCode = [&](const std::string& program) {
    lines = std::filesystem::file_size(program);
  };
  const double total = Seconds([&] { Import_Bitmap_File(path); });
  rusage usage{};
  getrusage(RUSAGE_SELF, &usage);
  std::printf("%-22s %5d x %-5d total %.3f s  %.0f ns a point  program %.1f MB  memory %.0f MB\n",
              std::filesystem::path(path).filename().c_str(), points, points, total,
              total / points / points * 1e9, static_cast<double>(lines) / 1e6,
              static_cast<double>(usage.ru_maxrss) / 1024);
}

}  // namespace
}  // namespace norvik

int main(int count, char** arguments) {
  using namespace norvik;
  const std::filesystem::path folder = std::filesystem::temp_directory_path();
  Application.ErrorFile = (folder / "norvik_bench_err.txt").string();
  Application.Bitmap_Scratch = (folder / "norvik_bench_bitmap.txt").string();
  Application.Temporary_GCode = (folder / "norvik_bench.gc").string();
  Restore_Factory_Setup();
  std::vector<std::string> files(arguments + 1, arguments + count);
  if (files.empty()) {
    for (const bool noisy : {false, true}) {
      const std::string path = bench::Store(noisy ? "noisy relief" : "smooth relief", "");
      files.push_back(path);
    }
    Platform.Load_Picture = [smooth = Relief(2000, false),
                             noisy = Relief(2000, true)](const std::string& path) {
      return std::optional(path.find("noisy") != std::string::npos ? noisy : smooth);
    };
  } else {
    Install_Picture_Reader();
  }
  for (const std::string& file : files) {
    for (const int points : {500, 1000, 2000}) Measure(file, points);
  }
  std::remove(Application.Temporary_GCode.c_str());
}
