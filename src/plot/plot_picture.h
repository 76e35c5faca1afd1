// plot_picture.h: a picture of the loaded program, made without a window.
//
// For `norvik-cli plot`, the documentation and the tests. It touches neither the view nor the lists
// of the window.
#pragma once

#include "plot/plot_image.h"

#include <cstddef>
#include <cstdint>
#include <string>

namespace norvik {

inline constexpr std::int32_t Smallest_Picture = 16, Largest_Picture = 8192;

struct Picture_Request {
  std::size_t View = 0;     // place in `Preset_Views`
  std::int32_t Size = 900;  // pixels a side
  bool Dark = false;        // on a dark ground
};

// `Program_Wire` from a preset view, fitted into a square with a small margin, in the colours of
// the setup made readable on the ground; with the table's grid when `Plot_Show_Grid` is 1. Without
// a program the grid alone. Raises a range fault for a view or size out of range.
Plot_Image Make_Program_Picture(const Picture_Request& request);

// Writes a picture as a portable pixmap (binary, 24 bits a pixel), for builds without a toolkit.
// Raises a file fault that says what to do.
void Write_Pixmap_File(const std::string& path, const Plot_Image& picture);

}  // namespace norvik
