// line_painter.h: lines of the program through the projection onto a surface.
//
// Projects in blocks over plain columns, leaves out lines that lie wholly beyond one side of the
// window, and hands the rest to the surface in batches, in order. Nothing is cut at an edge: a line
// that crosses the window is drawn whole.
#pragma once

#include "plot/display_list.h"
#include "plot/plot_surface.h"
#include "plot/projection.h"

#include <array>
#include <cstddef>
#include <cstdint>

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
  // Lines projected at a time: the block stays in the processor's nearest cache.
  static constexpr std::size_t Block_Lines = 512;

  // The sides of the window as singles that let the same singles pass as the sides themselves.
  struct Sides {
    float Left, Right, Bottom, Top;
    bool Reject(const Plot_Line& line) const;
  };

  void Draw_Block(const Display_List& list, std::size_t first, std::size_t count);
  void Add(const Plot_Line& line);
  void Put(const Plot_Line& line);

  Plot_Surface& Surface;
  Projection Mapping;
  Sides Window;
  Line_Memory& Memory;
  std::size_t Waiting_Count = 0;
  std::array<Plot_Line, Block_Lines> Waiting;
};

}  // namespace norvik
