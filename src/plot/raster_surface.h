// raster_surface.h: the surface that keeps its picture in memory.
//
// Lines go through the rasteriser; it has no fonts, so texts are left to a surface built on this
// one.
#pragma once

#include "plot/raster.h"

#include <optional>

namespace norvik {

class Raster_Surface : public Plot_Surface {
 public:
  // A picture of `width` x `height` pixels. Pens are `pen_scale` times as wide as lines say.
  explicit Raster_Surface(std::int32_t width = 0, std::int32_t height = 0,
                          std::int32_t pen_scale = 1);
  // A new size loses the picture and keeps the scale.
  void Resize(std::int32_t width, std::int32_t height, std::int32_t pen_scale = 1);

  void Set_Scale(const Plot_Scale& scale) override { Scale = scale; }
  void Clear(std::int32_t background) override;
  void Draw_Lines(std::span<const Plot_Line> lines) override;
  // Draws nothing.
  void Draw_Text(double x, double y, std::string_view text, std::int32_t color) override;
  void Draw_Picture(double x, double y, const Plot_Image& picture) override;
  void Keep_Picture() override { Kept = Frame; }
  bool Bring_Back_Picture() override;

  const Plot_Image& Image() const { return Frame; }
  // A copy of another surface's picture and scale, to draw over.
  void Take_Over(const Raster_Surface& other);

 protected:
  // The pixel of a point of the user scale.
  double Pixel_X(double x) const { return (x - Scale.Left) / Scale.Width() * Frame.Width; }
  double Pixel_Y(double y) const { return (y - Scale.Top) / Scale.Height() * Frame.Height; }

  Plot_Image Frame;
  std::optional<Plot_Image> Kept;
  Plot_Scale Scale;
  std::int32_t Pen_Scale;
};

}  // namespace norvik
