#include "plot/cursor.h"

#include "core/application.h"
#include "core/fault.h"
#include "core/setup.h"
#include "platform/platform.h"
#include "plot/nist_plot.h"
#include "plot/plot_form.h"
#include "plot/plot_host.h"
#include "plot/view.h"
#include "plot/z_strip.h"

namespace norvik {

Cursor_State Cursor;

namespace {

constexpr std::int64_t Blink_Period = 250'000'000, Frame_Period = 100'000'000;
constexpr double Below_Level = 0.001;  // units of the setup

// True, at most once a period; the clock never goes back.
bool Due(std::int64_t& last, std::int64_t period) {
  const std::int64_t now = Platform.Monotonic_Clock();
  if (last != 0 && now - last < period) return false;
  last = now;
  return true;
}

Line_Shape Projected_Shape(double x1, double y1, double x2, double y2, double z,
                           std::int32_t color) {
  const Projection view = Current_Projection();
  const Plot_Point from = view.Project(x1, y1, z), to = view.Project(x2, y2, z);
  return {from.X, from.Y, to.X, to.Y, color, true};
}

}  // namespace

void Draw_Spindle_Position(double x, double y, double z) {
  Trap("Draw Spindle Position Error # ", [&] {
    auto& cross = Plot_Form.Cursor;
    if (MachineSetup.Hide_Axis_Cursor) {
      if (!cross[0].Visible) return;
      cross[0].Visible = cross[1].Visible = false;
      Plot_Host.Shapes_Changed();
      return;
    }
    if (!Due(Cursor.Cross_Drawn, Blink_Period)) return;
    Cursor.Blink = !Cursor.Blink;
    z *= Z_Display_Sign();
    const double s = View.ZoomHalfSpan / 5;
    const std::int32_t color =
        Current_Palette()[Cursor.Blink ? plot_role::Cursor_1 : plot_role::Cursor_2];
    cross[0] = Projected_Shape(x - s, y, x + s, y, z, color);
    cross[1] = Projected_Shape(x, y - s, x, y + s, z, color);
    Plot_Host.Shapes_Changed();
  });
}

void Draw_Spindle() {
  Trap("Draw Spindle Error # ", [] {
    if (!Due(Cursor.Spindle_Drawn, Frame_Period)) return;
    const double sign = Z_Display_Sign();
    const double v = Machine.Position[3] * sign;
    const auto& level = MachineSetup.Axis_Tool_Height;
    const bool cutting = v < level[1] - Below_Level || v < level[2] - Below_Level;
    Spindle_Image& image = Plot_Form.Image_Spindle;
    image.Frame = cutting ? 1 - image.Frame : 0;
    // The middle of the picture stands at Z.
    image.Top = v + image.Height * sign / 2;
    image.Visible = true;
    Plot_Host.Shapes_Changed();
  });
}

}  // namespace norvik
