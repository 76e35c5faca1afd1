#include "plot/plot_colour.h"

#include <algorithm>
#include <cmath>

namespace norvik {

namespace {

// Lines need the contrast of graphics (3 : 1), and more where thin lines glow on a dark ground.
constexpr double Line_Contrast = 3.0, Glowing_Line_Contrast = 4.5;
// The grid is seen, and no stronger than the lines.
constexpr double Faintest_Grid = 1.35, Strongest_Grid = 2.7;
constexpr int Mixing_Steps = 20;

constexpr int Channel(std::int32_t color, int place) {
  return color >> 8 * place & 0xFF;
}

double Luminance(std::int32_t color) {
  const auto linear = [](int channel) {
    const double value = channel / 255.0;
    return value <= 0.04045 ? value / 12.92 : std::pow((value + 0.055) / 1.055, 2.4);
  };
  return 0.2126 * linear(Channel(color, 0)) + 0.7152 * linear(Channel(color, 1)) +
         0.0722 * linear(Channel(color, 2));
}

// `part` 0 gives `color`, 1 gives `target`.
std::int32_t Mixed(std::int32_t color, std::int32_t target, double part) {
  std::int32_t result = 0;
  for (int place = 0; place < 3; ++place) {
    const double value = Channel(color, place) * (1 - part) + Channel(target, place) * part;
    result |= static_cast<std::int32_t>(std::lround(value)) << 8 * place;
  }
  return result;
}

// The first mixture of the colour and `target` that `fits`.
template <class Fits>
std::int32_t Mixed_Until(std::int32_t color, std::int32_t target, const Fits& fits) {
  std::int32_t result = color;
  for (int step = 1; step <= Mixing_Steps && !fits(result); ++step)
    result = Mixed(color, target, static_cast<double>(step) / Mixing_Steps);
  return result;
}

std::int32_t Grid_Color(std::int32_t color, std::int32_t background) {
  const std::int32_t seen = Readable_Color(color, background, Faintest_Grid);
  return Mixed_Until(seen, background, [background](std::int32_t mixed) {
    return Contrast(mixed, background) <= Strongest_Grid;
  });
}

}  // namespace

double Contrast(std::int32_t one, std::int32_t other) {
  const auto [darker, lighter] = std::minmax({Luminance(one), Luminance(other)});
  return (lighter + 0.05) / (darker + 0.05);
}

std::int32_t Ink_On(std::int32_t background) {
  return Contrast(Black, background) >= Line_Contrast ? Black : White;
}

std::int32_t Faint_On(std::int32_t background) {
  const std::int32_t ink = Ink_On(background);
  std::int32_t color = 0;
  for (int shift = 0; shift <= 16; shift += 8) {
    const std::int32_t ground = background >> shift & 0xFF, full = ink >> shift & 0xFF;
    color |= (ground + (full - ground) / 4) << shift;
  }
  return color;
}

std::int32_t Readable_Color(std::int32_t color, std::int32_t background, double contrast) {
  return Mixed_Until(color, Ink_On(background), [background, contrast](std::int32_t mixed) {
    return Contrast(mixed, background) >= contrast;
  });
}

Plot_Palette Readable_Palette(const Plot_Palette& palette, std::int32_t background) {
  const double contrast = Ink_On(background) == White ? Glowing_Line_Contrast : Line_Contrast;
  Plot_Palette result;
  for (int role = Plot_Palette::first; role <= Plot_Palette::last; ++role)
    result[role] = Readable_Color(palette[role], background, contrast);
  result[plot_role::Grid] = Grid_Color(palette[plot_role::Grid], background);
  result[plot_role::Background] = background;
  return result;
}

}  // namespace norvik
