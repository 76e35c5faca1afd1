#include "import/pipeline/file_unit.h"

#include "core/setup.h"

namespace norvik {

File_Unit Unit_Of_Setup() {
  return MachineSetup.UnitsofMeasurement == 1 ? Unit_Millimetres : Unit_Inches;
}

File_Unit Other_Unit() {
  return MachineSetup.UnitsofMeasurement == 1 ? Unit_Inches : Unit_Millimetres;
}

}  // namespace norvik
