#include "import/dxf_import.h"

#include "core/application.h"
#include "core/setup.h"
#include "import/dxf_gcode.h"
#include "import/dxf_layers.h"
#include "import/dxf_reader.h"
#include "import/dxf_sort.h"
#include "import/dxf_table.h"
#include "import/import_pipeline.h"
#include "import/import_report.h"

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
