// Directions, lengths and angles.
#include "core/geometry.h"

#include "core/application.h"
#include "core/messages.h"

#include <cmath>
#include <limits>
#include <numbers>
#include <random>

#include <gmock/gmock.h>

namespace norvik {
namespace {

using std::numbers::pi;

TEST(Motion_Angle, Runs_From_The_Second_Point_To_The_First) {
  struct Row {
    double X, Y, Angle;  // of the vector (X, Y)
  };
  for (const Row& row :
       {Row{1, 0, 0}, Row{1, 1, pi / 4}, Row{0, 1, pi / 2}, Row{-1, 1, 3 * pi / 4}, Row{-1, 0, pi},
        Row{-1, -1, 5 * pi / 4}, Row{0, -1, 3 * pi / 2}, Row{1, -1, 7 * pi / 4}, Row{0, 0, 0}}) {
    EXPECT_NEAR(Motion_Angle(1, 5 + row.X, 3 + row.Y, 5, 3), row.Angle, 1e-9);
  }
  EXPECT_EQ(Motion_Angle(0, 1, 2, 0, 0), 0);
  // Close below a full turn: within 0.0001 it is 0, within 0.001 the turn is taken off.
  EXPECT_EQ(Motion_Angle(1, 1, -0.00005, 0, 0), 0);
  EXPECT_NEAR(Motion_Angle(1, 1, -0.0005, 0, 0), -0.0005, 1e-9);
  EXPECT_NEAR(Motion_Angle(1, 1, -0.002, 0, 0), 2 * pi - 0.002, 1e-6);
  Messages = {};
  EXPECT_EQ(Motion_Angle(1, std::numeric_limits<double>::infinity(), 0, 0, 0), 0);
  EXPECT_THAT(Messages.Panel[1], testing::StartsWith("Error Write:Motion_Angle_Error # 6"));
}

TEST(Corner_Angle, Is_The_Change_Of_Direction) {
  const auto corner = [](double x, double y, double z) {
    return Corner_Angle(-1, 0, 0, 0, 0, 0, x, y, z);
  };
  EXPECT_EQ(corner(1, 0, 0), 0);  // exactly, so that a straight chain runs at full feed
  EXPECT_EQ(corner(-1, 0, 0), 180);
  EXPECT_EQ(corner(0, 1, 0), 90);
  EXPECT_EQ(corner(1, 1, 0), 45);
  EXPECT_EQ(corner(0, 0, -2), 90);
  EXPECT_EQ(corner(std::cos(0.1), std::sin(0.1), 0), 5.73);  // 5.7296 at three decimals
  EXPECT_EQ(Corner_Angle(0, 0, 0, 0, 0, 0, 1, 0, 0), 5.73);  // no length: the cosine before
}

TEST(Arc_Helpers, Keep_Their_Rules) {
  EXPECT_NEAR(Arc_Length_Radians(0, 1), 360, 1e-9);
  EXPECT_NEAR(Arc_Length_Radians(0.5, 3), 1.5, 1e-12);
  EXPECT_EQ(Arc_Length_Radians(-0.5, 3), 0);
  EXPECT_NEAR(ArcSweep(1, 3, 1), 2, 1e-12);
  EXPECT_NEAR(ArcSweep(1, 3, 0), 2 * pi - 2, 1e-8);
  EXPECT_EQ(ArcSweep(2, 2, 0), 0);
  EXPECT_NEAR(NormalizeAngle(-7), -7 + 2 * 3.1415927F, 1e-12);
  EXPECT_EQ(NormalizeAngle(-6), -6);
  EXPECT_NEAR(NormalizeAngle(13), 13 - 4 * double{3.1415927F}, 1e-12);
  EXPECT_LE(std::abs(NormalizeAngle(1e18)), 6.2832);
}

TEST(Line_Length, Needs_Both_Planar_Pairs) {
  EXPECT_EQ(*Line_Length(0, 0, 0, 2, 3, 6), 7);
  EXPECT_EQ(*Line_Length(0, 0, {}, 3, 4, 6), 5);
  EXPECT_FALSE(Line_Length({}, 0, 0, 3, 4, 0));
  EXPECT_FALSE(Line_Length(0, 0, 0, 3, {}, 0));
  EXPECT_FALSE(Line_Length(1, 1, 1, 1, 1, 1));
}

}  // namespace
}  // namespace norvik
