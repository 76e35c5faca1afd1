#include "core/geometry.h"

#include "core/fault.h"
#include "core/rounding.h"

#include <algorithm>
#include <cmath>

namespace norvik {

Corner_Angle_State Corner_Angle_Memory;

namespace {

constexpr double Single_Pi = 3.1415927F;

void Require_Finite(double value) {
  if (!std::isfinite(value)) {
    throw Fault(Fault_Number::Overflow, "An angle or a length is not finite");
  }
}

// The angle whose cosine is `v`, by way of the arc tangent; -1 < v < 1.
double Arc_Cosine(double v) {
  return std::atan(-v / std::sqrt(1 - v * v)) + Arc_Pi / 2;
}

double Direction_Of(double x0, double y0, double x1, double y1) {
  constexpr double pi = Motion_Angle_Pi;
  if (y0 == y1) return x0 < x1 ? pi : 0;
  if (x0 == x1) return y0 > y1 ? pi / 2 : 1.5 * pi;
  const double q = std::abs(std::atan(std::abs(x0 - x1) / std::abs(y0 - y1)));
  if (y0 > y1) return x0 > x1 ? pi / 2 - q : pi / 2 + q;
  if (x0 < x1) return 1.5 * pi - q;
  const double angle = 1.5 * pi + q;
  return 2 * pi - 0.0001 < angle ? 0 : angle;
}

}  // namespace

double NormalizeAngle(double angle) {
  constexpr double turn = 2 * Single_Pi, many_turns = 1000 * turn;
  Require_Finite(angle);
  if (std::abs(angle) > many_turns) angle = std::fmod(angle, turn);
  while (angle < -turn) angle += turn;
  while (angle > turn) angle -= turn;
  return angle;
}

double Motion_Angle(double length, double x0, double y0, double x1, double y1) {
  double angle = 0;
  Trap("Motion_Angle_Error", [&] {
    if (length == 0) return;
    Require_Finite(x0 + y0 + x1 + y1);
    angle = Direction_Of(x0, y0, x1, y1);
    if (2 * Motion_Angle_Pi - 0.001 < angle) angle -= 2 * Motion_Angle_Pi;
  });
  return angle;
}

double Arc_Length_Radians(double angle, double r) {
  double length = 0;
  Trap("Arc_Length_Radians_Error", [&] {
    if (angle == 0) angle = 360;
    length = (r * 2 * Arc_Pi) / (2 * Arc_Pi / angle);
    Require_Finite(length);
  });
  return length > 0 ? length : 0;
}

Nullable Line_Length(Nullable x0, Nullable y0, Nullable z0, Nullable x1, Nullable y1, Nullable z1) {
  Nullable length;
  Trap("Line_Length_Error", [&] {
    if (!x0 || !y0 || !x1 || !y1) return;
    const double dx = *x1 - *x0, dy = *y1 - *y0, dz = z0 && z1 ? *z1 - *z0 : 0;
    const double distance = std::sqrt(dx * dx + dy * dy + dz * dz);
    Require_Finite(distance);
    if (distance > 0) length = distance;
  });
  return length;
}

double Corner_Angle(double x0, double y0, double z0, double x1, double y1, double z1, double x2,
                    double y2, double z2) {
  constexpr double degrees = 57.29577951, largest_cosine = 0.999999999;
  const double ax = x0 - x1, ay = y0 - y1, az = z0 - z1;
  const double bx = x2 - x1, by = y2 - y1, bz = z2 - z1;
  const double lengths =
      std::sqrt(ax * ax + ay * ay + az * az) * std::sqrt(bx * bx + by * by + bz * bz);
  double& cosine = Corner_Angle_Memory.Cosine;
  if (lengths != 0) cosine = (ax * bx + ay * by + az * bz) / lengths;
  // The interior angle is exact where the cosine is held, so that a straight joint turns by 0.
  if (cosine <= -largest_cosine) return 0;
  if (cosine >= largest_cosine) return 180;
  return Round_Half_Even(std::abs(180 - Arc_Cosine(cosine) * degrees) * 1000) / 1000;
}

double ArcSweep(double a0, double a1, int direction) {
  const double sweep = direction == 1 ? a1 - a0 : a0 - a1;
  return sweep < 0 ? sweep + 2 * Arc_Pi : sweep;
}

}  // namespace norvik
