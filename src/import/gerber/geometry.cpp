#include "import/gerber/geometry.h"

#include "core/rounding.h"

namespace norvik {

namespace {

double Rounded(double value, double scale) {
  constexpr double whole_from = 4503599627370496.0;  // 2^52: no bits for a fraction
  const double scaled = value * scale;
  if (!(std::abs(scaled) < whole_from)) return value;
  return Round_Half_Even(scaled) / scale;
}

}  // namespace

double Round4(double value) {
  return Rounded(value, 1e4);
}
double Round8(double value) {
  return Rounded(value, 1e8);
}
double Round16(double value) {
  return Rounded(value, 1e16);
}

double Add_Angle(double a, double b) {
  constexpr double turn = 2 * Arc_Pi;
  double sum = Rounded(a + b, 1e9);
  if (sum < 0) sum += turn;
  if (sum > turn) sum -= turn;
  return sum == turn ? 0 : sum;
}

}  // namespace norvik
