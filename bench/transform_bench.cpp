// transform_bench: the text transforms and the exports on a generated program.
//
//   transform_bench [LINES] [FOLDER]     FOLDER takes the tables and the drawings
//
// Times are of the processor, kernel included, best of several rounds. For each transform its time
// and its ratio to a single pass over the same text that copies each line; for the exports the
// ratio to the reader of the table plus a bare write of the same bytes.
#include "best_time.h"
#include "compiler/compile/compile.h"
#include "compiler/state/compiler_state.h"
#include "compiler/tables/tables_io.h"
#include "compiler/text/program_text.h"
#include "core/application.h"
#include "core/paths.h"
#include "core/setup.h"
#include "platform/platform.h"
#include "transform/exports.h"
#include "transform/gcode_process.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <random>
#include <string>

#include <fcntl.h>
#include <unistd.h>

namespace {

using namespace norvik;
using bench::Best;

// Straight moves with what programs usually have: a feed now and then, an arc, a comment.
std::string Program_Of(std::int32_t lines) {
  std::mt19937 random(1);
  std::uniform_int_distribution place(0, 99'999);
  std::string text = "G90\r\nM3\r\n";
  char line[128];
  for (std::int32_t i = 3; i <= lines; ++i) {
    const double x = place(random) / 1e4, y = place(random) / 1e4, z = place(random) / -1e5;
    if (i % 50 == 0) {
      std::snprintf(line, sizeof line, "N%d G02 X%.4f Y%.4f I0.5 J0 [pass %d]\r\n", i, x, y, i);
    } else if (i % 10 == 0) {
      std::snprintf(line, sizeof line, "N%d G01 X%.4f Y%.4f Z%.4f F12.5\r\n", i, x, y, z);
    } else {
      std::snprintf(line, sizeof line, "N%d G01 X%.4f Y%.4f Z%.4f\r\n", i, x, y, z);
    }
    text += line;
  }
  return text;
}

void Report_Transforms(const GCode_Text& program) {
  const double copy = Best([&] {
    std::string text;
    text.reserve(program.Whole().size());
    for (std::int32_t line = 1; line <= program.Line_Count(); ++line) {
      text.append(program.Line(line)).append("\r\n");
    }
    if (text.empty()) std::abort();
  });
  std::printf("%d lines, copied in %.1f ms\n", program.Line_Count(), copy * 1e3);
  Transform_Values values;
  values.Axis.Fill(1.25F);
  for (const Transform transform : All_Transforms) {
    const double time = Best([&] {
      if (Transform_Program(program, transform, values).Text.empty()) std::abort();
    });
    std::printf("  %-16s %7.1f ms  %5.2f passes\n", std::string(Row_Of(transform).Name).c_str(),
                time * 1e3, time / copy);
  }
}

void Bare_Write(const std::string& path, std::string_view bytes) {
  const int file = ::open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0666);
  while (!bytes.empty()) {
    const ssize_t count = ::write(file, bytes.data(), std::min<std::size_t>(bytes.size(), 1 << 16));
    if (count <= 0) break;
    bytes.remove_prefix(static_cast<std::size_t>(count));
  }
  ::close(file);
}

void Report_Exports(const std::string& folder) {
  const std::string& table = Compile_Tables.Wire_Path;
  const std::string drawing = Join_Path(folder, "drawing"), bare = Join_Path(folder, "bare");
  const double read = Best([&] {
    if (Read_Wire_Table(table).Rows.empty()) std::abort();
  });
  const auto report = [&](const char* name, auto save) {
    const double time = Best([&] { save(drawing, table); });
    const std::string bytes = Read_Whole_File(drawing);
    const double write = Best([&] { Bare_Write(bare, bytes); });
    std::printf("  %-16s %7.1f ms  %5.2f of reading (%.1f ms) and writing %zu MB (%.1f ms)\n", name,
                time * 1e3, time / (read + write), read * 1e3, bytes.size() >> 20, write * 1e3);
  };
  report("dxf", Save_DXF_File);
  report("hpgl", Save_HPGL_File);
}

}  // namespace

int main(int argument_count, char** arguments) {
  const std::int32_t lines = argument_count > 1 ? std::atoi(arguments[1]) : 1'000'000;
  const std::string folder = argument_count > 2 ? arguments[2] : "/tmp";
  Application.Table_Folder = folder;
  MachineSetup.Axis_Format = "000.0000";
  MachineSetup.Axis_Feed_Rate_Travel = 60;
  MachineSetup.Axis_Feed_Rate_Cut = 20;
  MachineSetup.Axis_SPI.Fill(1000);
  MachineSetup.Export_All_Records = true;
  GCode_Program.Text = std::make_shared<const GCode_Text>(Program_Of(lines));
  Report_Transforms(*GCode_Program.Text);
  if (!CompileProgram()) {
    std::puts("The tables cannot be written: name a folder with room for them.");
    return 1;
  }
  Report_Exports(folder);
  return 0;
}
