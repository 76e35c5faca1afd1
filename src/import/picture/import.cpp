#include "import/picture/import.h"

#include "core/application.h"
#include "core/fault.h"
#include "core/paths.h"
#include "core/setup.h"
#include "import/picture/scan.h"
#include "import/pipeline/line_gcode.h"
#include "import/pipeline/numbers.h"
#include "import/pipeline/pipeline.h"
#include "import/pipeline/report.h"
#include "platform/platform.h"

namespace norvik {

namespace {

Picture Load_Picture(const std::string& path) {
  std::optional<Picture> picture = Platform.Load_Picture(path);
  if (!picture || picture->Width <= 0 || picture->Height <= 0) {
    throw Fault(Fault_Number::Bad_File_Data,
                PathFileName(path) +
                    " is no whole JPG, BMP or GIF picture. Open it in a picture program and save "
                    "it anew in one of these formats.");
  }
  return *std::move(picture);
}

void Report_Format(const Picture& picture, const Bitmap_Grid& grid) {
  Import_Report.Format = "picture of " + std::to_string(picture.Width) + " by " +
                         std::to_string(picture.Height) + " pixels, " +
                         std::to_string(grid.Cols + 1) + " by " + std::to_string(grid.Rows + 1) +
                         " points, steps of " + General_Text(Round_12(grid.Step_X)) + " and " +
                         General_Text(Round_12(grid.Step_Y));
}

// False, with the reason in the log and in the report, when there is nothing to carve.
bool Scan(const std::string& path, const std::string& line_file) {
  const auto stop = [](const Fault& fault) {
    Report_Note(fault.Description);
    Trap(Bitmap_Fault_Name, [&] { throw Fault(fault); });
  };
  return Trap_With(stop, [&] {
    const Bitmap_Grid grid = Bitmap_Grid_Of_Setup();
    const Picture picture = Load_Picture(path);
    Report_Format(picture, grid);
    Bitmap_Scan(picture, grid, line_file);
  });
}

}  // namespace

bool Import_Bitmap_File(const std::string& path) {
  const std::string& line_file = Application.Bitmap_Scratch;
  return Run_Import(Import_Kind::Bitmap, path, line_file, [&] {
    Import_Status("Bitmap Conversion: Loading File...");
    if (!Scan(path, line_file)) {
      Clear_Import_Status();
      return false;
    }
    Import_Status("Converting Graphic File: Processing");
    Line_GCode_Rules rules;
    rules.Kind = Import_Kind::Bitmap;
    rules.Fault_Name = Bitmap_Fault_Name;
    rules.Travel = Decimal_Of(MachineSetup.BMAP_Travel_Height) +
                   Decimal_Of(MachineSetup.BMAP_Material_Size_Z) +
                   Decimal_Of(MachineSetup.BMAP_Import_Offset_Z);
    rules.Passes = MachineSetup.BMAP_Passes_to_Depth;
    rules.Start_Passes = MachineSetup.BMAP_Passes_to_Depth;
    return Write_Line_GCode(line_file, rules);
  });
}

}  // namespace norvik
