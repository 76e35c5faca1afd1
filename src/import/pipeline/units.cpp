#include "import/pipeline/units.h"

#include "core/general_text.h"
#include "core/setup.h"
#include "import/pipeline/placing.h"
#include "import/pipeline/report.h"

#include <cmath>
#include <string>

namespace norvik {

namespace {

double Ratio(const File_Unit& unit) {
  return unit.Millimetres / Unit_Of_Setup().Millimetres;
}

// Six digits are more than anybody compares.
std::string Ratio_Text(const File_Unit& unit) {
  const double ratio = Ratio(unit);
  const double scale = std::pow(10.0, 5 - std::floor(std::log10(ratio)));
  return General_Text(std::nearbyint(ratio * scale) / scale);
}

}  // namespace

double Unit_Factor(const std::optional<File_Unit>& unit) {
  if (!MachineSetup.Import_Convert_Units) return 1;
  const auto& counted = unit ? unit : Import_Placing.Unit;
  return counted ? Ratio(*counted) : 1;
}

void Report_Unit(const std::optional<File_Unit>& unit) {
  const std::string setup(Unit_Of_Setup().Name);
  if (!unit) {
    if (MachineSetup.Import_Convert_Units && Import_Placing.Unit) {
      Report_Note("The file names no unit; its numbers were taken as " +
                  std::string(Import_Placing.Unit->Name) + ", as asked for.");
    } else {
      Import_Report.Unit_Unknown = true;
      Report_Note("The file names no unit; its numbers count as " + setup + ".");
    }
    return;
  }
  if (unit->Millimetres == Unit_Of_Setup().Millimetres) return;
  const std::string says = "The file is in " + std::string(unit->Name) + ", the setup in " + setup;
  if (MachineSetup.Import_Convert_Units) {
    Report_Note(says + ": its lengths were multiplied by " + Ratio_Text(*unit) + ".");
  } else {
    Report_Answer("Import_Convert_Units",
                  says +
                      "; nothing was converted. To have its size, its lengths must be "
                      "multiplied by " +
                      Ratio_Text(*unit) + ".");
  }
}

}  // namespace norvik
