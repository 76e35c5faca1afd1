// plot_surface.h: what the plot draws on.
//
// The plot knows no pixels of a window. It draws through this small surface in world units: a user
// scale, lines, texts and pictures. Three surfaces stand behind it: one that records the calls (for
// the tests), the rasteriser's image (lines, no fonts), and the toolkit's image, which adds texts
// to the rasteriser's lines.
//
// Colours are values of the setup: the bytes blue, green, red from the highest to the lowest.
#pragma once

#include "plot/plot_image.h"

#include <cstdint>
#include <span>
#include <string_view>

namespace norvik {

// World coordinates of the corners. Left and top belong to the first pixel; with Top above Bottom,
// Y grows upward.
struct Plot_Scale {
  double Left = 0, Top = 1, Right = 1, Bottom = 0;
  double Width() const { return Right - Left; }
  double Height() const { return Bottom - Top; }
  bool operator==(const Plot_Scale&) const = default;
};

// A line in world coordinates. Width in pixels, at least 1.
struct Plot_Line {
  float X1 = 0, Y1 = 0, X2 = 0, Y2 = 0;
  std::int32_t Color = 0;
  std::int16_t Width = 1;
  bool operator==(const Plot_Line&) const = default;
};

class Plot_Surface {
 public:
  virtual ~Plot_Surface() = default;

  virtual void Set_Scale(const Plot_Scale& scale) = 0;
  virtual void Clear(std::int32_t background) = 0;
  // In the order given: a later line covers an earlier one. Both ends of a line are drawn; a line
  // without length is a dot of the pen's width. Ends far outside are allowed, ends that are not
  // finite drop the line.
  virtual void Draw_Lines(std::span<const Plot_Line> lines) = 0;
  // The text's left upper corner stands at (x, y).
  virtual void Draw_Text(double x, double y, std::string_view text, std::int32_t color) = 0;
  // The picture's left upper corner stands at (x, y), one pixel to a pixel; transparent pixels
  // leave what is there.
  virtual void Draw_Picture(double x, double y, const Plot_Image& picture) = 0;

  // Sets the picture aside as it is, until the next clear.
  virtual void Keep_Picture() {}
  // Puts the picture that was set aside in place of what was drawn since; false when there is none.
  virtual bool Bring_Back_Picture() { return false; }

  void Draw_Line(const Plot_Line& line) { Draw_Lines({&line, 1}); }
};

}  // namespace norvik
