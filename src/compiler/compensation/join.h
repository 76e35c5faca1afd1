// join.h: the moved path of one compensated stretch.
//
// Works on the elements of a stretch: its records that move in the plane, as programmed and as
// moved, in their order. Moved neighbours no longer meet at one point; each joint is one of three:
//
//   smooth    the ends meet, or all but meet: they are set to one point
//   outside   the path turns away from the tool: a connecting arc around the corner
//   inside    the path turns towards the tool: both elements end where they cross
//
// At an inside corner the crossing must lie on both moved elements as far as the joint before has
// left them; so an element that its two corners would eat up, or turn around, is found here. Where
// neighbours do not cross, elements next to the corner are passed over, with the arcs around them,
// nearest first, until two pieces do: those shorter than `Short_Move`, and those that the tool cuts
// within `Tolerance` from the crossing all the same (in a fine polyline the decimals of the points
// make many such corners). Where nothing serves the elements stay at their moved place, an arc
// around the corner closes the gap, and the corner is reported: this arc turns the wrong way, into
// the part.
#pragma once

#include "compiler/compensation/geometry.h"

#include <cstddef>
#include <functional>
#include <vector>

namespace norvik::compensation {

// A move shorter than this in X and in Y is passed over when the next element is looked for.
inline constexpr double Short_Move = 0.01;
// How far the path may come closer to the contour than the tool's radius.
inline constexpr double Tolerance = 0.0005;
// Programmed points that are this close to each other are one point.
inline constexpr double Same_Point = 1e-6;

struct Element {
  Piece Programmed, Moved;
  std::size_t Row = 0;     // index of its record
  bool Cuts = true;        // a cutting move; a travel move cannot harm the contour
  bool Too_Tight = false;  // an arc smaller than the tool: stays at its moved place as it is
  bool Reported = false;   // the operator has been told of this record
};

// One piece of the finished path.
struct Path_Piece {
  Piece Shape;
  std::size_t Element = 0;  // whose it is; of a connecting arc: the element before the corner
  bool Connects = false;    // a connecting arc
  bool Wrong_Way = false;   // a connecting arc at an inside corner, where nothing crosses
};

// |dx| or |dy| of `Short_Move` or more, or an arc that returns to its start.
bool Moves_Far(const Piece& programmed);
struct Join_Reports {
  // Nothing crosses at the inside corner at the end of this element. Called at the end, for the
  // corners that are still on the path then.
  std::function<void(Element&)> No_Crossing = [](Element&) {};
  // Called for each element as it is joined.
  std::function<void(const Element&)> Progress = [](const Element&) {};
};

// Joins the elements of a stretch, whose tool runs `to_left` of the contour (below 0: to its
// right). Pieces of the result follow each other without gaps; elements that were passed over have
// none. Where the stretch closes on itself at an inside corner, its two ends are trimmed too.
std::vector<Path_Piece> Radius_Join(std::vector<Element>& elements, double to_left,
                                    const Join_Reports& reports);

}  // namespace norvik::compensation
