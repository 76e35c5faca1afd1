#include "import/pipeline/line_gcode.h"

#include "core/application.h"
#include "core/setup.h"
#include "import/pipeline/gcode.h"
#include "import/pipeline/line_store.h"
#include "import/pipeline/numbers.h"
#include "import/pipeline/report.h"

namespace norvik {

namespace {

class Line_Writer {
 public:
  Line_Writer(GCode_File& file, const Line_GCode_Rules& rules) : File(file), Rules(rules) {}
  void Print(ImportLine& line);

 private:
  double Layer_Depth(const ImportLine& line) const;
  void Start_Contour(ImportLine& line);
  void Print_Stroke(const ImportLine& line);
  void Print_Arc(const ImportLine& line);

  GCode_File& File;
  const Line_GCode_Rules& Rules;
  Last_End Last = Before_First_Contour();
  std::int16_t Last_Pen = -9999;
  bool Pen_Changed = false;
  bool Feed_Pending = false;  // the last line set the plunge feed; the next cut sets its own again
  Nullable Cut_Depth;
};

double Line_Writer::Layer_Depth(const ImportLine& line) const {
  const bool deep = Is_Same_Layer(line.Layer, MachineSetup.DXF_Cut_2_Layer);
  return Decimal_Of(MachineSetup.Axis_Tool_Height[deep ? 2 : 1]);
}

// HPGL and pictures share this writer, and some of its conditions read settings of the DXF import.
// That is kept, because the programs that users have were made so. With `DXF_Ingore_Depth` off a
// record without a depth that begins a contour gets the normal cut depth. It then counts as a
// record with a depth, and so a pause for a new pen can be written for it.
void Line_Writer::Start_Contour(ImportLine& line) {
  const double normal_depth = Decimal_Of(MachineSetup.Axis_Tool_Height[1]);
  if (Rules.Passes < 2) Cut_Depth = Layer_Depth(line);
  if (!MachineSetup.DXF_Ingore_Depth) {
    if (!line.Z1) line.Z1 = normal_depth;
    Cut_Depth = line.Z1;
  }
  Write_Contour_Start(File, line, Rules.Travel, [&] {
    if (Rules.Passes < 2) File.Cut_Z(Cut_Depth.value_or(normal_depth));
  });
}

void Line_Writer::Print_Stroke(const ImportLine& line) {
  std::string plunge_feed;
  if (!line.Z1) {
    if (Rules.Start_Passes >= 2 && line.X1 != Last.X && line.Y1 != Last.Y) {
      File.Cut_XYZ(line.X1.value(), line.Y1.value(), {});
    }
  } else {
    if (Rules.Multiple_Pens) {
      plunge_feed = " F" + line.Plunge_Feed;
      Feed_Pending = true;
      if (Pen_Changed && Rules.Retool_Pause) File.Line("M06");
    }
    if (Rules.Start_Passes > 1) {
      File.Cut_XYZ(line.X1.value(), line.Y1.value(), line.Z1, plunge_feed);
    }
  }
  if (!line.Z1 || !line.Z2) {
    File.Cut_XYZ(line.X2.value(), line.Y2.value(), {});
    return;
  }
  const std::string cut_feed = Feed_Pending ? " F" + line.Cut_Feed : "";
  Feed_Pending = false;
  File.Cut_XYZ(line.X2.value(), line.Y2.value(), line.Z2, cut_feed);
}

void Line_Writer::Print_Arc(const ImportLine& line) {
  const std::int64_t printed = File.Lines_Printed();
  const bool plunges = Rules.Multiple_Pens && line.Z1;
  Write_Arc_Start(File, line, Last, plunges ? " F" + line.Plunge_Feed : "");
  if (plunges && File.Lines_Printed() > printed) Feed_Pending = true;
  Write_Arc(File, line);
}

void Line_Writer::Print(ImportLine& line) {
  Round_Line(line);
  const std::string start_up_feed = General_Text(MachineSetup.Axis_Feed_Rate_Cut);
  if (line.Cut_Feed.empty()) line.Cut_Feed = start_up_feed;
  if (line.Plunge_Feed.empty()) line.Plunge_Feed = start_up_feed;
  Pen_Changed = line.Pen != Last_Pen;
  Last_Pen = line.Pen;
  if (MachineSetup.DXF_Passes_to_Depth < 2) Cut_Depth = Layer_Depth(line);

  if (Starts_Contour(line, Last)) {
    Start_Contour(line);
  } else {
    Snap_Start(line, Last);
  }
  if (line.Type) {
    Print_Arc(line);
  } else {
    Print_Stroke(line);
  }
  Last = End_Of(line);
}

}  // namespace

bool Write_Line_GCode(const std::string& line_file, const Line_GCode_Rules& rules) {
  return Write_Program(rules.Kind, rules.Fault_Name, rules.Travel, [&](GCode_File& file) {
    Line_Writer writer(file, rules);
    For_Each_Line(line_file, Line_Form::Thirteen, rules.Fault_Name,
                  [&](ImportLine& line) { writer.Print(line); });
  });
}

void Rewrite_Passes(const std::string& line_file, std::string_view fault_name, int passes,
                    const std::function<Pass_Change(int pass)>& change_of) {
  Import_Status("Add Passes: Adding Passes...");
  const bool complete = Trap(fault_name, [&] {
    Line_Store store;
    store.Load(line_file, fault_name);
    Line_File_Writer writer(line_file, Line_Form::Thirteen);
    writer.Write_Z_As_Singles();
    Import_Faults faults(fault_name);
    Pass_Rounds rounds;
    ImportLine line;
    for (int pass = 1; pass <= passes && !Application.EscFlag; ++pass) {
      const Pass_Change change = change_of(pass);
      for (std::size_t n = 0; n < store.Size(); ++n) {
        if (!rounds.Next(static_cast<double>(n) / static_cast<double>(store.Size()))) break;
        store.Get(n, line);
        change(line);
        faults.Try([&] { writer.Write(line); });
      }
    }
    writer.Close();
  });
  if (!complete) Report_Incomplete_Passes();
}

}  // namespace norvik
