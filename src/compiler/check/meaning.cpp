#include "compiler/check/meaning.h"

#include "compiler/arcs/records.h"
#include "core/axes.h"
#include "core/numbers.h"
#include "core/setup.h"

#include <algorithm>
#include <cmath>

namespace norvik {

namespace {

// Sums of rounded words differ by less.
constexpr double Same_Place = 1e-6;
// Centres are rounded by the axis format, and by whoever wrote them.
constexpr double Same_Centre = 0.005;

constexpr int Tapping_And_Boring[] = {730, 740, 840, 850, 860, 870, 880, 890};

bool Is_Drilling_Elsewhere(int motion) {
  return std::ranges::find(Tapping_And_Boring, motion) != std::end(Tapping_And_Boring);
}
bool Is_Cycle(int motion) {
  return motion >= 810 && motion <= 830;
}
bool Is_Arc(int motion) {
  return motion == 20 || motion == 30;
}
bool Is_Line(int motion) {
  return motion == 0 || motion == 10 || motion == 450;
}

// Codes that make something else of the axis words, in tenths.
bool Takes_Axis_Words(int tenths) {
  constexpr int codes[] = {40,  50,  51,  52,  53,  100, 280, 281, 300, 301, 330, 331,
                           382, 383, 384, 385, 520, 680, 690, 760, 920, 921, 922, 923};
  return std::ranges::find(codes, tenths) != std::end(codes);
}

std::string Code_Name(int tenths) {
  return "G" + Finding_Number(tenths / 10.0);
}

// The word of an axis, X to A.
Nullable Axis_Word(const Word_Values& words, int axis) {
  constexpr word::Name names[] = {word::X, word::Y, word::Z, word::A};
  return words[names[axis - 1]];
}

bool Is_Known_And_Other(Nullable a, Nullable b) {
  return a && b && std::abs(*a - *b) > Same_Place;
}

const LineArc* Last_Move(const Block_Event& event) {
  for (std::size_t n = event.Row_Count(); n-- > 0;) {
    if (event.Row(n).RecordType != Record_Type::Control) return &event.Row(n);
  }
  return nullptr;
}

std::string Move_Name(const LineArc& row) {
  if (row.RecordType == Record_Type::Arc) {
    return row.ArcDirection == std::int16_t{0} ? "a clockwise arc" : "a counter-clockwise arc";
  }
  return row.FeedMove ? "a straight cutting move" : "a travel move";
}

}  // namespace

// --- Reading -------------------------------------------------------------------------------------

void Meaning::Take_Code(int tenths, const std::string& where) {
  if (Takes_Axis_Words(tenths)) Own_Words = true;
  switch (tenths) {
    case 170:
    case 180:
    case 190:
      Now.Plane = tenths / 10;
      return;
    case 900:
    case 910:
      Now.Incremental = tenths == 910;
      return;
    case 901:
    case 911:
      Now.Centre_From_Start = tenths == 911;
      return;
    case 930:
    case 940:
    case 950:
      Now.Feed_Mode = tenths / 10;
      return;
    case 980:
    case 990:
      Now.Returns_To_Start = tenths == 980;
      return;
    default:
      break;
  }
  if (!Is_Line(tenths) && !Is_Arc(tenths) && !Is_Cycle(tenths) && tenths != 800 &&
      !Is_Drilling_Elsewhere(tenths)) {
    return;
  }
  const bool goes_on = Now.Motion && Is_Cycle(*Now.Motion) && Is_Cycle(tenths);
  if (!goes_on) Now.Cycle_Z = Now.Cycle_R = Nullable();
  Now.Motion = tenths;
  Now.Motion_Line = where;
  Names_Motion = true;
}

void Meaning::Take(const Meant_Line& line, const std::string& where) {
  Words.Fill(Nullable());
  Own_Words = Names_Motion = false;
  const auto unread = [](const Meant_Word& other) {
    return other.Number != "%" && !other.Number.starts_with('/');
  };
  Readable = line.Whole && std::ranges::none_of(line.Unread, unread);
  for (const Meant_Word& each : line.Words) {
    const auto value = Meant_Value(each);
    if (!value) {
      Readable = false;
      if (each.Letter == 'F') {
        Now.Feed.reset();
        Now.Unread_Feed = where;
      }
    } else if (each.Letter == 'G') {
      Take_Code(
          static_cast<int>(std::lround(std::clamp(*Try_Number(each.Number), 0.0, 1000.0) * 10)),
          where);
    } else if (const auto place = std::string_view(word::Letters).find(each.Letter);
               place != std::string_view::npos && !Words[static_cast<int>(place)]) {
      Words[static_cast<int>(place)] = *value;
    }
  }
  if (Words[word::F]) {
    Now.Feed = Words[word::F];
    Now.Unread_Feed.clear();
  }
  if (!Now.Motion || !Is_Cycle(*Now.Motion)) return;
  if (Words[word::Z]) Now.Cycle_Z = Words[word::Z];
  if (Words[word::R]) Now.Cycle_R = Words[word::R];
}

// The motion that the line asks for; absent for none.
std::optional<int> Meaning::Motion_Of_Line() const {
  if (!Now.Motion || *Now.Motion == 800 || (Own_Words && !Names_Motion)) return std::nullopt;
  const int motion = *Now.Motion;
  const auto has = [&](std::initializer_list<word::Name> names) {
    return std::ranges::any_of(names, [&](word::Name name) { return Words[name].has_value(); });
  };
  const bool axes = has({word::X, word::Y, word::Z, word::A, word::B, word::C});
  if (Is_Arc(motion)) {
    return axes || has({word::I, word::J, word::K, word::R}) ? Now.Motion : std::nullopt;
  }
  if (Is_Line(motion)) return axes ? Now.Motion : std::nullopt;
  return has({word::X, word::Y, word::Z}) ? Now.Motion : std::nullopt;
}

// --- Comparing -----------------------------------------------------------------------------------

// Where the line ends in an axis; absent where that is not known.
Nullable Meaning::Target(const Block_Event& event, int axis) const {
  const Nullable value = Axis_Word(Words, axis), from = event.Before.CurrentPosition[axis];
  if (!value) return from;
  return Now.Incremental ? from.value_or(0) + *value : *value;
}

std::string Meaning::By_Mode(int motion) const {
  return Names_Motion
             ? "as written it is " + Code_Name(motion)
             : "as written it goes on with " + Code_Name(motion) + " of " + Now.Motion_Line;
}

std::optional<std::string> Meaning::End_Difference(const Block_Event& event,
                                                   const LineArc& row) const {
  for (int axis = 1; axis <= 4; ++axis) {
    const Nullable meant = Target(event, axis);
    if (!Is_Known_And_Other(meant, row.End[axis])) continue;
    const std::string letter(1, Axis_Letter(axis));
    return "it ends at " + letter + Finding_Number(*row.End[axis]) + ", as written at " + letter +
           Finding_Number(*meant);
  }
  return std::nullopt;
}

std::optional<std::string> Meaning::Feed_Difference(const LineArc& row) const {
  if (!Now.Unread_Feed.empty()) {
    return "its feed is " + Finding_Number(row.Feed[1]) + "; the F word of " + Now.Unread_Feed +
           " was not read";
  }
  if (!Now.Feed || std::abs(*Now.Feed - row.Feed[1]) <= 1e-4 * std::max(1.0, std::abs(*Now.Feed))) {
    return std::nullopt;
  }
  return "its feed is " + Finding_Number(row.Feed[1]) + ", as written " + Finding_Number(*Now.Feed);
}

std::optional<std::string> Meaning::Line_Difference(const Block_Event& event, int motion) const {
  const LineArc* const row = Last_Move(event);
  if (!row) return "nothing moves; " + By_Mode(motion);
  const bool cutting = motion != 0;
  if (row->RecordType != Record_Type::Line || row->FeedMove != cutting) {
    return "it runs as " + Move_Name(*row) + "; " + By_Mode(motion);
  }
  if (auto end = End_Difference(event, *row)) return end;
  return motion == 10 ? Feed_Difference(*row) : std::nullopt;
}

// The centre of an arc by R: to the right of the way for a clockwise arc below a half circle.
std::optional<std::string> Meaning::Centre_Difference(const LineArc& row, int motion) const {
  const auto plane = Arc_Plane_Of(static_cast<std::int16_t>(Now.Plane));
  if (!plane || !row.CenterI || !row.CenterJ) return std::nullopt;
  const bool absolute_row = !Now.Incremental;
  const int axes[] = {plane->First, plane->Second};
  double start[2], end[2], runs[2], meant[2];
  for (int n = 0; n < 2; ++n) {
    start[n] = row.Start[axes[n]].value_or(0);
    end[n] = row.End[axes[n]].value_or(0);
    runs[n] = (n == 0 ? *row.CenterI : *row.CenterJ);
    if (absolute_row && MachineSetup.GC_IJ_Incremental) runs[n] += start[n];
  }
  if (Words[word::R]) {
    // In G18 the plane's own order is Z, X and in G19 it is Y, Z: the side turns over.
    const double dx = end[0] - start[0], dy = end[1] - start[1], d = std::hypot(dx, dy);
    const double r = *Words[word::R], square = r * r - d * d / 4;
    if (d == 0 || square < 0) return std::nullopt;
    const double side = ((motion == 20) == (r > 0)) == (Now.Plane == 17) ? 1 : -1;
    const double h = side * std::sqrt(square) / d;
    meant[0] = (start[0] + end[0]) / 2 + h * dy;
    meant[1] = (start[1] + end[1]) / 2 - h * dx;
    // A stored centre counts from zero here; that the setup may walk it otherwise is a finding of
    // its own.
    runs[0] = *row.CenterI;
    runs[1] = *row.CenterJ;
  } else {
    const word::Name names[] = {plane->First_Word, plane->Second_Word};
    const bool from_start =
        Now.Centre_From_Start.value_or(Now.Incremental || MachineSetup.GC_IJ_Incremental);
    for (int n = 0; n < 2; ++n) {
      meant[n] = Words[names[n]] ? *Words[names[n]] + (from_start ? start[n] : 0) : runs[n];
    }
  }
  if (std::hypot(meant[0] - runs[0], meant[1] - runs[1]) <= Same_Centre) return std::nullopt;
  const auto point = [&](const double at[2]) {
    return std::string(1, "XYZ"[axes[0] - 1]) + Finding_Number(at[0]) + " " + "XYZ"[axes[1] - 1] +
           Finding_Number(at[1]);
  };
  return "the arc runs around " + point(runs) + ", as written around " + point(meant);
}

std::optional<std::string> Meaning::Arc_Difference(const Block_Event& event, int motion) const {
  const LineArc* const row = Last_Move(event);
  if (!row) return "nothing moves; " + By_Mode(motion);
  if (row->RecordType != Record_Type::Arc || row->ArcDirection != motion / 10 - 2) {
    return "it runs as " + Move_Name(*row) + "; " + By_Mode(motion);
  }
  if (auto end = End_Difference(event, *row)) return end;
  if (auto centre = Centre_Difference(*row, motion)) return centre;
  return Feed_Difference(*row);
}

std::optional<std::string> Meaning::Hole_Difference(const Block_Event& event) const {
  const int motion = *Now.Motion;
  const LineArc* const last = Last_Move(event);
  if (!last) return "nothing moves; " + By_Mode(motion);
  const auto mode = Compiler.ModalGroups[modal_group::Motion];
  if (mode != static_cast<std::int16_t>(motion / 10)) {
    return "it runs as " + Move_Name(*last) + "; " + By_Mode(motion);
  }
  const double count = Now.Incremental ? std::max(1.0, Words[word::L].value_or(1)) : 1;
  for (int axis = 1; axis <= 2; ++axis) {
    const Nullable from = event.Before.CurrentPosition[axis], value = Axis_Word(Words, axis);
    Nullable meant = from;
    if (value) meant = Now.Incremental ? from.value_or(0) + count * *value : *value;
    if (!Is_Known_And_Other(meant, last->End[axis])) continue;
    const std::string letter(1, "XY"[axis - 1]);
    return "the last hole lies at " + letter + Finding_Number(*last->End[axis]) +
           ", as written at " + letter + Finding_Number(*meant);
  }
  return std::nullopt;
}

std::optional<std::string> Meaning::Difference(const Block_Event& event) const {
  const auto motion = Motion_Of_Line();
  if (!motion) {
    if (Now.Motion && Is_Drilling_Elsewhere(*Now.Motion)) return std::nullopt;
    const LineArc* const row = Last_Move(event);
    if (!row || !Now.Motion) return std::nullopt;
    const bool stands = std::ranges::equal(row->Start, row->End);
    return stands ? std::nullopt
                  : std::optional("it runs as " + Move_Name(*row) + "; as written nothing moves");
  }
  if (Is_Line(*motion)) return Line_Difference(event, *motion);
  if (Is_Arc(*motion)) return Arc_Difference(event, *motion);
  if (Is_Cycle(*motion)) return Hole_Difference(event);
  return std::nullopt;
}

// --- Findings with a text of their own -----------------------------------------------------------

void Meaning::Tell_Cycle(const Block_Event& event, const Report_Finding& report) const {
  const auto motion = Motion_Of_Line();
  if (!motion) return;
  const LineArc* const last = Last_Move(event);
  if (Is_Drilling_Elsewhere(*motion)) {
    report(Check_Kind::Hole_Not_Drilled, 0,
           last ? "it runs as " + Move_Name(*last) + "; " + By_Mode(*motion)
                : By_Mode(*motion) + ", which is not known here",
           "");
    return;
  }
  if (!Is_Cycle(*motion) || !last || event.Failed) return;
  const Nullable kept = event.Before.CycleL;
  if (!Words[word::L] && kept.value_or(1) > 1) {
    report(Check_Kind::Cycle_Keeps_L, 0,
           "L" + Finding_Number(*kept) + " of an earlier line is taken: so many holes are made",
           "");
  }
  std::string old;
  const auto take = [&](Nullable now, const char* letter, Nullable memory) {
    if (!now && memory) old += (old.empty() ? "" : " and ") + (letter + Finding_Number(*memory));
  };
  take(Now.Cycle_Z, "Z", event.Memory_Before.CycleZ);
  take(Now.Cycle_R, "R", event.Before.CycleR);
  if (!old.empty()) {
    report(Check_Kind::Cycle_Takes_Old_Word, 0, old + " of an earlier cycle is taken", "");
  }
  const Nullable before = event.Before.CurrentPosition[3];
  if (before && last->End[3] && *last->End[3] < *before - Same_Place) {
    report(Now.Returns_To_Start ? Check_Kind::Cycle_Returns_Low : Check_Kind::Cycle_Returns_To_R, 0,
           "the tool returns to Z " + Finding_Number(*last->End[3]) +
               ", not to the height before the cycle, Z " + Finding_Number(*before),
           "");
  }
}

// G18 and G19 are seen from the other side than RS274/NGC sees them.
void Meaning::Tell_Side(const Block_Event& event, const Report_Finding& report) const {
  const auto motion = Motion_Of_Line();
  const LineArc* const row = Last_Move(event);
  if (!motion || !Is_Arc(*motion) || !row || row->RecordType != Record_Type::Arc) return;
  if (Now.Plane == 17) return;
  report(Check_Kind::Arc_Other_Side, 0,
         Code_Name(*motion) + " in G" + std::to_string(Now.Plane) + " runs as " +
             Code_Name(50 - *motion) +
             " runs on machines that see this plane from its positive axis",
         "");
}

void Meaning::Compare(const Block_Event& event, const std::function<bool()>& has_cause,
                      const Report_Finding& report) {
  Tell_Cycle(event, report);
  Tell_Side(event, report);
  const LineArc* const row = Last_Move(event);
  if (row && row->FeedMove && Now.Feed_Mode != 94) {
    report(Check_Kind::Feed_Per_Turn, 0,
           "F counts as units per minute; G" + std::to_string(Now.Feed_Mode) +
               " of the program means " +
               (Now.Feed_Mode == 93 ? "moves per minute" : "units per turn of the spindle"),
           "");
  }
  if (has_cause()) return;
  if (!Readable) {
    report(Check_Kind::Runs_Otherwise, 0, "the line holds more than letters and numbers", "");
  } else if (const auto why = Difference(event)) {
    report(Check_Kind::Runs_Otherwise, 0, *why, "");
  }
  // What ran without a code goes on as it runs.
  if (!Now.Motion && row) Now.Motion = row->FeedMove ? 10 : 0;
}

}  // namespace norvik
