// motion_bench: motion files and the analyzer over a planned table.
//
//   motion_bench [FOLDER]     FOLDER takes the files; the working folder by default
//
// A contour of 300,000 short wires. One line each, processor time, the best of five runs:
//
//   save     the wire table read as values and written 29 a line, against the reader of the table
//            plus a bare write of the same bytes
//   load     the motion file into a table in memory and a wire table on disk, against the same
//   checks   the three checks of the analyzer, nanoseconds a row, its yields included
#include "best_time.h"
#include "compiler/tables/tables_io.h"
#include "compiler/tables/value_stream.h"
#include "compiler/wires/feed_pass.h"
#include "core/paths.h"
#include "core/replacement_file.h"
#include "core/setup.h"
#include "platform/scripted/scripted_platform.h"
#include "tools/motion_analyzer.h"
#include "tools/motion_file.h"

#include <cmath>
#include <cstdio>
#include <string>
#include <utility>

namespace norvik {
namespace {

using bench::Best;

constexpr int count = 300'000;

void Set_Up() {
  MachineSetup.Axis_SPI.Fill(4000);
  MachineSetup.Axis_Max_Feed_Rate.Fill(120);
  MachineSetup.Axis_Ramp_Start = 5;
  MachineSetup.Axis_Ramp_Rate = 5;
  MachineSetup.Axis_CV_MotionAngle = 45;
  MachineSetup.Motion_File_Any_Length = true;
}

// Four decimals, as programs have them.
double Short(double value) {
  return std::round(value * 1e4) / 1e4;
}

Table<Wire> Contour() {
  Table<Wire> table;
  double x = 0, y = 0;
  for (int k = 0; k < count; ++k) {
    Wire wire;
    wire.Step = k + 1;
    wire.Motion = 1;
    wire.FeedMove = true;
    wire.Start = {{x, y, -0.05, 0}};
    x = Short(x + 0.02 * std::cos(k * 0.01));
    y = Short(y + 0.02 * std::sin(k * 0.013));
    wire.End = {{x, y, -0.05, 0}};
    wire.Block_Text = "G1 X1.2345 Y2.3456";
    wire.IPM_D = wire.IPM_S = wire.IPM_R = wire.IPM_E = 40;
    table.Rows.push_back(wire);
  }
  Plan_Rates(table.Rows);
  return table;
}

void Write_Bytes(const std::string& path, std::string_view bytes) {
  Replacement_File file(path);
  file.Write(bytes);
  file.Commit(Flush_To_Disk::No);
}

void Report(const char* what, double seconds, double floor) {
  std::printf("%-7s %.3f s, %.2f of the table reader plus a bare writer (%.3f s)\n", what, seconds,
              seconds / floor, floor);
}

void Run(const std::string& folder) {
  Set_Up();
  const std::string wire_file = Join_Path(folder, "bench_wires.csv");
  const std::string motion_file = Join_Path(folder, "bench_motion.mcd");
  const std::string copy = Join_Path(folder, "bench_copy.csv");
  Table<Wire> contour = Contour();
  Write_Wire_Table(wire_file, contour);

  const auto save = [&] {
    File_Source source(wire_file);
    Value_Stream values(source, wire_file);
    Motion_Content content;
    Write_Bytes(motion_file, Packed_Motion(values, content));
  };
  const auto load = [&] {
    File_Source source(motion_file);
    Value_Stream values(source, motion_file);
    Motion_Content content;
    const std::string bytes = Unpacked_Motion(values, content);
    const Table<Wire> wires = Parse_Wire_Table(bytes, motion_file);
    Write_Bytes(copy, bytes);
  };
  const double saved = Best(save), loaded = Best(load);
  const std::string bytes = Read_Whole_File(motion_file);
  const double read = Best([&] { const Table<Wire> wires = Read_Wire_Table(wire_file); });
  const double written = Best([&] { Write_Bytes(copy, bytes); });
  Report("save", saved, read + written);
  Report("load", loaded, read + written);

  Take_Analyzer_Wires(std::move(contour));
  const double checked = Best(DisplayData);
  std::printf("checks  %.3f s, %.0f ns a row, %d errors\n", checked, checked / count * 1e9,
              frmMotionAnalyzer.ErrorCount);
  for (const std::string& file : {wire_file, motion_file, copy}) std::remove(file.c_str());
}

}  // namespace
}  // namespace norvik

int main(int argument_count, char** arguments) {
  const norvik::Scripted_Platform platform;
  norvik::Run(argument_count > 1 ? arguments[1] : ".");
}
