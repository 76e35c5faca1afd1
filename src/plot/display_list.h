// display_list.h: the lists of lines that the plot paints.
//
//   Program_Wire --Append_Wire--> PlotLines --+
//   table, grid size --Build_Grid--> GridLines +--> projection --> surface
//
// A list is a set of parallel columns, one entry a line, in drawing order. It is built once for
// each rebuild and painted at every replot; rotations only replot.
//
// Absent coordinates. A program that has not named an axis yet has wires without that coordinate.
// Drawn, such a place stands for the last value that was drawn at that place of a line, in the same
// picture or in the one before. Column ends are kept as singles, absent as a NaN. Those that an
// earlier entry of the list settles are filled in when the list is closed; the leading ones of a
// column (`Leading_Absent`) depend on what was drawn before the list and are filled at each replot.
// Circles are drawn around the end as it was drawn, and no absent place ever stands for a point of
// one.
#pragma once

#include "compiler/state/tables.h"
#include "core/nullable.h"
#include "plot/plot_colour.h"
#include "plot/plot_surface.h"
#include "plot/projection.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace norvik {

// Places of a line's coordinates.
namespace line_end {
enum Place : std::size_t { X1, Y1, Z1, X2, Y2, Z2, Count };
}

// Both ends of a line in units of the program; a coordinate may be absent.
using Line_Ends = std::array<Nullable, line_end::Count>;
// The last value drawn at each place of a line; 0 before the first line.
using Line_Memory = std::array<float, line_end::Count>;

struct Display_List {
  // --- One entry a line ----------------------------------------------------------------------
  std::array<std::vector<float>, line_end::Count> Ends;  // units of the program
  std::vector<std::int32_t> Color;
  std::vector<std::int16_t> Width;  // pixels, at least 1
  std::vector<bool> NodeMark;       // draw a circle around the end
  std::vector<std::int32_t> NodeColor;

  // --- Set when the list is closed -----------------------------------------------------------
  std::array<std::size_t, line_end::Count> Leading_Absent{};
  bool Has_Nodes = false;
  std::size_t Too_Large = 0;  // entries with a coordinate beyond a single; they are not drawn

  std::size_t Count() const { return Color.size(); }
  // Keeps the memory for the next program.
  void Clear();
  void Reserve(std::size_t count);
  void Append(const Line_Ends& ends, std::int32_t color, std::int16_t width);
  // A circle around the end of the last entry.
  void Mark_Node(std::int32_t color);
  // Fills in the absent ends that earlier entries settle.
  void Close();
  // Fills in the leading absent ends.
  void Fill_Leading(const Line_Memory& memory);

  Line_Columns Columns() const;
};

// --- Circles ---------------------------------------------------------------------------------

// Radius of a node circle in units of the program; it does not follow the zoom.
inline constexpr double Node_Radius = 0.1025;
inline constexpr std::size_t Node_Strokes = 10;
// The strokes around a centre, in drawing order; the last goes back to the first point.
std::array<Line_Ends, Node_Strokes> Node_Circle(double x, double y, double z);

// --- Pens of wires ---------------------------------------------------------------------------

// Width and colour of wires, and what they remember from wire to wire.
struct Wire_Pens {
  // `pixel_factor` turns a tool's diameter into a pen's width.
  Wire_Pens(double pixel_factor, const Plot_Palette& palette)
      : Pixel_Factor(pixel_factor), Palette(palette) {}

  // Width in pixels, at least 1. Raises a range fault for a tool above 200.
  std::int16_t Width(const Wire& wire);
  std::int32_t Color(const Wire& wire) const;
  // Appends the wire as a line; with a circle where it switches the spindle, when `Gcode_LineNodes`
  // is set.
  void Append_To(Display_List& list, const Wire& wire);

  double Pixel_Factor;
  Plot_Palette Palette;
  Nullable Remembered_Tool;  // the last tool that a wire named
  bool Spindle_On = false;
};
Line_Ends Ends_Of(const Wire& wire);

// --- The grid --------------------------------------------------------------------------------

// Lines along and across the table every `step`, at Z = 0. Raises an invalid call fault for a step
// that is not positive or so small that the grid would be a solid area.
void Build_Grid(const Plot_Palette& palette, double step, Display_List& list);

}  // namespace norvik
