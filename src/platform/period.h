// period.h: waits of whole microseconds in a loop with a period of its own.
//
//   end of wait        call           end of wait
//      |---- work -----|----- wait -----|
//      |------------ period ------------|
//
// A loop that takes its work off the wait in whole microseconds misses its period by up to one
// microsecond in each round: one percent at 100, four at 25. A wait that is "accurate to about a
// microsecond" has the room to close that gap. Two rules, in nanoseconds:
//
// 1. The wait asked for is period - W cut to whole microseconds, where W is the work that the loop
//    takes itself to have. When its real work lies within one microsecond of W, so that period -
//    work lies from 1 below to 2 above the wait asked for, that is the wait: the period is kept
//    exactly, fractions included. A work that is not known (or a period that cannot be kept) leaves
//    the wait as asked.
// 2. Time lost inside a wait, because the system ran something else, is paid back by the waits that
//    follow, each shorter by a 64th and by a microsecond at most, so that a motor sees no jump of
//    its speed; what a loss has above the limit is not.
// 3. Up to a 2000th of the time may be lost for good and is paid back only beyond. A
//    period of which a whole number makes a tick of the system's timer would otherwise stay where
//    it is beside the ticks, and when one of them falls on a wait's end, all do. So the period
//    slips out of their way.
#pragma once

#include <algorithm>
#include <cstdint>

namespace norvik {

// Feeds on the times around each wait; one instance for each loop that waits.
class Period_Keeper {
 public:
  static constexpr std::int64_t Microsecond = 1'000;                              // ns
  static constexpr std::int64_t Debt_Limit = 5'000'000;                           // ns
  static constexpr std::int64_t Allowance_Part = 2000, Allowance_Limit = 50'000;  // ns

  // When a wait that begins at `now` is to end; all in ns of one clock.
  std::int64_t Deadline(std::int64_t now, std::int64_t asked, std::int64_t period) {
    const std::int64_t shortest = std::max<std::int64_t>(asked - Microsecond, 0);
    const std::int64_t wanted = period - (now - Last_End);
    const bool kept = wanted >= shortest && wanted <= asked + 2 * Microsecond;
    const std::int64_t wait = kept ? wanted : asked;
    const std::int64_t paid = std::min({Debt, wait - shortest, asked / 64, Microsecond});
    Debt -= paid;
    return Due = now + wait - paid;
  }

  // The wait has ended at `now`.
  void Ended(std::int64_t now) {
    Allowance = std::min(Allowance + (now - Last_End) / Allowance_Part, Allowance_Limit);
    const std::int64_t lost = std::max<std::int64_t>(now - Due, 0);
    const std::int64_t let_go = std::min(lost, Allowance);
    Allowance -= let_go;
    Debt = std::min(Debt + lost - let_go, Debt_Limit);
    Last_End = now;
  }

 private:
  std::int64_t Last_End = 0, Due = 0;
  std::int64_t Debt = 0;       // lost in waits and not paid back yet
  std::int64_t Allowance = 0;  // may still be lost for good
};

}  // namespace norvik
