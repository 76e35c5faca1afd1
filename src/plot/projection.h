// projection.h: machine points to plot points.
//
// Three rotations about the axes X, Y and Z by the view angles A, B and C, then a perspective with
// the eye at a fixed distance:
//
//   y1 = y cos A + z sin A      x1 = x cos B - z1 sin B      x2 = x1 cos C - y1 sin C
//   z1 = z cos A - y sin A      z2 = z1 cos B + x sin B      y2 = y1 cos C + x1 sin C
//
//   px = x2 D / (E + D - z2)    py = -y2 D / (E + D - z2)
//
// D is the distance of the eye and E the offset of the view plane, both in units of the setup and
// fixed, so that a picture of table size is nearly parallel. The plot's Y grows upward.
//
//            y2 ^      . point
//               |    .
//        eye    |  .                     The eye looks along z2 from D; points in the plane z2 = E
//         o- - -+- - - - > z2            keep their size.
//         |<-D->|
//
// There are two forms. The point form stays in double precision (zoom tools, cursor). The line form
// rounds its input and each of y1, z1, x1, z2, x2, y2, px, py to single; every formula in between
// is evaluated in double. All drawn lines go through the line form, so pictures do not depend on
// which routine drew them.
#pragma once

#include <cstddef>

namespace norvik {

inline constexpr double Viewer_Distance = 20000;  // D
inline constexpr double View_Plane_Offset = 0;    // E

// A point of the plot, in the units of the program.
struct Plot_Point {
  double X = 0, Y = 0;
};
struct Plot_Point_Single {
  float X = 0, Y = 0;
};

// Columns of line ends in units of the program, as the display lists hold them.
struct Line_Columns {
  const float *X1, *Y1, *Z1, *X2, *Y2, *Z2;
};
// Columns that receive the projected ends.
struct Projected_Columns {
  float *X1, *Y1, *X2, *Y2;
};

// The mapping for one set of view angles.
class Projection {
 public:
  // Angles in radians.
  Projection(double angle_a, double angle_b, double angle_c);

  // Point form. Raises a division fault for a point beside the eye.
  Plot_Point Project(double x, double y, double z) const;
  // Line form. A point beside the eye gives values that are not finite; such lines are not drawn.
  Plot_Point_Single Project_Single(float x, float y, float z) const;
  // Line form over `count` lines from index `first` of the columns, to index 0 of the result.
  void Project_Lines(const Line_Columns& lines, std::size_t first, std::size_t count,
                     const Projected_Columns& result) const;

  // The same for lines that each start where the one before ends: half the work.
  void Project_Chain(const Line_Columns& lines, std::size_t first, std::size_t count,
                     const Projected_Columns& result) const;

 private:
  void Project_Points(const float* x, const float* y, const float* z, std::size_t count, float* px,
                      float* py) const;

  double Cos_A, Sin_A, Cos_B, Sin_B, Cos_C, Sin_C;
};

}  // namespace norvik
