// layers.h: grouping the entities by layer, and the record of the window that lists the layers.
#pragma once

#include <string>

namespace norvik {

// Controls of the window `DXF_Import_Layers`; it only shows.
struct DXF_Import_Layers_Form {
  std::string Text_Layers;  // one name a line
};
extern DXF_Import_Layers_Form DXF_Import_Layers;

// With `DXF_Sort_Layers`: sorts the rows of `DXF_Entity` by layer, bytes compared, rows of one
// layer in the order in which they stood, forms the groups, fills the list and asks for the window.
// Without: one group of all rows. Failures are logged as "DXF Sort Layers Error".
void DXF_Sort_Layers_Step();

}  // namespace norvik
