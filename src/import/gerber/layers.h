// layers.h: the layers of an artwork file, and the record of the window that selects them.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace norvik {

inline constexpr std::string_view Gerber_Unnamed_Layer = "Unnamed";

struct Gerber_Layer {
  std::string Layer_Name;
  bool Layer_Selected = false;
};

// Controls of the window `GerberLayerSelection`, shown modally when a file has several layers.
struct GerberLayerSelection_Form {
  struct Row {
    std::string Name;
    bool Selected = false;
  };
  std::vector<Row> List_Layers;  // multi-select; all selected when the window opens
  bool Accepted = false;
};
extern GerberLayerSelection_Form GerberLayerSelection;

struct Gerber_Layers_State {
  std::vector<Gerber_Layer> Layers;  // in the order of the file; at most 1001
};
extern Gerber_Layers_State Gerber_Layers;

// Fills `List_Layers` from the layers.
void Display_Layers();
// Copies the selection to `Layer_Selected` and sets the accepted mark.
void GerberLayerSelection_Command_OK_Click();
// Leaves the accepted mark clear.
void GerberLayerSelection_Command_Cancel_Click();

// Asks for the layers when there are several (`Import_Host.Select_Gerber_Layers`); one alone is
// selected, and all are where nobody can be asked. False when the operator cancelled.
bool Choose_Gerber_Layers();

}  // namespace norvik
