#include "import/dxf/gcode.h"

#include "core/application.h"
#include "core/rounding.h"
#include "core/setup.h"
#include "import/dxf/table.h"
#include "import/pipeline/gcode.h"
#include "import/pipeline/line_store.h"
#include "import/pipeline/numbers.h"
#include "import/pipeline/pipeline.h"
#include "import/pipeline/report.h"

namespace norvik {

namespace {

constexpr std::string_view Fault_Name = "DXF Import Error";

// The multi-depth row of a layer; the first that matches exactly, otherwise the one before.
int Multi_Depth_Row(const std::string& layer, int before) {
  const auto& layers = MachineSetup.DXF_MultiDepth_Layer;
  for (int row = layers.first; row <= layers.last; ++row) {
    if (layers[row] == layer) return row;
  }
  return before;
}

// Writes rows of the table with the import offsets added.
class Pass_Writer {
 public:
  explicit Pass_Writer(const std::string& line_file)
      : File(line_file, Line_Form::Ten),
        Offset{Decimal_Of(MachineSetup.DXF_Import_Offset[1]),
               Decimal_Of(MachineSetup.DXF_Import_Offset[2]),
               Decimal_Of(MachineSetup.DXF_Import_Offset[3])} {}

  void Write_As_Drawn();
  void Write_Multi_Depth();
  void Close() { File.Close(); }

 private:
  void Write_Pass(const Layer_Group& group, double z);
  void Write(const DXF_Row& row, const Nullable& z1, const Nullable& z2);

  Line_File_Writer File;
  const double Offset[3];
  Import_Faults Faults{Fault_Name};
  Pass_Rounds Rounds;
  ImportLine Line;
};

void Pass_Writer::Write(const DXF_Row& row, const Nullable& z1, const Nullable& z2) {
  const auto shifted = [](const Nullable& value, double by) {
    return value ? Nullable(*value + by) : Nullable();
  };
  Line.X1 = row.X1 + Offset[0];
  Line.Y1 = row.Y1 + Offset[1];
  Line.Z1 = z1;
  Line.X2 = row.X2 + Offset[0];
  Line.Y2 = row.Y2 + Offset[1];
  Line.Z2 = z2;
  Line.I = shifted(row.I, Offset[0]);
  Line.J = shifted(row.J, Offset[1]);
  Line.Type = row.Type;
  Line.Layer = DXF_Entity.Layers.Name(row.Layer);
  Faults.Try([&] { File.Write(Line); });
}

void Pass_Writer::Write_As_Drawn() {
  const auto total = static_cast<double>(DXF_Entity.Rows.size());
  double done = 0;
  const auto raised = [&](const Nullable& z) { return z ? Nullable(*z + Offset[2]) : Nullable(); };
  for (const DXF_Row& row : DXF_Entity.Rows) {
    if (!Rounds.Next(done++ / total)) return;
    Write(row, raised(row.Z1), raised(row.Z2));
  }
}

void Pass_Writer::Write_Pass(const Layer_Group& group, double z) {
  const Nullable depth = Decimal_Of(To_Single(z));
  const auto total = static_cast<double>(group.End - group.Start + 1);
  for (std::int64_t row = group.Start; row <= group.End; ++row) {
    if (!Rounds.Next(static_cast<double>(row - group.Start) / total)) return;
    Write(DXF_Entity.Rows[static_cast<std::size_t>(row)], depth, depth);
  }
}

void Pass_Writer::Write_Multi_Depth() {
  int table_row = 0;
  for (const Layer_Group& group : DXF_Entity.Groups) {
    if (group.End < group.Start) continue;
    const DXF_Row& first = DXF_Entity.Rows[static_cast<std::size_t>(group.Start)];
    const std::string& layer = DXF_Entity.Layers.Name(first.Layer);
    table_row = Multi_Depth_Row(layer, table_row);
    const std::int16_t passes = MachineSetup.DXF_MultiDepth_Passes[table_row];
    if (passes <= 0) {
      Report_Note("Layer \"" + layer + "\" has no passes in the multi-depth table and is not cut.");
      continue;
    }
    const double start = Decimal_Of(MachineSetup.DXF_MultiDepth_StartingDepth[table_row]);
    const double end = Decimal_Of(MachineSetup.DXF_MultiDepth_EndingDepth[table_row]);
    const double step = (start - end) / passes;
    double z = start;
    for (std::int16_t pass = 1; pass <= passes && !Application.EscFlag; ++pass) {
      z -= step;
      Write_Pass(group, z);
    }
  }
}

void Print_Line(GCode_File& file, const ImportLine& line, const Last_End& last) {
  if (MachineSetup.DXF_Passes_to_Depth >= 2 && line.X1 != last.X && line.Y1 != last.Y) {
    file.Cut_XYZ(line.X1.value(), line.Y1.value(), line.Z1);
  }
  file.Cut_XYZ(line.X2.value(), line.Y2.value(), line.Z1 ? line.Z2 : Nullable());
}

void Print_Record(GCode_File& file, ImportLine& line, Last_End& last) {
  Round_Line(line);
  if (Starts_Contour(line, last)) {
    if (!line.Z1 && !MachineSetup.DXF_Ingore_Depth) {
      line.Z1 = Decimal_Of(MachineSetup.Axis_Tool_Height[1]);
    }
    Write_Contour_Start(file, line, Decimal_Of(MachineSetup.Axis_Tool_Height[0]), [&] {
      if (line.Z1) file.Rapid_Z(*line.Z1);
    });
  } else {
    Snap_Start(line, last);
  }
  if (line.Type) {
    Write_Arc_Start(file, line, last);
    Write_Arc(file, line);
  } else {
    Print_Line(file, line, last);
  }
  last = End_Of(line);
}

}  // namespace

void DXF_Add_Passes(const std::string& line_file) {
  Import_Status("Add Passes: Adding Passes...");
  const bool complete = Trap(Fault_Name, [&] {
    Pass_Writer writer(line_file);
    if (MachineSetup.DXF_Ingore_Depth) {
      writer.Write_Multi_Depth();
    } else {
      writer.Write_As_Drawn();
    }
    writer.Close();
  });
  if (!complete) Report_Incomplete_Passes();
}

bool DXF_Write_GCode(const std::string& line_file) {
  Import_Status("Converting Graphic File: Processing");
  const double travel = Decimal_Of(MachineSetup.Axis_Tool_Height[0]);
  return Write_Program(Import_Kind::DXF, Fault_Name, travel, [&](GCode_File& file) {
    Last_End last = Before_First_Contour();
    For_Each_Line(line_file, Line_Form::Ten, Fault_Name,
                  [&](ImportLine& line) { Print_Record(file, line, last); });
  });
}

}  // namespace norvik
