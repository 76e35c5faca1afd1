#include "plot/line_painter.h"

#include "core/rounding.h"

#include <algorithm>
#include <array>

namespace norvik {

namespace {

// Lines projected at a time: the block stays in the processor's nearest cache.
constexpr std::size_t Block_Lines = 512;
constexpr std::int16_t Node_Width = 1;

}  // namespace

Line_Painter::Line_Painter(Plot_Surface& surface, const Projection& projection,
                           const Plot_Scale& window, Line_Memory& memory)
    : Surface(surface), Mapping(projection), Window(window), Memory(memory) {}

void Line_Painter::Flush() {
  if (!Waiting.empty()) Surface.Draw_Lines(Waiting);
  Waiting.clear();
}

inline void Line_Painter::Add(const Plot_Line& line) {
  const Plot_Scale& w = Window;
  if ((line.X1 > w.Right && line.X2 > w.Right) || (line.Y1 > w.Top && line.Y2 > w.Top) ||
      (line.X1 < w.Left && line.X2 < w.Left) || (line.Y1 < w.Bottom && line.Y2 < w.Bottom))
    return;
  if (Waiting.size() == Block_Lines) Flush();
  Waiting.push_back(line);
}

void Line_Painter::Draw(const Line_Ends& ends, std::int32_t color, std::int16_t width) {
  using namespace line_end;
  for (std::size_t place = X1; place < line_end::Count; ++place)
    if (ends[place]) Memory[place] = To_Single(*ends[place]);
  const Plot_Point_Single from = Mapping.Project_Single(Memory[X1], Memory[Y1], Memory[Z1]);
  const Plot_Point_Single to = Mapping.Project_Single(Memory[X2], Memory[Y2], Memory[Z2]);
  Add({from.X, from.Y, to.X, to.Y, color, width});
}

void Line_Painter::Draw_Node_Circle(double x, double y, double z, std::int32_t color) {
  const Line_Memory before = Memory;
  for (const Line_Ends& stroke : Node_Circle(x, y, z)) Draw(stroke, color, Node_Width);
  Memory = before;
}

void Line_Painter::Draw_Block(const Display_List& list, std::size_t first, std::size_t count) {
  std::array<float, Block_Lines> x1, y1, x2, y2;
  Mapping.Project_Lines(list.Columns(), first, count, {x1.data(), y1.data(), x2.data(), y2.data()});
  for (std::size_t i = 0; i < count; ++i) {
    const std::size_t entry = first + i;
    Add({x1[i], y1[i], x2[i], y2[i], list.Color[entry], list.Width[entry]});
    if (list.Has_Nodes && list.NodeMark[entry]) {
      const auto& ends = list.Ends;
      Draw_Node_Circle(ends[line_end::X2][entry], ends[line_end::Y2][entry],
                       ends[line_end::Z2][entry], list.NodeColor[entry]);
    }
  }
}

void Line_Painter::Draw(const Display_List& list, std::size_t first, std::size_t last) {
  for (std::size_t at = first; at < last; at += Block_Lines)
    Draw_Block(list, at, std::min(Block_Lines, last - at));
  if (first >= last) return;
  for (std::size_t place = line_end::X1; place < line_end::Count; ++place)
    Memory[place] = list.Ends[place][last - 1];
}

}  // namespace norvik
