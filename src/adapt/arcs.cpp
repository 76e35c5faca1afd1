#include "adapt/context.h"
#include "adapt/geometry.h"
#include "core/format.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <utility>

namespace norvik::adapting {

namespace {

constexpr double Full_Turn = 2 * std::numbers::pi;

std::size_t Place_Of(int axis) {
  return static_cast<std::size_t>(axis);
}

struct Arc_Move {
  const Flat_Plane& Plane;
  Flat_Arc Arc;
  Axis_Words Target{};  // of all axes that the line names
  int Turns = 1;        // the last one as far as the end
};

double Tolerance(const Context& context, double radius) {
  return std::max(2 * context.Out.Numbers().Unit(), radius / 2000);
}

bool Radii_Agree(const Context& context, const Flat_Arc& arc) {
  return std::abs(arc.Radius() - arc.End_Radius()) <= Tolerance(context, arc.Radius());
}

Flat_Point Known_Start(const Context& context, const Flat_Plane& plane) {
  const auto x = context.Place.At[Place_Of(plane.First)],
             y = context.Place.At[Place_Of(plane.Second)];
  if (!x || !y) throw Unreadable{"the arc begins at a place that is not known"};
  return {*x, *y};
}

// The centre by I, J and K, from the start or from zero.
Flat_Point Centre_By_Words(const Context& context, const Foreign_Block& block, const Arc_Move& move,
                           bool from_start) {
  const auto coordinate = [&](char letter, int axis, double start) {
    const auto word = block[letter];
    if (!word) return start;
    return *word * context.Place.Factor() + (from_start ? start : context.Place.Shift(axis));
  };
  return {coordinate(move.Plane.First_Word, move.Plane.First, move.Arc.Start.X),
          coordinate(move.Plane.Second_Word, move.Plane.Second, move.Arc.Start.Y)};
}

// Which reading of the centre words the program's arcs speak for.
void Count_Reading(Context& context, const Foreign_Block& block, const Arc_Move& move) {
  if (context.Centres_Stated) return;
  Flat_Arc other = move.Arc;
  if (std::hypot(other.Start.X - other.End.X, other.Start.Y - other.End.Y) < 1e-9) {
    ++context.Full_Circles;
    return;
  }
  other.Centre = Centre_By_Words(context, block, move, !context.Mode.Centres_From_Start);
  const bool fits = Radii_Agree(context, move.Arc), fits_otherwise = Radii_Agree(context, other);
  context.Arcs_That_Fit += fits && !fits_otherwise;
  context.Arcs_That_Fit_Otherwise += fits_otherwise && !fits;
}

void Take_Centre(Context& context, const Foreign_Block& block, Arc_Move& move, bool clockwise) {
  if (block.Has(move.Plane.First_Word) || block.Has(move.Plane.Second_Word)) {
    context.Use("IJK");
    move.Arc.Centre = Centre_By_Words(context, block, move, context.Mode.Centres_From_Start);
    Count_Reading(context, block, move);
    return;
  }
  const auto r = block['R'];
  if (!r) throw Unreadable{"an arc without centre and radius"};
  context.Use("R");
  const double radius = *r * context.Place.Factor();
  const auto centre = Centre_By_Radius(move.Arc.Start, move.Arc.End, radius, clockwise,
                                       Tolerance(context, std::abs(radius)));
  if (!centre)
    throw Unreadable{"the radius is too small for the way from start to end, or they are the same"};
  move.Arc.Centre = *centre;
}

Arc_Move Read_Arc(Context& context, const Foreign_Block& block, bool clockwise) {
  Arc_Move move{Plane_Of(context.Mode.Plane), {}, {}, 1};
  const Axis_Words words = Axis_Words_Of(block);
  context.Use("XYZA");
  move.Arc.Start = move.Arc.End = Known_Start(context, move.Plane);
  for (int axis = 0; axis < Axis_Count; ++axis) {
    if (words[Place_Of(axis)])
      move.Target[Place_Of(axis)] = context.Place.Target(axis, *words[Place_Of(axis)]);
  }
  if (const auto x = move.Target[Place_Of(move.Plane.First)]) move.Arc.End.X = *x;
  if (const auto y = move.Target[Place_Of(move.Plane.Second)]) move.Arc.End.Y = *y;
  Take_Centre(context, block, move, clockwise);
  const Numerals& numbers = context.Out.Numbers();
  if (numbers.Too_Large(2 * move.Arc.Centre.X) || numbers.Too_Large(2 * move.Arc.Centre.Y)) {
    throw Unreadable{"the centre of the arc is too far away"};
  }
  if (move.Arc.Radius() < 1e-9) throw Unreadable{"the arc has no radius"};
  move.Arc.Sweep = Sweep_Of(move.Arc.Start, move.Arc.End, move.Arc.Centre, clockwise);
  if (const auto p = block['P']) {
    context.Use("P");
    if (*p < 1 || *p > 1000) throw Unreadable{"P needs a count of turns from 1 to 1000"};
    move.Turns = static_cast<int>(std::lround(*p));
  }
  return move;
}

// --- Writing -------------------------------------------------------------------------------------

// The axes that do not lie in the plane, part of the way along; absent: they stay.
void Add_Across(const Arc_Move& move, const Axis_Words& from, double part, Axis_Words& target) {
  for (int axis = 0; axis < Axis_Count; ++axis) {
    const std::size_t place = Place_Of(axis);
    if (axis == move.Plane.First || axis == move.Plane.Second || !move.Target[place]) continue;
    const double start = from[place].value_or(*move.Target[place]);
    target[place] = part == 1 ? *move.Target[place] : start + part * (*move.Target[place] - start);
  }
}

void Write_Chords(Context& context, const Arc_Move& move) {
  const double tolerance = context.Options.Chord_Tolerance.value_or(
      std::max(context.Out.Numbers().Unit() / 2, context.Options.Millimetres ? 0.001 : 0.00004));
  Flat_Arc arc = move.Arc;
  arc.Sweep += (arc.Sweep < 0 ? -1 : 1) * (move.Turns - 1) * Full_Turn;
  const int count = Chord_Count(arc.Radius(), arc.Sweep, tolerance);
  const Axis_Words from = context.Place.At;
  for (int n = 1; n <= count; ++n) {
    const double part = static_cast<double>(n) / count;
    const Flat_Point point = n == count ? arc.End : arc.At(part);
    Axis_Words target{};
    target[Place_Of(move.Plane.First)] = point.X;
    target[Place_Of(move.Plane.Second)] = point.Y;
    Add_Across(move, from, part, target);
    Write_Line(context, true, target);
  }
}

// In units of the last digit.
struct Whole_Arc {
  std::int64_t Start[2], End[2], Centre[2];

  double Difference(std::int64_t cx, std::int64_t cy) const {
    const auto radius = [&](const std::int64_t(&point)[2]) {
      return std::hypot(static_cast<double>(point[0] - cx), static_cast<double>(point[1] - cy));
    };
    return std::abs(radius(Start) - radius(End));
  }
  // The one whose distances to start and end agree clearly better than those of the nearest, among
  // its neighbours.
  void Choose_Centre() {
    std::int64_t best[2] = {Centre[0], Centre[1]};
    double least = Difference(best[0], best[1]);
    for (std::int64_t x = Centre[0] - 1; x <= Centre[0] + 1; ++x) {
      for (std::int64_t y = Centre[1] - 1; y <= Centre[1] + 1; ++y) {
        if (Difference(x, y) >= least - 0.25) continue;
        least = Difference(best[0] = x, best[1] = y);
      }
    }
    Centre[0] = best[0];
    Centre[1] = best[1];
  }
  Flat_Point Point(const std::int64_t (&whole)[2]) const {
    return {static_cast<double>(whole[0]), static_cast<double>(whole[1])};
  }
  bool Is_Full() const { return Start[0] == End[0] && Start[1] == End[1]; }
};

Whole_Arc In_Whole_Numbers(const Numerals& numbers, const Flat_Arc& arc) {
  Whole_Arc whole{{numbers.Whole(arc.Start.X), numbers.Whole(arc.Start.Y)},
                  {numbers.Whole(arc.End.X), numbers.Whole(arc.End.Y)},
                  {numbers.Whole(arc.Centre.X), numbers.Whole(arc.Centre.Y)}};
  const double off =
      std::max(std::abs(arc.Centre.X - static_cast<double>(whole.Centre[0]) * numbers.Unit()),
               std::abs(arc.Centre.Y - static_cast<double>(whole.Centre[1]) * numbers.Unit()));
  if (off > numbers.Unit() * 1e-3 && !whole.Is_Full()) whole.Choose_Centre();
  return whole;
}

// Rounding may turn a short arc into the rest of its circle, or into nothing.
bool Stays_An_Arc(const Whole_Arc& whole, double sweep) {
  const Flat_Point centre = whole.Point(whole.Centre);
  if (whole.Start[0] == whole.Centre[0] && whole.Start[1] == whole.Centre[1]) return false;
  const double rounded = whole.Is_Full() ? (sweep < 0 ? -Full_Turn : Full_Turn)
                                         : Sweep_Of(whole.Point(whole.Start),
                                                    whole.Point(whole.End), centre, sweep < 0);
  return std::abs(rounded - sweep) < 1;
}

void Write_Turn(Context& context, const Flat_Arc& arc, const Axis_Words& across) {
  const Whole_Arc whole = In_Whole_Numbers(context.Out.Numbers(), arc);
  Axis_Words target = across;
  target[0] = arc.End.X;
  target[1] = arc.End.Y;
  if (!Stays_An_Arc(whole, arc.Sweep)) return Write_Line(context, true, target);
  Writer& out = context.Out;
  context.Place.Begin_Motion();
  context.Simple.Flush(out);
  out.End_Line();
  out.Code('G', arc.Sweep < 0 ? 2 : 3);
  out.Word_Whole('X', whole.End[0]);
  out.Word_Whole('Y', whole.End[1]);
  if (target[2]) out.Word('Z', *target[2]);
  if (target[3]) out.Word('A', *target[3]);
  const bool from_start = context.Options.Centres_From_Start;
  out.Word_Whole('I', whole.Centre[0] - (from_start ? whole.Start[0] : 0));
  out.Word_Whole('J', whole.Centre[1] - (from_start ? whole.Start[1] : 0));
  if (context.Feed) out.Short_Word('F', *std::exchange(context.Feed, std::nullopt));
  out.End_Line();
  for (std::size_t axis = 0; axis < target.size(); ++axis) {
    if (target[axis]) context.Place.At[axis] = target[axis];
  }
  context.Simple.Begin_At(out, context.Place.At);
}

void Write_Arc(Context& context, const Arc_Move& move) {
  const Axis_Words from = context.Place.At;
  const double all = std::abs(move.Arc.Sweep) + (move.Turns - 1) * Full_Turn;
  for (int turn = 1; turn <= move.Turns; ++turn) {
    Flat_Arc arc = move.Arc;
    double part = 1;
    if (turn < move.Turns) {
      arc.End = arc.Start;
      arc.Sweep = move.Arc.Sweep < 0 ? -Full_Turn : Full_Turn;
      part = turn * Full_Turn / all;
    }
    Axis_Words across{};
    Add_Across(move, from, part, across);
    Write_Turn(context, arc, across);
  }
}

}  // namespace

void Move_Arc(Context& context, const Foreign_Block& block, bool clockwise) {
  if (block.Has_G(530)) throw Unreadable{"G53 with an arc"};
  const Arc_Move move = Read_Arc(context, block, clockwise);
  if (!Radii_Agree(context, move.Arc)) {
    context.Findings.Tell(
        Adapt_Grade::Wrong,
        "the radius is " + Shortest_Text(context.Out.Numbers().Rounded(move.Arc.Radius())) +
            " at the start of the arc and " +
            Shortest_Text(context.Out.Numbers().Rounded(move.Arc.End_Radius())) + " at its end",
        "correct end or centre");
  }
  Take_Feed_Of_Move(context, std::abs(move.Arc.Sweep) * move.Arc.Radius());
  if (context.Mode.Plane == 17) {
    Write_Arc(context, move);
  } else {
    context.Findings.Note_Once(
        "planes", "arcs in G18 and G19 are written as straight lines",
        "this machine walks all arcs in the plane in which the program ends");
    Write_Chords(context, move);
  }
}

}  // namespace norvik::adapting
