// picture_surface.h: the plot's surface with the toolkit's fonts.
//
// Lines and pictures are the rasteriser's; texts are painted over the same pixels by the toolkit.
// Works without a display; texts need the application object of the toolkit (fonts), on the
// platform "offscreen" where there is no display.
#pragma once

#include "plot/raster_surface.h"

#include <QImage>

namespace norvik {

class Picture_Surface final : public Raster_Surface {
 public:
  using Raster_Surface::Raster_Surface;

  // Height of texts in pixels.
  void Set_Text_Height(std::int32_t pixels) { Text_Height = pixels; }
  void Draw_Text(double x, double y, std::string_view text, std::int32_t color) override;

 private:
  std::int32_t Text_Height = 11;
};

// The picture for the toolkit's painters. It shares the pixels: valid while the picture lives and
// keeps its size.
QImage Image_Of(const Plot_Image& picture);

}  // namespace norvik
