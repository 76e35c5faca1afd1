// Canned cycles, written out as travel, cuts and dwells as controllers move:
//
//   up to R where the tool is below it; over the hole; down to R; the cycle; back to R (G99) or to
//   the height before the cycles (G98)
#include "adapt/context.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace norvik::adapting {

namespace {

struct Hole {
  double X = 0, Y = 0, R = 0, Bottom = 0, Clear = 0;
};

void Travel(Context& context, const Axis_Words& target) {
  Write_Line(context, false, target);
}
void Go_Up(Context& context, double z) {
  Travel(context, {std::nullopt, std::nullopt, z, std::nullopt});
}
void Cut_To(Context& context, double z) {
  Write_Line(context, true, {std::nullopt, std::nullopt, z, std::nullopt});
}

void Write_M(Context& context, int number) {
  context.Line().Code('M', number);
  context.Out.End_Line();
}

void Dwell(Context& context) {
  const double seconds = context.Cycle.P.value_or(0) * context.Options.Dwell_Factor;
  if (!(seconds > 0)) return;
  context.Line().Code('G', 4);
  context.Out.Short_Word('P', seconds);
  context.Out.End_Line();
}

// --- Words ---------------------------------------------------------------------------------------

void Keep(std::optional<double>& kept, std::optional<double> word) {
  if (word) kept = word;
}

void Take_Words(Context& context, const Foreign_Block& block) {
  Cycle_Words& cycle = context.Cycle;
  Keep(cycle.Z, block['Z']);
  Keep(cycle.R, block['R']);
  Keep(cycle.P, block['P']);
  Keep(cycle.Q, block['Q']);
  context.Use("XYZRPQLK");
  if (!cycle.Z) throw Unreadable{"the cycle has no Z"};
  if (!cycle.R) throw Unreadable{"the cycle has no R"};
}

int Repeats(const Foreign_Block& block) {
  const double count = block.Has('L') ? *block['L'] : block['K'].value_or(1);
  if (count < 0 || count > 10'000)
    throw Unreadable{"the cycle repeats more often than can be meant"};
  return static_cast<int>(std::lround(count));
}

Hole First_Hole(Context& context, const Foreign_Block& block) {
  Coordinates& place = context.Place;
  if ((!block.Has('X') && !place.At[0]) || (!block.Has('Y') && !place.At[1])) {
    throw Unreadable{"where the hole lies is not known"};
  }
  Hole hole;
  hole.X = block.Has('X') ? place.Target(0, *block['X']) : *place.At[0];
  hole.Y = block.Has('Y') ? place.Target(1, *block['Y']) : *place.At[1];
  const double factor = place.Factor();
  if (context.Mode.Incremental) {
    hole.R = place.At_Or_Zero(2) + *context.Cycle.R * factor;
    hole.Bottom = hole.R + *context.Cycle.Z * factor;
  } else {
    hole.R = *context.Cycle.R * factor + place.Shift(2);
    hole.Bottom = *context.Cycle.Z * factor + place.Shift(2);
  }
  if (hole.Bottom > hole.R) throw Unreadable{"the bottom of the hole lies above R"};
  hole.Clear = context.Mode.Returns_To_R ? hole.R : std::max(hole.R, context.Cycle.Start_Z);
  return hole;
}

// --- Down and up ---------------------------------------------------------------------------------

// Pecks of Q; each returns to R (G83) or only so far that the chip breaks (G73).
void Peck(Context& context, const Hole& hole, bool to_r) {
  const double q = context.Cycle.Q.value_or(0) * context.Place.Factor();
  if (!(q > 0)) throw Unreadable{"the cycle needs a Q above 0"};
  if ((hole.R - hole.Bottom) / q > 10'000)
    throw Unreadable{"Q is too small: the hole needs too many pecks"};
  const double clearance = context.Options.Millimetres ? 0.25 : 0.01;
  for (int n = 1;; ++n) {
    const double depth = std::max(hole.R - n * q, hole.Bottom);
    Cut_To(context, depth);
    if (depth - hole.Bottom < 1e-9) return;
    if (to_r) Go_Up(context, hole.R);
    Go_Up(context, std::min(depth + clearance, hole.R));
  }
}

void Drill(Context& context, const Hole& hole, int code) {
  if (code == 73 || code == 83) {
    Peck(context, hole, code == 83);
  } else {
    Cut_To(context, hole.Bottom);
  }
  if (code == 82 || code == 86 || code == 89) Dwell(context);
  if (code == 86) Write_M(context, 5);
  if (code == 85 || code == 89) Cut_To(context, hole.R);
  if ((code != 85 && code != 89) || hole.Clear > hole.R) Go_Up(context, hole.Clear);
  if (code == 86 && context.Mode.Spindle != 5) Write_M(context, context.Mode.Spindle);
}

bool Is_Expressed(int code) {
  constexpr int cycles[] = {73, 81, 82, 83, 85, 86, 89};
  return std::ranges::find(cycles, code) != std::end(cycles);
}

void Make_Hole(Context& context, const Hole& hole, int code) {
  const auto z = context.Place.At[2];
  if (!z || *z < hole.R) Go_Up(context, hole.R);
  Travel(context, {hole.X, hole.Y, std::nullopt, std::nullopt});
  if (!Is_Expressed(code)) {
    return Refuse(
        context, "the cycle G" + std::to_string(code) + " is not expressed: no hole is made here",
        "make it by hand at this halt, or write it out", context.Findings.Text_Now(), true);
  }
  if (*context.Place.At[2] != hole.R) Go_Up(context, hole.R);
  Drill(context, hole, code);
}

}  // namespace

void Run_Cycle(Context& context, const Foreign_Block& block, int code) {
  if (context.Mode.Plane != 17) throw Unreadable{"a drill cycle in another plane than X and Y"};
  if (context.Mode.Feed_Mode == 93) throw Unreadable{"a drill cycle under G93"};
  Take_Words(context, block);
  Write_Feed(context);
  Hole hole = First_Hole(context, block);
  const double step_x =
      block.Has('X') && context.Mode.Incremental ? hole.X - context.Place.At_Or_Zero(0) : 0;
  const double step_y =
      block.Has('Y') && context.Mode.Incremental ? hole.Y - context.Place.At_Or_Zero(1) : 0;
  const int repeats = Repeats(block);
  for (int n = 0; n < repeats; ++n) {
    Make_Hole(context, hole, code);
    hole.X += step_x;
    hole.Y += step_y;
  }
}

}  // namespace norvik::adapting
