// geometry.h: straight and round pieces of a path in the plane of X and Y.
//
// Directions are kept as vectors, not as angles: an angle taken by arcsine is off by 0.0004 for a
// horizontal line, and two tangential neighbours would no longer meet in one point when moved.
//
// An arc may end on another radius than it starts with (centre words carry few decimals). Each of
// its ends then has a circle of its own, which passes through that end, and whatever happens at an
// end (tangent, offset, crossing) is computed on that end's circle.
#pragma once

#include <cmath>
#include <optional>

namespace norvik::compensation {

inline constexpr double Pi = 3.14159265358979323846;

struct Point {
  double X = 0, Y = 0;

  friend Point operator+(Point a, Point b) { return {a.X + b.X, a.Y + b.Y}; }
  friend Point operator-(Point a, Point b) { return {a.X - b.X, a.Y - b.Y}; }
  friend Point operator*(Point a, double factor) { return {a.X * factor, a.Y * factor}; }
  bool operator==(const Point&) const = default;
};

inline double Dot(Point a, Point b) {
  return a.X * b.X + a.Y * b.Y;
}
// Above 0: b lies to the left of a.
inline double Cross(Point a, Point b) {
  return a.X * b.Y - a.Y * b.X;
}
inline double Length(Point a) {
  return std::hypot(a.X, a.Y);
}
inline double Distance(Point a, Point b) {
  return Length(b - a);
}
inline Point Left_Of(Point direction) {
  return {-direction.Y, direction.X};
}
// The direction of a vector; (0, 0) has none and stays.
Point Unit(Point vector);

enum class Turn : int { Clockwise = 0, Counter_Clockwise = 1 };  // as `ArcDirection` counts

// One line or arc, from Start to End.
struct Piece {
  Point Start, End;
  bool Is_Arc = false;
  // --- Of an arc ---------------------------------------------------------------------------------
  Turn Direction = Turn::Clockwise;
  Point Centre;
  double Start_Radius = 0, End_Radius = 0;
  double Sweep = 0;  // 0..2*pi, from Start to End in `Direction`; 2*pi: a full circle

  bool Full_Circle() const { return Is_Arc && Start == End; }
};

Piece Line_Piece(Point start, Point end);
// Start and end equal: a full circle.
Piece Arc_Piece(Point start, Point end, Point centre, Turn direction);

// Angle from direction `from` to direction `to` in 0..2*pi, turning the way that is asked for.
double Swept(Point from, Point to, Turn direction);

// Direction of motion at either end; (0, 0) for a line without length.
Point Start_Direction(const Piece& piece);
Point End_Direction(const Piece& piece);
// 1 / radius at an end, above 0 where the path turns left; 0 for a line.
double Start_Curvature(const Piece& piece);
double End_Curvature(const Piece& piece);

// The piece moved by `to_left` to its left (below 0: to its right). An arc's radius may come out
// below 0: its points then lie opposite, seen from the centre, and `collapsed` is set.
Piece Moved_Aside(const Piece& piece, double to_left, bool& collapsed);

// Where the end of `before` and the start of `after` cross, both seen as far as they reach (within
// `reach` beyond their ends): the crossing nearest to `corner`, or absent.
std::optional<Point> Crossing(const Piece& before, const Piece& after, Point corner, double reach);

// Let a piece end or start at a point that lies on it.
void Trim_End(Piece& piece, Point at);
void Trim_Start(Piece& piece, Point at);
// Length of the path.
double Piece_Length(const Piece& piece);

double Distance(const Piece& piece, Point point);
// Least distance between two pieces; 0 where they cross.
double Distance(const Piece& a, const Piece& b);

// Axis-parallel box around a piece.
struct Box {
  Point Low{1e300, 1e300}, High{-1e300, -1e300};

  void Add(Point point);
  void Add(const Box& other);
};
Box Box_Of(const Piece& piece);
// Least distance between two boxes, 0 where they overlap.
double Distance(const Box& a, const Box& b);

}  // namespace norvik::compensation
