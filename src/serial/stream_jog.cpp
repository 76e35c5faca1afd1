#include "core/application.h"
#include "core/axes.h"
#include "platform/platform.h"
#include "serial/commands.h"
#include "serial/stream.h"
#include "serial/stream_queue.h"

#include <algorithm>
#include <cmath>

namespace norvik {

namespace {

constexpr double Piece_Seconds = 0.15;

// What a jog is cut into: counts of its longest axis.
struct Jog_Counts {
  std::int64_t Longest = 0, Piece = 1, Slow_Down = 0;
};

Jog_Counts Counts_Of_Jog(const Step_Request& jog) {
  const Entry_Rules rules = Rules_Of_Board();
  Jog_Counts counts;
  counts.Longest = std::ranges::max(jog.Steps);
  Move_Entry entry;
  Entry_Speeds cruise{jog.Run, jog.Run, jog.Run};
  Plan_Entry(rules, jog.Steps, cruise, entry);
  const double seconds = Entry_Seconds(entry, rules.Ramp_Rate);
  const auto longest = static_cast<double>(counts.Longest);
  if (seconds > Piece_Seconds)
    counts.Piece = std::max<std::int64_t>(1, std::llround(longest * Piece_Seconds / seconds));
  else
    counts.Piece = counts.Longest;
  Entry_Speeds falling{jog.Run, jog.Run, jog.Start};
  Plan_Entry(rules, jog.Steps, falling, entry);
  counts.Slow_Down = (std::int64_t{entry.DownRamp} + rules.SASF - 1) / rules.SASF;
  return counts;
}

// The jog between two of its counts.
Step_Request Part_Of(const Step_Request& jog, const Jog_Counts& counts, std::int64_t from,
                     std::int64_t to) {
  Step_Request part = jog;
  for (int axis = 1; axis <= Axis_Count; ++axis) {
    const std::int64_t steps = jog.Steps[axis];
    part.Steps[axis] =
        static_cast<std::int32_t>(steps * to / counts.Longest - steps * from / counts.Longest);
  }
  return part;
}

bool Goes_On() {
  return Machine.Jog_Stop_Request && !Ended();
}

// Until what was sent is nearly done. The next piece has to be there before: the time that the one
// before took on the line says how long before.
void Await_Next_Piece(std::int64_t due, std::int64_t sending_took) {
  constexpr std::int64_t shortest = 30'000'000, longest = 120'000'000, spare = 10'000'000;  // ns
  const std::int64_t lead = std::clamp(2 * sending_took + spare, shortest, longest);
  while (due - Platform.Monotonic_Clock() > lead && Goes_On()) Rest();
}

}  // namespace

bool Jog_In_Pieces(const Step_Request& jog, Nullable s_word) {
  const Jog_Counts counts = Counts_Of_Jog(jog);
  Dravon_Stream.In_Pieces = true;
  std::int64_t at = 0, due = 0;
  while (at < counts.Longest && Goes_On()) {
    const std::int64_t to = std::min(at + counts.Piece, counts.Longest);
    Step_Request part = Part_Of(jog, counts, at, to);
    if (at > 0) part.Start = jog.Run;
    const std::int64_t before = Platform.Monotonic_Clock();
    if (!DravonMove(part, s_word)) return false;
    const std::int64_t after = Platform.Monotonic_Clock();
    const double seconds = Dravon_Stream.Queue.empty() ? 0 : Dravon_Stream.Queue.back().Seconds;
    due = std::max(due, before) + static_cast<std::int64_t>(seconds * 1e9);
    at = to;
    Await_Next_Piece(due, after - before);
  }
  const std::int64_t end = std::min(at + counts.Slow_Down, counts.Longest);
  if (Ended() || end <= at) return true;
  Step_Request last = Part_Of(jog, counts, at, end);
  last.Start = jog.Run;
  last.End = jog.Start;
  return DravonMove(last, s_word).has_value();
}

}  // namespace norvik
