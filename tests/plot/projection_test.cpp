#include "plot/projection.h"

#include "core/fault.h"
#include "plot/view.h"

#include <random>
#include <vector>

#include <gtest/gtest.h>

namespace norvik {
namespace {

// Worked out step by step outside the program: doubles throughout, and each of y1, z1, x1, z2, x2,
// y2, px, py rounded to single. The two points show near and far from the eye's axis.
struct Worked_Point {
  const char* View;
  double X, Y, Z;
  double Px, Py;
  float Single_Px, Single_Py;
};
const Worked_Point worked_points[] = {
    {"top", 3, 2, 1, 2.9998500076685475, 1.999900004492704, 0x1.7ffb16p+1F, 0x1.fff972p+0F},
    {"top", 123.456, -78.9, 4.5, 123.42822863433335, -78.88225151419194, 0x1.edb682p+6F,
     -0x1.3b876ep+6F},
    {"bottom", 3, 2, 1, 3.0001500073312335, -2.0001000056762273, 0x1.8004eap+1F, -0x1.000346p+1F},
    {"bottom", 123.456, -78.9, 4.5, 123.48378386541839, 78.91775647355138, 0x1.edef66p+6F,
     0x1.3babc8p+6F},
    {"front", 3, 2, 1, 3.0003000305100085, 1.0001000093248837, 0x1.8009d4p+1F, 0x1.00068ep+0F},
    {"rear", 3, 2, 1, -2.9997000296589063, 0.9999000094919911, -0x1.7ff62cp+1F, 0x1.fff2e4p-1F},
    {"left", 3, 2, 1, -2.000300044668703, 1.000150022672416, -0x1.0009d4p+1F, 0x1.0009d4p+0F},
    {"right", 3, 2, 1, 1.9997000444862543, 0.9998500219896556, 0x1.ffec58p+0F, 0x1.ffec58p-1F},
    {"isometric-right", 3, 2, 1, 3.5399199696542993, 0.40557619789443866, 0x1.c51c1ap+1F,
     0x1.9f4f58p-2F},
    {"isometric-right", 123.456, -78.9, 4.5, 31.793139526847384, -78.74345710251761, 0x1.fcb0b2p+4F,
     -0x1.3af94cp+6F},
    {"isometric-left", 3, 2, 1, 0.7163992536113939, 2.863384762819354, 0x1.6ecbe2p-1F,
     0x1.6e8364p+1F},
    {"isometric-left", 123.456, -78.9, 4.5, 143.33975951116105, 21.94147367507803, 0x1.1eadf6p+7F,
     0x1.5f1046p+4F},
};

Projection Preset(const char* name) {
  const auto& degrees = Preset_Views[Find_Preset(name).value()].Degrees;
  return {degrees[0] / Preset_Degrees, degrees[1] / Preset_Degrees, degrees[2] / Preset_Degrees};
}

TEST(Projection, Worked_Points_In_Both_Forms) {
  for (const Worked_Point& p : worked_points) {
    SCOPED_TRACE(p.View);
    const Plot_Point point = Preset(p.View).Project(p.X, p.Y, p.Z);
    EXPECT_DOUBLE_EQ(point.X, p.Px);
    EXPECT_DOUBLE_EQ(point.Y, p.Py);
    const Plot_Point_Single single = Preset(p.View).Project_Single(
        static_cast<float>(p.X), static_cast<float>(p.Y), static_cast<float>(p.Z));
    EXPECT_EQ(single.X, p.Single_Px);
    EXPECT_EQ(single.Y, p.Single_Py);
  }
}

TEST(Projection, Columns_Give_What_Single_Points_Give) {
  std::mt19937 random(11);
  std::uniform_real_distribution<float> coordinate(-500, 500);
  constexpr std::size_t count = 77, first = 5;
  std::vector<std::vector<float>> ends(6, std::vector<float>(count + first));
  for (auto& column : ends)
    for (float& value : column) value = coordinate(random);
  std::vector<std::vector<float>> result(4, std::vector<float>(count));
  const Projection view(0.3, 4.1, 2.2);
  view.Project_Lines({ends[0].data(), ends[1].data(), ends[2].data(), ends[3].data(),
                      ends[4].data(), ends[5].data()},
                     first, count,
                     {result[0].data(), result[1].data(), result[2].data(), result[3].data()});
  for (std::size_t i = 0; i < count; ++i) {
    const std::size_t k = i + first;
    const auto from = view.Project_Single(ends[0][k], ends[1][k], ends[2][k]);
    const auto to = view.Project_Single(ends[3][k], ends[4][k], ends[5][k]);
    EXPECT_EQ(result[0][i], from.X);
    EXPECT_EQ(result[1][i], from.Y);
    EXPECT_EQ(result[2][i], to.X);
    EXPECT_EQ(result[3][i], to.Y);
  }
}

// The middle of the surface is 20000 away from the eye; with all angles 0, z grows towards it.
TEST(Projection, A_Point_Beside_The_Eye_Is_A_Fault) {
  const Projection straight(0, 0, 0);
  EXPECT_THROW(straight.Project(1, 1, 20000), Fault);
  EXPECT_DOUBLE_EQ(straight.Project(1, 1, 10000).X, 2);
}

}  // namespace
}  // namespace norvik
