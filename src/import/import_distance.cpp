#include "import/import_distance.h"

#include "core/rounding.h"
#include "core/setup.h"

#include <limits>

namespace norvik {

namespace {

bool Near(const Nullable& a, const Nullable& b) {
  return a && b && std::abs(To_Single(*a) - To_Single(*b)) < MachineSetup.DXF_Line_Tolerance;
}

bool Meets(const Nullable& x, const Nullable& y, const Nullable& z, const Nullable& px,
           const Nullable& py, const Nullable& pz) {
  return Near(x, px) && Near(y, py) && (Near(z, pz) || (!z && !pz));
}

// Moves from the product, which is at most a few steps away, to the last square that passes.
template <class Passes>
double Last_That_Passes(double square, Passes passes) {
  constexpr double up = std::numeric_limits<double>::infinity();
  while (square > 0 && !passes(square)) square = std::nextafter(square, 0);
  if (square <= 0 && !passes(0.0)) return -1;
  for (double next = std::nextafter(square, up); next < up && passes(next);) {
    square = next;
    next = std::nextafter(square, up);
  }
  return square;
}

}  // namespace

double Largest_Square_Within(double distance) {
  if (std::isinf(distance)) return distance;
  return Last_That_Passes(distance * distance, [&](double s) { return std::sqrt(s) <= distance; });
}

double Largest_Square_Below(double distance) {
  if (std::isinf(distance)) return std::numeric_limits<double>::max();
  return Last_That_Passes(distance * distance, [&](double s) { return std::sqrt(s) < distance; });
}

bool Is_Closer(Nullable cx, Nullable cy, Nullable ax, Nullable ay, Nullable bx, Nullable by) {
  if (!cx || !cy || !ax || !ay || !bx || !by) return false;
  return Is_Closer(To_Single(*cx), To_Single(*cy), To_Single(*ax), To_Single(*ay), To_Single(*bx),
                   To_Single(*by));
}

bool Ends_Connect(Nullable x, Nullable y, Nullable z, Nullable ax, Nullable ay, Nullable az,
                  Nullable bx, Nullable by, Nullable bz) {
  return Meets(x, y, z, ax, ay, az) || Meets(x, y, z, bx, by, bz);
}

}  // namespace norvik
