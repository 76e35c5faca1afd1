// Mouse, tools and buttons of the plot window.
#include "plot_fixture.h"

namespace norvik {
namespace {

using testing::HasSubstr;

class Plot_Form_Test : public Plot_Test {
 protected:
  Plot_Form_Test() {
    View.ZoomHalfSpan = 5;
    Derive_View_Scale();
  }
  static bool Band_Shown() {
    for (const Line_Shape& shape : Plot_Form.Band)
      if (shape.Visible) return true;
    return false;
  }
};

TEST_F(Plot_Form_Test, Every_Tool_Is_Refused_While_A_Plot_Runs) {
  const std::function<void()> tools[] = {
      Command_ZoomIn_Click,
      Command_ZoomOut_Click,
      Command_Zoom_Win_Click,
      Command_Zoom_Table_Click,
      Command_Zoom_All_Click,
      Command_Zoom_Pan_Click,
      Command_Refresh_Click,
      [] { Command_3D_Click(2); },
      [] { Picture1_Mouse_Down(Mouse_Button::Left, 1, 1); },
      [] { Picture1_Mouse_Wheel(1, 1, 1); },
  };
  for (const auto& tool : tools) {
    Plot_Form = {};
    Plot_Form.PanActive = true;
    View.PlotBusy = true;
    Scripted.Beeps = 0;
    const View_State before = View;
    tool();
    EXPECT_EQ(Scripted.Beeps, 1);
    EXPECT_EQ(View.ZoomHalfSpan, before.ZoomHalfSpan);
    EXPECT_EQ(View.ViewOffsetX, before.ViewOffsetX);
    EXPECT_EQ(View.ViewAngleA, before.ViewAngleA);
    EXPECT_TRUE(Plot_Form.PanActive);
  }
  // Rotations are ignored without a beep.
  const double angle = View.ViewAngleA;
  Picture2_Mouse_Move(Mouse_Button::Left, 20, 20);
  Picture1_Drag_Picture(1, 1);
  EXPECT_EQ(View.ViewAngleA, angle);
  EXPECT_TRUE(Picture1.Calls.empty());
}

TEST_F(Plot_Form_Test, One_Tool_At_A_Time_And_The_Right_Button_Ends_All) {
  struct Row {
    std::function<void()> Arm;
    bool Plot_Form_Record::*Active, Plot_Form_Record::*Pressed;
    Surface_Pointer Pointer;
  };
  const Row rows[] = {
      {Command_ZoomIn_Click, &Plot_Form_Record::ZoomInActive, &Plot_Form_Record::Command_ZoomIn,
       Surface_Pointer::Zoom_Cross},
      {Command_Zoom_Win_Click, &Plot_Form_Record::ZoomWindowActive,
       &Plot_Form_Record::Command_Zoom_Win, Surface_Pointer::Cross},
      {Command_Zoom_Pan_Click, &Plot_Form_Record::PanActive, &Plot_Form_Record::Command_Zoom_Pan,
       Surface_Pointer::Cross},
  };
  for (const Row& armed : rows) {
    armed.Arm();
    for (const Row& row : rows) {
      EXPECT_EQ(Plot_Form.*row.Active, &row == &armed);
      EXPECT_EQ(Plot_Form.*row.Pressed, &row == &armed);
    }
    EXPECT_EQ(Plot_Form.Pointer, armed.Pointer);
    EXPECT_FALSE(Plot_Form.HighlightEnabled);
  }
  Command_Zoom_Win_Click();
  Picture1_Mouse_Down(Mouse_Button::Left, 1, 1);
  Picture1_Mouse_Move(2, 2);
  EXPECT_TRUE(Band_Shown());
  View.PlotBusy = true;  // the right button works at any time
  Picture1_Mouse_Down(Mouse_Button::Right, 0, 0);
  EXPECT_FALSE(Band_Shown());
  EXPECT_FALSE(Plot_Form.ZoomWindowActive || Plot_Form.ZoomWindowDragging);
  EXPECT_FALSE(Plot_Form.Command_Zoom_Win);
  EXPECT_TRUE(Plot_Form.HighlightEnabled);
  EXPECT_EQ(Scripted.Beeps, 0);
}

TEST_F(Plot_Form_Test, Zoom_In_And_Pan_Stay_Armed) {
  Command_ZoomIn_Click();
  Picture1_Mouse_Down(Mouse_Button::Left, 2, 1);
  Picture1_Mouse_Down(Mouse_Button::Left, 3, -1);
  EXPECT_EQ(View.ZoomHalfSpan, 1.25);
  EXPECT_EQ(Current_Scale(), (Plot_Scale{1.75, 0.25, 4.25, -2.25}));
  Picture1_Mouse_Up(Mouse_Button::Left, 3, -1);
  EXPECT_EQ(Plot_Form.Pointer, Surface_Pointer::Cross);
  EXPECT_TRUE(Plot_Form.ZoomInActive);

  Command_Zoom_Pan_Click();
  Picture1_Mouse_Down(Mouse_Button::Left, 10, 10);
  Picture1_Mouse_Down(Mouse_Button::Left, -4, 6);
  EXPECT_EQ(View.ViewOffsetX, 4);
  EXPECT_EQ(View.ViewOffsetY, 6);
  EXPECT_EQ(View.ZoomHalfSpan, 1.25);
  Picture1_Mouse_Move(-3, 7);
  const Line_Shape& band = Plot_Form.Band[0];  // from the middle of the surface
  EXPECT_TRUE(band.Visible);
  EXPECT_EQ((std::array{band.X1, band.Y1, band.X2, band.Y2}), (std::array{-4.0, 6.0, -3.0, 7.0}));
}

TEST_F(Plot_Form_Test, A_Zoom_Window_Is_Dragged) {
  Command_Zoom_Win_Click();
  Picture1_Mouse_Move(9, 9);  // nothing is dragged yet
  EXPECT_FALSE(Band_Shown());
  Picture1_Mouse_Down(Mouse_Button::Left, 2, 1);
  Picture1_Mouse_Move(6, 3.00000049);
  const auto ends = [](int i) {
    const Line_Shape& s = Plot_Form.Band[i];
    return std::array{s.X1, s.Y1, s.X2, s.Y2};
  };
  EXPECT_EQ(ends(0), (std::array{2.0, 1.0, 6.0, 1.0}));
  EXPECT_EQ(ends(1), (std::array{6.0, 1.0, 6.0, 3.0}));
  EXPECT_EQ(ends(2), (std::array{6.0, 3.0, 2.0, 3.0}));
  EXPECT_EQ(ends(3), (std::array{2.0, 3.0, 2.0, 1.0}));
  EXPECT_EQ(Messages.Panel[2], "006.000 | 003.000");
  EXPECT_EQ(Messages.Status_Timeout[2], 5);
  Picture1_Mouse_Up(Mouse_Button::Left, 6, 3);
  EXPECT_DOUBLE_EQ(View.ZoomHalfSpan, 2.2);
  EXPECT_FALSE(Band_Shown());
  EXPECT_TRUE(Plot_Form.ZoomWindowActive);

  // Too short in one direction.
  Picture1_Mouse_Down(Mouse_Button::Left, 2, 1);
  Picture1_Mouse_Up(Mouse_Button::Left, 6, 1.00009);
  EXPECT_EQ(Scripted.Beeps, 1);
  EXPECT_DOUBLE_EQ(View.ZoomHalfSpan, 2.2);
  EXPECT_FALSE(Plot_Form.ZoomWindowDragging);
}

TEST_F(Plot_Form_Test, A_Free_Line_Measures) {
  Picture1_Mouse_Down(Mouse_Button::Left, 0, 0);
  Picture1_Mouse_Move(3, 4);
  EXPECT_TRUE(Plot_Form.Band[0].Visible);
  EXPECT_EQ(Plot_Form.Band[0].Y2, 4);
  Picture1_Mouse_Up(Mouse_Button::Left, 3, 4);
  EXPECT_EQ(Messages.Panel[1], "Measurement Length= 5");
  EXPECT_EQ(Messages.Status_Timeout[1], 5);
  Picture1_Mouse_Move(9, 9);  // the line stays where it was let go
  EXPECT_EQ(Plot_Form.Band[0].Y2, 4);
}

TEST_F(Plot_Form_Test, Presets_Take_Their_Own_Radians) {
  Command_3D_Click(6);
  EXPECT_EQ(View.ViewAngleA, 45 / 57.29577951);
  EXPECT_EQ(View.ViewAngleB, 215 / 57.29577951);
  EXPECT_EQ(View.ViewAngleC, 210 / 57.29577951);
  EXPECT_EQ(Plot_Form.UpDown_3D_Viewpoint, (Indexed<std::int32_t, 0, 2>{{45, 215, 210}}));
  EXPECT_EQ(Plot_Form.Label_3D_Viewpoint[1], "215");
  EXPECT_THAT(Messages.Panel[1], HasSubstr("GCode Plot: Plotting Data time "));
  UpDown_3D_Viewpoint_Change(1, 215);
  EXPECT_EQ(View.ViewAngleB, 215 / 57.2957795);
  bool busy_in_yield = false;
  Scripted.On_Yield = [&] { busy_in_yield |= View.PlotBusy; };
  Command_3D_Click(0);
  EXPECT_TRUE(busy_in_yield);
  EXPECT_FALSE(View.PlotBusy);
}

TEST_F(Plot_Form_Test, Angles_Are_Asked_For) {
  struct Row {
    const char* Answer;
    std::int32_t Degrees;
  };
  for (const Row& row :
       {Row{"-30", 30}, Row{"44.6", 45}, Row{"abc", 180}, Row{"", 180}, Row{"1e300", 180}}) {
    SCOPED_TRACE(row.Answer);
    UpDown_3D_Viewpoint_Change(2, 180);
    Scripted.Input_Answers.push_back(row.Answer);
    Label_3D_Viewpoint_Click(2);
    EXPECT_EQ(Plot_Form.UpDown_3D_Viewpoint[2], row.Degrees);
    EXPECT_EQ(View.ViewAngleC, row.Degrees / 57.2957795);
  }
  EXPECT_EQ(Scripted.Inputs.front().Title, "3D Perspective");
  EXPECT_EQ(Scripted.Inputs.front().Prompt, "Enter new angle:");
  EXPECT_EQ(Scripted.Inputs.front().Initial, "180");
  Scripted.Input_Answers.push_back(std::nullopt);
  Label_3D_Viewpoint_Click(2);
  EXPECT_EQ(Plot_Form.UpDown_3D_Viewpoint[2], 180);
}

TEST_F(Plot_Form_Test, Drag_Rotation_Stops_At_Its_Ends) {
  struct Row {
    double Before, At, After;
  };
  for (const Row& row : {Row{1, 15, 1.05}, Row{359.99, 20, 360}, Row{360, 20, 360}, Row{0.05, 0, 0},
                         Row{1, 10, 1}}) {
    View.ViewAngleA = View.ViewAngleB = row.Before;
    Picture1.Calls.clear();
    Picture2_Mouse_Move(Mouse_Button::Left, row.At, row.At);
    EXPECT_DOUBLE_EQ(View.ViewAngleA, row.After);
    EXPECT_DOUBLE_EQ(View.ViewAngleB, row.After);
    EXPECT_FALSE(Picture1.Calls.empty());
  }
  Picture2_Mouse_Move(Mouse_Button::None, 20, 20);
  EXPECT_DOUBLE_EQ(View.ViewAngleA, 1);
}

TEST_F(Plot_Form_Test, Dragging_The_Picture_Moves_It_With_The_Mouse) {
  Load_Program({{.From = {0.0, 0.0, 0.0}, .To = {1.0, 0.0, 0.0}}});
  NIST_Plot(true);
  const World_Point before = Plot_World_To_Pixel(1, 1, 100, 100);
  Picture1_Drag_Picture(2, 3);
  const World_Point after = Plot_World_To_Pixel(1, 1, 100, 100);
  EXPECT_DOUBLE_EQ(after.X - before.X, 20);
  EXPECT_DOUBLE_EQ(after.Y - before.Y, -30);
  EXPECT_EQ(Picture1.Lines().size(), 1U);
}

TEST_F(Plot_Form_Test, Refresh_And_Escape_Bring_The_Highlight_Back) {
  Command_Zoom_Pan_Click();
  Command_Refresh_Click();
  EXPECT_FALSE(Plot_Form.PanActive);
  EXPECT_TRUE(Plot_Form.HighlightEnabled);
  Command_Zoom_Pan_Click();
  Plot_Key_Up(key::F4);
  EXPECT_FALSE(Application.EscFlag);
  Plot_Key_Up(key::Escape);
  EXPECT_TRUE(Application.EscFlag);
  EXPECT_TRUE(Plot_Form.HighlightEnabled);
}

TEST_F(Plot_Form_Test, The_Surface_Stays_Square) {
  Plot_Form_Resize(12000, 9200, false);
  EXPECT_EQ(Plot_Form.Picture1.Width, 8000);
  EXPECT_EQ(Plot_Form.Picture1.Height, 8000);
  EXPECT_EQ(Plot_Form.Picture_ZAxis.Height, 8000);
  EXPECT_EQ(Plot_Form.Frame_Zoom.Top, 8000);
  for (const auto& [width, height, minimised] :
       {std::tuple(1999.0, 9000.0, false), std::tuple(9000.0, 1999.0, false),
        std::tuple(9000.0, 9000.0, true)}) {
    Plot_Form_Resize(width, height, minimised);
    EXPECT_EQ(Plot_Form.Picture1.Width, 8000);
  }
}

}  // namespace
}  // namespace norvik
