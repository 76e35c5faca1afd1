#include "import/pipeline/placing.h"

#include "core/general_text.h"
#include "import/pipeline/report.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <string>
#include <utility>

namespace norvik {

Import_Placing_State Import_Placing;

namespace {

constexpr double Turn = 2 * std::numbers::pi;

// Quarter turns exactly, so that what was upright stays so.
double Cosine(double degrees) {
  const double quarter = std::fmod(std::fmod(degrees, 360) + 360, 360) / 90;
  if (quarter == 0) return 1;
  if (quarter == 2) return -1;
  if (quarter == 1 || quarter == 3) return 0;
  return std::cos(degrees / 360 * Turn);
}

std::string Words_About_Placing() {
  const Import_Placing_State& placing = Import_Placing;
  std::string words;
  const auto add = [&](const std::string& part) { words += (words.empty() ? "" : ", ") + part; };
  if (placing.Scale != 1) add("scaled by " + General_Text(placing.Scale));
  if (placing.Mirror) add("mirrored");
  if (placing.Rotate != 0) add("turned by " + General_Text(placing.Rotate) + " degrees");
  if (placing.Origin == Placed_Origin::Lower_Left) add("its lower left corner moved to X0 Y0");
  if (placing.Origin == Placed_Origin::Centre) add("its centre moved to X0 Y0");
  return words;
}

}  // namespace

bool Is_Placed() {
  const Import_Placing_State& placing = Import_Placing;
  return placing.Origin != Placed_Origin::As_Is || placing.Scale != 1 || placing.Rotate != 0 ||
         placing.Mirror;
}

void Drawing_Extent::Take(double x, double y) {
  Left = std::min(Left.value_or(x), x);
  Right = std::max(Right.value_or(x), x);
  Lower = std::min(Lower.value_or(y), y);
  Upper = std::max(Upper.value_or(y), y);
}

void Drawing_Extent::Take_Arc(bool clockwise, Placed_Point from, Placed_Point to,
                              Placed_Point centre) {
  Take(from.X, from.Y);
  Take(to.X, to.Y);
  if (clockwise) std::swap(from, to);
  const double radius = std::hypot(from.X - centre.X, from.Y - centre.Y);
  const double begin = std::atan2(from.Y - centre.Y, from.X - centre.X);
  double sweep = std::atan2(to.Y - centre.Y, to.X - centre.X) - begin;
  if (sweep <= 1e-9) sweep += Turn;
  for (int quarter = -2; quarter <= 6; ++quarter) {
    const double angle = quarter * Turn / 4;
    if (angle <= begin || angle >= begin + sweep) continue;
    Take(centre.X + radius * std::cos(angle), centre.Y + radius * std::sin(angle));
  }
}

Placing::Placing(const std::function<void(Drawing_Extent& extent, const Placing& turned)>& measure)
    : Cos(Cosine(Import_Placing.Rotate)), Sin(Cosine(Import_Placing.Rotate - 90)) {
  if (Import_Placing.Origin != Placed_Origin::As_Is) {
    Drawing_Extent extent;
    measure(extent, *this);
    if (extent.Left) {
      const bool corner = Import_Placing.Origin == Placed_Origin::Lower_Left;
      Move_X = corner ? -*extent.Left : -(*extent.Left + *extent.Right) / 2;
      Move_Y = corner ? -*extent.Lower : -(*extent.Lower + *extent.Upper) / 2;
    }
  }
  Report_Note("The drawing was " + Words_About_Placing() + ".");
}

Placed_Point Placing::operator()(double x, double y) const {
  const double sx = x * Import_Placing.Scale * (Import_Placing.Mirror ? -1 : 1);
  const double sy = y * Import_Placing.Scale;
  return {sx * Cos - sy * Sin + Move_X, sx * Sin + sy * Cos + Move_Y};
}

void Placing::Place(ImportLine& line) const {
  const auto place = [this](Nullable& x, Nullable& y) {
    if (!x || !y) return;
    const Placed_Point at = (*this)(*x, *y);
    x = at.X;
    y = at.Y;
  };
  place(line.X1, line.Y1);
  place(line.X2, line.Y2);
  place(line.I, line.J);
  if (Mirrors()) line.Type = Reversed_Type(line.Type);
}

}  // namespace norvik
