#include "plot/projection.h"

#include "core/fault.h"

#include <algorithm>
#include <cmath>

namespace norvik {

Projection::Projection(double angle_a, double angle_b, double angle_c)
    : Cos_A(std::cos(angle_a)),
      Sin_A(std::sin(angle_a)),
      Cos_B(std::cos(angle_b)),
      Sin_B(std::sin(angle_b)),
      Cos_C(std::cos(angle_c)),
      Sin_C(std::sin(angle_c)) {}

Plot_Point Projection::Project(double x, double y, double z) const {
  const double y1 = y * Cos_A + z * Sin_A;
  const double z1 = z * Cos_A - y * Sin_A;
  const double x1 = x * Cos_B - z1 * Sin_B;
  const double z2 = z1 * Cos_B + x * Sin_B;
  const double x2 = x1 * Cos_C - y1 * Sin_C;
  const double y2 = y1 * Cos_C + x1 * Sin_C;
  const double depth = View_Plane_Offset + Viewer_Distance - z2;
  if (depth == 0) throw Fault(Fault_Number::Division_By_Zero, "A point lies beside the eye");
  return {x2 * Viewer_Distance / depth, -y2 * Viewer_Distance / depth};
}

// The named values as singles; kept free of branches so that the compiler runs it on several lines
// at once.
Plot_Point_Single Projection::Project_Single(float x, float y, float z) const {
  const auto y1 = static_cast<float>(y * Cos_A + z * Sin_A);
  const auto z1 = static_cast<float>(z * Cos_A - y * Sin_A);
  const auto x1 = static_cast<float>(x * Cos_B - z1 * Sin_B);
  const auto z2 = static_cast<float>(z1 * Cos_B + x * Sin_B);
  const auto x2 = static_cast<float>(x1 * Cos_C - y1 * Sin_C);
  const auto y2 = static_cast<float>(y1 * Cos_C + x1 * Sin_C);
  const double depth = View_Plane_Offset + Viewer_Distance - z2;
  return {static_cast<float>(x2 * Viewer_Distance / depth),
          static_cast<float>(-y2 * Viewer_Distance / depth)};
}

void Projection::Project_Points(const float* x, const float* y, const float* z, std::size_t count,
                                float* __restrict px, float* __restrict py) const {
  // A copy on the stack: the compiler then knows that the results do not overwrite the sines.
  const Projection view = *this;
  for (std::size_t i = 0; i < count; ++i) {
    const Plot_Point_Single point = view.Project_Single(x[i], y[i], z[i]);
    px[i] = point.X;
    py[i] = point.Y;
  }
}

void Projection::Project_Lines(const Line_Columns& lines, std::size_t first, std::size_t count,
                               const Projected_Columns& result) const {
  Project_Points(lines.X1 + first, lines.Y1 + first, lines.Z1 + first, count, result.X1, result.Y1);
  Project_Points(lines.X2 + first, lines.Y2 + first, lines.Z2 + first, count, result.X2, result.Y2);
}

void Projection::Project_Chain(const Line_Columns& lines, std::size_t first, std::size_t count,
                               const Projected_Columns& result) const {
  if (count == 0) return;
  Project_Points(lines.X1 + first, lines.Y1 + first, lines.Z1 + first, 1, result.X1, result.Y1);
  Project_Points(lines.X2 + first, lines.Y2 + first, lines.Z2 + first, count, result.X2, result.Y2);
  std::copy_n(result.X2, count - 1, result.X1 + 1);
  std::copy_n(result.Y2, count - 1, result.Y1 + 1);
}

}  // namespace norvik
