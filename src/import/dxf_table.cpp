#include "import/dxf_table.h"

#include "import/import_line.h"

#include <utility>

namespace norvik {

DXF_Entity_State DXF_Entity;

void Reverse_Row(DXF_Row& row) {
  std::swap(row.X1, row.X2);
  std::swap(row.Y1, row.Y2);
  std::swap(row.Z1, row.Z2);
  row.Type = Reversed_Type(row.Type);
}

std::int32_t Layer_Names::Number_Of(std::string_view name) {
  // Neighbouring entities mostly share their layer.
  if (Last < Names.size() && Names[Last] == name) return static_cast<std::int32_t>(Last);
  const auto [place, is_new] =
      Numbers.try_emplace(std::string(name), static_cast<std::int32_t>(Names.size()));
  if (is_new) Names.push_back(place->first);
  Last = static_cast<std::size_t>(place->second);
  return place->second;
}

}  // namespace norvik
