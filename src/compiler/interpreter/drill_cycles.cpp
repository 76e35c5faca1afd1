#include "compiler/interpreter/drill_cycles.h"

#include "compiler/interpreter/interpreter.h"
#include "compiler/state/record_table.h"
#include "core/fault.h"
#include "core/rounding.h"

#include <algorithm>
#include <optional>

namespace norvik {

namespace {

// A depth that misses the bottom by no more than rounding still counts.
constexpr double Peck_Tolerance = 1e-9;

struct Cycle_Words {
  Nullable X, Y, Z, L, R;
  float P = 0;   // G82: seconds
  double Q = 0;  // G83: depth of a peck

  bool Complete() const { return Z && R && (X || Y); }
  double Repeats() const { return std::max(1.0, L.value_or(1)); }
};

struct Hole {
  double X, Y;       // of the next hole
  double R, Bottom;  // heights
};

Nullable First_Of(Nullable a, Nullable b, Nullable c = {}) {
  return a ? a : b ? b : c;
}

Cycle_Words Words_Of(const Block& block) {
  const Word_Values& words = block.Words;
  const Word_Values& last = Compiler.Last;
  Cycle_Words cycle;
  cycle.X = First_Of(words[word::X], Compiler.CycleX, last[word::X]);
  cycle.Y = First_Of(words[word::Y], Compiler.CycleY, last[word::Y]);
  cycle.Z = First_Of(words[word::Z], Compiler_Memory.CycleZ);
  cycle.L = First_Of(words[word::L], Compiler.CycleL);
  cycle.R = First_Of(words[word::R], Compiler.CycleR);
  return cycle;
}

double Current(int axis) {
  return Compiler.CurrentPosition[axis].value_or(0);
}

// What only a cycle that drills needs, taken before anything moves: a fault must not leave the tool
// in the hole.
void Take_Dwell_And_Peck(Cycle_Words& cycle, std::int16_t code) {
  const Word_Values& last = Compiler.Last;
  if (code == 82) {
    if (!last[word::P]) throw Fault(Fault_Number::Type_Mismatch, "G82 needs a P word: the dwell");
    cycle.P = To_Single(*last[word::P]);
  }
  if (code == 83) {
    if (!last[word::Q]) throw Fault(Fault_Number::Type_Mismatch, "G83 needs a Q word: the peck");
    cycle.Q = *last[word::Q];
    if (cycle.Q <= 0) throw Fault(Fault_Number::Invalid_Call, "G83 needs a Q above 0");
  }
}

void Move(double x, double y, double z, bool cutting) {
  Compiler.FeedMoveNow = cutting;
  Compiler.CurrentFeed = cutting ? Compiler.CutFeed : Compiler.TravelFeed;
  MoveLine({x, y, z, {}, {}, {}}, Z_Word::Absolute);
}

void Travel(double x, double y, double z) {
  Move(x, y, z, false);
}

void Feed(const Hole& hole, double z) {
  Move(hole.X, hole.Y, z, true);
}

void Back_To_R(const Hole& hole) {
  Travel(hole.X, hole.Y, hole.R);
}

void Dwell_At_Bottom(Block& block, float seconds) {
  Compiler.PauseNext = seconds;
  WriteControlRecord(block);
  Compiler.PauseNext = 0;
}

double First_Peck() {
  return Compiler.Last[word::R].value_or(0);
}

// A peck of next to nothing would end in the middle of a hole, with the table of records full.
void Refuse_Endless_Pecks(const Hole& hole, double q) {
  if ((First_Peck() - hole.Bottom) / q < LineArc_Table_Limit) return;
  throw Fault(Fault_Number::Invalid_Call,
              "G83 would make more pecks than a program has records; "
              "write a larger Q");
}

void Peck(const Hole& hole, double q) {
  const double first = First_Peck();
  for (double peck = 0; first - peck * q >= hole.Bottom - Peck_Tolerance; ++peck) {
    Feed(hole, first - peck * q);
    Back_To_R(hole);
  }
}

void Drill(Block& block, std::int16_t code, const Cycle_Words& words, const Hole& hole) {
  if (code == 83) {
    Peck(hole, words.Q);
    return;
  }
  Feed(hole, hole.Bottom);
  if (code == 82) Dwell_At_Bottom(block, words.P);
  Back_To_R(hole);
}

Hole First_Hole(const Cycle_Words& words, bool incremental) {
  Hole hole;
  const double x = words.X.value_or(0), y = words.Y.value_or(0);
  hole.X = incremental ? Current(1) + x : x;
  hole.Y = incremental ? Current(2) + y : y;
  hole.R = incremental ? Current(3) + *words.R : *words.R;
  hole.Bottom = incremental ? hole.R + *words.Z : *words.Z;
  return hole;
}

void Drill_Holes(Block& block, std::int16_t code, const Cycle_Words& words, bool incremental,
                 Hole hole) {
  if (Current(3) < hole.R) Travel(Current(1), Current(2), hole.R);
  for (double repeat = 0; repeat < words.Repeats(); ++repeat) {
    const double clearance = std::max(Current(3), hole.R);
    Travel(hole.X, hole.Y, clearance);
    Drill(block, code, words, hole);
    if (incremental) {
      hole.X += words.X.value_or(0);
      hole.Y += words.Y.value_or(0);
    }
  }
}

void Store(Nullable& memory, Nullable value) {
  if (value) memory = value;
}

void Store_Memories(const Block& block, std::int16_t code) {
  const Word_Values& words = block.Words;
  Store(Compiler.CycleX, words[word::X]);
  Store(Compiler.CycleY, words[word::Y]);
  Store(Compiler_Memory.CycleZ, words[word::Z]);
  Store(Compiler.CycleL, words[word::L]);
  Store(Compiler.CycleR, words[word::R]);
  if (code == 83) Store(Compiler_Memory.CycleQ, words[word::Q]);
}

}  // namespace

void Run_Drill_Cycle(Block& block, std::int16_t code) {
  Cycle_Words words = Words_Of(block);
  const bool incremental = Compiler.ModalGroups[modal_group::Distance] == 91;
  std::optional<Hole> hole;
  if (words.Complete()) {
    Take_Dwell_And_Peck(words, code);
    hole = First_Hole(words, incremental);
    if (code == 83) Refuse_Endless_Pecks(*hole, words.Q);
  }
  if (incremental) Compiler.ModalGroups[modal_group::Distance] = 90;
  Compiler.CycleStartZ = Compiler.CurrentPosition[3];
  if (hole) Drill_Holes(block, code, words, incremental, *hole);
  if (incremental) Compiler.ModalGroups[modal_group::Distance] = 91;
  Compiler.ModalGroups[modal_group::Motion] = code;
  Store_Memories(block, code);
  block.GFlags.reset(0);
  block.Codes.Remove(G_Code_Place(0));
}

}  // namespace norvik
