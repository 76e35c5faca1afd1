#include "compiler/check/blocks.h"

#include "core/setup.h"

#include <algorithm>
#include <cmath>
#include <string>

namespace norvik {

namespace {

// Motion codes that act, in the order of the table.
constexpr std::int16_t Motion_Codes[] = {2, 3, 45, 81, 82, 83, 0, 1};
// Codes without effect whose axis words belong to them and would not move anyway.
constexpr std::int16_t Own_Words[] = {5,  10, 28, 30, 33, 38, 52, 68, 73,
                                      76, 84, 85, 86, 87, 88, 89, 92};

// A longer dwell was probably meant in milliseconds.
constexpr float Long_Dwell_Seconds = 20;

bool Has_G(const Block& block, std::int16_t number) {
  return block.GFlags.test(static_cast<std::size_t>(number));
}

// The first G word of the block that ends modal motion.
std::string Blocking_Code(const Block& block) {
  for (std::int16_t number = 0; number <= Last_G_Code; ++number) {
    if (number != 90 && number != 91 && Has_G(block, number)) return "G" + std::to_string(number);
  }
  return "";
}

std::int16_t Cycle_In_Force() {
  const auto mode = Compiler.ModalGroups[modal_group::Motion];
  return mode && *mode >= 81 && *mode <= 83 ? *mode : std::int16_t{0};
}

// The cycle that the block ran or wanted to run; 0 for none.
std::int16_t Cycle_Of(const Block_Event& event) {
  for (const std::int16_t code : {std::int16_t{81}, std::int16_t{82}, std::int16_t{83}}) {
    if (Has_G(event.Read, code)) return code;
  }
  const Word_Values& words = event.Read.Words;
  const bool bare = event.Read.ModalMotion && (words[word::X] || words[word::Y] || words[word::Z]);
  const bool arc = words[word::I] || words[word::J] || words[word::K];
  return bare && !arc ? Cycle_In_Force() : std::int16_t{0};
}

void Tell_Words_Without_Motion(const Block_Event& event, const Report_Finding& report) {
  if (!event.Has_Axis_Words() || event.Moved() || Cycle_Of(event) != 0) return;
  const auto has = [&](std::int16_t code) { return Has_G(event.Read, code); };
  if (std::ranges::any_of(Own_Words, has)) return;
  if (!event.Read.ModalMotion) {
    report(Check_Kind::Words_Without_Motion, 0,
           Blocking_Code(event.Read) + " ends the motion in force for this line: nothing moves",
           "");
  } else {
    report(Check_Kind::Words_Without_Motion, 0, "without X, Y or Z a bare line does not move", "");
  }
}

void Tell_Several_Motions(const Block_Event& event, const Report_Finding& report) {
  std::string codes;
  int count = 0;
  for (const std::int16_t code : Motion_Codes) {
    if (!Has_G(event.Read, code)) continue;
    codes += (count++ == 0 ? "G" : ", G") + std::to_string(code);
  }
  if (count > 1) {
    report(Check_Kind::Several_Motions, 0, codes + " are all executed, in this order", "");
  }
}

// True when the block moved by the motion in force.
bool Moved_By_Mode(const Block_Event& event) {
  return event.Moved() && event.Read.ModalMotion;
}

void Tell_Bare_Words(const Block_Event& event, Check_Memory& memory, const Report_Finding& report) {
  if (Moved_By_Mode(event) && !event.Before.ModalGroups[modal_group::Motion]) {
    report(Check_Kind::Bare_Start, 0,
           "no motion code stands before it: what it does is left from the compile before", "");
  }
  if (Moved_By_Mode(event) && memory.Cycle_Cancelled) {
    report(Check_Kind::Bare_After_Cycle, 0, "the line is a travel move", "");
  }
  const auto has = [&](std::int16_t code) { return Has_G(event.Read, code); };
  if (std::ranges::any_of(Motion_Codes, has)) memory.Cycle_Cancelled = false;
  if (has(80)) memory.Cycle_Cancelled = true;
}

void Tell_Feed(const Block_Event& event, Check_Memory& memory, const Report_Finding& report) {
  if (event.Read.Words[word::F]) memory.Feed_Seen = true;
  for (std::size_t n = 0; n < event.Row_Count(); ++n) {
    const LineArc& row = event.Row(n);
    if (row.RecordType == Record_Type::Control || !row.FeedMove) continue;
    if (row.Feed[1] <= 0) {
      report(Check_Kind::No_Feed, 0, "the feed is " + Finding_Number(row.Feed[1]), "");
    } else if (!memory.Feed_Seen) {
      report(Check_Kind::Feed_Of_Setup, 0,
             "no F word stands before it: the setup's feed of " + Finding_Number(row.Feed[1]) +
                 " is taken",
             "");
    }
    memory.Feed_Seen = true;
    return;
  }
}

// True when the outputs of a row switch something on.
bool Switches_On(const LineArc& row) {
  for (int output = row.Out.first; output <= row.Out.last; ++output) {
    if (row.Out[output] == Output_On) return true;
  }
  return false;
}

void Follow_Spindle(const Block_Event& event, Check_Memory& memory) {
  for (std::size_t n = 0; n < event.Row_Count(); ++n) {
    for (const int spindle : {0, 1}) {
      const std::int16_t command = event.Row(n).Out[spindle];
      if (command != Output_Unchanged) memory.Spindle_On[spindle] = command == Output_On;
    }
  }
}

void Tell_Waits(const Block_Event& event, Check_Memory& memory, const Report_Finding& report) {
  Follow_Spindle(event, memory);
  if (event.Read.MFlags[6] && !event.Moved() && (memory.Spindle_On[0] || memory.Spindle_On[1])) {
    report(Check_Kind::Change_With_Spindle_On, 0, "the machine waits and the spindle turns", "");
  }
  if (MachineSetup.Outputs_Before_Dwell) return;
  for (std::size_t n = 0; n < event.Row_Count(); ++n) {
    const LineArc& row = event.Row(n);
    if (!(row.PauseTime > 0) || !Switches_On(row)) continue;
    report(Check_Kind::Dwell_Before_Outputs, 0,
           "the dwell of " + Finding_Number(row.PauseTime) +
               " seconds ends before spindle and coolant come on",
           "");
    return;
  }
}

void Tell_Outputs(const Block_Event& event, Check_Memory& memory, const Report_Finding& report) {
  Tell_Waits(event, memory, report);
  if (event.Read.MFlags[6] && event.Moved()) {
    report(Check_Kind::Tool_Change_Beside_Move, 0, "the move runs and nothing waits", "");
  }
  if (event.Read.MFlags[2] && memory.Spindle_On[1]) {
    report(Check_Kind::Spindle_Left_On, 0, "M2 switches the clockwise output off only", "");
  }
  for (std::size_t n = 0; n < event.Row_Count(); ++n) {
    const float pause = event.Row(n).PauseTime;
    if (pause < Long_Dwell_Seconds) continue;
    report(Check_Kind::Long_Dwell, 0, "the dwell lasts " + Finding_Number(pause) + " seconds", "");
    return;
  }
}

// --- Drill cycles --------------------------------------------------------------------------------

struct Cycle_Depth {
  double R = 0, Plane = 0, Bottom = 0;  // R as taken, heights of the plane and of the bottom
};

std::optional<Cycle_Depth> Depth_Of(const Block_Event& event) {
  const Word_Values& words = event.Read.Words;
  const Nullable z = words[word::Z] ? words[word::Z] : event.Memory_Before.CycleZ;
  const Nullable r = words[word::R] ? words[word::R] : event.Before.CycleR;
  if (!z || !r) return std::nullopt;
  Cycle_Depth depth;
  depth.R = *r;
  const bool incremental = event.Moved_Incremental();
  depth.Plane = incremental ? event.Before.CurrentPosition[3].value_or(0) + *r : *r;
  depth.Bottom = incremental ? depth.Plane + *z : *z;
  return depth;
}

void Tell_Lacking(const Block_Event& event, std::int16_t cycle, const Report_Finding& report) {
  std::string lacking;
  const Word_Values& words = event.Read.Words;
  if (!words[word::Z] && !event.Memory_Before.CycleZ) lacking += " Z";
  if (!words[word::R] && !event.Before.CycleR) lacking += " R";
  const Word_Values& last = Compiler.Last;
  if (!last[word::X] && !last[word::Y]) lacking += " X or Y";
  report(Check_Kind::Cycle_Lacks_Words, 0,
         "G" + std::to_string(cycle) + " lacks" + lacking + ": nothing moves", "");
}

void Tell_Zeros(const Block_Event& event, const Report_Finding& report) {
  std::string zeros;
  const auto add = [&](bool unknown, const char* what) {
    if (unknown) zeros += (zeros.empty() ? "" : ", ") + std::string(what);
  };
  const Word_Values& last = Compiler.Last;
  add(!last[word::X] && !event.Before.CycleX, "X of the hole");
  add(!last[word::Y] && !event.Before.CycleY, "Y of the hole");
  for (int axis = 1; axis <= 3; ++axis) {
    const char letter = "XYZ"[axis - 1];
    add(!event.Before.CurrentPosition[axis], (std::string("the position in ") + letter).c_str());
  }
  if (!zeros.empty()) {
    report(Check_Kind::Cycle_Counts_Zero, 0, zeros + " was never given and counts as 0", "");
  }
}

void Tell_Pecks(const Block_Event& event, const Cycle_Depth& depth, const Report_Finding& report) {
  constexpr double tolerance = 1e-6;
  const double first = Compiler.Last[word::R].value_or(0);
  if (std::abs(first - depth.Plane) > tolerance) {
    report(Check_Kind::Peck_From_Raw_R, 0,
           "the pecks start at Z " + Finding_Number(first) + ", the R plane lies at " +
               Finding_Number(depth.Plane),
           "");
  }
  std::optional<double> lowest;
  for (std::size_t n = 0; n < event.Row_Count(); ++n) {
    const LineArc& row = event.Row(n);
    if (row.FeedMove && row.End[3]) lowest = std::min(lowest.value_or(*row.End[3]), *row.End[3]);
  }
  if (!lowest) {
    report(Check_Kind::Peck_Misses_Bottom, 0, "no peck is made", "");
  } else if (*lowest - depth.Bottom > tolerance) {
    report(Check_Kind::Peck_Misses_Bottom, 0,
           "the last peck ends " + Finding_Number(*lowest - depth.Bottom) + " above the bottom",
           "");
  }
}

}  // namespace

bool Block_Event::Has_Axis_Words() const {
  constexpr word::Name axes[] = {word::X, word::Y, word::Z, word::A, word::B, word::C};
  return std::ranges::any_of(axes, [&](word::Name name) { return Read.Words[name].has_value(); });
}

bool Block_Event::Moved() const {
  for (std::size_t n = 0; n < Row_Count(); ++n) {
    if (Row(n).RecordType != Record_Type::Control) return true;
  }
  return false;
}

void Check_Motion(const Block_Event& event, Check_Memory& memory, const Report_Finding& report) {
  if (!event.Failed) {
    Tell_Words_Without_Motion(event, report);
    Tell_Several_Motions(event, report);
  }
  Tell_Bare_Words(event, memory, report);
  Tell_Feed(event, memory, report);
  Tell_Outputs(event, memory, report);
}

void Check_Cycles(const Block_Event& event, const Report_Finding& report) {
  const std::int16_t cycle = Cycle_Of(event);
  if (cycle == 0 || event.Failed) return;
  if (!event.Moved()) {
    Tell_Lacking(event, cycle, report);
    return;
  }
  Tell_Zeros(event, report);
  const auto depth = Depth_Of(event);
  if (cycle == 83 && depth) Tell_Pecks(event, *depth, report);
}

}  // namespace norvik
