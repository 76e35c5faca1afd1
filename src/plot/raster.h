// raster.h: lines into pixels.
//
// A full plot draws up to 900,000 short lines, so this is the one part of the plot where every
// nanosecond a line counts. Lines are drawn without smoothing, in the order given, with a pen of a
// whole number of pixels:
//
//   width 1      the run of Bresenham between the two end pixels, both included
//   width 2..9   the same run stamped with a round brush, so joints are closed and diagonals as
//                thick as axis-parallel lines
//   above        the rows of the capsule around the line
//
// Method of the run: J. E. Bresenham, "Algorithm for computer control of a digital plotter", IBM
// Systems Journal 4 (1965). A line that leaves the picture lights exactly the pixels that it would
// light on a larger picture.
//
// Coordinates of `Draw_Raster_Line` are pixels: (0, 0) is the left upper corner of the first pixel,
// x grows to the right, y downward.
#pragma once

#include "plot/plot_image.h"
#include "plot/plot_surface.h"

#include <cstdint>
#include <span>

namespace norvik {

// Pixels that someone else owns; `Stride` is the distance between rows in pixels.
struct Pixel_View {
  std::uint32_t* Pixels = nullptr;
  std::int32_t Width = 0, Height = 0;
  std::ptrdiff_t Stride = 0;
};
Pixel_View View_Of(Plot_Image& image);

void Fill_Raster(const Pixel_View& target, std::uint32_t argb);

// Ends that are not finite drop the line. A width below 1 counts as 1.
void Draw_Raster_Line(const Pixel_View& target, double x1, double y1, double x2, double y2,
                      std::int32_t width, std::uint32_t argb);

// World lines through a scale, in order. Pens are `pen_scale` times as wide as the lines say (for
// screens with more than one pixel to a unit).
void Draw_Raster_Lines(const Pixel_View& target, const Plot_Scale& scale,
                       std::span<const Plot_Line> lines, std::int32_t pen_scale = 1);

}  // namespace norvik
