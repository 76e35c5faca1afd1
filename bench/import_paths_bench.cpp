// HPGL and Excellon import: processor seconds of each stage at three sizes, and the path sorts
// against the plain scan.
//
//   import_paths_bench [FILE.plt | FILE.nc ...]   without files: generated plots of 5,000, 20,000
//   and
//                                                 50,000 strokes and drill files of 2,500, 5,000
//                                                 and 10,000 holes
//   import_paths_bench --plain FILE...            the plain scan, too, whatever it takes
//
// The plain scan grows with the square of the records; it runs on up to 20,000 by itself.
#include "../tests/import/plain_path_sort.h"
#include "bench_inputs.h"
#include "core/application.h"
#include "core/rounding.h"
#include "core/setup.h"
#include "import/excellon/import.h"
#include "import/excellon/reader.h"
#include "import/excellon/table.h"
#include "import/hpgl/import.h"
#include "import/hpgl/reader.h"
#include "import/pipeline/line_gcode.h"
#include "import/pipeline/line_store.h"
#include "import/pipeline/report.h"
#include "import_stages.h"

#include <cstdint>

namespace norvik {
namespace {

constexpr std::size_t Plain_Limit = 20'000;

Line_Store Stored() {
  Line_Store store;
  store.Load(Application.HPGL_Scratch, HPGL_Fault_Name);
  return store;
}

bench::Stages Measure_Plot(const std::string& path, bool sorted) {
  bench::Stages best;
  MachineSetup.HPGL_Sort_Lines = sorted;
  Line_GCode_Rules rules;
  rules.Fault_Name = HPGL_Fault_Name;
  for (int run = 0; run < bench::Runs; ++run) {
    Start_Import_Report(Import_Kind::HPGL, path);
    const double load = bench::Seconds([&] { HPGL_Load(path, Application.HPGL_Scratch); });
    best.Records = Stored().Size();
    const double sort = bench::Seconds([&] { HPGL_Sort_Step(Application.HPGL_Scratch); });
    const double write = bench::Seconds([&] { Write_Line_GCode(Application.HPGL_Scratch, rules); });
    best.Take(load, sort, write);
  }
  return best;
}

double Plain_Plot(const std::string& path) {
  HPGL_Load(path, Application.HPGL_Scratch);
  const Line_Store store = Stored();
  std::vector<Plain_Stroke> strokes;
  for (std::size_t n = 0; n < store.Size(); ++n) {
    strokes.push_back({To_Single(store.X(n, 0)), To_Single(store.Y(n, 0)), To_Single(store.X(n, 1)),
                       To_Single(store.Y(n, 1)), static_cast<std::int32_t>(n), false});
  }
  return bench::Seconds([&] { Plain_Stroke_Sort(strokes); });
}

bench::Stages Measure_Holes(const std::string& path) {
  bench::Stages best;
  MachineSetup.Excellon_Sort_Location = true;
  for (int run = 0; run < bench::Runs; ++run) {
    Start_Import_Report(Import_Kind::Excellon, path);
    Excellon_Table = {};
    const double load = bench::Seconds([&] { Excellon_Load(path); });
    best.Records = 0;
    for (const Excellon_Tool& tool : Excellon_Table.Tool) best.Records += tool.Holes.size();
    const double sort = bench::Seconds(Excellon_Sort_Step);
    const double write = bench::Seconds(Excellon_Write_GCode);
    best.Take(load, sort, write);
  }
  return best;
}

double Plain_Holes(const std::string& path) {
  Excellon_Table = {};
  Excellon_Load(path);
  float x = 0, y = 0;
  return bench::Seconds([&] {
    for (const Excellon_Tool& tool : Excellon_Table.Tool) {
      std::vector<Plain_Hole> holes;
      for (const Excellon_Hole& hole : tool.Holes) {
        holes.push_back({hole.X, hole.Y, static_cast<std::int32_t>(holes.size())});
      }
      Plain_Hole_Sort(holes, x, y);
    }
  });
}

void Print_File(const std::string& path, std::size_t plain_limit) {
  if (path.ends_with(".plt")) {
    bench::Print_Stages(path, "unsorted", Measure_Plot(path, false), 0, [] { return 0.0; });
    bench::Print_Stages(path, "sorted", Measure_Plot(path, true), plain_limit,
                        [&] { return Plain_Plot(path); });
  } else {
    bench::Print_Stages(path, "sorted", Measure_Holes(path), plain_limit,
                        [&] { return Plain_Holes(path); });
  }
}

}  // namespace
}  // namespace norvik

int main(int count, char** arguments) {
  using namespace norvik;
  const std::string folder = std::filesystem::temp_directory_path().string();
  Application.HPGL_Scratch = folder + "/norvik_bench_hpgl.txt";
  Application.Temporary_GCode = folder + "/norvik_bench.gc";
  Restore_Factory_Setup();

  std::vector<std::string> files(arguments + 1, arguments + count);
  const bool plain = std::erase(files, "--plain") > 0;
  if (files.empty()) {
    for (const int strokes : {5000, 20000, 50000}) {
      files.push_back(bench::Store("norvik_strokes_" + std::to_string(strokes) + ".plt",
                                   bench::Strokes_HPGL(strokes)));
    }
    for (const int holes : {2500, 5000, 10000}) {
      files.push_back(bench::Store("norvik_holes_" + std::to_string(holes) + ".nc",
                                   bench::Holes_Excellon(holes)));
    }
  }
  for (const std::string& file : files) Print_File(file, plain ? SIZE_MAX : Plain_Limit);
  std::remove(Application.HPGL_Scratch.c_str());
  std::remove(Application.Temporary_GCode.c_str());
}
