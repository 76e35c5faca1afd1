// simplify.h: straight runs become one line, and runs along a circle one arc, within a tolerance.
//
//   G1 X1 / G1 X2 / G1 X3     ->  G1 X3
//   G1 ... 40 chords          ->  G3 X Y I J
//
// Only cutting moves of X, Y and Z with the same feed and nothing between them are joined. Every
// point that goes lies within the tolerance of what takes its place.
#pragma once

#include "adapt/coordinates.h"
#include "adapt/writer.h"

#include <array>
#include <cstdint>
#include <vector>

namespace norvik::adapting {

class Simplifier {
 public:
  Simplifier(const Adapt_Options& options, const Coordinates& place);

  // True: the move is kept back. It ends at `place.At`.
  bool Takes(Writer& out, const Axis_Words& target);
  // A move was written; others may follow from its end.
  void Begin_At(Writer& out, const std::array<std::optional<double>, Axis_Count>& at);
  // Writes what is kept back.
  void Flush(Writer& out);

 private:
  struct Point {
    double X, Y, Z;
    std::int32_t Line;  // of the old program
  };
  std::size_t Straight_Reach(std::size_t from) const;
  struct Fitted_Arc {
    std::size_t To = 0;
    double X = 0, Y = 0;  // centre
    bool Clockwise = false;
  };
  Fitted_Arc Arc_Reach(std::size_t from) const;
  bool Fits_Circle(std::size_t from, std::size_t to, Fitted_Arc& arc) const;
  void Write(Writer& out, std::size_t to, const Point& from, const Fitted_Arc* arc) const;

  const bool On, Centres_From_Start;
  const double Tolerance;
  const Coordinates& Place;
  bool Ready = false;
  std::vector<Point> Points;  // the first one is where the tool stands
};

}  // namespace norvik::adapting
