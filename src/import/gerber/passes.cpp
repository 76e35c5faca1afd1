#include "import/gerber/passes.h"

#include "core/application.h"
#include "core/fault.h"
#include "core/setup.h"
#include "import/gerber/clean.h"
#include "import/gerber/file_steps.h"
#include "import/gerber/isolation.h"
#include "import/gerber/lines.h"
#include "import/gerber/polygon.h"
#include "import/gerber/table.h"
#include "import/pipeline/numbers.h"
#include "import/pipeline/report.h"

namespace norvik {

namespace {

void Cut_Polygons(int pass, double working_width) {
  Trap(Gerber_Fault_Name, [&] {
    Iso_Polygon table = Make_Polygons(Gerber_Table, working_width);
    Import_Status("Pass #" + std::to_string(pass) +
                  "   Isolation Process: Analyzing General Bounds...Press ESC to Cancel");
    table.Analyze_Bounds();
    const auto& cut = MachineSetup.Gerber_Isolation ? Isolate_Polygons : Write_Polygons;
    cut(table, pass, Application.Gerber_Scratch);
  });
}

void Run_Pass(int pass, double working_width) {
  const std::string& line_file = Application.Gerber_Scratch;
  if (MachineSetup.Gerber_Clean_Data) {
    Trap(Gerber_Fault_Name, [&] { Gerber_Clean(Gerber_Table, pass); });
  }
  Cut_Polygons(pass, working_width);
  if (MachineSetup.Gerber_Isolation_Cleanup_Lines) File_Clean(line_file, pass);
  if (MachineSetup.Gerber_Isolation_SmallLines_Function) {
    Write_Thin_Lines(Gerber_Table.Thin_Lines, line_file, pass);
  }
  if (MachineSetup.Gerber_Isolation_Sort_Lines) File_Sort(line_file, pass);
}

}  // namespace

void Gerber_Isolation_Passes() {
  const bool multiple = MachineSetup.Gerber_Isolation_Multi_Cut_Lines;
  const int total = multiple ? MachineSetup.Gerber_Isolation_Multi_Cut_Count : 1;
  if (total < 1) {
    Report_Note("Nothing was cut: several passes are switched on and their count is " +
                std::to_string(total) + ". Set the count to 1 or more.");
  }
  const double gap = Decimal_Of(MachineSetup.Gerber_Isolation_Multi_Cut_Gap);
  double working_width = Decimal_Of(MachineSetup.Gerber_Isolation_Width);
  for (int pass = 1; pass <= total; ++pass, working_width += gap) Run_Pass(pass, working_width);
  Gerber_Table.Thin_Lines.clear();
}

}  // namespace norvik
