#include "import/gerber/layers.h"

#include "import/pipeline/pipeline.h"
#include "import/pipeline/report.h"

namespace norvik {

GerberLayerSelection_Form GerberLayerSelection;
Gerber_Layers_State Gerber_Layers;

void Display_Layers() {
  GerberLayerSelection = {};
  for (const Gerber_Layer& layer : Gerber_Layers.Layers) {
    GerberLayerSelection.List_Layers.push_back({layer.Layer_Name, true});
  }
}

void GerberLayerSelection_Command_OK_Click() {
  for (std::size_t n = 0; n < Gerber_Layers.Layers.size(); ++n) {
    Gerber_Layers.Layers[n].Layer_Selected = GerberLayerSelection.List_Layers[n].Selected;
  }
  GerberLayerSelection.Accepted = true;
}

void GerberLayerSelection_Command_Cancel_Click() {
  GerberLayerSelection.Accepted = false;
}

bool Choose_Gerber_Layers() {
  Display_Layers();
  if (Gerber_Layers.Layers.size() > 1 && Import_Host.Select_Gerber_Layers) {
    Import_Host.Select_Gerber_Layers();
  } else {
    GerberLayerSelection_Command_OK_Click();
  }
  if (!GerberLayerSelection.Accepted) Import_Report.Cancelled = true;
  return GerberLayerSelection.Accepted;
}

}  // namespace norvik
