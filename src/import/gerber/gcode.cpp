#include "import/gerber/gcode.h"

#include "core/format.h"
#include "core/paths.h"
#include "core/setup.h"
#include "import/pipeline/gcode.h"
#include "import/pipeline/line_store.h"
#include "import/pipeline/numbers.h"
#include "import/pipeline/pipeline.h"

#include <cmath>

namespace norvik {

namespace {

constexpr std::string_view Fault_Name = "Get_Gerber_DataFile_Error";

class Cut_Writer {
 public:
  Cut_Writer(GCode_File& file, double travel) : File(file), Travel(travel) {}
  void Print(ImportLine& line);

 private:
  void Start_Cut(const ImportLine& line);

  GCode_File& File;
  const Axis_Rounding Rounded;
  const double Travel;
  // Artwork has no layers for the cut depths: its cuts count as those of the empty one.
  const double Start_Depth = Rounded(Decimal_Of(
      MachineSetup.Axis_Tool_Height[Is_Same_Layer("", MachineSetup.DXF_Cut_2_Layer) ? 2 : 1]));
  const bool Lifts = Format_Axis_Number(Travel) != Format_Axis_Number(Start_Depth);
  double Depth = Rounded(Decimal_Of(MachineSetup.Axis_Tool_Height[1]));
  double Last_X = 0, Last_Y = 0, Last_Z = 0;
};

void Cut_Writer::Start_Cut(const ImportLine& line) {
  Depth = Start_Depth;
  if (Lifts) File.Rapid_Z_Formatted(Travel);
  File.Rapid_XY(line.X1.value(), line.Y1.value());
  File.Rapid_Z_Formatted(Depth);
  if (MachineSetup.Auto_Dwell_Insertion) File.Line("G04");
}

void Cut_Writer::Print(ImportLine& line) {
  constexpr double tolerance = 0.00001;
  Round_Line(line);
  const auto differs = [](double a, double b) { return std::abs(a - b) > tolerance; };
  if (differs(line.X1.value(), Last_X) || differs(line.Y1.value(), Last_Y) ||
      differs(Depth, Last_Z)) {
    Start_Cut(line);
  }
  File.Cut_XYZ(line.X2.value(), line.Y2.value(), {});
  Last_X = *line.X2;
  Last_Y = *line.Y2;
  Last_Z = Depth;
}

}  // namespace

bool Gerber_Write_GCode(const std::string& line_file) {
  Import_Status("Converting Graphic File: Processing");
  const double travel = Decimal_Of(MachineSetup.Axis_Tool_Height[0]);
  return Write_Program(Import_Kind::Gerber, Fault_Name, travel, [&](GCode_File& file) {
    if (!FileExists(line_file)) return;
    Cut_Writer writer(file, travel);
    For_Each_Line(line_file, Line_Form::Four, Fault_Name,
                  [&](ImportLine& line) { writer.Print(line); });
  });
}

}  // namespace norvik
