// line_painter.h: lines of the program through the projection onto a surface.
//
// Projects in blocks over plain columns, leaves out lines that lie wholly beyond one side of the
// window, and hands the rest to the surface in batches, in order. Nothing is cut at an edge: a line
// that crosses the window is drawn whole.
#pragma once

#include "plot/display_list.h"
#include "plot/plot_surface.h"
#include "plot/projection.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace norvik {

class Line_Painter {
 public:
  // `memory` is read and kept up to date: it must outlive the painter.
  Line_Painter(Plot_Surface& surface, const Projection& projection, const Plot_Scale& window,
               Line_Memory& memory);

  // One line; an absent coordinate stands for the last value at its place. Raises an overflow fault
  // for a coordinate beyond a single.
  void Draw(const Line_Ends& ends, std::int32_t color, std::int16_t width);
  // Entries `first` up to but not including `last`, circles included. The list must be closed, its
  // leading absent ends filled.
  void Draw(const Display_List& list, std::size_t first, std::size_t last);
  void Draw_Node_Circle(double x, double y, double z, std::int32_t color);
  // Hands what waits to the surface; the last call of a drawing.
  void Flush();

 private:
  void Draw_Block(const Display_List& list, std::size_t first, std::size_t count);
  void Add(const Plot_Line& line);

  Plot_Surface& Surface;
  Projection Mapping;
  Plot_Scale Window;
  Line_Memory& Memory;
  std::vector<Plot_Line> Waiting;
};

}  // namespace norvik
