// z_strip.h: the narrow strip beside the plot that shows Z.
//
//   L + T  +----------+   S = 1, or -1 when `Display_Z_Coordinate_Invert` turns the display round
//      L   |  10.0 -| |   L = S x length of the Z axis, T = L / 10
//          |        | |
//      0   |     Z -|=|   ticks at 5..8, ten above and ten below Z = 0,
//          |        | |   markers at 4.5..8 for the three Z levels,
//     -L   | -10.0 -| |   the spindle picture moves along the line with the machine
// -(L + T) +----------+
//          0     5    10
#pragma once

#include "plot/plot_colour.h"
#include "plot/plot_image.h"
#include "plot/plot_surface.h"

#include <cstdint>

namespace norvik {

// The sign S and the scale of the strip, from the setup.
double Z_Display_Sign();
Plot_Scale Z_Strip_Scale();

// Scales, clears and draws the strip. A table without Z length leaves it empty.
void Draw_Z_Strip(Plot_Surface& strip, const Plot_Palette& palette);

// The spindle with its cutter, `frame` 0 or 1 of its turning, on a transparent ground.
Plot_Image Spindle_Picture(int frame, std::int32_t height_pixels, std::int32_t background);

}  // namespace norvik
