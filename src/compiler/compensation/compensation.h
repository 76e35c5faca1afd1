// compensation.h: moves the path aside by the tool's radius where G41 or G42 is on.
//
//   line pass --LineArc records, as programmed--> AddRadiusCompensation --the same, moved--> wire
//   pass
//
// A cutter of radius r whose centre runs on the contour cuts r too deep. With mode 1 (G41) the
// centre runs r to the left of the motion, with mode 2 (G42) r to the right; r is half of
// `Tools.Diameter` of the record's tool. Only the plane of X and Y is compensated; Z and A go
// along.
//
//   outside corner: a connecting arc        inside corner: both trimmed    first and last record:
//   of radius r around the corner           at the crossing                a straight lead
//
//        moved                                 |  :  next                       moved
//     --------.  arc                           |  :                      +----------------
//     --------+ `.                             |  : moved                | lead
//    programmed|  \   moved                    |  '--------              |
//              |  |                            +-----------              +----------------
//              |  |                             programmed               uncompensated point
//
// What the moved path keeps: every point of it is r or more from the programmed contour (within
// 0.0005), on the side of the mode. Where the contour does not leave room for the tool (an arc
// tighter than the tool, an element shorter than what its two corners take, a slot narrower than
// the tool) the record stays at its moved place, so that the path has no gaps, and the error log
// names the line: the pass never cuts into the part without saying so. The lead itself starts on
// the contour, and so cuts there, unless the compensated stretch begins and ends with a move
// towards the contour and away from it.
//
// A stretch is a run of records with one mode and one radius. Each starts with a lead from the
// uncompensated point and ends with a lead to it: at G41/G42 and G40, at a change between the two,
// at a change to a tool of another diameter. Where a stretch closes on itself, its first and last
// record are joined like an inside corner before the leads are attached. A tool of diameter 0
// leaves the geometry as it is.
//
// In the plane: moves shorter than 0.01 in X and Y may vanish in a corner, whose neighbours then
// meet directly; their Z and A motion stays. Moves in Z alone take place where the tool stands.
//
// Units: lengths in units of the setup, angles in radians.
#pragma once

#include "compiler/state/tables.h"

#include <functional>
#include <string>

namespace norvik {

// Replaces the compensated records of `table` by their moved ones, with connecting arcs and leads
// inserted; the others pass unchanged. Records with a coordinate that is absent take 0 for it and
// keep it absent. Progress goes to panel 1. Faults are logged with line and text, and never stop
// the compile.
//
// A program that ends in G18 or G19 is left as programmed, with a line in the error log: arcs are
// walked in the plane of the program's end, so none of them lies in X and Y.
void AddRadiusCompensation(Table<LineArc>& table);

// The same for the check: nothing reaches the operator or the error log, and each trouble goes to
// `tell` instead, with some that a compile passes over in silence because the path is as stated.
enum class Compensation_Trouble {
  Does_Not_Fit,     // an arc, a corner or a slot tighter than the tool
  Fault,            // a record that cannot be compensated
  Wrong_Plane,      // the program ends in G18 or G19
  No_Diameter,      // the tool's diameter is 0
  Lead_Cuts,        // the way to or from the contour, at depth, comes closer to it than the radius
  Changes_Side,     // G41 follows G42, or the other way round, without G40 between
  Leaves_Material,  // the first or last move of the contour is cut short by the way to or from it
  Passed_Over,      // the tool does not reach a move of the contour
};
using Compensation_Teller =
    std::function<void(Compensation_Trouble trouble, const LineArc& record, std::string what)>;
void Check_Radius_Compensation(Table<LineArc>& table, const Compensation_Teller& tell);

}  // namespace norvik
