// geometry.h: directions, lengths and angles of motion.
//
// Angles are in radians and count from +X towards +Y unless a comment says otherwise.
//
// There are two values of pi, both a little too large. An arc is cut into chords by dividing its
// sweep by a step and taking the whole part, so a change in the tenth digit can add or drop a
// chord. Programs that were proven with these values must keep their chords, so each helper keeps
// the value that it has always had.
#pragma once

#include "core/nullable.h"

namespace norvik {

inline constexpr double Arc_Pi = 3.141592654;
inline constexpr double Motion_Angle_Pi = 3.1415926540001;

// Brings an angle into -2*pi..2*pi by whole turns (single-precision pi).
double NormalizeAngle(double angle);

// Direction of the vector from (x1, y1) to (x0, y0), in 0..2*pi; 0 when `length` is 0. Within 0.001
// below a full turn the turn is taken off. An error is logged and gives 0.
double Motion_Angle(double length, double x0, double y0, double x1, double y1);

// Length of an arc; an angle of 0 counts as 360. A result not above 0 counts as 0.
double Arc_Length_Radians(double angle, double r);

// Distance; both X and both Y must be present, Z counts when both are. Absent when not above 0.
Nullable Line_Length(Nullable x0, Nullable y0, Nullable z0, Nullable x1, Nullable y1, Nullable z1);

// Change of direction in degrees at point 1 on the way from point 0 to point 2, rounded to three
// decimals: 0 straight on, 180 a reversal. Where a leg has no length the cosine of the call before
// is kept.
double Corner_Angle(double x0, double y0, double z0, double x1, double y1, double z1, double x2,
                    double y2, double z2);

// What one call of Corner_Angle leaves to the next; lives as long as the process.
struct Corner_Angle_State {
  double Cosine = 0;
};
extern Corner_Angle_State Corner_Angle_Memory;

// Angle swept from a0 to a1, in 0..2*pi: counter-clockwise for direction 1, clockwise otherwise.
double ArcSweep(double a0, double a1, int direction);

}  // namespace norvik
