// records.h: between the records of a table and the pieces of a path.
//
// A record's plane coordinates are its X and Y; an absent one counts as 0 and stays absent. The
// centre words of an arc are its centre, or with `GC_IJ_Incremental` the way from its start to its
// centre: whoever moves the start must express the centre anew.
//
// Inserted records (connecting arcs and leads) carry line, text, feed, tool and mode of the record
// they belong to, switch no output and hold Z and A.
#pragma once

#include "compiler/compensation/geometry.h"
#include "compiler/state/tables.h"

#include <optional>

namespace norvik::compensation {

// Where a record begins and ends in the plane.
Point Start_Of(const LineArc& record);
Point End_Of(const LineArc& record);
// Both coordinates of the point are present.
bool Start_Known(const LineArc& record);
bool End_Known(const LineArc& record);

// The way of a record in the plane; absent where it does not move in it. An arc around its own
// start, and one whose ends lie so close that it would not be drawn, is a line. A coordinate beyond
// a thousand million raises an overflow fault.
std::optional<Piece> Shape_Of(const LineArc& record);

// Gives a record another way in the plane; an arc of which nothing is left becomes a line.
void Set_Shape(LineArc& record, const Piece& shape);
// Makes a record stand still at a point of the plane; its other axes move as before.
void Stand_At(LineArc& record, Point at);

// A record inserted at the end of `record`, or at its start.
LineArc Inserted_After(const LineArc& record, const Piece& shape);
LineArc Inserted_Before(const LineArc& record, const Piece& shape);

}  // namespace norvik::compensation
