#include "app/guide/starting_points.h"

#include <array>

namespace norvik {

namespace {

struct Shipped_File {
  std::string_view Name, Text;
};

constexpr Shipped_File Shipped[] = {
#include "starting_point_texts.inc"
};

constexpr std::string_view Text_Of(std::string_view name) {
  for (const Shipped_File& file : Shipped)
    if (file.Name == name) return file.Text;
  return {};
}

constexpr std::array Points{
    Starting_Point{"router_inch", "Small router, inches, parallel port", Text_Of("router_inch")},
    Starting_Point{"router_mm", "Small router, millimetres, parallel port", Text_Of("router_mm")},
    Starting_Point{"pcb_mill", "Mill for circuit boards, inches, parallel port",
                   Text_Of("pcb_mill")},
    Starting_Point{"engraver", "Engraver, millimetres, parallel port", Text_Of("engraver")},
    Starting_Point{"plasma", "Plasma table without Z, inches, parallel port", Text_Of("plasma")},
    Starting_Point{"dravon", "Router on a Dravon board, inches", Text_Of("dravon")},
    Starting_Point{"pelmar", "Router on a Pelmar board, millimetres", Text_Of("pelmar")},
    Starting_Point{"empty_inch", "Nothing yet, inches", "[General]\nINI_Save_Test=123\n"},
    Starting_Point{"empty_mm", "Nothing yet, millimetres",
                   "[General]\nINI_Save_Test=123\n[Axis]\nUnitsofMeasurement=1\n"},
};

static_assert([] {
  for (const Starting_Point& point : Points)
    if (point.Text.empty()) return false;
  return true;
}());

}  // namespace

std::span<const Starting_Point> Starting_Points() {
  return Points;
}

}  // namespace norvik
