// rest.h: waits that give the processor away, for what no pulse is timed by.
#pragma once

#include <cstdint>
#include <functional>

namespace norvik {

struct Rest_Operations {
  // Waits at least so long; comes back when the system finds the time, commonly a tenth of a
  // millisecond later. Empty: the busy wait of `Platform`.
  std::function<void(std::int32_t microseconds)> Sleep_Microseconds;
};
extern Rest_Operations Resting;

void Rest_Microseconds(std::int32_t microseconds);

}  // namespace norvik
