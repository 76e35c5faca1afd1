// Zoom and pan tools, presets and extents. Spans and offsets of the rows are worked out by hand.
#include "plot_fixture.h"

namespace norvik {
namespace {

using View_Test = Plot_Test;

TEST_F(View_Test, Table_Zoom) {
  struct Row {
    const char* Name;
    float Width, Height;
    bool Centered;
    double Half_Span, Offset_X, Offset_Y;
    int Beeps;
  };
  const Row rows[] = {
      {"wide table", 10, 8, false, 5.625, -5, 5, 0},
      {"high table", 8, 16, false, 9, -8, 8, 0},
      // The shorter side is not centred: the middle of the window lies (X - Y) / 2 above 0.
      {"wide table, centred", 10, 8, true, 5.625, 0, 1, 0},
      {"high table, centred", 8, 16, true, 9, -4, 0, 0},
      {"no table", 0, 0, false, 3, 1, 2, 1},
      {"table of a thousandth", 0.001F, 0.001F, false, 3, 1, 2, 1},
      {"no sensible table", -5, -7, true, 3, 1, 2, 1},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.Name);
    Scripted.Beeps = 0;
    View.ZoomHalfSpan = 3;
    View.ViewOffsetX = 1;
    View.ViewOffsetY = 2;
    MachineSetup.Axis_Depth[1] = row.Width;
    MachineSetup.Axis_Depth[2] = row.Height;
    MachineSetup.Plot_Centered = row.Centered;
    Zoom_Table();
    EXPECT_DOUBLE_EQ(View.ZoomHalfSpan, row.Half_Span);
    EXPECT_DOUBLE_EQ(View.ViewOffsetX, row.Offset_X);
    EXPECT_DOUBLE_EQ(View.ViewOffsetY, row.Offset_Y);
    EXPECT_EQ(Scripted.Beeps, row.Beeps);
  }
}

TEST_F(View_Test, The_Window_Follows_Span_And_Offsets) {
  View.ZoomHalfSpan = 2;
  Pan_To(3, 7);
  EXPECT_EQ(View.ViewOffsetX, -3);
  EXPECT_EQ(View.ViewOffsetY, 7);
  EXPECT_EQ(Current_Scale(), (Plot_Scale{1, 9, 5, 5}));
  EXPECT_EQ(Picture1.Calls.front().Scale, Current_Scale());
}

TEST_F(View_Test, Spans_Stop_At_Their_Limits) {
  struct Row {
    const char* Name;
    std::function<void()> Tool;
    double Before, After;
    int Beeps;
  };
  const Row rows[] = {
      {"out", [] { Zoom_Out(); }, 30000, 50000, 0},
      {"out at the limit", [] { Zoom_Out(); }, 50000, 50000, 0},
      {"in", [] { Zoom_In_At(0, 0); }, 3, 1.5, 0},
      {"in near the limit", [] { Zoom_In_At(0, 0); }, 0.0015, 0.001, 1},
      {"in to the limit", [] { Zoom_In_At(0, 0); }, 0.002, 0.001, 0},
      {"wheel in", [] { Zoom_About(0.5, 1, 1); }, 0.0015, 0.001, 1},
      {"wheel out", [] { Zoom_About(2, 1, 1); }, 40000, 50000, 1},
      {"window too small", [] { Zoom_Window(1, 1, 1.0005, 1.0002); }, 3, 0.001, 1},
      {"window", [] { Zoom_Window(6, 1, 2, 3); }, 3, 2.2, 0},
      {"a huge table",
       [] {
         MachineSetup.Axis_Depth[1] = 2e5F;
         Zoom_Table();
       },
       3, 50000, 0},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.Name);
    Scripted.Beeps = 0;
    View.ZoomHalfSpan = row.Before;
    row.Tool();
    EXPECT_DOUBLE_EQ(View.ZoomHalfSpan, row.After);
    EXPECT_EQ(Scripted.Beeps, row.Beeps);
  }
}

TEST_F(View_Test, Window_Zoom_Puts_The_Corner_Inside) {
  Zoom_Window(6, 3, 2, 1);  // corners in any order
  EXPECT_DOUBLE_EQ(View.ViewOffsetX, -2 - 2.2 + 0.11);
  EXPECT_DOUBLE_EQ(View.ViewOffsetY, 2.2 + 1 - 0.11);
  // The lower left corner lies 5 % of the half span inside.
  EXPECT_DOUBLE_EQ(View.ViewLeft, 2 - 0.11);
  EXPECT_DOUBLE_EQ(View.ViewBottom, 1 - 0.11);
}

TEST_F(View_Test, Zooming_About_A_Point_Keeps_Its_Place) {
  View.ZoomHalfSpan = 4;
  Pan_To(1, 2);
  const World_Point before = Plot_World_To_Pixel(3, 5, 800, 800);
  Zoom_About(0.37, 3, 5);
  const World_Point after = Plot_World_To_Pixel(3, 5, 800, 800);
  EXPECT_NEAR(before.X, after.X, 1e-9);
  EXPECT_NEAR(before.Y, after.Y, 1e-9);
  const World_Point back = Plot_Pixel_To_World(after.X, after.Y, 800, 800);
  EXPECT_NEAR(back.X, 3, 1e-12);
  EXPECT_NEAR(back.Y, 5, 1e-12);
}

TEST_F(View_Test, Zoom_All_Shows_The_Projected_Minimum_Corner) {
  Load_Program({{.From = {1.0, 2.0, 0.5}, .To = {5.0, 4.0, -1.0}}});
  Recompute_Program_Extents();
  Zoom_All();
  EXPECT_DOUBLE_EQ(View.ZoomHalfSpan, 4 / 2.0 * 1.15);
  // Seen from the top, a point at Z = -1 lies a little nearer to the eye's axis.
  const double px = 1 * 20000.0 / 19999, py = 2 * 20000.0 / 19999;
  EXPECT_NEAR(View.ViewOffsetX, -px - 2.3 + 0.115, 1e-7);
  EXPECT_NEAR(View.ViewOffsetY, 2.3 + py - 0.115, 1e-7);
}

TEST_F(View_Test, Zoom_All_Of_An_Empty_Program_Beeps) {
  Recompute_Program_Extents();
  Messages.Panel[1] = "before";
  Zoom_All();
  EXPECT_EQ(Scripted.Beeps, 1);
  EXPECT_EQ(View.ZoomHalfSpan, 1);
  EXPECT_EQ(Messages.Panel[1], "");
  EXPECT_EQ(Messages.Status_Timeout[1], 5);
}

TEST_F(View_Test, Extents_Start_Anew_But_For_The_Z_Minimum) {
  Load_Program({{.From = {std::nullopt, -1.0, -3.0}, .To = {5.0, 4.0, 2.0}}});
  Recompute_Program_Extents();
  EXPECT_EQ(View.ProgramMin, (Indexed<double, 1, 3>{{5, -1, -3}}));
  EXPECT_EQ(View.ProgramMax, (Indexed<double, 1, 3>{{5, 4, 2}}));

  Load_Program({{.From = {-7.0, -8.0, 1.0}, .To = {-6.0, -2.0, 1.0}}});
  Recompute_Program_Extents();
  EXPECT_EQ(View.ProgramMin, (Indexed<double, 1, 3>{{-7, -8, -3}}));
  EXPECT_EQ(View.ProgramMax, (Indexed<double, 1, 3>{{0, 0, 1}}));  // maxima start at 0
}

TEST_F(View_Test, Absent_Coordinates_Take_The_Last_Ones) {
  View.ViewAngleA = View.ViewAngleB = View.ViewAngleC = 0;
  double px = 0, py = 0;
  Get3D_XYnormal(1, 2, 0, px, py);
  Get3D_XYnormal(std::nullopt, 3, std::nullopt, px, py);
  EXPECT_EQ(px, 1);
  EXPECT_EQ(py, -3);
  Get3D_XYnormal(std::nullopt, std::nullopt, 20000, px, py);
  EXPECT_EQ(px, 1);
  EXPECT_THAT(Error_Log(), testing::HasSubstr("Description: Get3D_XYnormal Error 11\r\n"));
}

}  // namespace
}  // namespace norvik
