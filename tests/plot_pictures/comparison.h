// comparison.h: a drawn picture against a stored one.
//
// The stored pictures lie beside the tests. After a wanted change of the drawing, run the tests
// with NORVIK_RENEW_PICTURES set, look at each picture, and commit them.
#pragma once

#include "plot/picture/picture_files.h"
#include "plot/picture/picture_surface.h"

#include <algorithm>
#include <cstdlib>
#include <string>

#include <gtest/gtest.h>
#include <unistd.h>

namespace norvik {

// Pixels a side of the stored pictures.
inline constexpr std::int32_t Stored_Size = 200;

inline std::string Stored_Path(const std::string& name) {
  return std::string(NORVIK_TEST_FOLDER) + "/" + name + ".png";
}

// Share of the pixels of one picture that have no like pixel at their place or beside it in the
// other: lines may lie a pixel aside where another processor rounds otherwise.
inline double Unlike_Share(const QImage& one, const QImage& other) {
  constexpr int like = 32;
  const auto differs = [](QRgb a, QRgb b) {
    return std::abs(qRed(a) - qRed(b)) > like || std::abs(qGreen(a) - qGreen(b)) > like ||
           std::abs(qBlue(a) - qBlue(b)) > like;
  };
  int unlike = 0;
  for (int y = 0; y < one.height(); ++y) {
    for (int x = 0; x < one.width(); ++x) {
      bool found = false;
      for (int dy = -1; dy <= 1 && !found; ++dy)
        for (int dx = -1; dx <= 1 && !found; ++dx)
          found =
              other.valid(x + dx, y + dy) && !differs(one.pixel(x, y), other.pixel(x + dx, y + dy));
      unlike += found ? 0 : 1;
    }
  }
  return static_cast<double>(unlike) / (one.width() * one.height());
}

inline double Difference(const QImage& one, const QImage& other) {
  if (one.size() != other.size()) return 1;
  return std::max(Unlike_Share(one, other), Unlike_Share(other, one));
}

inline void Compare_With_Stored(const Plot_Image& picture, const std::string& name) {
  constexpr double tolerance = 0.0005;
  if (std::getenv("NORVIK_RENEW_PICTURES")) Write_Picture_File(Stored_Path(name), picture);
  const QImage stored(QString::fromStdString(Stored_Path(name)));
  if (Difference(Image_Of(picture), stored) > tolerance) {
    const std::string drawn = testing::TempDir() + std::to_string(::getpid()) + name + ".png";
    Write_Picture_File(drawn, picture);
    ADD_FAILURE() << name << " differs from the stored picture; drawn now: " << drawn;
  }
}

}  // namespace norvik
