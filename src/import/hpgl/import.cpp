#include "import/hpgl/import.h"

#include "core/application.h"
#include "core/rounding.h"
#include "core/setup.h"
#include "import/hpgl/reader.h"
#include "import/pipeline/line_gcode.h"
#include "import/pipeline/line_store.h"
#include "import/pipeline/numbers.h"
#include "import/pipeline/path_sort.h"
#include "import/pipeline/pipeline.h"
#include "import/pipeline/placing.h"
#include "import/pipeline/report.h"
#include "platform/platform.h"

#include <array>
#include <functional>

namespace norvik {

HPGL_Import_State HPGL_Import;

namespace {

constexpr std::int32_t Rounds_Per_Yield = 50;

// Drops repeated records and those of no length on the way to the file. Values are compared
// exactly.
class Distinct_Writer {
 public:
  explicit Distinct_Writer(const std::string& line_file)
      : File(line_file, Line_Form::Thirteen, Line_File_Writer::Mode::Replace,
             Line_Precision::Single) {
    Before.fill(start_value);
  }
  void Write(const ImportLine& line);
  void Close() { File.Close(); }

 private:
  static constexpr double start_value = 999999;
  Line_File_Writer File;
  std::array<Nullable, 6> Before;
};

void Distinct_Writer::Write(const ImportLine& line) {
  const std::array<Nullable, 6> ends{line.X1, line.Y1, line.Z1, line.X2, line.Y2, line.Z2};
  // A full circle ends where it begins and has a length all the same.
  // So has the dot of a pen that went down and up, which drills with `HPGL_All_Pairs`.
  const bool closed = line.X1 == line.X2 && line.Y1 == line.Y2 && line.Z1 == line.Z2 &&
                      !line.Type && !MachineSetup.HPGL_All_Pairs;
  if (closed) {
    Count_Skipped("stroke of no length");
  } else if (ends == Before) {
    Count_Skipped("repeated stroke");
  } else {
    File.Write(line);
    Before = ends;
  }
}

Nullable Single_Of(const Nullable& value) {
  return value ? Nullable(static_cast<double>(To_Single(*value))) : Nullable();
}

void Sort_Records(const std::string& line_file) {
  Line_Store store;
  store.Load(line_file, "HPGL Sort Lines Error");
  std::vector<Point_Tree::Point> ends;
  ends.reserve(store.Size() * 2);
  for (std::size_t n = 0; n < store.Size(); ++n) {
    for (const int side : {0, 1}) {
      ends.push_back({To_Single(store.X(n, side)), To_Single(store.Y(n, side))});
    }
  }
  const auto total = static_cast<double>(store.Size());
  Point_Tree::Point position;
  const auto steps = Sort_Path(ends, Path_Rows::Lines, position, [&](std::int32_t done) {
    if (done % Rounds_Per_Yield == 0) {
      Import_Progress("File Sort: Sorting Data... ", done / total,
                      "% Completed, press ESC to cancel");
      DoEvents();
    }
    return !Application.EscFlag;
  });
  if (Application.EscFlag) return;  // the file stays as it was read

  Distinct_Writer writer(line_file);
  ImportLine line;
  for (const Path_Step& step : steps) {
    store.Get(static_cast<std::size_t>(step.Row), line);
    for (Nullable* value : {&line.X1, &line.Y1, &line.X2, &line.Y2}) *value = Single_Of(*value);
    if (step.Reversed) Reverse_Line(line);
    writer.Write(line);
  }
  writer.Close();
}

// A clockwise arc under incremental centres holds its end minus its centre.
bool Holds_Centre_From_End(const ImportLine& line) {
  return line.Type == Arc_Clockwise && MachineSetup.GC_IJ_Incremental;
}

void Turn_Centre_Over(ImportLine& line) {
  if (!line.I || !line.J || !Holds_Centre_From_End(line)) return;
  line.I = *line.X2 - *line.I;
  line.J = *line.Y2 - *line.J;
}

void Place_Records(const std::string& line_file) {
  Line_Store store;
  store.Load(line_file, HPGL_Fault_Name);
  ImportLine line;
  const auto for_each = [&](const std::function<void()>& use) {
    for (std::size_t n = 0; n < store.Size(); ++n) {
      store.Get(n, line);
      Turn_Centre_Over(line);  // now absolute
      use();
    }
  };
  const Placing placing([&](Drawing_Extent& extent, const Placing& turned) {
    for_each([&] {
      turned.Place(line);
      extent.Take(*line.X1, *line.Y1);
      extent.Take(*line.X2, *line.Y2);
      if (line.Type && line.I && line.J) {
        extent.Take_Arc(line.Type == Arc_Clockwise, {*line.X1, *line.Y1}, {*line.X2, *line.Y2},
                        {*line.I, *line.J});
      }
    });
  });
  Line_File_Writer writer(line_file, Line_Form::Thirteen);
  for_each([&] {
    placing.Place(line);
    Turn_Centre_Over(line);
    writer.Write(line);
  });
  writer.Close();
}

}  // namespace

void HPGL_Sort_Step(const std::string& line_file) {
  if (!MachineSetup.HPGL_Sort_Lines) return;
  Import_Status("File Sort: Sorting Data...");
  Trap("HPGL Sort Lines Error", [&] { Sort_Records(line_file); });
}

void HPGL_Add_Passes(const std::string& line_file) {
  const std::int16_t passes = MachineSetup.HPGL_Passes_to_Depth;
  if (!MachineSetup.HPGL_Ingore_Depth || passes < 2) return;
  const double top = Decimal_Of(MachineSetup.Axis_Tool_Height[0]);
  const double step = (top - Decimal_Of(MachineSetup.Axis_Tool_Height[1])) / passes;
  Rewrite_Passes(line_file, HPGL_Fault_Name, passes, [&, z = top](int pass) mutable {
    z = pass == 1 ? top - step : z - step;
    return [depth = Decimal_Of(To_Single(z))](ImportLine& line) { line.Z1 = line.Z2 = depth; };
  });
}

bool Import_HPGL_File(const std::string& path) {
  const std::string& line_file = Application.HPGL_Scratch;
  return Run_Import(Import_Kind::HPGL, path, line_file, [&] {
    Import_Report.Format = "file units: 1016 to the inch";
    HPGL_Load(path, line_file);
    Trap(HPGL_Fault_Name, [] {
      constexpr double tenths = 10;
      HPGL_Import.Tool_Diameter = To_Int16(Decimal_Of(MachineSetup.HPGL_PenSize) * tenths);
    });
    if (Is_Placed()) Trap(HPGL_Fault_Name, [&] { Place_Records(line_file); });
    HPGL_Sort_Step(line_file);
    HPGL_Add_Passes(line_file);
    Import_Status("Converting Graphic File: Processing");
    Line_GCode_Rules rules;
    rules.Kind = Import_Kind::HPGL;
    rules.Fault_Name = HPGL_Fault_Name;
    rules.Travel = Decimal_Of(MachineSetup.Axis_Tool_Height[0]);
    rules.Passes = MachineSetup.HPGL_Passes_to_Depth;
    rules.Start_Passes = MachineSetup.DXF_Passes_to_Depth;
    rules.Multiple_Pens = MachineSetup.HPGL_Multiple_Pen_Enable;
    rules.Retool_Pause = MachineSetup.HPGL_Multiple_Retool_Pause;
    return Write_Line_GCode(line_file, rules);
  });
}

}  // namespace norvik
