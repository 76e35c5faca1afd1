#include "adapt/simplify.h"

#include "adapt/geometry.h"

#include <algorithm>
#include <cmath>

namespace norvik::adapting {

namespace {

// Runs longer than this are cut, so that the work for each point stays bounded.
constexpr std::size_t Longest_Run = 1000;
constexpr std::size_t Least_Of_Arc = 6;
constexpr double Largest_Radius = 1e4;

double Distance_To_Segment(const double (&p)[3], const double (&a)[3], const double (&b)[3]) {
  double length = 0, along = 0;
  for (int n = 0; n < 3; ++n) {
    length += (b[n] - a[n]) * (b[n] - a[n]);
    along += (p[n] - a[n]) * (b[n] - a[n]);
  }
  const double part = length > 0 ? std::clamp(along / length, 0.0, 1.0) : 0;
  double square = 0;
  for (int n = 0; n < 3; ++n) {
    const double off = a[n] + part * (b[n] - a[n]) - p[n];
    square += off * off;
  }
  return std::sqrt(square);
}

}  // namespace

Simplifier::Simplifier(const Adapt_Options& options, const Coordinates& place)
    : On(options.Simplify),
      Centres_From_Start(options.Centres_From_Start),
      Tolerance(options.Tolerance.value_or(std::pow(10.0, -options.Decimals))),
      Place(place) {}

void Simplifier::Begin_At(Writer& out, const std::array<std::optional<double>, Axis_Count>& at) {
  if (!On) return;
  Points.clear();
  Ready = at[0] && at[1] && at[2];
  if (Ready) Points.push_back({*at[0], *at[1], *at[2], out.Old_Line_Now()});
}

bool Simplifier::Takes(Writer& out, const Axis_Words& target) {
  if (!On || !Ready || target[3] || out.Comment_Waits()) return false;
  if (Points.size() > Longest_Run) Flush(out);
  Points.push_back({*Place.At[0], *Place.At[1], *Place.At[2], out.Old_Line_Now()});
  return true;
}

// --- Straight runs -------------------------------------------------------------------------------

// The last point that one line from `from` reaches with all between within the tolerance.
std::size_t Simplifier::Straight_Reach(std::size_t from) const {
  const auto fits = [&](std::size_t to) {
    const double a[] = {Points[from].X, Points[from].Y, Points[from].Z};
    const double b[] = {Points[to].X, Points[to].Y, Points[to].Z};
    double last = 0;
    for (std::size_t n = from + 1; n < to; ++n) {
      const double p[] = {Points[n].X, Points[n].Y, Points[n].Z};
      if (Distance_To_Segment(p, a, b) > Tolerance) return false;
      // A run that turns back is no straight run.
      const double way = std::hypot(p[0] - a[0], p[1] - a[1], p[2] - a[2]);
      if (way < last) return false;
      last = way;
    }
    return true;
  };
  std::size_t to = from + 1;
  while (to + 1 < Points.size() && fits(to + 1)) ++to;
  return to;
}

// --- Arcs ----------------------------------------------------------------------------------------

bool Simplifier::Fits_Circle(std::size_t from, std::size_t to, Fitted_Arc& arc) const {
  const Point &a = Points[from], &m = Points[(from + to) / 2], &b = Points[to];
  const double d = 2 * ((m.X - a.X) * (b.Y - a.Y) - (m.Y - a.Y) * (b.X - a.X));
  if (std::abs(d) < 1e-12) return false;
  const double m2 = (m.X - a.X) * (m.X - a.X) + (m.Y - a.Y) * (m.Y - a.Y);
  const double b2 = (b.X - a.X) * (b.X - a.X) + (b.Y - a.Y) * (b.Y - a.Y);
  arc = {to, a.X + ((b.Y - a.Y) * m2 - (m.Y - a.Y) * b2) / d,
         a.Y + ((m.X - a.X) * b2 - (b.X - a.X) * m2) / d, d < 0};
  const double r = std::hypot(a.X - arc.X, a.Y - arc.Y);
  if (r > Largest_Radius || r < 4 * Tolerance) return false;
  double turned = 0;
  for (std::size_t n = from + 1; n <= to; ++n) {
    const Point &p = Points[n], &before = Points[n - 1];
    if (p.Z != a.Z || std::abs(std::hypot(p.X - arc.X, p.Y - arc.Y) - r) > Tolerance / 2)
      return false;
    // The middle of the chord must not be far from the arc either, and all go the same way round.
    const double chord = std::hypot(p.X - before.X, p.Y - before.Y);
    if (r - std::sqrt(std::max(0.0, r * r - chord * chord / 4)) > Tolerance) return false;
    const double sweep = Sweep_Of({before.X, before.Y}, {p.X, p.Y}, {arc.X, arc.Y}, arc.Clockwise);
    if (std::abs(sweep) > 1) return false;
    turned += std::abs(sweep);
  }
  return turned < 6;
}

Simplifier::Fitted_Arc Simplifier::Arc_Reach(std::size_t from) const {
  Fitted_Arc best;
  std::size_t step = Least_Of_Arc;
  for (std::size_t to = from + step; to < Points.size(); to += step) {
    Fitted_Arc arc;
    if (!Fits_Circle(from, to, arc)) break;
    best = arc;
  }
  if (best.To == 0) return best;
  for (std::size_t to = best.To + 1; to < Points.size(); ++to) {
    Fitted_Arc arc;
    if (!Fits_Circle(from, to, arc)) break;
    best = arc;
  }
  return best;
}

// --- Writing -------------------------------------------------------------------------------------

void Simplifier::Write(Writer& out, std::size_t to, const Point& from,
                       const Fitted_Arc* arc) const {
  const Point& end = Points[to];
  out.Set_Old_Line(end.Line);
  out.Code('G', arc ? (arc->Clockwise ? 2 : 3) : 1);
  if (arc || end.X != from.X) out.Word('X', end.X);
  if (arc || end.Y != from.Y) out.Word('Y', end.Y);
  if (end.Z != from.Z) out.Word('Z', end.Z);
  if (!arc && end.X == from.X && end.Y == from.Y && end.Z == from.Z) out.Word('X', end.X);
  if (arc) {
    out.Word('I', arc->X - (Centres_From_Start ? out.Numbers().Rounded(from.X) : 0));
    out.Word('J', arc->Y - (Centres_From_Start ? out.Numbers().Rounded(from.Y) : 0));
  }
  out.End_Line();
}

void Simplifier::Flush(Writer& out) {
  if (!On || Points.size() < 2) return;
  const std::int32_t line = out.Old_Line_Now();
  std::size_t at = 0;
  while (at + 1 < Points.size()) {
    const std::size_t straight = Straight_Reach(at);
    const Fitted_Arc arc = Arc_Reach(at);
    const bool takes_arc = arc.To > straight + 2;
    const std::size_t to = takes_arc ? arc.To : straight;
    Write(out, to, Points[at], takes_arc ? &arc : nullptr);
    at = to;
  }
  out.Set_Old_Line(line);
  const Point last = Points.back();
  Points.assign(1, last);
}

}  // namespace norvik::adapting
