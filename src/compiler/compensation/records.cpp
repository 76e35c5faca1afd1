#include "compiler/compensation/records.h"

#include "core/fault.h"
#include "core/setup.h"

#include <string>

namespace norvik::compensation {

namespace {

constexpr int X = 1, Y = 2;
// The wire pass draws no arc whose ends are closer to each other.
constexpr double Least_Chord = 1e-4;
// An arc around its own start has no directions.
constexpr double Least_Radius = 1e-9;
constexpr double Largest_Coordinate = 1e9;

using Axes = Indexed<Nullable, 1, 6>;

Point In_Plane(const Axes& at) {
  return {at[X].value_or(0), at[Y].value_or(0)};
}

void Put(Axes& axes, Point at) {
  if (axes[X]) axes[X] = at.X;
  if (axes[Y]) axes[Y] = at.Y;
}

Point Centre_Of(const LineArc& record) {
  const Point words{record.CenterI.value_or(0), record.CenterJ.value_or(0)};
  return MachineSetup.GC_IJ_Incremental ? words + Start_Of(record) : words;
}

void Require_Reachable(Point point) {
  // Written so that a value that is no number fails too.
  if (std::abs(point.X) <= Largest_Coordinate && std::abs(point.Y) <= Largest_Coordinate) return;
  throw Fault(Fault_Number::Overflow, "A coordinate is too large: X" + std::to_string(point.X) +
                                          " Y" + std::to_string(point.Y));
}

void Make_Line(LineArc& record) {
  record.RecordType = Record_Type::Line;
  record.CenterI.reset();
  record.CenterJ.reset();
  record.ArcDirection.reset();
}

void Make_Arc(LineArc& record, const Piece& arc) {
  const Point words = MachineSetup.GC_IJ_Incremental ? arc.Centre - Start_Of(record) : arc.Centre;
  record.RecordType = Record_Type::Arc;
  record.CenterI = words.X;
  record.CenterJ = words.Y;
  record.ArcDirection = static_cast<std::int16_t>(arc.Direction);
}

bool Would_Be_Drawn(const Piece& arc) {
  if (arc.Start_Radius < Least_Chord) return false;
  return arc.Sweep > Pi || Distance(arc.Start, arc.End) > Least_Chord;
}

LineArc Inserted(LineArc record, const Axes& others, const Piece& shape) {
  record.Start = record.End = others;
  for (const int axis : {X, Y}) record.Start[axis] = record.End[axis] = 0.0;
  record.Out.Fill(Output_Unchanged);
  record.PauseTime = 0;
  record.WaitInput.reset();
  Put(record.Start, shape.Start);
  Put(record.End, shape.End);
  shape.Is_Arc ? Make_Arc(record, shape) : Make_Line(record);
  return record;
}

}  // namespace

Point Start_Of(const LineArc& record) {
  return In_Plane(record.Start);
}
Point End_Of(const LineArc& record) {
  return In_Plane(record.End);
}
bool Start_Known(const LineArc& record) {
  return record.Start[X] && record.Start[Y];
}
bool End_Known(const LineArc& record) {
  return record.End[X] && record.End[Y];
}

std::optional<Piece> Shape_Of(const LineArc& record) {
  const Point start = Start_Of(record), end = End_Of(record);
  Require_Reachable(start);
  Require_Reachable(end);
  if (record.RecordType == Record_Type::Arc) {
    const Point centre = Centre_Of(record);
    Require_Reachable(centre);
    const Turn direction = record.ArcDirection == 1 ? Turn::Counter_Clockwise : Turn::Clockwise;
    const bool closed = start == end;
    if (Distance(centre, start) > Least_Radius && (closed || Distance(start, end) > Least_Chord)) {
      return Arc_Piece(start, end, centre, direction);
    }
  }
  if (start == end) return std::nullopt;
  return Line_Piece(start, end);
}

void Set_Shape(LineArc& record, const Piece& shape) {
  const bool moves_centre =
      record.Start[X] != Nullable(shape.Start.X) || record.Start[Y] != Nullable(shape.Start.Y);
  Put(record.Start, shape.Start);
  Put(record.End, shape.End);
  if (!shape.Is_Arc || !Would_Be_Drawn(shape)) {
    Make_Line(record);
  } else if (moves_centre && MachineSetup.GC_IJ_Incremental) {
    Make_Arc(record, shape);
  }
}

void Stand_At(LineArc& record, Point at) {
  Put(record.Start, at);
  Put(record.End, at);
  Make_Line(record);
}

LineArc Inserted_After(const LineArc& record, const Piece& shape) {
  return Inserted(record, record.End, shape);
}

LineArc Inserted_Before(const LineArc& record, const Piece& shape) {
  return Inserted(record, record.Start, shape);
}

}  // namespace norvik::compensation
