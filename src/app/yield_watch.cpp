#include "app/yield_watch.h"

#include "core/operation.h"
#include "platform/platform.h"

#include <algorithm>
#include <utility>

namespace norvik {

namespace {

struct Yield_Watch_State {
  std::int64_t Last_Yield = 0;  // when the last yield ended, nanoseconds of the monotonic clock
  std::int64_t Longest = 0;     // longest time between two yields of a motion, nanoseconds
};
Yield_Watch_State Yield_Watch;

// Called right before each yield: how long ago was the last one? Time in which nothing moved does
// not count, because the window system's own loop then serves the buttons. So a gap begins with the
// last yield or with the operation that moves, whichever is later.
void Note_Gap() {
  if (!Anything_Moves()) return;
  const std::int64_t since = std::max(Yield_Watch.Last_Yield, Present_Operation()->Since);
  Yield_Watch.Longest = std::max(Yield_Watch.Longest, Platform.Monotonic_Clock() - since);
}

}  // namespace

void Watch_Yields() {
  Yield_Watch = {};
  Platform.Do_Events = [yield = std::move(Platform.Do_Events)] {
    Note_Gap();
    yield();
    Yield_Watch.Last_Yield = Platform.Monotonic_Clock();
  };
}

double Longest_Yield_Gap_Ms() {
  return static_cast<double>(Yield_Watch.Longest) * 1e-6;
}

}  // namespace norvik
