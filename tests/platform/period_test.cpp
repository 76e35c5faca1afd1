// Waits that keep a period beside a system that now and then takes time away.
#include "platform/period.h"

#include <algorithm>
#include <cstdlib>
#include <random>
#include <vector>

#include <gmock/gmock.h>

namespace norvik {
namespace {

using testing::ElementsAre;

// A loop of such waits beside the interruptions of a system: a tick of 3 to 6 microseconds every 4
// milliseconds, and now and then something else. Answers how late the end of each wait was.
struct Interrupted_Loop {
  std::int64_t Now = 0, Next_Tick = 50'000;
  std::mt19937 Random{1};

  std::int64_t Past_Ticks(std::int64_t due) {
    std::int64_t end = due;
    for (; Next_Tick <= due; Next_Tick += 4'000'000) {
      end = std::max(end, Next_Tick + 3'000 + std::int64_t(Random() % 3'000));
    }
    return end;
  }
  std::vector<std::int64_t> Run(Period_Keeper& keeper, std::int64_t period, int rounds) {
    std::vector<std::int64_t> late;
    for (int i = 0; i < rounds; ++i) {
      const std::int64_t due = keeper.Deadline(Now + 300, period, period);
      Now = Past_Ticks(due);
      keeper.Ended(Now);
      late.push_back(Now - due);
    }
    return late;
  }
};

// Lost time is paid back by a 64th of a wait and a microsecond at most, up to a limit.
TEST(Period_Keeper_Test, Pays_Back_What_A_Wait_Lost) {
  Period_Keeper keeper;
  std::int64_t now = 0;
  std::vector<std::int64_t> rounds;
  for (int i = 0; i < 6; ++i) {
    const std::int64_t before = now;
    now = keeper.Deadline(now, 32'000, 32'000);
    if (i == 1) now += 1'200;
    keeper.Ended(now);
    rounds.push_back(now - before);
  }
  EXPECT_THAT(rounds, ElementsAre(32'000, 33'200, 31'500, 31'500, 31'800, 32'000));
  now = keeper.Deadline(now, 32'000, 32'000) + 50'000'000;
  keeper.Ended(now);
  const std::int64_t stalled = now;
  for (int i = 0; i < 20'000; ++i) keeper.Ended(now = keeper.Deadline(now, 32'000, 32'000));
  EXPECT_EQ(now - stalled, 20'000 * 32'000 - Period_Keeper::Debt_Limit);
}

// Periods that divide the tick would meet every tick once they meet one; and the rate must not pay
// for getting out of its way.
TEST(Period_Keeper_Test, Moves_Out_Of_The_Way_Of_Ticks_And_Keeps_The_Rate) {
  for (const std::int64_t period : {100'000, 50'000, 25'000, 12'500}) {
    Period_Keeper keeper;
    Interrupted_Loop loop;
    constexpr int rounds = 100'000;
    loop.Run(keeper, period, 1);
    const std::int64_t start = loop.Now;
    const auto late = loop.Run(keeper, period, rounds);
    EXPECT_LT(std::ranges::count_if(late, [](auto ns) { return ns > 0; }), 10) << period;
    EXPECT_LE(std::abs(loop.Now - start - rounds * period), period / 2) << period;
  }
}

}  // namespace
}  // namespace norvik
