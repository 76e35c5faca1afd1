#include "plot/plot_picture.h"

#include "compiler/tables/program_wire.h"
#include "core/fault.h"
#include "core/indexed.h"
#include "core/paths.h"
#include "core/setup.h"
#include "plot/display_list.h"
#include "plot/line_painter.h"
#include "plot/nist_plot.h"
#include "plot/plot_colour.h"
#include "plot/plot_form.h"
#include "plot/raster_surface.h"
#include "plot/view.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace norvik {

namespace {

constexpr double Margin = 1.06;  // of the half span
constexpr std::int32_t Fine_Pixels = 1400;
constexpr double Closest_Grid = 8;  // pixels

struct Extents {
  double Left = std::numeric_limits<double>::max(), Right = std::numeric_limits<double>::lowest();
  double Bottom = Left, Top = Right;
  bool Empty() const { return Left > Right; }
  double Span() const { return std::max(Right - Left, Top - Bottom); }
  void Include(const Extents& other) {
    if (other.Empty()) return;
    Include(other.Left, other.Bottom);
    Include(other.Right, other.Top);
  }
  void Include(double x, double y) {
    if (!std::isfinite(x) || !std::isfinite(y)) return;
    Left = std::min(Left, x);
    Right = std::max(Right, x);
    Bottom = std::min(Bottom, y);
    Top = std::max(Top, y);
  }
};

Extents Extents_Of(const Display_List& list, const Projection& projection) {
  using namespace line_end;
  Extents extents;
  const auto& ends = list.Ends;
  for (std::size_t i = 0; i < list.Count(); ++i) {
    const auto from = projection.Project_Single(ends[X1][i], ends[Y1][i], ends[Z1][i]);
    const auto to = projection.Project_Single(ends[X2][i], ends[Y2][i], ends[Z2][i]);
    extents.Include(from.X, from.Y);
    extents.Include(to.X, to.Y);
  }
  return extents;
}

// The square window around the extents.
Plot_Scale Fitted(const Extents& extents) {
  if (extents.Empty()) return {-1, 1, 1, -1};
  const double half = std::max(extents.Span() / 2 * Margin, Smallest_Half_Span);
  const double x = (extents.Left + extents.Right) / 2, y = (extents.Bottom + extents.Top) / 2;
  return {x - half, y + half, x + half, y - half};
}

Projection Preset_Projection(std::size_t view) {
  const auto& degrees = Preset_Views[view].Degrees;
  return {degrees[0] / Preset_Degrees, degrees[1] / Preset_Degrees, degrees[2] / Preset_Degrees};
}

Display_List Listed_Program(double pixel_factor, const Plot_Palette& palette) {
  Display_List list;
  list.Reserve(Program_Wire.Count());
  Wire_Pens pens(pixel_factor, palette);
  for (const Wire& wire : Program_Wire.Rows()) pens.Append_To(list, wire);
  list.Close();
  list.Fill_Leading(Line_Memory{});
  return list;
}

// The table's edges; nothing where the grid is not shown or the table has no size.
Display_List Listed_Table(const Plot_Palette& palette) {
  Display_List list;
  const double side = std::max(MachineSetup.Axis_Depth[1], MachineSetup.Axis_Depth[2]);
  if (MachineSetup.Plot_Show_Grid == 1 && side > 0) Build_Grid(palette, side / 100, list);
  return list;
}

// The grid; on a small picture of a large table every second, fifth, tenth... line of it, so that
// it does not become a solid area. A grid that makes no sense is left out, and the log says so.
Display_List Listed_Grid(const Plot_Palette& palette, const Plot_Scale& window, std::int32_t size) {
  Display_List list;
  const double pixels = MachineSetup.Axis_Table_Grid_Size / window.Width() * size;
  if (MachineSetup.Plot_Show_Grid != 1) return list;
  double every = 1;
  for (int step = 0; pixels > 0 && pixels * every < Closest_Grid; ++step)
    every *= step % 3 == 1 ? 2.5 : 2;  // 1, 2, 5, 10, 20, 50...
  Trap("Plot_Grid_Error",
       [&] { Build_Grid(palette, MachineSetup.Axis_Table_Grid_Size * every, list); });
  return list;
}

}  // namespace

Plot_Image Make_Program_Picture(const Picture_Request& request) {
  if (request.View >= Preset_Views.size())
    Raise_Index_Fault(static_cast<long long>(request.View), 0, Preset_Views.size() - 1);
  if (request.Size < Smallest_Picture || request.Size > Largest_Picture)
    Raise_Index_Fault(request.Size, Smallest_Picture, Largest_Picture);

  const Plot_Palette palette =
      Readable_Palette(MachineSetup.Plot_Color, request.Dark ? Dark_Background : Light_Background);
  const Projection projection = Preset_Projection(request.View);
  Extents extents = Extents_Of(Listed_Program(0, palette), projection);
  // Less than the smallest window is no picture: the table shows where it lies.
  if (extents.Empty() || extents.Span() < Smallest_Half_Span)
    extents.Include(Extents_Of(Listed_Table(palette), projection));
  const Plot_Scale window = Fitted(extents);
  const double pixel_factor = Pixel_Factor(window, request.Size * Units_Per_Pixel);

  // A large picture is looked at from as far as a small one.
  Raster_Surface surface(request.Size, request.Size, 1 + request.Size / Fine_Pixels);
  surface.Set_Scale(window);
  surface.Clear(palette[plot_role::Background]);
  Line_Memory memory{};
  Line_Painter painter(surface, projection, window, memory);
  const Display_List grid = Listed_Grid(palette, window, request.Size);
  painter.Draw(grid, 0, grid.Count());
  const Display_List program = Listed_Program(pixel_factor, palette);
  painter.Draw(program, 0, program.Count());
  painter.Flush();
  return surface.Image();
}

void Write_Pixmap_File(const std::string& path, const Plot_Image& picture) {
  std::string bytes =
      "P6\n" + std::to_string(picture.Width) + " " + std::to_string(picture.Height) + "\n255\n";
  for (const std::uint32_t pixel : picture.Pixels)
    for (const int place : {16, 8, 0}) bytes.push_back(static_cast<char>(pixel >> place & 0xFF));
  Replace_File(path, bytes);
}

}  // namespace norvik
