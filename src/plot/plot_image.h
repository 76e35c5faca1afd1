// plot_image.h: a picture in memory, 32 bits a pixel.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace norvik {

// Rows from the top without gaps; a pixel is 0xAARRGGBB, opaque or fully transparent.
struct Plot_Image {
  Plot_Image() = default;
  Plot_Image(std::int32_t width, std::int32_t height, std::uint32_t fill = 0)
      : Width(width),
        Height(height),
        Pixels(static_cast<std::size_t>(width) * static_cast<std::size_t>(height), fill) {}

  std::uint32_t& At(std::int32_t x, std::int32_t y) { return Pixels[Place(x, y)]; }
  std::uint32_t At(std::int32_t x, std::int32_t y) const { return Pixels[Place(x, y)]; }

  std::int32_t Width = 0, Height = 0;
  std::vector<std::uint32_t> Pixels;

 private:
  std::size_t Place(std::int32_t x, std::int32_t y) const {
    return static_cast<std::size_t>(y) * static_cast<std::size_t>(Width) +
           static_cast<std::size_t>(x);
  }
};

}  // namespace norvik
