// plot_colour.h: colours of the plot.
//
// A colour of the setup holds the bytes blue, green, red from the highest to the lowest; a pixel
// holds alpha, red, green, blue. The seven colours of a plot and their roles:
//
//   0 travel and rapid moves, marker of the travel depth      4 grid, strip, origin mark
//   1 normal cuts, marker of the normal cut depth             5 cursor, first phase of its blink
//   2 deep cuts, marker of the deep cut depth                 6 cursor, second phase
//   3 background of the plot and of the strip
#pragma once

#include "core/indexed.h"

#include <cstdint>

namespace norvik {

namespace plot_role {
inline constexpr int Travel = 0, Cut = 1, Deep_Cut = 2, Background = 3, Grid = 4, Cursor_1 = 5,
                     Cursor_2 = 6;
}
using Plot_Palette = Indexed<std::int32_t, 0, 6>;

inline constexpr std::int32_t Black = 0x000000, White = 0xFFFFFF;

// Opaque pixel of a setup colour; bits above the three bytes are ignored.
constexpr std::uint32_t Argb(std::int32_t color) {
  const auto bits = static_cast<std::uint32_t>(color);
  return 0xFF000000U | (bits & 0xFFU) << 16 | (bits & 0xFF00U) | (bits >> 16 & 0xFFU);
}

// Contrast of two colours, 1 (equal) to 21 (black on white): the ratio (L1 + 0.05) / (L2 + 0.05) of
// relative luminances, as in the Web Content Accessibility Guidelines 2.1, 1.4.3.
double Contrast(std::int32_t one, std::int32_t other);

// Black, or white on a background on which black could not be seen.
std::int32_t Ink_On(std::int32_t background);

// For what stands behind the program: a quarter of the way from the background to its ink.
std::int32_t Faint_On(std::int32_t background);

// A colour moved towards black or white until it has a contrast to the background, keeping its hue;
// one that has it stays.
std::int32_t Readable_Color(std::int32_t color, std::int32_t background, double contrast);
inline constexpr double Text_Contrast = 4.5;

// The colours for another background: lines become readable on it, the grid stays behind them.
Plot_Palette Readable_Palette(const Plot_Palette& palette, std::int32_t background);

// Backgrounds for a light and a dark desktop.
inline constexpr std::int32_t Light_Background = 0xFFFFFF, Dark_Background = 0x26211E;

}  // namespace norvik
