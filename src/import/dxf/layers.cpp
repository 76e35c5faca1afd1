#include "import/dxf/layers.h"

#include "core/application.h"
#include "core/setup.h"
#include "import/dxf/table.h"
#include "import/pipeline/pipeline.h"
#include "platform/platform.h"

#include <algorithm>
#include <numeric>

namespace norvik {

DXF_Import_Layers_Form DXF_Import_Layers;

namespace {

// Place of each layer number among the sorted names.
std::vector<std::int32_t> Layer_Ranks() {
  const std::vector<std::string>& names = DXF_Entity.Layers.All();
  std::vector<std::int32_t> order(names.size());
  std::iota(order.begin(), order.end(), 0);
  std::sort(order.begin(), order.end(), [&](std::int32_t a, std::int32_t b) {
    return names[static_cast<std::size_t>(a)] < names[static_cast<std::size_t>(b)];
  });
  std::vector<std::int32_t> ranks(names.size());
  for (std::size_t place = 0; place < order.size(); ++place) {
    ranks[static_cast<std::size_t>(order[place])] = static_cast<std::int32_t>(place);
  }
  return ranks;
}

void Sort_Rows() {
  const std::vector<std::int32_t> ranks = Layer_Ranks();
  const auto rank = [&](const DXF_Row& row) { return ranks[static_cast<std::size_t>(row.Layer)]; };
  std::stable_sort(DXF_Entity.Rows.begin(), DXF_Entity.Rows.end(),
                   [&](const DXF_Row& a, const DXF_Row& b) { return rank(a) < rank(b); });
}

// A row whose layer differs from the row before opens a group.
void Form_Groups() {
  DXF_Entity.Groups.clear();
  std::int32_t last = -1;
  for (std::size_t row = 0; row < DXF_Entity.Rows.size(); ++row) {
    const std::int32_t layer = DXF_Entity.Rows[row].Layer;
    const auto place = static_cast<std::int64_t>(row);
    if (layer != last) DXF_Entity.Groups.push_back({DXF_Entity.Layers.Name(layer), place, place});
    DXF_Entity.Groups.back().End = place;
    last = layer;
  }
}

void Show_Layers() {
  std::vector<std::string> names;
  for (const Layer_Group& group : DXF_Entity.Groups) names.push_back(group.Name);
  std::sort(names.begin(), names.end());
  DXF_Import_Layers.Text_Layers.clear();
  for (const std::string& name : names) DXF_Import_Layers.Text_Layers += name + "\r\n";
  Import_Host.Show_DXF_Layers();
}

}  // namespace

void DXF_Sort_Layers_Step() {
  const auto last = static_cast<std::int64_t>(DXF_Entity.Rows.size()) - 1;
  DXF_Entity.Groups.assign(1, {"", 0, last});
  if (!MachineSetup.DXF_Sort_Layers) return;
  Import_Status("DXF Conversion: Sorting Layers...");
  Trap("DXF Sort Layers Error", [&] {
    DoEvents();
    if (Application.EscFlag) return;
    Import_Progress("File Sort: Sorting Layers... ", 0, "% Completed, press ESC to cancel");
    Sort_Rows();
    Import_Progress("File Sort: Processing Layers... ", 1, "% Completed, press ESC to cancel");
    Form_Groups();
    Show_Layers();
  });
}

}  // namespace norvik
