// DXF import: processor seconds of each stage at three sizes, and the entity sort against the plain
// scan.
//
//   import_dxf_bench [FILE.dxf...]       without files: generated drawings of 1,000, 10,000 and
//   50,000
//                                        entities
//   import_dxf_bench --plain FILE.dxf    the plain scan, too, whatever it takes
//   import_dxf_bench --depths FILE.dxf   with the depths of the drawing: an arc that gives one
//   depth does
//                                        not meet a polyline that gives none, so chains fall apart
//                                        and more open ends compete
//
// The plain scan grows with the cube of the entities; it runs on drawings of up to 2,000 by itself.
#include "../tests/import/plain_dxf_sort.h"
#include "bench_inputs.h"
#include "core/application.h"
#include "core/setup.h"
#include "import/dxf/gcode.h"
#include "import/dxf/layers.h"
#include "import/dxf/reader.h"
#include "import/dxf/sort.h"
#include "import/dxf/table.h"
#include "import/pipeline/report.h"
#include "import_stages.h"

#include <cstdint>

namespace norvik {
namespace {

constexpr std::size_t Plain_Limit = 2500;

bench::Stages Measure(const std::string& path) {
  bench::Stages best;
  for (int run = 0; run < bench::Runs; ++run) {
    DXF_Entity = {};
    Start_Import_Report(Import_Kind::DXF, path);
    const double load = bench::Seconds([&] { DXF_Load(path); });
    DXF_Sort_Layers_Step();
    const double sort = bench::Seconds(DXF_Sort_Entities_Step);
    best.Take(load, sort, bench::Seconds([&] {
                DXF_Add_Passes(Application.DXF_Scratch);
                DXF_Write_GCode(Application.DXF_Scratch);
              }));
  }
  best.Records = DXF_Entity.Rows.size();
  return best;
}

double Plain_Seconds(const std::string& path) {
  DXF_Entity = {};
  DXF_Load(path);
  Plain_Dxf_Sort sort{DXF_Entity.Rows, 0.0, 0.0, {}, {}, {}, 0, 0};
  return bench::Seconds(
      [&] { sort.Sort_Group(0, static_cast<std::int64_t>(DXF_Entity.Rows.size()) - 1); });
}

}  // namespace
}  // namespace norvik

int main(int count, char** arguments) {
  using namespace norvik;
  const std::string folder = std::filesystem::temp_directory_path().string();
  Application.DXF_Scratch = folder + "/norvik_bench_dxf.txt";
  Application.Temporary_GCode = folder + "/norvik_bench.gc";
  Restore_Factory_Setup();
  MachineSetup.DXF_Sort_Lines = true;

  std::vector<std::string> files(arguments + 1, arguments + count);
  const auto option = [&](const char* name) { return std::erase(files, name) > 0; };
  const bool plain = option("--plain");
  MachineSetup.DXF_Ingore_Depth = !option("--depths");
  if (files.empty()) {
    for (const int entities : {1000, 10000, 50000}) {
      files.push_back(bench::Store("norvik_chains_" + std::to_string(entities) + ".dxf",
                                   bench::Chains_DXF(entities)));
    }
  }
  for (const std::string& file : files) {
    bench::Print_Stages(file, "sorted", Measure(file), plain ? SIZE_MAX : Plain_Limit,
                        [&] { return Plain_Seconds(file); });
  }
  std::remove(Application.DXF_Scratch.c_str());
  std::remove(Application.Temporary_GCode.c_str());
}
