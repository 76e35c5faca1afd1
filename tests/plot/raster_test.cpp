// Pixels of the rasteriser.
#include "plot/raster.h"

#include "plot/plot_colour.h"
#include "plot/raster_surface.h"

#include <cmath>
#include <limits>
#include <random>
#include <string>

#include <gtest/gtest.h>

namespace norvik {
namespace {

constexpr std::uint32_t ink = 0xFF0000FF, ground = 0xFFFFFFFF;

// Rows of the picture, '#' where it is not the ground.
std::string Drawn(const Plot_Image& image) {
  std::string text;
  for (std::int32_t y = 0; y < image.Height; ++y) {
    for (std::int32_t x = 0; x < image.Width; ++x) text += image.At(x, y) == ground ? '.' : '#';
    text += '\n';
  }
  return text;
}

TEST(Raster, Pixels_Of_Single_Lines) {
  struct Row {
    const char* Name;
    double X1, Y1, X2, Y2;
    int Width;
    const char* Picture;
  };
  const Row rows[] = {
      {"dot", 2.5, 1.5, 2.5, 1.5, 1, ".......\n..#....\n.......\n.......\n.......\n"},
      {"both ends", 1, 1, 5.9, 1, 1, ".......\n.#####.\n.......\n.......\n.......\n"},
      {"flat slope", 0, 0, 6, 2, 1, "##.....\n..###..\n.....##\n.......\n.......\n"},
      {"steep", 1, 0, 2, 4, 1, ".#.....\n.#.....\n.#.....\n..#....\n..#....\n"},
      {"backwards", 6, 4, 4, 2, 1, ".......\n.......\n....#..\n.....#.\n......#\n"},
      {"crosses the picture", -20, 2, 20, 2, 1, ".......\n.......\n#######\n.......\n.......\n"},
      {"beside the picture", -20, -1, 20, -0.1, 1, ".......\n.......\n.......\n.......\n.......\n"},
      {"three pixels", 2, 2, 4, 2, 3, ".......\n.#####.\n.#####.\n.#####.\n.......\n"},
      {"three at the edge", -1, 0, 1, 0, 3, "###....\n###....\n.......\n.......\n.......\n"},
      {"two pixels", 3, 1, 3, 3, 2, ".......\n...##..\n...##..\n...##..\n...##..\n"},
      {"round end", 3, 2, 3, 2, 5, "..###..\n.#####.\n.#####.\n.#####.\n..###..\n"},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.Name);
    Plot_Image image(7, 5, ground);
    Draw_Raster_Line(View_Of(image), row.X1, row.Y1, row.X2, row.Y2, row.Width, ink);
    EXPECT_EQ(Drawn(image), row.Picture);
  }
}

// A line lights the same pixels whether its picture ends early or not: no jumps at the edges.
TEST(Raster, A_Smaller_Picture_Is_A_Cut_Out_Of_The_Larger) {
  std::mt19937 random(5);
  std::uniform_real_distribution<double> place(-60, 140);
  constexpr std::int32_t large = 200, left = 60, small = 40;
  for (int round = 0; round < 2000; ++round) {
    const double x1 = place(random), y1 = place(random), x2 = place(random), y2 = place(random);
    const int width = round % 14 + 1;
    Plot_Image whole(large, large, ground), part(small, small, ground);
    Draw_Raster_Line(View_Of(whole), x1 + left, y1 + left, x2 + left, y2 + left, width, ink);
    Draw_Raster_Line(View_Of(part), x1, y1, x2, y2, width, ink);
    for (std::int32_t y = 0; y < small; ++y)
      for (std::int32_t x = 0; x < small; ++x)
        ASSERT_EQ(part.At(x, y), whole.At(x + left, y + left))
            << "round " << round << ": (" << x1 << ", " << y1 << ")-(" << x2 << ", " << y2
            << ") width " << width << " at " << x << ", " << y;
  }
}

// Every pixel well within half a pen of the line is lit, none well outside.
TEST(Raster, Wide_Pens_Cover_What_Lies_Near_The_Line) {
  std::mt19937 random(9);
  std::uniform_int_distribution<int> place(5, 55);
  for (int round = 0; round < 300; ++round) {
    const double x1 = place(random), y1 = place(random), x2 = place(random), y2 = place(random);
    const int width = round % 20 + 3;
    Plot_Image image(60, 60, ground);
    Draw_Raster_Line(View_Of(image), x1, y1, x2, y2, width, ink);
    const double middle = width % 2 == 0 && width < 10 ? 0.5 : 0;  // an even brush leans right
    for (std::int32_t y = 0; y < 60; ++y) {
      for (std::int32_t x = 0; x < 60; ++x) {
        const double px = x - middle, py = y - middle, dx = x2 - x1, dy = y2 - y1;
        const double along =
            dx == 0 && dy == 0
                ? 0
                : std::clamp(((px - x1) * dx + (py - y1) * dy) / (dx * dx + dy * dy), 0.0, 1.0);
        const double away = std::hypot(px - x1 - along * dx, py - y1 - along * dy);
        const bool lit = image.At(x, y) == ink;
        ASSERT_FALSE(away < width / 2.0 - 1 && !lit) << round << ": " << x << ", " << y;
        ASSERT_FALSE(away > width / 2.0 + 1 && lit) << round << ": " << x << ", " << y;
      }
    }
  }
}

TEST(Raster, Ends_Of_Any_Size_Do_No_Harm) {
  const double nan = std::nan(""), infinity = std::numeric_limits<double>::infinity();
  const double far = 1.7e308;  // twice that is no number any more
  struct Row {
    double X1, Y1, X2, Y2;
    bool Seen;
  };
  const Row rows[] = {
      {nan, 1, 2, 3, false},        {0, 0, infinity, 2, false}, {-far, -far, far, far, false},
      {-1e30, 2, 1e30, 2, true},    {2, -1e9, 2, 1e9, true},    {-1e12, 3, -1e11, 3, false},
      {3e6, 3e6, -3e6, -3e6, true},
  };
  for (const int width : {1, 3, 40}) {
    for (const Row& row : rows) {
      Plot_Image image(20, 20, ground);
      Draw_Raster_Line(View_Of(image), row.X1, row.Y1, row.X2, row.Y2, width, ink);
      EXPECT_EQ(Drawn(image).find('#') != std::string::npos, row.Seen)
          << row.X1 << " " << row.X2 << " width " << width;
    }
  }
}

TEST(Raster, Later_Lines_Cover_Earlier_Ones_Across_Batches) {
  Raster_Surface surface(9, 9);
  surface.Set_Scale({0, 9, 9, 0});  // Y upward
  surface.Clear(White);
  const Plot_Line red{0.5F, 4.5F, 8.5F, 4.5F, 0x0000FF, 1};
  const Plot_Line blue{4.5F, 0.5F, 4.5F, 8.5F, 0xFF0000, 1};
  const Plot_Line batch[] = {red, blue};
  surface.Draw_Lines(batch);
  EXPECT_EQ(surface.Image().At(4, 4), 0xFF0000FFU);
  EXPECT_EQ(surface.Image().At(0, 4), 0xFFFF0000U);
  surface.Draw_Line(red);
  EXPECT_EQ(surface.Image().At(4, 4), 0xFFFF0000U);
  const Plot_Line low{0.5F, 0.5F, 0.5F, 0.5F, 0, 1};
  surface.Draw_Line(low);
  EXPECT_EQ(surface.Image().At(0, 8), 0xFF000000U);  // the lowest row of the picture
}

TEST(Raster, Pictures_Are_Cut_At_The_Edges_And_Transparent_Places_Kept) {
  Plot_Image stamp(3, 2, 0);
  stamp.At(0, 0) = stamp.At(2, 1) = ink;
  const Plot_Scale scale{0, 0, 5, 4};
  struct Row {
    double X, Y;
    const char* Picture;
  };
  for (const Row& row :
       {Row{1, 1, ".....\n.#...\n...#.\n.....\n"}, Row{-2, -1, "#....\n.....\n.....\n.....\n"},
        Row{4, 3, ".....\n.....\n.....\n....#\n"}, Row{1e9, 0, ".....\n.....\n.....\n.....\n"}}) {
    Raster_Surface surface(5, 4);
    surface.Set_Scale(scale);
    surface.Clear(White);
    surface.Draw_Picture(row.X, row.Y, stamp);
    EXPECT_EQ(Drawn(surface.Image()), row.Picture);
  }
}

TEST(Plot_Colours, Bytes_And_Contrast) {
  EXPECT_EQ(Argb(0xFF0000), 0xFF0000FFU);    // blue stands highest in the setup
  EXPECT_EQ(Argb(0x7F123456), 0xFF563412U);  // what stands above three bytes is ignored
  EXPECT_NEAR(Contrast(Black, White), 21, 1e-9);
  EXPECT_EQ(Ink_On(0xFAFAFA), Black);
  EXPECT_EQ(Ink_On(Dark_Background), White);
}

TEST(Plot_Colours, A_Palette_Becomes_Readable_On_Any_Ground) {
  const Plot_Palette colors{{0xFF0000, 0x005ED5, 0x6B8F00, 0xFAFAFA, 0xA0A0A0, 0x1414DC, 0x0096FF}};
  for (const std::int32_t ground_color : {Light_Background, Dark_Background, Black, 0x808080}) {
    const Plot_Palette readable = Readable_Palette(colors, ground_color);
    for (const int role : {plot_role::Travel, plot_role::Cut, plot_role::Deep_Cut})
      EXPECT_GE(Contrast(readable[role], ground_color), 3) << role << " on " << ground_color;
    EXPECT_EQ(readable[plot_role::Background], ground_color);
    EXPECT_NE(readable[plot_role::Cut], readable[plot_role::Deep_Cut]);
  }
  // What can be read stays as the operator chose it.
  EXPECT_EQ(Readable_Palette(colors, Light_Background)[plot_role::Cut], 0x005ED5);
}

}  // namespace
}  // namespace norvik
