// The strip beside the plot, the cursor and the spindle.
#include "plot/z_strip.h"

#include "plot_fixture.h"

namespace norvik {
namespace {

using testing::ElementsAre;

using Z_Strip_Test = Plot_Test;

std::vector<Recorded_Call> Of_Kind(const Recording_Surface& surface, Recorded_Call::Kind kind) {
  std::vector<Recorded_Call> found;
  for (const Recorded_Call& call : surface.Calls)
    if (call.What == kind) found.push_back(call);
  return found;
}

TEST_F(Z_Strip_Test, Ticks_Texts_And_Markers) {
  struct Row {
    bool Invert;
    Plot_Scale Scale;
    float First_Tick, Second_Tick, Last_Tick;
    const char *First_Text, *Last_Text;
    double Text_Above;
  };
  for (const Row& row :
       {Row{false, {0, 4.4, 10, -4.4}, -4, -3.6F, 4, "   -4.0", "    4.0", 0.4 / 6},
        Row{true, {0, -4.4, 10, 4.4}, 4, 3.6F, -4, "    4.0", "   -4.0", -0.4 / 6}}) {
    SCOPED_TRACE(row.Invert);
    MachineSetup.Display_Z_Coordinate_Invert = row.Invert;
    Recording_Surface strip;
    Draw_Z_Strip(strip, MachineSetup.Plot_Color);
    EXPECT_EQ(strip.Calls[0].Scale, row.Scale);
    EXPECT_EQ(strip.Calls[1].Color, Ground_Color);

    const auto lines = strip.Lines();
    ASSERT_EQ(lines.size(), 21U + 1 + 3);
    EXPECT_EQ(lines[0], (Plot_Line{5, row.First_Tick, 8, row.First_Tick, Black, 1}));
    EXPECT_NEAR(lines[1].Y1, row.Second_Tick, 1e-6);
    EXPECT_NEAR(lines[20].Y1, row.Last_Tick, 1e-6);
    EXPECT_EQ(lines[21], (Plot_Line{5, row.First_Tick, 5, -row.First_Tick, Black, 1}));
    EXPECT_EQ(lines[22], (Plot_Line{4.5, 1, 8, 1, Travel_Color, 1}));
    EXPECT_EQ(lines[23], (Plot_Line{4.5, 0.5, 8, 0.5, Cut_Color, 1}));
    EXPECT_EQ(lines[24], (Plot_Line{4.5, -1, 8, -1, Deep_Color, 1}));

    const auto texts = Of_Kind(strip, Recorded_Call::Kind::Text);
    ASSERT_EQ(texts.size(), 21U);
    EXPECT_EQ(texts.front().Text, row.First_Text);
    EXPECT_GE(Contrast(texts.front().Color, Ground_Color), 4.5);
    EXPECT_EQ(texts.front().X, -0.5);
    EXPECT_NEAR(texts.front().Y, row.First_Tick + row.Text_Above, 1e-9);
    EXPECT_EQ(texts[10].Text, "    Z");
    EXPECT_EQ(texts.back().Text, row.Last_Text);
  }
}

TEST_F(Z_Strip_Test, A_Table_Without_Z_Leaves_It_Empty) {
  MachineSetup.Axis_Depth[3] = 0;
  Recording_Surface strip;
  Draw_Z_Strip(strip, MachineSetup.Plot_Color);
  EXPECT_EQ(strip.Calls.size(), 2U);
}

TEST_F(Z_Strip_Test, The_Cross_Follows_Four_Times_A_Second_And_Blinks) {
  int shown = 0;
  Plot_Host.Shapes_Changed = [&] { ++shown; };
  View.ZoomHalfSpan = 5;
  View.ViewAngleA = View.ViewAngleB = View.ViewAngleC = 0;
  MachineSetup.Display_Z_Coordinate_Invert = true;
  Scripted.Advance(1);
  Draw_Spindle_Position(2, 3, -4000);
  const auto& cross = Plot_Form.Cursor;
  EXPECT_NEAR(cross[0].X1, 1 * 1.25, 1e-9);  // z counts as 4000: a quarter nearer
  EXPECT_NEAR(cross[0].X2, 3 * 1.25, 1e-9);
  EXPECT_NEAR(cross[0].Y1, -3 * 1.25, 1e-9);
  EXPECT_NEAR(cross[1].Y1, -2 * 1.25, 1e-9);
  EXPECT_NEAR(cross[1].Y2, -4 * 1.25, 1e-9);
  EXPECT_EQ(cross[0].Color, 0x0000AA);
  EXPECT_TRUE(cross[1].Visible);

  Scripted.Advance(0.2);
  Draw_Spindle_Position(9, 9, 0);
  EXPECT_NEAR(cross[0].X1, 1.25, 1e-9);  // kept
  EXPECT_EQ(shown, 1);
  Scripted.Advance(0.05);
  Draw_Spindle_Position(9, 9, 0);
  EXPECT_EQ(cross[0].X1, 8);
  EXPECT_EQ(cross[0].Color, 0x00AAAA);

  MachineSetup.Hide_Axis_Cursor = true;
  Draw_Spindle_Position(1, 1, 0);
  EXPECT_FALSE(cross[0].Visible || cross[1].Visible);
  EXPECT_EQ(cross[0].X1, 8);
}

TEST_F(Z_Strip_Test, A_Cursor_Beside_The_Eye_Is_Reported) {
  View.ViewAngleA = View.ViewAngleB = View.ViewAngleC = 0;
  Draw_Spindle_Position(0, 0, 20000);
  EXPECT_THAT(Error_Log(), testing::HasSubstr("Draw Spindle Position Error # "));
}

TEST_F(Z_Strip_Test, The_Spindle_Turns_Below_A_Cutting_Level) {
  struct Row {
    const char* Name;
    bool Invert;
    double Z;
    double Top;
    std::vector<int> Frames;  // of three calls in a row
  };
  Plot_Form.Image_Spindle.Height = 2;
  for (const Row& row : {Row{"above the levels", false, 0.5, 1.5, {0, 0, 0}},
                         Row{"just below the cut", false, 0.498, 1.498, {1, 0, 1}},
                         Row{"deep", false, -2, -1, {1, 0, 1}},
                         Row{"display turned round", true, 2, -3, {1, 0, 1}}}) {
    SCOPED_TRACE(row.Name);
    Plot_Form.Image_Spindle.Frame = 0;
    MachineSetup.Display_Z_Coordinate_Invert = row.Invert;
    Machine.Position[3] = row.Z;
    std::vector<int> frames;
    for (int call = 0; call < 3; ++call) {
      Scripted.Advance(0.11);
      Draw_Spindle();
      Draw_Spindle();  // within the same period: no effect
      frames.push_back(Plot_Form.Image_Spindle.Frame);
    }
    EXPECT_EQ(frames, row.Frames);
    EXPECT_NEAR(Plot_Form.Image_Spindle.Top, row.Top, 1e-12);
  }
}

TEST_F(Z_Strip_Test, Shapes_And_Spindle_Are_Painted_Over_The_Picture) {
  Plot_Form.Band[2] = {1, 2, 3, 4, Black, true};
  Plot_Form.Cursor[0] = {5, 6, 7, 8, 0x0000AA, true};
  Recording_Surface picture, strip;
  Paint_Shapes(picture);
  EXPECT_THAT(picture.Lines(),
              ElementsAre(Plot_Line{5, 6, 7, 8, 0x0000AA, 1}, Plot_Line{1, 2, 3, 4, Black, 1}));

  Plot_Form.Image_Spindle = {.Top = 1.5, .Height = 0.88, .Frame = 1, .Visible = true};
  Paint_Spindle(strip, 100, 600);
  EXPECT_EQ(strip.Calls.at(0).Y, 1.5);
  EXPECT_EQ(strip.Calls.at(0).Picture_Height, 60);  // 0.88 of 8.8 units on 600 pixels
  EXPECT_NE(Spindle_Picture(0, 60, White).Pixels, Spindle_Picture(1, 60, White).Pixels);
}

}  // namespace
}  // namespace norvik
