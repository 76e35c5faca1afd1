#include "app/yield_watch.h"

#include "core/operation.h"
#include "platform/platform.h"

#include <algorithm>
#include <utility>

namespace norvik {

namespace {

struct Yield_Watch_State {
  std::int64_t Last_Yield = 0;  // when it was over, nanoseconds
  std::int64_t Longest = 0;     // nanoseconds
};
Yield_Watch_State Yield_Watch;

// What lies between two motions is no gap: then the window system's own loop serves the buttons.
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
