#include "import/dxf/table.h"

#include "import/pipeline/line.h"

#include <utility>

namespace norvik {

DXF_Entity_State DXF_Entity;

void Reverse_Row(DXF_Row& row) {
  std::swap(row.X1, row.X2);
  std::swap(row.Y1, row.Y2);
  std::swap(row.Z1, row.Z2);
  row.Type = Reversed_Type(row.Type);
}

}  // namespace norvik
