#include "import/dxf/import.h"

#include "core/application.h"
#include "core/setup.h"
#include "import/dxf/gcode.h"
#include "import/dxf/layers.h"
#include "import/dxf/reader.h"
#include "import/dxf/sort.h"
#include "import/dxf/table.h"
#include "import/pipeline/pipeline.h"
#include "import/pipeline/placing.h"
#include "import/pipeline/report.h"

#include <algorithm>

namespace norvik {

namespace {

// Rows as their places on the table ask for.
void Place_Rows() {
  if (!Is_Placed()) return;
  const Placing placing([](Drawing_Extent& extent, const Placing& turned) {
    for (const DXF_Row& row : DXF_Entity.Rows) {
      const Placed_Point from = turned(row.X1, row.Y1), to = turned(row.X2, row.Y2);
      extent.Take(from.X, from.Y);
      extent.Take(to.X, to.Y);
      if (!row.Type || !row.I || !row.J) continue;
      const bool clockwise = (*row.Type == Arc_Clockwise) != turned.Mirrors();
      extent.Take_Arc(clockwise, from, to, turned(*row.I, *row.J));
    }
  });
  for (DXF_Row& row : DXF_Entity.Rows) {
    const Placed_Point from = placing(row.X1, row.Y1), to = placing(row.X2, row.Y2);
    row.X1 = from.X;
    row.Y1 = from.Y;
    row.X2 = to.X;
    row.Y2 = to.Y;
    if (row.I && row.J) {
      const Placed_Point centre = placing(*row.I, *row.J);
      row.I = centre.X;
      row.J = centre.Y;
    }
    if (placing.Mirrors()) row.Type = Reversed_Type(row.Type);
  }
}

}  // namespace

bool Import_DXF_File(const std::string& path) {
  return Run_Import(Import_Kind::DXF, path, Application.DXF_Scratch, [&] {
    if (MachineSetup.DXF_Ingore_Depth) {
      MachineSetup.DXF_Passes_to_Depth =
          std::max<std::int16_t>(MachineSetup.DXF_Passes_to_Depth, 1);
    }
    Import_Report.Format = "coordinates rounded by " + MachineSetup.Axis_Format;
    DXF_Entity = {};
    DXF_Load(path);
    Place_Rows();
    DXF_Sort_Layers_Step();
    DXF_Sort_Entities_Step();
    DXF_Add_Passes(Application.DXF_Scratch);
    const bool written = DXF_Write_GCode(Application.DXF_Scratch);
    DXF_Entity = {};
    return written;
  });
}

}  // namespace norvik
