// The speeds of one move, from its rules alone.
#include "drive/move_plan.h"

#include <gmock/gmock.h>

namespace norvik {
namespace {

struct Plan_Row {
  const char* Why;
  double Steps, Start, Run, End;
  float Axis_Max;
  double Ramp_Rate;
  double Cruise;
  float Up, Down;
};
void PrintTo(const Plan_Row& row, std::ostream* out) {
  *out << row.Why;
}

class Plan_Test : public testing::TestWithParam<Plan_Row> {};
TEST_P(Plan_Test, Rows) {
  const Plan_Row& row = GetParam();
  Move_Rules rules;
  rules.Axis_Max.Fill(row.Axis_Max);
  rules.Ramping = true;
  rules.Ramp_Rate = row.Ramp_Rate;
  const Move_Plan plan =
      Plan_Move(rules, {{row.Steps, row.Steps / 2, 0, 0}}, row.Start, row.Run, row.End);
  EXPECT_EQ(plan.Major, row.Steps);
  EXPECT_FLOAT_EQ(static_cast<float>(plan.Cruise), static_cast<float>(row.Cruise));
  EXPECT_FLOAT_EQ(plan.Ramp_Up, row.Up);
  EXPECT_FLOAT_EQ(plan.Ramp_Down, row.Down);
}
INSTANTIATE_TEST_SUITE_P(
    Rows, Plan_Test,
    testing::Values(Plan_Row{"both ramps fit", 100, 10, 20, 10, 999, 10, 20, 100, 100},
                    Plan_Row{"a ramp of twice the rate is half as long", 100, 10, 20, 10, 999, 20,
                             20, 50, 150},
                    Plan_Row{"an axis limit is the cruise", 100, 10, 20, 10, 15, 10, 15, 50, 150},
                    Plan_Row{"a ramp longer than the move ends in its middle", 40, 10, 20, 20, 999,
                             10, 20, 40, 80},
                    Plan_Row{"ramps that overlap both stand", 40, 10, 15, 10, 999, 10, 15, 50, 30},
                    Plan_Row{"a way down longer than half the move begins at once", 40, 15, 15, 10,
                             999, 10, 15, 0, 0}));

// Without ramps, or with a rate that is none, the whole move cruises.
TEST(Move_Plan_Test, No_Ramps) {
  Move_Rules rules;
  rules.Axis_Max.Fill(18);
  for (const double rate : {10.0, 0.0, -3.0}) {
    rules.Ramping = rate <= 0;
    rules.Ramp_Rate = rate;
    const Move_Plan plan = Plan_Move(rules, {{50, 0, 0, 0}}, 5, 30, 5);
    EXPECT_EQ(plan.Increment, 0);
    EXPECT_EQ(plan.Start, 18);
    EXPECT_EQ(plan.Cruise, 18);
    EXPECT_EQ(plan.End, 18);
  }
}

// 10 hertz a step on 6000 steps per unit are 0.1 IPM in a step, so 0.05 in each half step; the
// leading axis is Y, whose scale counts. As stated the scale does not matter.
TEST(Move_Plan_Test, One_Acceleration_Ramps_By_The_Scale_Of_The_Leading_Axis) {
  Move_Rules rules;
  rules.Axis_Max.Fill(999);
  rules.Ramping = true;
  rules.Ramp_Rate = 10;
  rules.Scale = {{3000, 6000, 3000, 3000}};
  for (const bool one : {false, true}) {
    rules.One_Acceleration = one;
    const Move_Plan plan = Plan_Move(rules, {{100, 200, 0, 0}}, 10, 12, 11);
    EXPECT_DOUBLE_EQ(plan.Increment, one ? 0.05 : 0.1);
    EXPECT_FLOAT_EQ(plan.Ramp_Up, one ? 40 : 20);
    EXPECT_FLOAT_EQ(plan.Ramp_Down, one ? 380 : 390);
  }
  rules.Scale.Fill(3000);  // where both reckon the same
  EXPECT_DOUBLE_EQ(Plan_Move(rules, {{100, 0, 0, 0}}, 10, 12, 11).Increment, 0.1);
}

TEST(Move_Plan_Test, Last_Of_The_Longest_Axes_Leads) {
  EXPECT_EQ(Leading_Axis({{5, 0, 0, 0}}), 1);
  EXPECT_EQ(Leading_Axis({{5, 7, 6, 0}}), 2);
  EXPECT_EQ(Leading_Axis({{7, 2, 7, 0}}), 3);
}

TEST(Move_Plan_Test, Half_Periods_Are_Held_To_What_Can_Be_Timed) {
  EXPECT_DOUBLE_EQ(Half_Period(1000, 300), 100);
  EXPECT_DOUBLE_EQ(Half_Period(1000, 5000), Half_Period(1000, Fastest_IPM));
  EXPECT_DOUBLE_EQ(Half_Period(1000, -1), Half_Period(1000, Slowest_IPM));
}

}  // namespace
}  // namespace norvik
