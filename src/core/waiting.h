// waiting.h: the short helpers that wait for time or for the operator.
#pragma once

#include <cstdint>
#include <functional>
#include <limits>

namespace norvik {

inline constexpr std::int64_t Without_Limit_ns = std::numeric_limits<std::int64_t>::max();

// The one wait that serves the event queue meanwhile: asks `done`, yields, calls `rest` with the
// nanoseconds that are left, and again. True when `done` said so, false when `longest_ns` have
// passed by the monotonic clock; a change of the day's clock or midnight makes it neither longer
// nor shorter. If that clock does not advance at all, as in a test with a fixed clock, a wait with
// a limit ends after 10,000 yields instead of never.
bool Yield_Until(const std::function<bool()>& done, std::int64_t longest_ns = Without_Limit_ns,
                 const std::function<void(std::int64_t left_ns)>& rest = {});

// Of so many seconds, thirty years at most.
std::int64_t To_Nanoseconds(double seconds);

// The same for a time, whatever happens meanwhile.
void Wait(double seconds);

// Sets `EscFlag` when the ESC key is down or went down since the last look. True when it did.
bool CheckEsc();

}  // namespace norvik
