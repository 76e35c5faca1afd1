#include "import/dxf/layers.h"
#include "import/dxf/table.h"
#include "import/excellon/table.h"
#include "import/gerber/apertures.h"
#include "import/gerber/layers.h"
#include "import/gerber/reader.h"
#include "import/gerber/table.h"
#include "import/hpgl/import.h"
#include "import/pipeline/pipeline.h"
#include "import/pipeline/placing.h"
#include "import/pipeline/report.h"
#include "support/reset.h"

namespace norvik {

void Reset_Import() {
  Reset_Core();
  Import_Host = {};
  Import_Placing = {};
  Import_Report = {};
  DXF_Entity = {};
  DXF_Import_Layers = {};
  HPGL_Import = {};
  Excellon_Table = {};
  Gerber_Apertures = {};
  Gerber_Format = {};
  Gerber_Layers = {};
  Gerber_Table = {};
  GerberLayerSelection = {};
}

}  // namespace norvik
