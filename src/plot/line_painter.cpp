#include "plot/line_painter.h"

#include "core/rounding.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <utility>

namespace norvik {

namespace {

constexpr std::int16_t Node_Width = 1;

// True when each entry starts where the one before it ends, as moves of a program do.
bool Is_Chain(const Display_List& list, std::size_t first, std::size_t count) {
  using namespace line_end;
  unsigned gaps = 0;
  for (const auto& [start, end] : {std::pair(X1, X2), std::pair(Y1, Y2), std::pair(Z1, Z2)}) {
    const float* from = list.Ends[start].data() + first;
    const float* to = list.Ends[end].data() + first;
    for (std::size_t i = 1; i < count; ++i) gaps |= from[i] != to[i - 1] ? 1U : 0U;
  }
  return gaps == 0;
}

// The largest single not above, and the smallest not below a side.
float Single_Not_Above(double side) {
  const auto single = static_cast<float>(side);
  return single > side ? std::nextafter(single, -std::numeric_limits<float>::infinity()) : single;
}
float Single_Not_Below(double side) {
  return -Single_Not_Above(-side);
}

}  // namespace

Line_Painter::Line_Painter(Plot_Surface& surface, const Projection& projection,
                           const Plot_Scale& window, Line_Memory& memory)
    : Surface(surface),
      Mapping(projection),
      Window{Single_Not_Below(window.Left), Single_Not_Above(window.Right),
             Single_Not_Below(window.Bottom), Single_Not_Above(window.Top)},
      Memory(memory) {}

void Line_Painter::Flush() {
  if (Waiting_Count > 0) Surface.Draw_Lines({Waiting.data(), Waiting_Count});
  Waiting_Count = 0;
}

inline bool Line_Painter::Sides::Reject(const Plot_Line& line) const {
  return (line.X1 > Right && line.X2 > Right) || (line.Y1 > Top && line.Y2 > Top) ||
         (line.X1 < Left && line.X2 < Left) || (line.Y1 < Bottom && line.Y2 < Bottom);
}

inline void Line_Painter::Put(const Plot_Line& line) {
  if (Waiting_Count == Waiting.size()) Flush();
  Waiting[Waiting_Count++] = line;
}

inline void Line_Painter::Add(const Plot_Line& line) {
  if (!Window.Reject(line)) Put(line);
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
  const Projected_Columns projected{x1.data(), y1.data(), x2.data(), y2.data()};
  if (Is_Chain(list, first, count)) {
    Mapping.Project_Chain(list.Columns(), first, count, projected);
  } else {
    Mapping.Project_Lines(list.Columns(), first, count, projected);
  }
  const std::int32_t* color = list.Color.data() + first;
  const std::int16_t* width = list.Width.data() + first;
  if (!list.Has_Nodes) {
    // Copies of the sides: the compiler then knows that the lines do not overwrite them.
    const Sides sides = Window;
    for (std::size_t i = 0; i < count; ++i) {
      const Plot_Line line{x1[i], y1[i], x2[i], y2[i], color[i], width[i]};
      if (!sides.Reject(line)) Put(line);
    }
    return;
  }
  for (std::size_t i = 0; i < count; ++i) {
    const std::size_t entry = first + i;
    Add({x1[i], y1[i], x2[i], y2[i], color[i], width[i]});
    if (list.NodeMark[entry]) {
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
