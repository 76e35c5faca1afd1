// geometry.h: arcs in their plane, as controllers see them: from the positive end of the axis
// across, counter-clockwise positive.
//
//   plane   first   second   across   centre words
//   G17     X       Y        Z        I, J
//   G18     Z       X        Y        K, I
//   G19     Y       Z        X        J, K
#pragma once

#include <optional>

namespace norvik::adapting {

struct Flat_Plane {
  int First, Second, Across;  // axes, 0 is X
  char First_Word, Second_Word;
};
const Flat_Plane& Plane_Of(int g_code);  // 17, 18 or 19

struct Flat_Point {
  double X = 0, Y = 0;
};

struct Flat_Arc {
  Flat_Point Start, End, Centre;
  double Sweep = 0;  // radians, above 0 counter-clockwise; of a full circle 2 pi

  double Radius() const;
  double End_Radius() const;
  Flat_Point At(double part) const;  // 0 start, 1 end; the radius goes evenly from one to the other
};

// The angle from start to end around the centre in the arc's direction, radians: in (0, 2 pi], with
// the sign of the direction.
double Sweep_Of(Flat_Point start, Flat_Point end, Flat_Point centre, bool clockwise);
// The centre of an arc by its radius; below 0 the arc is the longer one. Absent where the radius is
// too small by more than `tolerance` or start and end are the same.
std::optional<Flat_Point> Centre_By_Radius(Flat_Point start, Flat_Point end, double radius,
                                           bool clockwise, double tolerance);
// Into how many chords of the same angle an arc is cut to stay within `tolerance`.
int Chord_Count(double radius, double sweep, double tolerance);

}  // namespace norvik::adapting
