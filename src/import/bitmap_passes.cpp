#include "import/bitmap_passes.h"

#include "core/application.h"
#include "core/fault.h"
#include "core/setup.h"
#include "import/bitmap_scan.h"
#include "import/import_line.h"
#include "import/import_numbers.h"
#include "import/import_pipeline.h"
#include "import/import_report.h"

#include <algorithm>
#include <filesystem>

namespace norvik {

namespace {

// The height of a pass from the height of the scan.
struct Pass_Height {
  double Top = 0, Offset = 0;
  double Share = 1;
  bool Whole = true;

  double operator()(double z) const {
    return Whole ? z + Offset : (z - Top + Offset) * Share + Top;
  }
};

void Write_Pass(const std::string& line_file, Line_File_Writer& writer, const Pass_Height& height) {
  constexpr std::int32_t records_per_yield = 500;
  Import_Faults faults(Bitmap_Fault_Name);
  Line_File_Reader reader(line_file, Line_Form::Thirteen);
  Yield_Counter yields(records_per_yield);
  ImportLine line;
  bool more = true;
  while (more && !Application.EscFlag) {
    if (yields.Count == 0) {
      Import_Progress("Add Passes: Adding Passes... ", reader.Share(),
                      "% Completed, press ESC to cancel");
    }
    yields.Round();
    faults.Try([&] {
      more = reader.Read(line);
      if (!more) return;
      line.Z1 = height(line.Z1.value());
      line.Z2 = height(line.Z2.value());
      writer.Write(line);
    });
  }
}

void Rewrite(const std::string& line_file, const std::string& new_file) {
  const int passes = std::max<int>(MachineSetup.BMAP_Passes_to_Depth, 1);
  Pass_Height height{Decimal_Of(MachineSetup.BMAP_Material_Size_Z),
                     Decimal_Of(MachineSetup.BMAP_Import_Offset_Z)};
  height.Whole = passes < 2;
  Line_File_Writer writer(new_file, Line_Form::Thirteen);
  writer.Write_Z_As_Singles();
  for (int pass = 1; pass <= passes && !Application.EscFlag; ++pass) {
    height.Share = static_cast<double>(pass) / passes;
    Write_Pass(line_file, writer, height);
  }
  writer.Close();
  std::filesystem::rename(new_file, line_file);
}

}  // namespace

void Bitmap_Add_Passes(const std::string& line_file) {
  Import_Status("Add Passes: Adding Passes...");
  const Scratch_File new_file(line_file + ".new");
  if (!Trap(Bitmap_Fault_Name, [&] { Rewrite(line_file, new_file.Path); })) {
    Report_Incomplete_Passes();
  }
}

}  // namespace norvik
