#include "compiler/arcs/chords.h"

#include "compiler/arcs/planes.h"
#include "compiler/state/compile_losses.h"
#include "compiler/state/compiler_state.h"
#include "compiler/state/wire_table.h"
#include "core/fault.h"
#include "core/geometry.h"
#include "core/rounding.h"
#include "core/setup.h"
#include "platform/platform.h"

#include <algorithm>
#include <cmath>

namespace norvik {

namespace {

constexpr double Full_Turn = 2 * Arc_Pi;
constexpr double Length_Floor = 0.0001, Span_Floor = 0.0001, Same_Point = 0.00000001;

bool Incremental() {
  return Compiler.ModalGroups[modal_group::Distance] == 91;
}

// The arc in its plane. x and y are the plane's axes, z the one across.
struct Plane_Arc {
  Arc_Plane Axes{};
  double x0 = 0, y0 = 0, x1 = 0, y1 = 0, cx = 0, cy = 0;
  Nullable z0, z1, A0, A1;
  bool Clockwise = false;
  double r = 0;
};

struct Chord_Walk {
  double Angle = 0, Step = 0, Count = 0;
  std::int32_t Segments = 0;  // N, which the guard counts against
  double dz = 0, dA = 0;
};

Plane_Arc In_Plane(const Arc_Plane& axes, const Indexed<Nullable, 1, 4>& start,
                   const Indexed<Nullable, 1, 4>& end, Nullable first, Nullable second,
                   std::optional<std::int16_t> direction) {
  if (!direction) throw Fault(Fault_Number::Type_Mismatch, "The arc has no direction");
  Plane_Arc arc;
  arc.Axes = axes;
  arc.x0 = start[axes.First].value();
  arc.y0 = start[axes.Second].value();
  arc.x1 = end[axes.First].value();
  arc.y1 = end[axes.Second].value();
  arc.z0 = start[axes.Third];
  arc.z1 = end[axes.Third];
  arc.A0 = start[4];
  arc.A1 = end[4];
  arc.Clockwise = *direction == 0;
  double i = first.value(), j = second.value();
  if (Incremental()) {
    i = arc.x0 + i;
    j = arc.y0 + j;
    arc.x1 = arc.x1 + arc.x0;
    arc.y1 = arc.y1 + arc.y0;
  }
  arc.cx = MachineSetup.GC_IJ_Incremental ? i + arc.x0 : i;
  arc.cy = MachineSetup.GC_IJ_Incremental ? j + arc.y0 : j;
  const double dx = std::abs(arc.cx - arc.x0), dy = std::abs(arc.cy - arc.y0);
  arc.r = std::sqrt(dx * dx + dy * dy);
  return arc;
}

// Chords of a full turn or any part of it.
std::int32_t Segments_Of(double r) {
  double resolution = MachineSetup.Arc_Resolution;
  if (MachineSetup.UnitsofMeasurement == 1) resolution = Round_Half_Even(resolution / 32);
  std::int32_t segments = To_Int32(r * resolution);
  if (MachineSetup.Arc_Radius_Ignore == 1) segments = MachineSetup.Arc_Resolution;
  segments = std::max(segments, 3);
  return std::min(segments, std::int32_t{MachineSetup.Arc_Max_Segments});
}

double Span_Of(double a0, double a1, bool clockwise) {
  double span = 0;
  if (a0 == a1) {
    span = Full_Turn;
  } else if (clockwise) {
    span = a0 > a1 ? a1 - a0 : -(Full_Turn - a1 + a0);
  } else {
    span = a1 > a0 ? a1 - a0 : Full_Turn - (a0 - a1);
  }
  return std::abs(span) < Span_Floor ? Span_Floor : span;
}

// The first serial board runs an arc below its least length as one chord.
double One_Chord_Step(const Plane_Arc& arc, double a0, double a1, double step,
                      std::int32_t segments) {
  const double sign = step < 0 ? -1 : step > 0 ? 1 : 0;
  double sweep = ArcSweep(a0, a1, arc.Clockwise ? 0 : 1);
  if (sweep == 0) sweep = Divided(Full_Turn, segments);
  return sweep * sign;
}

double Wrapped(double angle) {
  if (angle >= Full_Turn) return angle - Full_Turn;
  if (angle < 0) return angle + Full_Turn;
  return angle;
}

// Advance of an axis across the plane with each chord; 0 unless both ends are known.
double Advance(Nullable from, Nullable to, double count) {
  if (!from || !to) return 0;
  const double each = Divided(std::abs(*to - *from), count);
  return *from > *to ? -each : each;
}

// The next place of such an axis. The count is a quotient and may come out a rounding error above a
// whole number, which walks one point more: the axis must not pass its end then.
Nullable Advanced(Nullable value, Nullable to, double by) {
  if (!value || by == 0) return value;
  const double place = *value + by;
  return by < 0 ? std::max(place, *to) : std::min(place, *to);
}

// How the arc is walked; absent when it is too short for a chord.
std::optional<Chord_Walk> Walk_Of(const Plane_Arc& arc) {
  const double a0 = Motion_Angle(arc.r, arc.x0, arc.y0, arc.cx, arc.cy);
  const double a1 = Motion_Angle(arc.r, arc.x1, arc.y1, arc.cx, arc.cy);
  const double length = Arc_Length_Radians(std::abs(a0 - a1), arc.r);
  const double span = Span_Of(a0, a1, arc.Clockwise);

  Chord_Walk walk;
  walk.Segments = Segments_Of(arc.r);
  double step = Divided(span, walk.Segments);
  step = Divided(span, Whole_Part(span / step));
  if (MachineSetup.Parallel_Port_Type == 2 &&
      To_Single(length) < MachineSetup.DravonArcMinimumLength) {
    step = One_Chord_Step(arc, a0, a1, step, walk.Segments);
  }
  walk.Count = std::abs(Divided(span, step));
  walk.Step = arc.Clockwise ? -std::abs(step) : std::abs(step);
  walk.dz = Advance(arc.z0, arc.z1, walk.Count);
  walk.dA = Advance(arc.A0, arc.A1, walk.Count);
  walk.Angle = Wrapped(a0 + walk.Step);
  if (!(length > Length_Floor)) return std::nullopt;
  return walk;
}

struct Plane_Point {
  double x = 0, y = 0;
};

void Emit_Point(const Arc_Plane& axes, Plane_Point point, Nullable z, Nullable a) {
  Indexed<Nullable, 1, 3> at;
  at[axes.First] = point.x;
  at[axes.Second] = point.y;
  at[axes.Third] = z;
  EmitWireLine(at[1], at[2], at[3], a, false);
}

void Start_From(const Arc_Plane& axes, Plane_Point point, Nullable z, Nullable a) {
  Wire_Pass.Start[axes.First] = point.x;
  Wire_Pass.Start[axes.Second] = point.y;
  Wire_Pass.Start[axes.Third] = z;
  Wire_Pass.Start[4] = a;
}

void Walk_Chords(const Plane_Arc& arc, Chord_Walk walk) {
  const bool incremental = Incremental();
  const Arc_Plane& axes = arc.Axes;
  Nullable z = Advanced(arc.z0, arc.z1, walk.dz), a = Advanced(arc.A0, arc.A1, walk.dA);
  Plane_Point last{arc.x0, arc.y0};
  Plane_Point on_circle = last, travelled;
  for (std::int32_t guard = 0; walk.Count > 1; walk.Count = walk.Count - 1) {
    Plane_Point point{arc.r * std::cos(walk.Angle) + arc.cx, arc.r * std::sin(walk.Angle) + arc.cy};
    travelled = {travelled.x + (point.x - on_circle.x), travelled.y + (point.y - on_circle.y)};
    on_circle = point;
    if (incremental) {
      point.x = Compiler.CurrentPosition[1].value() - point.x;
      point.y = Compiler.CurrentPosition[2].value() - point.y;
    }
    if (std::abs(point.x - last.x) >= Same_Point || std::abs(point.y - last.y) >= Same_Point) {
      Emit_Point(axes, point, z, a);
    } else {
      Platform.Beep();
    }
    Start_From(axes, point, z, a);
    z = Advanced(z, arc.z1, walk.dz);
    a = Advanced(a, arc.A1, walk.dA);
    last = point;
    walk.Angle = Wrapped(walk.Angle + walk.Step);
    if (++guard > walk.Segments + 5) {
      DoEvents();
      Platform.Beep();
      break;
    }
  }
  Plane_Point end{arc.x1, arc.y1};
  if (incremental) end = {end.x - travelled.x, end.y - travelled.y};
  Emit_Point(axes, end, z, a);
}

}  // namespace

void Nist_Arc(const Indexed<Nullable, 1, 4>& start, const Indexed<Nullable, 1, 4>& end,
              Nullable first, Nullable second, std::optional<std::int16_t> direction) {
  const bool walked = Trap("Nist_Arc Error", [&] {
    const auto axes = Arc_Plane_Of(Compiler.ModalGroups[modal_group::Plane]);
    if (!axes) return;
    const Plane_Arc arc = In_Plane(*axes, start, end, first, second, direction);
    if (const auto walk = Walk_Of(arc)) Walk_Chords(arc, *walk);
    if (!Incremental()) {
      Compiler.TargetPosition[axes->First] = arc.x1;
      Compiler.TargetPosition[axes->Second] = arc.y1;
    }
  });
  if (!walked)
    Note_Loss_At(Wire_Pass.Step, Loss_Kind::Line, Wire_Pass.Block_Text,
                 "the arc cannot be walked; the error log says why");
}

}  // namespace norvik
