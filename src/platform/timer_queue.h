// timer_queue.h: periodic timers of an environment without an event loop of its own.
//
// The environment says what time it is; a real clock, a virtual one and a test's differ in nothing
// else. (The desktop's timers are the toolkit's: its event loop has to wake up for them.)
#pragma once

#include "platform/platform.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <limits>
#include <vector>

namespace norvik {

// Times are nanoseconds of the environment's monotonic clock.
class Timer_Queue {
 public:
  static constexpr std::int64_t Never = std::numeric_limits<std::int64_t>::max();

  // Due every `interval_ms` from `now` on, 1 at least. Ids count from 1.
  Timer_Id Start(int interval_ms, std::int64_t now, std::function<void()> handler);
  // Also from within its own handler. An id that is not running is nothing.
  void Stop(Timer_Id id);

  // Calls each timer that is due at `now` once, in the order in which they fell due. A handler may
  // start and stop timers and may yield; it is never called from within itself. Intervals that
  // nobody served are not made up: the next one lies ahead, in step with those before.
  void Run_Due(std::int64_t now);
  // When the next timer is due, those inside their own handler apart.
  std::int64_t Next_Due() const { return Earliest; }
  std::size_t Size() const { return Timers.size(); }

 private:
  struct Timer {
    Timer_Id Id = 0;
    std::int64_t Interval = 0, Due = 0;
    std::function<void()> Handler;
    bool Running = false;  // inside its own handler
  };

  Timer* Find(Timer_Id id);
  Timer* First_Due(std::int64_t now);
  void Note_Earliest();

  std::vector<Timer> Timers;
  Timer_Id Last_Id = 0;
  std::int64_t Earliest = Never;  // so that a yield with nothing due costs one comparison
};

}  // namespace norvik
