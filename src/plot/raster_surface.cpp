#include "plot/raster_surface.h"

#include "plot/plot_colour.h"

#include <algorithm>
#include <cmath>

namespace norvik {

Raster_Surface::Raster_Surface(std::int32_t width, std::int32_t height, std::int32_t pen_scale)
    : Frame(width, height), Pen_Scale(pen_scale) {}

void Raster_Surface::Resize(std::int32_t width, std::int32_t height, std::int32_t pen_scale) {
  Frame = Plot_Image(width, height);
  Kept.reset();
  Pen_Scale = pen_scale;
}

void Raster_Surface::Take_Over(const Raster_Surface& other) {
  Frame = other.Frame;
  Kept.reset();
  Scale = other.Scale;
  Pen_Scale = other.Pen_Scale;
}

void Raster_Surface::Clear(std::int32_t background) {
  Kept.reset();
  Fill_Raster(View_Of(Frame), Argb(background));
}

bool Raster_Surface::Bring_Back_Picture() {
  if (!Kept) return false;
  Frame = *Kept;
  return true;
}

void Raster_Surface::Draw_Lines(std::span<const Plot_Line> lines) {
  Draw_Raster_Lines(View_Of(Frame), Scale, lines, Pen_Scale);
}

void Raster_Surface::Draw_Text(double, double, std::string_view, std::int32_t) {}

void Raster_Surface::Draw_Picture(double x, double y, const Plot_Image& picture) {
  const double left_edge = std::round(Pixel_X(x)), top_edge = std::round(Pixel_Y(y));
  // Far outside, or a scale without extent: nothing of it is seen.
  if (!(std::fabs(left_edge) < 1e6) || !(std::fabs(top_edge) < 1e6)) return;
  const auto left = static_cast<std::int32_t>(left_edge);
  const auto top = static_cast<std::int32_t>(top_edge);
  for (std::int32_t row = std::max(0, -top); row < std::min(picture.Height, Frame.Height - top);
       ++row) {
    for (std::int32_t column = std::max(0, -left);
         column < std::min(picture.Width, Frame.Width - left); ++column) {
      const std::uint32_t pixel = picture.At(column, row);
      if (pixel >> 24 != 0) Frame.At(left + column, top + row) = pixel;
    }
  }
}

}  // namespace norvik
