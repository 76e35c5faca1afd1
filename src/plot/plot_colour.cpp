#include "plot/plot_colour.h"

#include <algorithm>
#include <cmath>

namespace norvik {

namespace {

// Lines are thin, so they need the contrast of graphics (3 : 1); the grid stays behind them.
constexpr double Line_Contrast = 3.0, Grid_Contrast = 1.35;

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

std::int32_t Readable(std::int32_t color, std::int32_t background, double contrast) {
  const std::int32_t target = Ink_On(background);
  std::int32_t result = color;
  for (int step = 1; step <= 20 && Contrast(result, background) < contrast; ++step)
    result = Mixed(color, target, step / 20.0);
  return result;
}

}  // namespace

double Contrast(std::int32_t one, std::int32_t other) {
  const auto [darker, lighter] = std::minmax({Luminance(one), Luminance(other)});
  return (lighter + 0.05) / (darker + 0.05);
}

std::int32_t Ink_On(std::int32_t background) {
  return Contrast(Black, background) >= Line_Contrast ? Black : White;
}

Plot_Palette Readable_Palette(const Plot_Palette& palette, std::int32_t background) {
  Plot_Palette result;
  for (int role = Plot_Palette::first; role <= Plot_Palette::last; ++role) {
    const double contrast = role == plot_role::Grid ? Grid_Contrast : Line_Contrast;
    result[role] = Readable(palette[role], background, contrast);
  }
  result[plot_role::Background] = background;
  return result;
}

}  // namespace norvik
