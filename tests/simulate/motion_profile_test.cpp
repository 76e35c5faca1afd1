// The closed form of a motion entry against its plain transcription, count by
// count.
#include "simulate/board/motion_profile.h"

#include <cmath>
#include <random>

#include <gtest/gtest.h>

namespace norvik {
namespace {

struct Shape {
  double Major, Start, Ramp, Up, Down;
};

// Time of each count as the rate law says it, in slices of a count that are too
// small to matter.
double Time_By_Slices(const Shape& shape, double count) {
  constexpr int slices = 200;
  const double top = std::max(shape.Start, Slowest_Rate) + shape.Ramp * shape.Up;
  double time = 0;
  for (int i = 0; i < static_cast<int>(count) * slices; ++i) {
    const double n = (i + 0.5) / slices;
    double rate = top;
    if (n < shape.Up) rate = std::max(shape.Start, Slowest_Rate) + shape.Ramp * n;
    if (n > shape.Major - shape.Down) {
      rate = std::max(top - shape.Ramp * (n - (shape.Major - shape.Down)), Slowest_Rate);
    }
    time += 1.0 / slices / rate;
  }
  return time;
}

TEST(Motion_Profile, Equals_The_Rate_Law_Count_By_Count) {
  const Shape shapes[] = {
      {200, 100, 10, 50, 50},    // up, cruise, down
      {200, 100, 10, 100, 100},  // no cruise
      {200, 100, 20, 20, 180},   // falls to 77 Hz long before its end
      {200, 20, 5, 0, 0},        // slower than the slowest
      {200, 5000, 1, 0, 200},   {1, 77, 255, 0, 0},
  };
  for (const Shape& shape : shapes) {
    const auto profile = Plan_Profile(shape.Major, shape.Start, shape.Ramp, shape.Up, shape.Down);
    for (double count = 0; count <= shape.Major; count += std::max(1.0, shape.Major / 8)) {
      const double time = Time_By_Slices(shape, count);
      EXPECT_NEAR(Time_Of_Count(profile, count), time, 1e-4 * time + 1e-9) << count;
      EXPECT_NEAR(Count_At(profile, Time_Of_Count(profile, count)), count, 1e-6);
    }
    EXPECT_EQ(Time_Of_Count(profile, shape.Major), profile.Duration);
    EXPECT_EQ(Count_At(profile, profile.Duration * 2), shape.Major);
  }
}

TEST(Motion_Profile, Counts_Never_Go_Back_Whatever_The_Ramps_Say) {
  std::mt19937 random(7);
  std::uniform_real_distribution<double> part(0, 1);
  for (int round = 0; round < 200; ++round) {
    const double major = std::floor(part(random) * 5000);
    const auto profile = Plan_Profile(major, part(random) * 20'000, 1 + part(random) * 254,
                                      part(random) * 6000, part(random) * 6000);
    double last = 0;
    for (int i = 0; i <= 50; ++i) {
      const double count = Count_At(profile, profile.Duration * i / 50);
      ASSERT_GE(count, last - 1e-9);
      ASSERT_GE(Rate_At(profile, profile.Duration * i / 50), major > 0 ? Slowest_Rate - 1e-6 : 0);
      last = count;
    }
    ASSERT_NEAR(last, major, 1e-6);  // the last moment may lie before its end by rounding
  }
}

TEST(Motion_Profile, An_Early_End_Slows_With_The_Ramp) {
  auto profile = Plan_Profile(10'000, 1000, 10, 100, 100);
  const double now = Time_Of_Count(profile, 5000);
  End_Early(profile, now, 500, 10);
  EXPECT_EQ(profile.End, 5150);  // (2000 - 500) / 10 counts
  EXPECT_NEAR(profile.Duration, now + std::log(4.0) / 10, 1e-9);
  EXPECT_NEAR(Count_At(profile, now), 5000, 1e-6);
  EXPECT_NEAR(Rate_At(profile, profile.Duration), 500, 1e-6);
  // Not beyond its old end; at once when it is slow enough.
  profile = Plan_Profile(10'000, 1000, 1, 0, 0);
  End_Early(profile, Time_Of_Count(profile, 9990), 77, 1);
  EXPECT_EQ(profile.End, 10'000);
  profile = Plan_Profile(10'000, 1000, 1, 0, 0);
  End_Early(profile, Time_Of_Count(profile, 4000), 2000, 1);
  EXPECT_NEAR(profile.End, 4000, 1);
  EXPECT_NEAR(profile.Duration, 4, 0.002);
}

}  // namespace
}  // namespace norvik
