#include "import/pipeline/gcode.h"

#include "core/application.h"
#include "core/fault.h"
#include "core/format.h"
#include "core/setup.h"
#include "import/pipeline/numbers.h"
#include "import/pipeline/report.h"

#include <array>
#include <cmath>

namespace norvik {

namespace {

bool Differs(const Nullable& a, const Nullable& b, double tolerance) {
  return a && b && std::abs(*a - *b) > tolerance;
}

// A file name inside a bracket comment: a bracket of its own would end the comment early and the
// rest would be read as words.
std::string Comment_Name(std::string_view source_path) {
  std::string name = File_Name_Part(source_path);
  for (char& c : name) {
    if (c == '[') c = '(';
    if (c == ']') c = ')';
    if (static_cast<unsigned char>(c) < ' ') c = '?';
  }
  return name;
}

}  // namespace

// --- Lines -------------------------------------------------------------------------------------

GCode_File::GCode_File(const std::string& path)
    : GCode_Lines(path, "Free some space or check the working folder, then import again."),
      Axis_Pattern("############" + MachineSetup.Axis_Format),
      Axis_Text(Formatted_Number_Limit + Axis_Pattern.Front.size() + Axis_Pattern.Back.size(),
                ' ') {}

void GCode_File::Formatted_Word(std::string_view letter, double value) {
  const char* end =
      Write_Number(Axis_Text.data(), value, Axis_Pattern, Application.DecimalSeparator);
  Text(letter);
  Text({Axis_Text.data(), end});
}

void GCode_File::Rapid_Z(double z) {
  Begin("G00");
  Word(" Z", z);
  End();
  Import_Report.Motion.Rapid({}, {}, z);
}

void GCode_File::Rapid_XY(double x, double y) {
  Begin("G00");
  Word(" X", x);
  Word(" Y", y);
  End();
  Import_Report.Motion.Rapid(x, y, {});
}

void GCode_File::Cut_Z(double z) {
  Begin("G01");
  Word(" Z", z);
  End();
  Import_Report.Motion.Cut_To({}, {}, z);
}

void GCode_File::Cut_XYZ(double x, double y, Nullable z, std::string_view suffix) {
  Begin("G01");
  Word(" X", x);
  Word(" Y", y);
  if (z) Word(" Z", *z);
  Text(suffix);
  End();
  Import_Report.Motion.Cut_To(x, y, z);
}

void GCode_File::Arc_XY(std::int16_t type, double x, double y, double i, double j) {
  Begin(type == Arc_Clockwise ? "G02" : "G03");
  Word(" X", x);
  Word(" Y", y);
  Word(" I", i);
  Word(" J", j);
  End();
  Import_Report.Motion.Arc_To(type == Arc_Clockwise, x, y, i, j);
}

void GCode_File::Rapid_Z_Formatted(double z) {
  Begin("G00");
  Formatted_Word(" Z", z);
  End();
  Import_Report.Motion.Rapid({}, {}, z);
}

void GCode_File::Cut_Z_Formatted(double z) {
  Begin("G01");
  Formatted_Word(" Z", z);
  End();
  Import_Report.Motion.Cut_To({}, {}, z);
}

void GCode_File::Rapid_XY_Formatted(double x, double y) {
  Begin("G00");
  Formatted_Word(" X", x);
  Formatted_Word(" Y", y);
  End();
  Import_Report.Motion.Rapid(x, y, {});
}

void GCode_File::Cut_XY_Formatted(double x, double y) {
  Begin("G01");
  Formatted_Word(" X", x);
  Formatted_Word(" Y", y);
  End();
  Import_Report.Motion.Cut_To(x, y, {});
}

bool Write_Program(Import_Kind kind, std::string_view fault_name, double travel,
                   const std::function<void(GCode_File&)>& body) {
  const bool written = Trap(fault_name, [&] {
    GCode_File file(Application.Temporary_GCode);
    Write_Header(file, kind, Import_Report.Source);
    body(file);
    Write_Footer(file, kind, travel);
    file.Close();
  });
  Clear_Import_Status();
  if (written) return true;
  std::remove(Application.Temporary_GCode.c_str());
  Report_Note("The program could not be written; nothing was opened. See the error log.");
  return false;
}

// --- Header and footer -------------------------------------------------------------------------

void Write_Header(GCode_File& file, Import_Kind kind, std::string_view source_path) {
  file.Line("[Norvik Conversion]");
  file.Line("[Original File: " + Comment_Name(source_path) + "]");
  file.Line("%");
  file.Line(MachineSetup.Auto_Dwell_Insertion
                ? "G90 P" + General_Text(MachineSetup.Gcode_DwellTime_Default)
                : "G90");
  if (kind == Import_Kind::Excellon) return;
  if (kind == Import_Kind::Gerber) {
    file.Line("M03");
    return;
  }
  if (!MachineSetup.Auto_Spindle_OnOff_Insertion) file.Line("M03");
  if (MachineSetup.Auto_Mist_OnOff_Insertion) file.Line("M07");
  if (MachineSetup.Auto_Flood_OnOff_Insertion) file.Line("M08");
}

// The DXF program stops the spindle before it goes home, the others on arrival; both orders are
// wanted.
void Write_Footer(GCode_File& file, Import_Kind kind, double travel) {
  switch (kind) {
    case Import_Kind::DXF:
      file.Rapid_Z(travel);
      file.Line("M05");
      file.Line("M09");
      file.Rapid_XY(0, 0);
      file.Line("M30");
      return;
    case Import_Kind::HPGL:
    case Import_Kind::Bitmap:
      file.Rapid_Z(travel);
      file.Rapid_XY(0, 0);
      file.Line("M05");
      file.Line("M09");
      file.Line("M30");
      return;
    case Import_Kind::Gerber:
      file.Rapid_Z_Formatted(travel);
      file.Rapid_XY_Formatted(0, 0);
      file.Line("M05");
      file.Line("M30");
      return;
    case Import_Kind::Excellon:
      file.Rapid_XY_Formatted(0, 0);
      file.Line("M05");
      file.Line("M09");
      file.Line("[END OF PROGRAM]");
      return;
  }
}

// --- Contours and arcs -------------------------------------------------------------------------

bool Starts_Contour(const ImportLine& line, const Last_End& last) {
  const double tolerance = MachineSetup.DXF_Line_Tolerance;
  return Differs(line.X1, last.X, tolerance) || Differs(line.Y1, last.Y, tolerance) ||
         Differs(line.Z1, last.Z, tolerance);
}

void Snap_Start(ImportLine& line, const Last_End& last) {
  line.X1 = last.X;
  line.Y1 = last.Y;
  if (line.Z1 && last.Z) line.Z1 = last.Z;
}

void Write_Contour_Travel(GCode_File& file, const ImportLine& line, double travel) {
  const bool switch_spindle = MachineSetup.Auto_Spindle_OnOff_Insertion;
  if (switch_spindle) file.Line("M05");
  file.Rapid_Z(travel);
  file.Rapid_XY(line.X1.value(), line.Y1.value());
  if (switch_spindle) file.Line("M03");
}

void Write_Contour_Dwell(GCode_File& file) {
  if (MachineSetup.Auto_Dwell_Insertion) file.Line("G04");
}

void Write_Arc_Start(GCode_File& file, const ImportLine& line, const Last_End& last,
                     std::string_view suffix) {
  constexpr double planar_tolerance = 0.001;
  if (!line.Z1) {
    if (Differs(line.X1, last.X, planar_tolerance) || Differs(line.Y1, last.Y, planar_tolerance)) {
      file.Cut_XYZ(line.X1.value(), line.Y1.value(), {});
    }
    return;
  }
  if (Differs(line.X1, last.X, 0) || Differs(line.Y1, last.Y, 0) || Differs(line.Z1, last.Z, 0)) {
    file.Cut_XYZ(line.X1.value(), line.Y1.value(), line.Z1, suffix);
  }
}

void Write_Arc(GCode_File& file, const ImportLine& line) {
  file.Arc_XY(line.Type.value_or(Arc_Clockwise), line.X2.value(), line.Y2.value(), line.I.value(),
              line.J.value());
}

void Round_Line(ImportLine& line) {
  for (Nullable* value :
       {&line.X1, &line.Y1, &line.Z1, &line.X2, &line.Y2, &line.Z2, &line.I, &line.J}) {
    if (*value) *value = Round_12(**value);
  }
}

Last_End End_Of(const ImportLine& line) {
  return {line.X2.value(), line.Y2.value(), line.Z2};
}

}  // namespace norvik
