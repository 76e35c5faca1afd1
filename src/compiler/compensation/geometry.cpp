#include "compiler/compensation/geometry.h"

#include <algorithm>
#include <array>
#include <limits>

namespace norvik::compensation {

namespace {

// Rounding lets an arc of just the tool's radius come out this far below 0.
constexpr double Radius_Rounding = 1e-6;
// Two circles or a line and a circle that miss each other by this much touch.
constexpr double Touch_Rounding = 1e-9;
// A circle below this radius is a point, without directions.
constexpr double Point_Radius = 1e-9;
// A full circle that loses less than this is not cut: with its ends this close to each other it
// would be taken for an arc without length.
constexpr double Circle_Opening = 2e-4;
// Trimming shortens an arc; a sweep that comes out longer by this has gone past the other end.
constexpr double Gone_Past = 0.2;

struct Candidates {
  std::array<Point, 2> At;
  int Count = 0;

  void Add(Point point) { At[static_cast<std::size_t>(Count++)] = point; }
};

struct Circle {
  Point Centre;
  double Radius = 0;
};

Candidates Line_Line(const Piece& a, const Piece& b) {
  Candidates found;
  const Point da = a.End - a.Start, db = b.End - b.Start;
  const double d = Cross(da, db);
  if (d != 0) found.Add(a.Start + da * (Cross(b.Start - a.Start, db) / d));
  return found;
}

// Half of the chord that a circle cuts from a line at this distance from its centre.
std::optional<double> Half_Chord(double radius, double distance) {
  const double inside = radius - std::abs(distance);
  if (inside < -Touch_Rounding * std::max(1.0, radius)) return std::nullopt;
  return std::sqrt(std::max(0.0, inside * (radius + std::abs(distance))));
}

Candidates Line_Circle(const Piece& line, const Circle& circle) {
  Candidates found;
  const Point along = Unit(line.End - line.Start), to_centre = circle.Centre - line.Start;
  const auto half = Half_Chord(circle.Radius, Cross(along, to_centre));
  if (!half || along == Point{}) return found;
  const double foot = Dot(to_centre, along);
  found.Add(line.Start + along * (foot - *half));
  found.Add(line.Start + along * (foot + *half));
  return found;
}

Candidates Circle_Circle(const Circle& a, const Circle& b) {
  Candidates found;
  const double between = Distance(a.Centre, b.Centre);
  if (between < Touch_Rounding) return found;
  const Point along = (b.Centre - a.Centre) * (1 / between);
  const double squares = (a.Radius - b.Radius) * (a.Radius + b.Radius);
  const double foot = (between + squares / between) / 2;
  const auto half = Half_Chord(a.Radius, foot);
  if (!half) return found;
  const Point middle = a.Centre + along * foot;
  found.Add(middle + Left_Of(along) * *half);
  found.Add(middle - Left_Of(along) * *half);
  return found;
}

Circle Start_Circle(const Piece& arc) {
  return {arc.Centre, arc.Start_Radius};
}
Circle End_Circle(const Piece& arc) {
  return {arc.Centre, arc.End_Radius};
}

Candidates Crossings(const Piece& before, const Piece& after) {
  if (!before.Is_Arc && !after.Is_Arc) return Line_Line(before, after);
  if (!before.Is_Arc) return Line_Circle(before, Start_Circle(after));
  if (!after.Is_Arc) return Line_Circle(after, End_Circle(before));
  return Circle_Circle(End_Circle(before), Start_Circle(after));
}

// A turn that is all but complete is one that has not begun.
double Wrapped(double angle, double slack) {
  return angle > 2 * Pi - slack ? angle - 2 * Pi : angle;
}

bool On_Line(const Piece& line, Point at, double reach) {
  const Point along = Unit(line.End - line.Start);
  const double t = Dot(at - line.Start, along);
  return t >= -reach && t <= Distance(line.Start, line.End) + reach;
}

// Whether a point of the circle lies on the arc, `from_end` counted back from its end.
bool On_Arc(const Piece& arc, Point at, double reach, bool from_end) {
  const double radius = from_end ? arc.End_Radius : arc.Start_Radius;
  if (radius < Point_Radius) return false;
  const double slack = std::min(reach / radius, 0.1);
  const Point here = at - arc.Centre;
  const double angle = from_end ? Swept(here, arc.End - arc.Centre, arc.Direction)
                                : Swept(arc.Start - arc.Centre, here, arc.Direction);
  return Wrapped(angle, slack) <= arc.Sweep + slack;
}

bool Reaches(const Piece& piece, Point at, double reach, bool from_end) {
  return piece.Is_Arc ? On_Arc(piece, at, reach, from_end) : On_Line(piece, at, reach);
}

// A crossing that all but coincides with an end is that end.
Point Settled(Point at, const Piece& before, const Piece& after, double reach) {
  const double opening_before = before.Full_Circle() ? Circle_Opening : reach;
  const double opening_after = after.Full_Circle() ? Circle_Opening : reach;
  if (after.Full_Circle() && Distance(at, after.Start) <= opening_after) return after.Start;
  if (Distance(at, before.End) <= opening_before) return before.End;
  if (Distance(at, after.Start) <= opening_after) return after.Start;
  return at;
}

}  // namespace

Point Unit(Point vector) {
  const double length = Length(vector);
  return length > 0 ? vector * (1 / length) : Point{};
}

Piece Line_Piece(Point start, Point end) {
  Piece piece;
  piece.Start = start;
  piece.End = end;
  return piece;
}

Piece Arc_Piece(Point start, Point end, Point centre, Turn direction) {
  Piece piece = Line_Piece(start, end);
  piece.Is_Arc = true;
  piece.Direction = direction;
  piece.Centre = centre;
  piece.Start_Radius = Distance(centre, start);
  piece.End_Radius = Distance(centre, end);
  piece.Sweep = start == end ? 2 * Pi : Swept(start - centre, end - centre, direction);
  return piece;
}

double Swept(Point from, Point to, Turn direction) {
  const double angle = std::atan2(Cross(from, to), Dot(from, to));
  const double turned = direction == Turn::Counter_Clockwise ? angle : -angle;
  return turned < 0 ? turned + 2 * Pi : turned;
}

Point Start_Direction(const Piece& piece) {
  if (!piece.Is_Arc) return Unit(piece.End - piece.Start);
  const Point left = Left_Of(Unit(piece.Start - piece.Centre));
  return piece.Direction == Turn::Counter_Clockwise ? left : left * -1;
}

Point End_Direction(const Piece& piece) {
  if (!piece.Is_Arc) return Unit(piece.End - piece.Start);
  const Point left = Left_Of(Unit(piece.End - piece.Centre));
  return piece.Direction == Turn::Counter_Clockwise ? left : left * -1;
}

namespace {

double Curvature(const Piece& piece, double radius) {
  if (!piece.Is_Arc || radius < Point_Radius) return 0;
  return piece.Direction == Turn::Counter_Clockwise ? 1 / radius : -1 / radius;
}

}  // namespace

double Start_Curvature(const Piece& piece) {
  return Curvature(piece, piece.Start_Radius);
}
double End_Curvature(const Piece& piece) {
  return Curvature(piece, piece.End_Radius);
}

Piece Moved_Aside(const Piece& piece, double to_left, bool& collapsed) {
  collapsed = false;
  Piece moved = piece;
  if (!piece.Is_Arc) {
    const Point aside = Left_Of(Unit(piece.End - piece.Start)) * to_left;
    moved.Start = piece.Start + aside;
    moved.End = piece.End + aside;
    return moved;
  }
  // Left of a counter-clockwise arc lies its centre.
  const double growth = piece.Direction == Turn::Counter_Clockwise ? -to_left : to_left;
  const auto grown = [&](double radius) {
    const double sum = radius + growth;
    if (sum < -Radius_Rounding) collapsed = true;
    return sum < 0 && sum >= -Radius_Rounding ? 0 : sum;
  };
  const double start_radius = grown(piece.Start_Radius);
  const bool start_collapsed = collapsed;
  const double end_radius = grown(piece.End_Radius);
  collapsed = start_collapsed;  // the radius at the start is the arc's radius
  moved.Start = piece.Centre + Unit(piece.Start - piece.Centre) * start_radius;
  moved.End = piece.Full_Circle() ? moved.Start
                                  : piece.Centre + Unit(piece.End - piece.Centre) * end_radius;
  moved.Start_Radius = std::abs(start_radius);
  moved.End_Radius = std::abs(end_radius);
  // Ends that have come this close to each other on a turn of nearly 360 degrees would read as no
  // arc at all.
  if (piece.Sweep > Pi && Distance(moved.Start, moved.End) < Circle_Opening) {
    moved.End = moved.Start;
    moved.Sweep = 2 * Pi;
  }
  return moved;
}

std::optional<Point> Crossing(const Piece& before, const Piece& after, Point corner, double reach) {
  std::optional<Point> nearest;
  const Candidates found = Crossings(before, after);
  for (int k = 0; k < found.Count; ++k) {
    const Point at = found.At[static_cast<std::size_t>(k)];
    if (!Reaches(before, at, reach, true) || !Reaches(after, at, reach, false)) continue;
    if (!nearest || Distance(at, corner) < Distance(*nearest, corner)) nearest = at;
  }
  if (nearest) nearest = Settled(*nearest, before, after, reach);
  return nearest;
}

void Trim_End(Piece& piece, Point at) {
  if (at == piece.End) return;
  piece.End = at;
  if (piece.Is_Arc) {
    const double swept = Swept(piece.Start - piece.Centre, at - piece.Centre, piece.Direction);
    piece.Sweep = swept > piece.Sweep + Gone_Past ? 0 : swept;
  }
}

void Trim_Start(Piece& piece, Point at) {
  if (at == piece.Start) return;
  piece.Start = at;
  if (piece.Is_Arc) {
    const double swept = Swept(at - piece.Centre, piece.End - piece.Centre, piece.Direction);
    piece.Sweep = swept > piece.Sweep + Gone_Past ? 0 : swept;
  }
}

double Piece_Length(const Piece& piece) {
  return piece.Is_Arc ? piece.Start_Radius * piece.Sweep : Distance(piece.Start, piece.End);
}

namespace {

double Point_To_Line(Point start, Point end, Point point) {
  const Point along = end - start;
  const double squared = Dot(along, along);
  const double t = squared > 0 ? std::clamp(Dot(point - start, along) / squared, 0.0, 1.0) : 0;
  return Distance(start + along * t, point);
}

bool Faces(const Piece& arc, Point point) {
  return On_Arc(arc, point, 0, false) || arc.Full_Circle();
}

double Point_To_Arc(const Piece& arc, Point point) {
  if (Faces(arc, point)) return std::abs(Distance(arc.Centre, point) - arc.Start_Radius);
  return std::min(Distance(arc.Start, point), Distance(arc.End, point));
}

// Distance of a line's nearest point to the centre of an arc, where both face each other.
double Line_To_Arc_Middle(const Piece& line, const Piece& arc) {
  const Point along = Unit(line.End - line.Start);
  const Point foot = line.Start + along * Dot(arc.Centre - line.Start, along);
  if (!On_Line(line, foot, 0) || !Faces(arc, foot)) return std::numeric_limits<double>::infinity();
  return std::abs(Distance(foot, arc.Centre) - arc.Start_Radius);
}

// Distance along the line of the centres, where both arcs have a point on it.
double Arc_To_Arc_Middle(const Piece& a, const Piece& b) {
  double least = std::numeric_limits<double>::infinity();
  const Point along = Unit(b.Centre - a.Centre);
  for (const double side_a : {a.Start_Radius, -a.Start_Radius}) {
    const Point on_a = a.Centre + along * side_a;
    if (!Faces(a, on_a)) continue;
    for (const double side_b : {b.Start_Radius, -b.Start_Radius}) {
      const Point on_b = b.Centre + along * side_b;
      if (Faces(b, on_b)) least = std::min(least, Distance(on_a, on_b));
    }
  }
  return least;
}

double Middle_Distance(const Piece& a, const Piece& b) {
  if (a.Is_Arc && b.Is_Arc) return Arc_To_Arc_Middle(a, b);
  if (a.Is_Arc) return Line_To_Arc_Middle(b, a);
  if (b.Is_Arc) return Line_To_Arc_Middle(a, b);
  return std::numeric_limits<double>::infinity();
}

bool Cross_Each_Other(const Piece& a, const Piece& b) {
  const Candidates found = Crossings(a, b);
  for (int k = 0; k < found.Count; ++k) {
    const Point at = found.At[static_cast<std::size_t>(k)];
    if (Reaches(a, at, 0, false) && Reaches(b, at, 0, false)) return true;
  }
  return false;
}

}  // namespace

double Distance(const Piece& piece, Point point) {
  return piece.Is_Arc ? Point_To_Arc(piece, point) : Point_To_Line(piece.Start, piece.End, point);
}

double Distance(const Piece& a, const Piece& b) {
  if (Cross_Each_Other(a, b)) return 0;
  return std::min({Distance(a, b.Start), Distance(a, b.End), Distance(b, a.Start),
                   Distance(b, a.End), Middle_Distance(a, b)});
}

void Box::Add(Point point) {
  Low = {std::min(Low.X, point.X), std::min(Low.Y, point.Y)};
  High = {std::max(High.X, point.X), std::max(High.Y, point.Y)};
}

void Box::Add(const Box& other) {
  Add(other.Low);
  Add(other.High);
}

Box Box_Of(const Piece& piece) {
  Box box;
  box.Add(piece.Start);
  box.Add(piece.End);
  if (!piece.Is_Arc) return box;
  const double radius = std::max(piece.Start_Radius, piece.End_Radius);
  for (const Point side : {Point{1, 0}, Point{0, 1}, Point{-1, 0}, Point{0, -1}}) {
    const Point outermost = piece.Centre + side * radius;
    if (Faces(piece, outermost)) box.Add(outermost);
  }
  return box;
}

double Distance(const Box& a, const Box& b) {
  const double dx = std::max({0.0, a.Low.X - b.High.X, b.Low.X - a.High.X});
  const double dy = std::max({0.0, a.Low.Y - b.High.Y, b.Low.Y - a.High.Y});
  return std::hypot(dx, dy);
}

}  // namespace norvik::compensation
