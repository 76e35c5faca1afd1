// Time that passes only when someone waits for it.
#include "simulate/virtual_clock.h"

#include "platform/scripted/scripted_platform.h"

#include <gmock/gmock.h>

namespace norvik {
namespace {

class Virtual_Clock_Test : public testing::Test {
 protected:
  Virtual_Clock_Test() { Install_Virtual_Clock(); }
  ~Virtual_Clock_Test() override { Remove_Virtual_Clock(); }

  Scripted_Platform scripted;
};

TEST_F(Virtual_Clock_Test, Delays_Move_It_And_Yields_Between_Delays_Do_Not) {
  Platform.Delay_Microseconds(250);
  DoEvents();
  EXPECT_EQ(Platform.Monotonic_Clock(), 250'000);
  Platform.Delay_Microseconds(1);
  DoEvents();
  EXPECT_EQ(Platform.Monotonic_Clock(), 251'000);
  EXPECT_EQ(scripted.Yields, 2) << "the environment below yields too";
}

TEST_F(Virtual_Clock_Test, Who_Waits_By_Yielding_Gets_There) {
  int rounds = 0;
  while (Platform.Monotonic_Clock() < 2'000'000'000) DoEvents(), ++rounds;
  EXPECT_EQ(rounds, 2000);
}

// Timers at 250 and 100 ms, seen by loops that yield rarely and often.
TEST_F(Virtual_Clock_Test, Timers_Run_In_Yields_In_Their_Order) {
  std::string order;
  const Timer_Id slow = Platform.Start_Timer(250, [&] { order += 'S'; });
  const Timer_Id fast = Platform.Start_Timer(100, [&] {
    order += 'f';
    DoEvents();  // never inside itself
  });
  EXPECT_NE(slow, fast);
  Platform.Delay_Microseconds(260'000);
  EXPECT_EQ(order, "");
  DoEvents();
  EXPECT_EQ(order, "fS");
  Platform.Stop_Timer(fast);
  Platform.Delay_Microseconds(500'000);
  DoEvents();
  DoEvents();
  EXPECT_EQ(order, "fSS") << "an interval that was missed is not made up";
}

TEST_F(Virtual_Clock_Test, Day_Clock_Passes_Midnight) {
  Remove_Virtual_Clock();
  scripted.Day_Start = 86'399;
  Install_Virtual_Clock();
  Advance_Virtual_Clock(1'500'000'000);
  EXPECT_NEAR(Platform.Day_Clock(), 0.5, 1e-9);
}

// Work of 3.3 microseconds (an access cost) in a loop that takes 4 off a half step of 42.857: the
// period holds, fraction included. A work far from what was taken off leaves the wait as asked.
struct Period_Row {
  std::int64_t Work, Period;
  std::int32_t Asked;
  std::int64_t Round;
};

TEST_F(Virtual_Clock_Test, Waits_In_A_Period) {
  for (const Period_Row& row : {Period_Row{3'300, 42'857, 38, 42'857},
                                {0, 50'000, 50, 50'000},
                                {800, 50'000, 50, 50'000},
                                {300, 50'000, 0, 300},
                                {300, 100'000, 50, 50'300},
                                {13'000, 25'000, 25, 38'000}}) {
    Platform.Delay_In_Period(row.Asked, row.Period);
    std::int64_t before = Virtual_Clock.Now;
    for (int i = 0; i < 5; ++i) {
      Advance_Virtual_Clock(row.Work);
      Platform.Delay_In_Period(row.Asked, row.Period);
      EXPECT_EQ(Virtual_Clock.Now - before, row.Round) << row.Work;
      before = Virtual_Clock.Now;
    }
  }
}

// In a run: the factor changes in a yield, between two waits.
TEST(Time_Factor, A_Change_Never_Turns_The_Clock_Back) {
  Scripted_Platform scripted;
  scripted.Now = 7'000'000'000;
  int timer = 0;
  Platform.Start_Timer(100, [&] { ++timer; });
  Offer_Time_Factors();
  EXPECT_EQ(Platform.Monotonic_Clock(), 7'000'000'000);
  std::vector<double> factors = {50, 2, 1, 1, 10, 1};
  scripted.On_Yield = [&] {
    if (factors.empty()) return;
    Set_Time_Factor(factors.front());
    factors.erase(factors.begin());
  };
  double day = Platform.Day_Clock();
  for (int round = 0; round < 8; ++round) {
    const std::int64_t before = Platform.Monotonic_Clock();
    DoEvents();
    EXPECT_LT(Platform.Monotonic_Clock() - before, 10'000'000) << round;
    Platform.Delay_In_Period(250, 300'000);
    EXPECT_GE(Platform.Monotonic_Clock() - before, 250'000) << round;
    EXPECT_GE(Platform.Day_Clock(), day - 0.2);
    day = Platform.Day_Clock();
  }
  EXPECT_FALSE(Virtual_Clock.Installed);
  EXPECT_EQ(timer, 0) << "timers stay in real time";
  scripted.Run_For(0.15);
  EXPECT_EQ(timer, 1);
  Virtual_Clock = {};
}

TEST_F(Virtual_Clock_Test, Everything_Is_Put_Back) {
  Remove_Virtual_Clock();
  const std::int64_t before = scripted.Now;
  Platform.Delay_Microseconds(7);
  EXPECT_EQ(scripted.Now - before, 7'000);
  EXPECT_FALSE(Platform.Delay_In_Period);
}

}  // namespace
}  // namespace norvik
