#include "compiler/check/arcs.h"

#include "compiler/arcs/records.h"
#include "compiler/check/meaning.h"
#include "core/format.h"
#include "core/geometry.h"
#include "core/setup.h"

#include <algorithm>
#include <cmath>
#include <string>

namespace norvik {

namespace {

// Ends and centres are rounded by the axis format and by whoever wrote the program: two steps of
// the format, or a two-thousandth of the radius, are no mistake.
double Tolerance(double radius) {
  const Number_Pattern pattern(MachineSetup.Axis_Format);
  return std::max({2 * std::pow(10.0, -pattern.Decimals), radius / 2000, 1e-6});
}

struct Arc_Event {
  const Block_Event& Event;
  const LineArc& Row;
  Arc_Plane Plane;
  bool By_Radius = false;

  const Word_Values& Words() const { return Event.Read.Words; }
  double Start(int axis) const { return Row.Start[axis].value_or(0); }
  double End(int axis) const { return Row.End[axis].value_or(0); }
};

bool Centre_By_Radius(const Word_Values& words) {
  return words[word::R].value_or(0) > 0 && !words[word::I] && !words[word::J];
}

void Tell_Sticky_Centre(const Arc_Event& arc, const Report_Finding& report) {
  if (arc.By_Radius) return;
  std::string taken;
  int missing = 0;
  bool matters = false;
  for (const word::Name name : {arc.Plane.First_Word, arc.Plane.Second_Word}) {
    if (arc.Words()[name]) continue;
    const double value = Last_Word(name).value_or(0);
    ++missing;
    matters = matters || value != 0;
    taken += (taken.empty() ? "" : " and ") + (word::Letters[name] + Finding_Number(value));
  }
  if (missing == 2 || (missing == 1 && matters)) {
    report(Check_Kind::Arc_Sticky_Centre, 0, taken + " of an earlier line is taken", "");
  }
}

void Tell_Sticky_End(const Arc_Event& arc, const Report_Finding& report) {
  constexpr std::pair<word::Name, int> ends[] = {{word::X, 1}, {word::Y, 2}, {word::A, 4}};
  for (const auto& [name, axis] : ends) {
    if (arc.Words()[name] || !arc.Row.End[axis] || arc.Row.End[axis] == arc.Row.Start[axis]) {
      continue;
    }
    report(Check_Kind::Arc_Sticky_End, 0,
           std::string("the arc goes to ") + word::Letters[name] +
               Finding_Number(*arc.Row.End[axis]) +
               ", the word read last, not to where the tool is",
           "");
  }
}

void Tell_Radius_Not_Used(const Arc_Event& arc, const Report_Finding& report) {
  const Nullable r = arc.Words()[word::R];
  if (!r) return;
  if (!arc.By_Radius) {
    report(Check_Kind::Arc_Radius_Not_Used, 0,
           *r > 0 ? "I or J stands in the line and wins over R"
                  : "only an R above 0 is used; arcs above a half circle need a centre",
           "");
  } else if (arc.Plane.First != 1 || arc.Plane.Second != 2) {
    report(Check_Kind::Arc_Radius_Not_Used, 0, "R makes a centre in X and Y, whatever the plane",
           "");
  }
}

void Tell_Absolute_Height(const Arc_Event& arc, const Report_Finding& report) {
  if (!arc.Event.Moved_Incremental()) return;
  constexpr word::Name words[] = {word::X, word::Y, word::Z};
  const std::pair<word::Name, int> across[] = {{words[arc.Plane.Third - 1], arc.Plane.Third},
                                               {word::A, 4}};
  for (const auto& [name, axis] : across) {
    const Nullable value = arc.Words()[name];
    if (!value || *value == arc.End(axis) - arc.Start(axis)) continue;
    report(Check_Kind::Arc_Absolute_Height, 0,
           std::string(1, word::Letters[name]) + " is taken as " + Finding_Number(arc.End(axis)) +
               " from zero, not from the tool",
           "");
  }
}

// The centre that the words ask for.
void Take_Meant(const Arc_Event& arc, Pending_Arc& pending) {
  const bool from_start =
      !arc.By_Radius && !arc.Event.Moved_Incremental() && MachineSetup.GC_IJ_Incremental;
  for (int n = 0; n < 2; ++n) {
    pending.Meant[n] = pending.Stored[n] + (from_start ? pending.Start[n] : 0);
  }
}

// The centre that the other reading of I and J gives: from the start instead of from zero, or the
// other way round.
void Take_Other(const Arc_Event& arc, Pending_Arc& pending) {
  const bool from_start = arc.Event.Moved_Incremental() || MachineSetup.GC_IJ_Incremental;
  for (int n = 0; n < 2; ++n) {
    const double shift = arc.By_Radius ? 0 : from_start ? -pending.Start[n] : pending.Start[n];
    pending.Other[n] = pending.Meant[n] + shift;
  }
}

// An arc around one of the two centres.
struct Reading {
  double Start_Radius = 0, End_Radius = 0, Sweep = 0;
  bool Leaves_Box = false;  // of its ends, by more than its chord

  double Error() const { return std::abs(Start_Radius - End_Radius); }
  bool Agrees() const { return Error() <= Tolerance(Start_Radius); }
  bool Goes_Far() const { return Sweep > Arc_Pi * 1.001 || Leaves_Box; }
};

Reading Read_Around(const double (&centre)[2], const double (&start)[2], const double (&end)[2],
                    int direction) {
  Reading reading;
  reading.Start_Radius = std::hypot(start[0] - centre[0], start[1] - centre[1]);
  reading.End_Radius = std::hypot(end[0] - centre[0], end[1] - centre[1]);
  const double a0 = std::atan2(start[1] - centre[1], start[0] - centre[0]);
  const double a1 = std::atan2(end[1] - centre[1], end[0] - centre[0]);
  reading.Sweep = ArcSweep(a0, a1, direction);
  const double chord = std::hypot(end[0] - start[0], end[1] - start[1]);
  // The side of the circle that the arc passes, where it leaves the box of its ends.
  for (int quarter = 0; quarter < 4; ++quarter) {
    const double angle = quarter * Arc_Pi / 2;
    if (ArcSweep(a0, angle, direction) >= reading.Sweep) continue;
    const int axis = quarter % 2;
    const double at = centre[axis] + (quarter < 2 ? 1 : -1) * reading.Start_Radius;
    const double low = std::min(start[axis], end[axis]), high = std::max(start[axis], end[axis]);
    if (at > high + chord || at < low - chord) reading.Leaves_Box = true;
  }
  return reading;
}

// Of two readings that agree with the end: the other one, where this one goes a long way round or
// is a piece of a circle so wide that it is all but straight.
bool Likelier(const Reading& other, const Reading& now) {
  constexpr double wide = 10;
  if (other.Goes_Far() || other.Start_Radius >= now.Start_Radius) return false;
  return now.Goes_Far() ||
         (other.Start_Radius * wide < now.Start_Radius && other.Sweep > wide * now.Sweep);
}

std::string Other_Reading(const Reading& other) {
  return std::string(MachineSetup.GC_IJ_Incremental ? "with GC_IJ_Incremental off"
                                                    : "with GC_IJ_Incremental on") +
         ", this arc has radius " + Finding_Number(other.Start_Radius);
}

// The radii at both ends, and which reading of I and J they agree with.
void Tell_Radii(const Arc_Event& arc, Pending_Arc& pending, const Report_Finding& report) {
  if (arc.By_Radius) return;
  const double end[2] = {arc.End(arc.Plane.First), arc.End(arc.Plane.Second)};
  const int direction = arc.Row.ArcDirection.value_or(0);
  const Reading now = Read_Around(pending.Meant, pending.Start, end, direction);
  const Reading other = Read_Around(pending.Other, pending.Start, end, direction);
  const bool two_readings =
      std::hypot(pending.Start[0], pending.Start[1]) > Tolerance(now.Start_Radius) &&
      !arc.Event.Moved_Incremental();
  const bool full = end[0] == pending.Start[0] && end[1] == pending.Start[1];
  pending.Open = two_readings && (full || (now.Agrees() && other.Agrees()));
  if (full || !two_readings) {
    if (!now.Agrees()) {
      report(Check_Kind::Arc_Radii_Differ, 0,
             "the radius is " + Finding_Number(now.Start_Radius) + " at the start and " +
                 Finding_Number(now.End_Radius) + " at the end",
             "");
    }
    return;
  }
  pending.Fits = now.Agrees() && !other.Agrees();
  pending.Misfits = other.Agrees() && !now.Agrees();
  const std::string hint = other.Agrees() ? "; " + Other_Reading(other) : "";
  if (!now.Agrees()) {
    report(Check_Kind::Arc_Radii_Differ, 0,
           "the radius is " + Finding_Number(now.Start_Radius) + " at the start and " +
               Finding_Number(now.End_Radius) + " at the end" + hint,
           hint.empty() ? "" : "set GC_IJ_Incremental as the program means it");
  } else if (other.Agrees() && Likelier(other, now)) {
    pending.Misfits = true;
    report(Check_Kind::Arc_Other_Centre, 0,
           "the arc walks " + Finding_Number(std::round(now.Sweep * 180 / Arc_Pi)) +
               " degrees with a radius of " + Finding_Number(now.Start_Radius) + hint,
           "");
  }
}

// An arc by R is walked around the one centre to the right of its chord; counter-clockwise that is
// more than a half circle, unless the chord goes through the centre.
void Tell_Long_Way(const Arc_Event& arc, const Report_Finding& report) {
  if (!arc.By_Radius) return;
  const double cx = arc.Row.CenterI.value_or(0), cy = arc.Row.CenterJ.value_or(0);
  const double a0 = std::atan2(arc.Start(2) - cy, arc.Start(1) - cx);
  const double a1 = std::atan2(arc.End(2) - cy, arc.End(1) - cx);
  const double sweep = ArcSweep(a0, a1, arc.Row.ArcDirection.value_or(0));
  constexpr double half_turn = Arc_Pi, tolerance = 0.001;
  if (sweep <= half_turn + tolerance) return;
  report(Check_Kind::Arc_Long_Way_Round, 0,
         "the arc runs " + Finding_Number(std::round(sweep * 180 / half_turn)) +
             " degrees; R always takes the centre to the right of the way",
         "");
}

// A bare line behind an arc is straight unless it has a centre word; the lines behind it go on
// straight.
void Tell_Becomes_Line(const Block_Event& event, const Meant_Modes& modes,
                       const Report_Finding& report) {
  const Word_Values& words = event.Read.Words;
  const bool arc_in_force = modes.Motion == 20 || modes.Motion == 30;
  if (!arc_in_force || !event.Read.ModalMotion || !event.Moved()) return;
  if (words[word::I] || words[word::J] || words[word::K]) return;
  report(Check_Kind::Arc_Becomes_Line, 0,
         words[word::R] ? "without G2 or G3 in the line R is not used: the move is straight"
                        : "without I, J or K the move is straight",
         "");
}

std::optional<Arc_Plane> Plane_Now() {
  return Arc_Plane_Of(Compiler.ModalGroups[modal_group::Plane]);
}

}  // namespace

void Check_Arcs(const Block_Event& event, const Meant_Modes& modes, std::size_t place,
                std::vector<Pending_Arc>& pending, const Report_Finding& report) {
  Tell_Becomes_Line(event, modes, report);
  const auto plane = Plane_Now();
  for (std::size_t n = 0; n < event.Row_Count() && plane; ++n) {
    const LineArc& row = event.Row(n);
    if (row.RecordType != Record_Type::Arc) continue;
    const Arc_Event arc{event, row, *plane, Centre_By_Radius(event.Read.Words)};
    Tell_Sticky_Centre(arc, report);
    Tell_Sticky_End(arc, report);
    Tell_Radius_Not_Used(arc, report);
    Tell_Absolute_Height(arc, report);
    Tell_Long_Way(arc, report);
    Pending_Arc later;
    later.Finding_Place = place;
    later.Plane = Compiler.ModalGroups[modal_group::Plane].value_or(17);
    later.Start[0] = arc.Start(plane->First);
    later.Start[1] = arc.Start(plane->Second);
    later.Stored[0] = row.CenterI.value_or(0);
    later.Stored[1] = row.CenterJ.value_or(0);
    Take_Meant(arc, later);
    Take_Other(arc, later);
    Tell_Radii(arc, later, report);
    pending.push_back(later);
  }
}

void Check_Open_Arcs(const std::vector<Pending_Arc>& arcs,
                     const std::function<void(const Pending_Arc& arc, std::string what)>& report) {
  if (std::ranges::count_if(arcs, &Pending_Arc::Misfits) <=
      std::ranges::count_if(arcs, &Pending_Arc::Fits)) {
    return;
  }
  for (const Pending_Arc& arc : arcs) {
    if (!arc.Open) continue;
    Reading other;
    other.Start_Radius = std::hypot(arc.Start[0] - arc.Other[0], arc.Start[1] - arc.Other[1]);
    report(arc, "the other arcs of the program agree with the other reading of I and J; " +
                    Other_Reading(other));
  }
}

std::optional<std::string> Walked_Elsewhere(const Pending_Arc& arc) {
  const auto plane = Compiler.ModalGroups[modal_group::Plane];
  if (plane != arc.Plane) {
    return "the program ends in G" + std::to_string(plane.value_or(0)) +
           ", and all arcs are walked in that plane";
  }
  if (Compiler.ModalGroups[modal_group::Distance] == 91) {
    return "the program ends in G91, and all arcs are walked by that mode";
  }
  double away = 0;
  for (int n = 0; n < 2; ++n) {
    const double walked = arc.Stored[n] + (MachineSetup.GC_IJ_Incremental ? arc.Start[n] : 0);
    away = std::max(away, std::abs(walked - arc.Meant[n]));
  }
  if (away <= Tolerance(0)) return std::nullopt;
  return "the setup counts centres from the start of the arc; R and G91 store them from zero, so "
         "the centre lies off by the start";
}

}  // namespace norvik
