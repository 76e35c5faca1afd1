#include "plot/z_strip.h"

#include "core/format.h"
#include "core/setup.h"
#include "plot/raster.h"

#include <cmath>
#include <string>

namespace norvik {

namespace {

constexpr double Strip_Width = 10, Line_X = 5, Tick_End_X = 8, Marker_X = 4.5, Text_X = -0.5;
// A little above 10, so that adding up the steps does not miss the last tick.
constexpr double Tick_Divisor = 10.0000000001;
constexpr double Zero_Tolerance = 0.01;
constexpr std::size_t Tick_Text_Length = 7;

double Z_Length() {
  return MachineSetup.Axis_Depth[3];
}

void Draw_Strip_Line(Plot_Surface& strip, double x1, double y1, double x2, double y2,
                     std::int32_t color) {
  strip.Draw_Line({static_cast<float>(x1), static_cast<float>(y1), static_cast<float>(x2),
                   static_cast<float>(y2), color, 1});
}

std::string Tick_Text(double y) {
  if (y > -Zero_Tolerance && y < Zero_Tolerance) return "    Z";
  const std::string number = Format_Number(y, "####.0");
  const std::size_t missing = Tick_Text_Length - std::min(Tick_Text_Length, number.size());
  return std::string(missing, ' ') + number;
}

}  // namespace

double Z_Display_Sign() {
  return MachineSetup.Display_Z_Coordinate_Invert ? -1 : 1;
}

Plot_Scale Z_Strip_Scale() {
  const double l = Z_Display_Sign() * Z_Length(), t = l / 10;
  return {0, l + t, Strip_Width, -l - t};
}

void Draw_Z_Strip(Plot_Surface& strip, const Plot_Palette& palette) {
  const double l = Z_Display_Sign() * Z_Length(), t = l / 10;
  strip.Set_Scale(Z_Strip_Scale());
  strip.Clear(palette[plot_role::Background]);
  const double step = Z_Length() / Tick_Divisor * Z_Display_Sign();
  if (!(std::fabs(step) > 0)) return;
  const std::int32_t ground = palette[plot_role::Background];
  const std::int32_t ink = Ink_On(ground);
  const std::int32_t text_color = Readable_Color(palette[plot_role::Grid], ground, Text_Contrast);
  for (double y = -l; step > 0 ? y <= l : y >= l; y += step) {
    Draw_Strip_Line(strip, Line_X, y, Tick_End_X, y, ink);
    strip.Draw_Text(Text_X, y + t / 6, Tick_Text(y), text_color);
  }
  Draw_Strip_Line(strip, Line_X, -l, Line_X, l, ink);
  for (int level = plot_role::Travel; level <= plot_role::Deep_Cut; ++level) {
    const double z = MachineSetup.Axis_Tool_Height[level];
    Draw_Strip_Line(strip, Marker_X, z, Tick_End_X, z, palette[level]);
  }
}

Plot_Image Spindle_Picture(int frame, std::int32_t height_pixels, std::int32_t background) {
  const std::int32_t height = std::max(8, height_pixels), width = height / 2 + 1;
  Plot_Image image(width, height);
  const Pixel_View view = View_Of(image);
  const std::uint32_t ink = Argb(Ink_On(background));
  const std::uint32_t body = 0xFF8A929C;
  const double middle = width / 2.0, h = height;
  // Filled from the middle of the picture outward: motor, collet, cutter.
  const auto block = [&](double top, double bottom, double half, std::uint32_t color) {
    for (double y = top * h; y < bottom * h; ++y)
      Draw_Raster_Line(view, middle - half * h, y, middle + half * h, y, 1, color);
  };
  block(0.0, 0.5, 0.22, ink);
  block(0.04, 0.46, 0.16, body);
  block(0.5, 0.64, 0.1, ink);
  block(0.64, 1.0, 0.045, ink);
  // Two flutes climb the cutter; half a turn later they have changed sides.
  const double lean = frame == 0 ? 0.09 : -0.09;
  for (const double y : {0.68, 0.84})
    Draw_Raster_Line(view, middle - lean * h, y * h, middle + lean * h, (y + 0.12) * h, 1, ink);
  return image;
}

}  // namespace norvik
