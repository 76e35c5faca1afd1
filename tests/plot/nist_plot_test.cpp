// Drawing of the program: what reaches the surfaces, the panels and the log.
#include "plot/nist_plot.h"

#include "plot/raster_surface.h"
#include "plot_fixture.h"

namespace norvik {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

class Nist_Plot_Test : public Plot_Test {
 protected:
  // Angles 0 draw (x, -y); the window is -5..5.
  Nist_Plot_Test() {
    View.ViewAngleA = View.ViewAngleB = View.ViewAngleC = 0;
    View.ZoomHalfSpan = 5;
  }

  static void Load_Corner() {
    Load_Program({{.Step = 1, .FeedMove = false, .From = {}, .To = {1.0, 0.0, 0.0}},
                  {.Step = 2, .From = {1.0, 0.0, 0.0}, .To = {1.0, 2.0, 0.0}},
                  {.Step = 2, .From = {1.0, 2.0, 0.0}, .To = {3.0, 2.0, 0.0}},
                  {.Step = 3, .From = {7.0, 2.0, 0.0}, .To = {9.0, 2.0, 0.0}}});
  }
};

TEST_F(Nist_Plot_Test, Draws_The_Program_And_Cleans_Up) {
  Load_Corner();
  NIST_Plot(true);
  const Plot_Line travel{0, 0, 1, 0, Travel_Color, 1}, up{1, 0, 1, -2, Cut_Color, 1},
      right{1, -2, 3, -2, Cut_Color, 1};
  ASSERT_EQ(Picture1.Calls.size(), 5U);  // the last element lies outside
  EXPECT_EQ(Picture1.Calls[0].Scale, (Plot_Scale{-5, 5, 5, -5}));
  EXPECT_EQ(Picture1.Calls[1].Color, Ground_Color);
  EXPECT_THAT(Picture1.Lines(), ElementsAre(travel, up, right));
  EXPECT_EQ(Plot.PlotLines.Count(), 4U);
  EXPECT_FALSE(View.PlotBusy);
  EXPECT_EQ(Messages.Panel[1], "");
  EXPECT_EQ(Scripted.Pointers, (std::vector{Mouse_Pointer::Busy, Mouse_Pointer::Normal}));

  // A replot reads the lists alone, and the absent start is the same again.
  Load_Program({});
  NIST_RePlot();
  EXPECT_THAT(Picture1.Lines(), ElementsAre(travel, up, right));
  NIST_Plot(true);
  EXPECT_THAT(Picture1.Lines(), IsEmpty());
}

TEST_F(Nist_Plot_Test, Path_Of_Before_Lies_Faint_Under_The_Next_One) {
  constexpr std::int32_t faint = 0xBCBCBC;  // three quarters of the ground's 0xFA, rounded up
  Load_Program({{.From = {}, .To = {1.0, 0.0, 0.0}}});
  Plot_New_Program();
  Plot_Keep_Path_Before();
  Load_Program({{.From = {0.0, 0.0, 0.0}, .To = {2.0, 0.0, 0.0}}});
  const Plot_Line old{0, 0, 1, 0, faint, 1}, present{0, 0, 2, 0, Cut_Color, 1};
  NIST_Plot(true);
  EXPECT_THAT(Picture1.Lines(), ElementsAre(present)) << "not before the next new program";
  Plot_New_Program();
  EXPECT_THAT(Picture1.Lines(), ElementsAre(old, present));
  NIST_RePlot();
  EXPECT_THAT(Picture1.Lines(), ElementsAre(old, present)) << "turning the view keeps it";
  Plot_New_Program();
  EXPECT_THAT(Picture1.Lines(), ElementsAre(present));
}

TEST_F(Nist_Plot_Test, Grid_And_Origin_Come_First) {
  MachineSetup.Plot_Show_Grid = 1;
  MachineSetup.Axis_Depth = {{4, 4, 4, 1}};
  MachineSetup.Axis_Table_Grid_Size = 4;
  Load_Program({{.From = {0.0, 0.0, 0.0}, .To = {1.0, 0.0, 0.0}}});
  NIST_Plot(true);
  EXPECT_THAT(
      Picture1.Lines(),
      ElementsAre(Plot_Line{0, 0, 0, -4, Grid_Color, 1}, Plot_Line{4, 0, 4, -4, Grid_Color, 1},
                  Plot_Line{0, 0, 4, 0, Grid_Color, 1}, Plot_Line{0, -4, 4, -4, Grid_Color, 1},
                  Plot_Line{0, 0, 0, 0, Grid_Color, 1}, Plot_Line{0, 0, 0, 0, Grid_Color, 1},
                  Plot_Line{0, 0, 1, 0, Cut_Color, 1}));
  EXPECT_FALSE(Picture_ZAxis.Calls.empty());
}

TEST_F(Nist_Plot_Test, A_Nonsensical_Grid_Leaves_The_Program_To_Be_Seen) {
  MachineSetup.Plot_Show_Grid = 1;
  MachineSetup.Axis_Table_Grid_Size = 1e-9F;
  Load_Corner();
  NIST_Plot(true);
  EXPECT_EQ(Picture1.Lines().size(), 5U);  // two dots at the origin, three elements
  EXPECT_THAT(Error_Log(), HasSubstr("Plot_Grid_Error # 5 The grid size"));
}

TEST_F(Nist_Plot_Test, A_Second_Plot_Never_Starts_Over_A_Running_One) {
  Load_Corner();
  int inner_calls = -1;
  Scripted.On_Yield = [&] {
    EXPECT_TRUE(View.PlotBusy);
    EXPECT_EQ(Messages.Panel[1], "Nist Plot: Plotting Data...");
    EXPECT_EQ(Messages.Status_Timeout[1], 5);
    NIST_Plot(true);
    inner_calls = static_cast<int>(Picture1.Calls.size());
  };
  NIST_Plot(true);
  EXPECT_EQ(inner_calls, 0);
  EXPECT_EQ(Picture1.Lines().size(), 3U);
}

TEST_F(Nist_Plot_Test, A_Tool_Out_Of_Range_Is_Reported_And_Releases_The_Plot) {
  Load_Program({{.From = {0.0, 0.0, 0.0}, .To = {1.0, 0.0, 0.0}},
                {.From = {1.0, 0.0, 0.0}, .To = {2.0, 0.0, 0.0}, .Tool = 201}});
  NIST_Plot(true);
  EXPECT_THAT(Error_Log(), HasSubstr("NIST_Plot_Error # 9 Index 201 is outside 0..200"));
  EXPECT_FALSE(View.PlotBusy);
  EXPECT_EQ(Scripted.Pointers.back(), Mouse_Pointer::Normal);
  EXPECT_EQ(Picture1.Lines().size(), 1U);  // what stands before it is shown
}

TEST_F(Nist_Plot_Test, A_Coordinate_Too_Large_To_Draw_Drops_Its_Line_Alone) {
  Load_Program({{.From = {0.0, 0.0, 0.0}, .To = {1e39, 0.0, 0.0}},
                {.From = {0.0, 0.0, 0.0}, .To = {1.0, 0.0, 0.0}}});
  NIST_Plot(true);
  EXPECT_EQ(Plot.PlotLines.Too_Large, 1U);
  EXPECT_EQ(Picture1.Lines().back(), (Plot_Line{0, 0, 1, 0, Cut_Color, 1}));
  EXPECT_THAT(Error_Log(), HasSubstr("1 lines have a coordinate too large to draw"));
}

TEST_F(Nist_Plot_Test, Without_A_Window_Lists_Are_Built_And_Nothing_Is_Painted) {
  Load_Corner();
  Plot_Host.Picture1 = Plot_Host.Picture_ZAxis = nullptr;
  MachineSetup.Plot_Show_Grid = 1;
  NIST_Plot(true);
  NIST_RePlot();
  NIST_Plot_Block(2, 0, 2);
  EXPECT_EQ(Plot.PlotLines.Count(), 4U);
  EXPECT_THAT(Picture1.Calls, IsEmpty());
}

TEST_F(Nist_Plot_Test, A_Watched_Drawing_Grows_Piece_By_Piece) {
  MachineSetup.Plot_FastDraw = 0;
  Load_Corner();
  std::vector<std::size_t> seen;
  Scripted.On_Yield = [&] { seen.push_back(Picture1.Lines().size()); };
  NIST_Plot(true);
  EXPECT_THAT(seen, ElementsAre(0, 1, 2, 3, 3));
  // The window closes while the picture grows.
  Scripted.On_Yield = [&] {
    if (Picture1.Lines().size() == 2) Plot_Host.Picture1 = nullptr;
  };
  NIST_Plot(true);
  EXPECT_EQ(Picture1.Lines().size(), 2U);
  EXPECT_FALSE(View.PlotBusy);
}

TEST_F(Nist_Plot_Test, Dwells_Are_Waited_Out_Only_When_Asked_For) {
  Load_Program({{.From = {0.0, 0.0, 0.0}, .To = {1.0, 0.0, 0.0}, .Dwell = 2},
                {.From = {0.0, 0.0, 0.0}, .To = {1.0, 0.0, 0.0}, .Dwell = -1}});
  Scripted.Yield_Nanoseconds = 10'000'000;
  const auto seconds = [this] {
    const std::int64_t begin = Scripted.Now;
    NIST_Plot(true);
    return static_cast<double>(Scripted.Now - begin) / 1e9;
  };
  EXPECT_LT(seconds(), 0.1);
  MachineSetup.Plot_Dwell_Enable = true;
  EXPECT_NEAR(seconds(), 2, 0.1);
  // A serial drive first comes to rest.
  MachineSetup.Parallel_Port_Type = 2;
  const std::int64_t rest = Scripted.Now + 3'000'000'000;
  Plot_Host.Motion_Active = [this, rest] { return Scripted.Now < rest; };
  EXPECT_NEAR(seconds(), 5, 0.1);
  // ESC ends it; the flag stays for the run.
  Scripted.On_Yield = [] { Application.EscFlag = true; };
  EXPECT_LT(seconds(), 0.1);
  EXPECT_TRUE(Application.EscFlag);
}

TEST_F(Nist_Plot_Test, The_Table_May_Be_Replaced_During_A_Dwell) {
  MachineSetup.Plot_Dwell_Enable = true;
  Load_Program({{.Dwell = 1}, {}, {}});
  Scripted.Yield_Nanoseconds = 100'000'000;
  Scripted.On_Yield = [] {
    if (Plot.PlotLines.Count() == 0 && Platform.Monotonic_Clock() > 500'000'000) Load_Program({});
  };
  NIST_Plot(true);
  EXPECT_FALSE(View.PlotBusy);
  EXPECT_EQ(Error_Log(), "");
}

TEST_F(Nist_Plot_Test, Refresh_Says_How_Long_It_Took) {
  struct Row {
    const char* Name;
    double Begin, End;
    const char* Seconds;
  };
  for (const Row& row :
       {Row{"plain", 36000, 36001.25, "1.250"}, Row{"over midnight", 86399.5, 0.25, "0.750"},
        Row{"no time", 5, 5, "0.000"}}) {
    SCOPED_TRACE(row.Name);
    double clock = row.Begin;
    Platform.Day_Clock = [&] { return std::exchange(clock, row.End); };
    Plot_Refresh();
    EXPECT_EQ(Messages.Panel[1],
              std::string("GCode Plot: Plotting Data time ") + row.Seconds + " Seconds.");
    EXPECT_EQ(Messages.Status_Timeout[1], 5);
  }
}

TEST_F(Nist_Plot_Test, A_Block_Is_Drawn_Over_The_Picture) {
  Load_Corner();
  NIST_Plot(true);
  Picture1.Calls.clear();
  NIST_Plot_Block(2, 0, Line_Mode_Run);
  EXPECT_THAT(Picture1.Lines(), ElementsAre(Plot_Line{1, 0, 1, -2, Cut_Color, 1},
                                            Plot_Line{1, -2, 3, -2, Cut_Color, 1}));
  EXPECT_EQ(Plot.Current_Point, (Indexed<Nullable, 1, 3>{{3, 2, 0}}));
  Picture1.Calls.clear();
  Plot_Draw_Wire(Program_Wire.Rows()[1], 0, Line_Mode_Run);
  EXPECT_THAT(Picture1.Lines(), ElementsAre(Plot_Line{1, 0, 1, -2, Cut_Color, 1}));
  EXPECT_EQ(Plot.Current_Point, (Indexed<Nullable, 1, 3>{{1, 2, 0}}));
  Machine.Position = {{2, 3, 0, 0, 0, 0}};
  Plot_Mark_At_Cursor("X");
  EXPECT_EQ(Picture1.Calls.back().Text, "X");
  EXPECT_EQ(Picture1.Calls.back().X, 2);
  EXPECT_EQ(Picture1.Calls.back().Y, -3);
  // The highlight: black, five times as wide, and in white on a ground too dark for black.
  Picture1.Calls.clear();
  Plot_Highlight_Step(3);
  Plot_Highlight_Step(2);
  EXPECT_EQ(Picture1.Lines().size(), 5U);  // the last highlight has gone
  EXPECT_EQ(Picture1.Lines().back(), (Plot_Line{1, -2, 3, -2, Black, 5}));
  Plot.Palette = Readable_Palette(MachineSetup.Plot_Color, Dark_Background);
  Plot_Highlight_Step(2);
  EXPECT_EQ(Picture1.Lines().back(), (Plot_Line{1, -2, 3, -2, White, 5}));
  Picture1.Calls.clear();
  NIST_Plot_Block(99, 0, 0);
  EXPECT_THAT(Picture1.Calls, IsEmpty());
}

TEST_F(Nist_Plot_Test, A_Highlight_Leaves_Nothing_Of_The_One_Before_And_Follows_A_New_Drawing) {
  Load_Corner();
  Raster_Surface raster(200, 200);
  Plot_Host.Picture1 = &raster;
  NIST_Plot(true);
  const auto pixels_of = [&](std::int32_t step) {
    NIST_RePlot();
    NIST_Plot_Block(step, Highlight_On, 0);
    return raster.Image().Pixels;
  };
  const auto first = pixels_of(1), second = pixels_of(2);
  ASSERT_NE(first, second);
  for (const auto& [step, pixels] : {std::pair(2, second), std::pair(1, first)}) {
    Plot_Highlight_Step(step);
    EXPECT_EQ(raster.Image().Pixels, pixels);
  }
  Plot.PlotLines.Clear();
  NIST_RePlot();
  const auto empty = raster.Image().Pixels;
  Plot_Highlight_Step(99);
  EXPECT_EQ(raster.Image().Pixels, empty);
  Plot_Host.Picture1 = &Picture1;
}

TEST_F(Nist_Plot_Test, A_Run_Forgets_The_Tool_After_Each_Wire) {
  Tools.Diameter[1] = 1e6;
  Load_Program({{.From = {0.0, 0.0, 0.0}, .To = {1.0, 0.0, 0.0}, .Tool = 1},
                {.From = {1.0, 0.0, 0.0}, .To = {2.0, 0.0, 0.0}}});
  Plot_Form.Picture1.Width = 9000;
  const auto widths = [&](std::int32_t mode) {
    Picture1.Calls.clear();
    NIST_Plot_Block(1, 0, mode);
    return std::pair(Picture1.Lines()[0].Width, Picture1.Lines()[1].Width);
  };
  NIST_Plot(true);
  EXPECT_EQ(widths(Line_Mode_Run), std::pair(std::int16_t{74}, std::int16_t{1}));
  EXPECT_EQ(widths(0), std::pair(std::int16_t{74}, std::int16_t{74}));
  // 10 world units over 9000 window units and the constant: 1e6 units wide give 73.8 pixels.
  EXPECT_NEAR(Pixel_Factor({-5, 5, 5, -5}, 9000) * 1e6, 73.83, 0.01);
}

}  // namespace
}  // namespace norvik
