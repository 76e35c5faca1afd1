// recording_surface.h: a surface that writes down what is drawn on it.
#pragma once

#include "plot/plot_surface.h"

#include <string>
#include <vector>

namespace norvik {

// One call, as far as its kind uses the fields.
struct Recorded_Call {
  enum class Kind { Scale, Clear, Line, Text, Picture };
  Kind What = Kind::Clear;
  Plot_Scale Scale;
  Plot_Line Line;
  double X = 0, Y = 0;
  std::string Text;
  std::int32_t Color = 0;
  std::int32_t Picture_Height = 0;
};

class Recording_Surface final : public Plot_Surface {
 public:
  void Set_Scale(const Plot_Scale& scale) override;
  void Clear(std::int32_t background) override;
  void Draw_Lines(std::span<const Plot_Line> lines) override;
  void Draw_Text(double x, double y, std::string_view text, std::int32_t color) override;
  void Draw_Picture(double x, double y, const Plot_Image& picture) override;

  // The lines since the last clear, in order.
  std::vector<Plot_Line> Lines() const;

  std::vector<Recorded_Call> Calls;
};

}  // namespace norvik
