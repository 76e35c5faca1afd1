#include "import/dxf/import.h"

#include "core/application.h"
#include "core/setup.h"
#include "import/dxf/gcode.h"
#include "import/dxf/layers.h"
#include "import/dxf/reader.h"
#include "import/dxf/sort.h"
#include "import/dxf/table.h"
#include "import/pipeline/pipeline.h"
#include "import/pipeline/report.h"

#include <algorithm>

namespace norvik {

bool Import_DXF_File(const std::string& path) {
  return Run_Import(Import_Kind::DXF, path, Application.DXF_Scratch, [&] {
    if (MachineSetup.DXF_Ingore_Depth) {
      MachineSetup.DXF_Passes_to_Depth =
          std::max<std::int16_t>(MachineSetup.DXF_Passes_to_Depth, 1);
    }
    Import_Report.Format = "coordinates rounded by " + MachineSetup.Axis_Format;
    DXF_Entity = {};
    DXF_Load(path);
    DXF_Sort_Layers_Step();
    DXF_Sort_Entities_Step();
    DXF_Add_Passes(Application.DXF_Scratch);
    const bool written = DXF_Write_GCode(Application.DXF_Scratch);
    DXF_Entity = {};
    return written;
  });
}

}  // namespace norvik
