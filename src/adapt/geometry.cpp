#include "adapt/geometry.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace norvik::adapting {

namespace {

constexpr double Full_Turn = 2 * std::numbers::pi;
constexpr Flat_Plane Planes[] = {{0, 1, 2, 'I', 'J'}, {2, 0, 1, 'K', 'I'}, {1, 2, 0, 'J', 'K'}};

double Distance(Flat_Point a, Flat_Point b) {
  return std::hypot(a.X - b.X, a.Y - b.Y);
}

}  // namespace

const Flat_Plane& Plane_Of(int g_code) {
  return Planes[g_code - 17];
}

double Flat_Arc::Radius() const {
  return Distance(Start, Centre);
}
double Flat_Arc::End_Radius() const {
  return Distance(End, Centre);
}

Flat_Point Flat_Arc::At(double part) const {
  const double angle = std::atan2(Start.Y - Centre.Y, Start.X - Centre.X) + part * Sweep;
  const double radius = Radius() + part * (End_Radius() - Radius());
  return {Centre.X + radius * std::cos(angle), Centre.Y + radius * std::sin(angle)};
}

double Sweep_Of(Flat_Point start, Flat_Point end, Flat_Point centre, bool clockwise) {
  const double from = std::atan2(start.Y - centre.Y, start.X - centre.X);
  const double to = std::atan2(end.Y - centre.Y, end.X - centre.X);
  double sweep = clockwise ? from - to : to - from;
  // Start and end that are the same but for rounding are a full circle.
  if (Distance(start, end) < 1e-9) sweep = 0;
  while (sweep <= 0) sweep += Full_Turn;
  while (sweep > Full_Turn) sweep -= Full_Turn;
  return clockwise ? -sweep : sweep;
}

std::optional<Flat_Point> Centre_By_Radius(Flat_Point start, Flat_Point end, double radius,
                                           bool clockwise, double tolerance) {
  const double dx = end.X - start.X, dy = end.Y - start.Y, d = std::hypot(dx, dy);
  if (d < 1e-9) return std::nullopt;
  const double r = std::abs(radius);
  if (r < d / 2 - tolerance) return std::nullopt;
  const double h = r <= d / 2 ? 0 : std::sqrt(r * r - d * d / 4);
  // To the left of the way for a counter-clockwise arc below a half circle.
  const double side = clockwise == (radius > 0) ? -h / d : h / d;
  return Flat_Point{(start.X + end.X) / 2 - side * dy, (start.Y + end.Y) / 2 + side * dx};
}

int Chord_Count(double radius, double sweep, double tolerance) {
  constexpr double least = 3, most = 10'000;
  const double flat = 1 - tolerance / std::max(radius, tolerance);
  const double angle = 2 * std::acos(std::clamp(flat, -1.0, 1.0));
  if (!(angle > 0)) return static_cast<int>(most);
  return static_cast<int>(std::clamp(std::ceil(std::abs(sweep) / angle), least, most));
}

}  // namespace norvik::adapting
