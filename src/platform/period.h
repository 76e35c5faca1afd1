// period.h: waits of whole microseconds in a loop with a period of its own.
//
//   end of wait        call           end of wait
//      |---- work -----|----- wait -----|
//      |------------ period ------------|
//
// A loop that takes its work off the wait in whole microseconds misses its period by up to one
// microsecond in each round: one percent at 100, four at 25. A wait that is "accurate to about a
// microsecond" has the room to close that gap. Three rules:
//
// 1. The wait asked for is period - W cut to whole microseconds, where W is the work that the loop
//    takes itself to have. When its real work is about W, so that period - work lies within two
//    microseconds of the wait asked for, that is the wait: the period is kept exactly, fractions
//    included. A work that is not known (or a period that cannot be kept) leaves
//    the wait as asked.
// 2. Time lost inside a wait, because the system ran something else, is paid back by the waits that
//    follow, each shorter by a 64th and by a microsecond at most, so that a motor sees no jump of
//    its speed. What a loss has above `Debt_Limit` is let go.
// 3. A period of which a whole number makes a tick of the system's timer stays where it is beside
//    the ticks, and when one of them falls on a wait's end, all do. So losses that follow each
//    other closely move the ends of the waits to another place in the period, out of the ticks'
//    way, and leave them there:
//
//      tick                ####                                ####
//      ends before     |     |     |     |     |     |     |     |        every fifth is late
//      ends after      |      |     |     |     |     |     |     |       Aim = behind the tick
//
//    The place stays within half a period of where exact periods would have it, so the mean rate is
//    kept exactly: places further on begin again at the other side.
#pragma once

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <optional>

namespace norvik {

// Feeds on the times around each wait, in ns of one clock; one instance for each loop that waits.
class Period_Keeper {
 public:
  static constexpr std::int64_t Microsecond = 1'000;
  static constexpr std::int64_t Debt_Limit = 5'000'000;

  // When a wait that begins at `now` is to end.
  std::int64_t Deadline(std::int64_t now, std::int64_t asked, std::int64_t period) {
    const std::int64_t shortest = std::max<std::int64_t>(asked - 2 * Microsecond, 0);
    const std::int64_t wanted = period - (now - Last_End);
    const bool kept = wanted >= shortest && wanted <= asked + 2 * Microsecond;
    const std::int64_t wait = kept ? wanted : asked;
    const std::int64_t earlier = std::min({wait - shortest, asked / 64, Microsecond});
    const std::int64_t later = std::min(asked / 1024, Microsecond);
    const std::int64_t shift = std::clamp(Aim - Place, -earlier, later);
    Place += shift;
    Room = std::min(period / 2, Largest_Room);
    return Due = now + wait + shift;
  }

  // The wait has ended at `now`.
  void Ended(std::int64_t now) {
    const std::int64_t lost = std::max<std::int64_t>(now - Due, 0);
    const bool settled = std::abs(Place - Aim) < Microsecond;
    Place = std::min(Place + lost, Debt_Limit);
    if (settled && lost >= Noticed) Note_Loss(now);
    Last_End = now;
  }

 private:
  // Losses above the clock's own jitter; two within a few ticks (4 to 10 ms each) belong together;
  // ticks differ in length, hence the margin behind them.
  static constexpr std::int64_t Noticed = 250, Close_Together = 20'000'000, Margin = 6'000;
  static constexpr std::int64_t Largest_Room = 50'000;

  void Note_Loss(std::int64_t now) {
    const bool repeated = Last_Loss && now - *Last_Loss < Close_Together;
    Last_Loss = now;
    if (repeated) Aim = Place + Margin <= Room ? Place + Margin : -Room;
  }

  std::int64_t Last_End = 0, Due = 0;
  std::optional<std::int64_t> Last_Loss;
  // Of the ends of the waits, against those of exact periods: where they are, where they are to be,
  // how far off that may be.
  std::int64_t Place = 0, Aim = 0, Room = 0;
};

}  // namespace norvik
