// table.h: the entities of a DXF drawing between reading and G-code.
//
//   DXF_Load -> DXF_Sort_Layers_Step -> DXF_Sort_Entities_Step -> DXF_Add_Passes -> DXF_Write_GCode
//
// Every entity ends up as one or more rows: straight pieces and arcs from (X1, Y1) to (X2, Y2).
// Both sorts reorder and reverse rows of this table in place. Lengths in units of the drawing,
// which count as units of the setup.
#pragma once

#include "core/nullable.h"
#include "import/pipeline/text_store.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace norvik {

struct DXF_Row {
  double X1 = 0, Y1 = 0, X2 = 0, Y2 = 0;
  Nullable Z1, Z2;                   // missing: the drawing gives no depth
  Nullable I, J;                     // absolute arc centre; missing for a straight line
  std::optional<std::int16_t> Type;  // missing: straight; 2 clockwise, 3 counter-clockwise
  std::int32_t Layer = 0;            // place in `DXF_Entity.Layers`
};

// Swaps the ends and turns clockwise into counter-clockwise and back.
void Reverse_Row(DXF_Row& row);

// A run of rows that belong together: one layer after the layer sort, otherwise the whole table.
struct Layer_Group {
  std::string Name;
  std::int64_t Start = 0, End = -1;  // first and last row
};

struct DXF_Entity_State {
  std::vector<DXF_Row> Rows;
  Text_Store Layers;
  std::vector<Layer_Group> Groups;
};
extern DXF_Entity_State DXF_Entity;

}  // namespace norvik
