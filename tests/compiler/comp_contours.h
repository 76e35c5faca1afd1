// Programs of compensated contours, and the judge of what the compensation made of them: an
// independent one, by dense sampling.
#pragma once

#include "compiler/state/tables.h"

#include <random>
#include <string>
#include <vector>

namespace norvik::comp_test {

struct Spot {
  double X = 0, Y = 0;
};

// A contour as a program gives it: from `Start` on, one move after the other.
struct Move {
  Spot To;
  bool Arc = false;
  int Direction = 0;  // 0 clockwise, 1 counter-clockwise
  Spot Centre{};
};
struct Contour {
  Spot Start;
  std::vector<Move> Moves;

  Contour& Line(double x, double y);
  Contour& Arc(double x, double y, double centre_x, double centre_y, int direction);
};
Contour Backwards(const Contour& contour);
Contour Scaled(const Contour& contour, double factor);
// With coordinates and centres as a program writes them, so many digits behind the point.
Contour With_Decimals(const Contour& contour, int decimals);
// A closed contour entered in the middle of its first move: a line and an arc of `radius` lead
// there from the side of the mode, and away from it.
Contour With_Leads(const Contour& contour, int mode, double radius);

// The records of a contour: cutting moves with tool 1 from line 1 on.
Table<LineArc> Program_Of(const Contour& contour, int mode);
LineArc Line_Record(double x0, double y0, double x1, double y1, int mode);

// Generated contours, closed and of one sign of area (counter-clockwise) where told.
using Random = std::mt19937_64;
double Between(Random& random, double low, double high);
Contour Random_Polygon(Random& random, bool with_arcs);  // closed
Contour Random_Walk(Random& random, bool with_arcs);     // open
Contour Rounded_Rectangle(double width, double height, double fillet);
// Closed and wavy, about `size` in radius, in moves of about `step` with four decimals.
Contour Fine_Polyline(Random& random, double size, double step);

// Open and slightly bent: 300 such moves, in which the decimals turn more than the bend does.
Contour Fine_Bend(Random& random, double step);

// Runs the pass with tool 1 of radius `radius` in use; answers what was written to the error log.
struct Outcome {
  Table<LineArc> Moved;
  std::vector<std::string> Log;
  std::vector<int> Highlighted;
};
Outcome Compensate(const Table<LineArc>& program, double radius);

// Least distance of the moved path, leads left out, from the programmed contour; distances above
// `radius` count as that.
double Least_Distance(const Contour& contour, const Table<LineArc>& moved, double radius);
// The largest way between the end of a record and the start of the next.
double Largest_Gap(const Table<LineArc>& moved);
// What is wrong with the records themselves: arcs that end on another radius than they start with,
// or would not be drawn. Empty: nothing.
std::string Faulty_Record(const Table<LineArc>& moved, double radius_error);
// What is wrong with the moved elements: each must run at the radius from its own element, on the
// side of the mode, in its direction. Empty: nothing.
std::string Missing_Element(const Contour& contour, const Table<LineArc>& moved, int mode,
                            double radius);

std::string Text_Of(const Contour& contour);
// "x,y|G1 x,y|G2 x,y (centre)": where the path starts, then each record's end, to four decimals.
std::string Text_Of(const Table<LineArc>& path);

}  // namespace norvik::comp_test
