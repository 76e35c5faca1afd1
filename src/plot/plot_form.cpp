#include "plot/plot_form.h"

#include "core/application.h"
#include "core/format.h"
#include "core/messages.h"
#include "core/numbers.h"
#include "core/rounding.h"
#include "core/setup.h"
#include "platform/platform.h"
#include "plot/measure.h"
#include "plot/nist_plot.h"
#include "plot/plot_host.h"
#include "plot/raster.h"
#include "plot/view.h"
#include "plot/z_strip.h"

#include <algorithm>
#include <cmath>

namespace norvik {

Plot_Form_Record Plot_Form;

namespace {

constexpr int Status_Seconds = 5;
constexpr double Shortest_Drag = 0.0001;  // units of the setup
constexpr double Wheel_Factor = 1.25;     // span for each notch
constexpr double Pad_Middle = 10, Pad_Divisor = 100, Largest_Angle = 360;

double Round_To_6_Decimals(double value) {
  return Round_Half_Even(value * 1e6) / 1e6;
}

// True, with a beep, while a plot runs: a second one never starts over it.
bool Refused() {
  if (View.PlotBusy) Platform.Beep();
  return View.PlotBusy;
}

// --- Shapes ----------------------------------------------------------------------------------

void Show_Band(int index, double x1, double y1, double x2, double y2) {
  const std::int32_t ink = Ink_On(Current_Palette()[plot_role::Background]);
  Plot_Form.Band[index] = {x1, y1, x2, y2, ink, true};
}

void Hide_Bands() {
  for (Line_Shape& shape : Plot_Form.Band) shape.Visible = false;
  Plot_Host.Shapes_Changed();
}

void Show_Band_Rectangle() {
  const Plot_Form_Record& f = Plot_Form;
  Show_Band(0, f.BandX1, f.BandY1, f.BandX2, f.BandY1);
  Show_Band(1, f.BandX2, f.BandY1, f.BandX2, f.BandY2);
  Show_Band(2, f.BandX2, f.BandY2, f.BandX1, f.BandY2);
  Show_Band(3, f.BandX1, f.BandY2, f.BandX1, f.BandY1);
}

// --- Tools -----------------------------------------------------------------------------------

enum class Tool { None, Zoom_In, Zoom_Window, Pan };

// Arms one tool and ends the others; without one, drags measure again.
void Arm(Tool tool) {
  Plot_Form_Record& f = Plot_Form;
  f.ZoomInActive = f.Command_ZoomIn = tool == Tool::Zoom_In;
  f.ZoomWindowActive = f.Command_Zoom_Win = tool == Tool::Zoom_Window;
  f.PanActive = f.Command_Zoom_Pan = tool == Tool::Pan;
  f.HighlightEnabled = tool == Tool::None;
  f.ZoomWindowDragging = false;
  f.Pointer = tool == Tool::Zoom_In ? Surface_Pointer::Zoom_Cross : Surface_Pointer::Cross;
  Hide_Bands();
  Plot_Host.Form_Changed();
}

void Press_Tool(double x, double y) {
  Plot_Form_Record& f = Plot_Form;
  if (f.ZoomWindowActive) {
    f.BandX1 = x;
    f.BandY1 = y;
    f.ZoomWindowDragging = true;
  } else if (f.PanActive) {
    Pan_To(x, y);
  } else if (f.ZoomInActive) {
    f.Band[0].Visible = false;
    Zoom_In_At(x, y);
  }
}

void Report_Measurement(double x, double y) {
  Trap("Plot_Measure_Error", [&] {
    const Measurement report = Plot_Measure(Plot_Form.MouseDownX, Plot_Form.MouseDownY, x, y, true);
    SetStatus(1, report.Text, Status_Seconds);
  });
}

void Finish_Zoom_Window(double x, double y) {
  Plot_Form_Record& f = Plot_Form;
  if (View.PlotBusy) return;
  Hide_Bands();
  f.ZoomWindowDragging = false;
  if (std::fabs(x - f.BandX1) > Shortest_Drag && std::fabs(y - f.BandY1) > Shortest_Drag) {
    Zoom_Window(f.BandX1, f.BandY1, x, y);
  } else {
    Platform.Beep();
  }
}

}  // namespace

// --- Mouse on Picture1 -----------------------------------------------------------------------

void Picture1_Mouse_Down(Mouse_Button button, double x, double y) {
  Plot_Form_Record& f = Plot_Form;
  if (f.HighlightEnabled && button == Mouse_Button::Left) f.LineDragging = true;
  f.MouseDownX = To_Single(x);
  f.MouseDownY = To_Single(y);
  if (button == Mouse_Button::Right) {
    Arm(Tool::None);
  } else if (button == Mouse_Button::Left && !Refused()) {
    Press_Tool(x, y);
  }
}

void Picture1_Mouse_Move(double x, double y) {
  Plot_Form_Record& f = Plot_Form;
  x = Round_To_6_Decimals(x);
  y = Round_To_6_Decimals(y);
  SetStatus(2, Format_Axis_Number(x) + " | " + Format_Axis_Number(y), Status_Seconds);
  if (f.ZoomWindowActive && f.ZoomWindowDragging) {
    f.BandX2 = x;
    f.BandY2 = y;
    Show_Band_Rectangle();
  } else if (f.PanActive) {
    const Plot_Scale scale = Current_Scale();
    Show_Band(0, scale.Left + scale.Width() / 2, scale.Top + scale.Height() / 2, x, y);
  } else if (f.HighlightEnabled && f.LineDragging) {
    Show_Band(0, f.MouseDownX, f.MouseDownY, x, y);
  } else {
    return;
  }
  Plot_Host.Shapes_Changed();
}

void Picture1_Mouse_Up(Mouse_Button button, double x, double y) {
  if (button == Mouse_Button::Middle) return;
  Plot_Form_Record& f = Plot_Form;
  f.LineDragging = false;
  if (f.ZoomWindowActive) {
    Finish_Zoom_Window(x, y);
    return;
  }
  Report_Measurement(x, y);
  f.Pointer = Surface_Pointer::Cross;
  Plot_Host.Form_Changed();
}

void Picture1_Mouse_Wheel(double notches, double x, double y) {
  if (!Refused()) Zoom_About(std::pow(Wheel_Factor, -notches), x, y);
}

void Picture1_Drag_Picture(double dx, double dy) {
  if (View.PlotBusy) return;
  View.ViewOffsetX += dx;
  View.ViewOffsetY -= dy;
  Derive_View_Scale();
  NIST_RePlot();
}

// --- Buttons ---------------------------------------------------------------------------------

void Command_ZoomIn_Click() {
  if (!Refused()) Arm(Tool::Zoom_In);
}

void Command_ZoomOut_Click() {
  if (!Refused()) Zoom_Out();
}

void Command_Zoom_Win_Click() {
  if (!Refused()) Arm(Tool::Zoom_Window);
}

void Command_Zoom_Table_Click() {
  if (!Refused()) Zoom_Table();
}

void Command_Zoom_All_Click() {
  if (!Refused()) Zoom_All();
}

void Command_Zoom_Pan_Click() {
  if (!Refused()) Arm(Tool::Pan);
}

void Command_Refresh_Click() {
  if (Refused()) return;
  Plot_Form_Record& f = Plot_Form;
  f.ZoomInActive = f.Command_ZoomIn = false;
  f.PanActive = f.Command_Zoom_Pan = false;
  f.HighlightEnabled = true;
  Plot_Host.Form_Changed();
  Plot_Refresh();
}

void Command_3D_Click(int index) {
  if (Refused()) return;
  Set_Preset_Angles(index);
  View.PlotBusy = true;
  const auto& degrees = Preset_Views[static_cast<std::size_t>(index)].Degrees;
  for (int i = 0; i < 3; ++i) {
    Plot_Form.UpDown_3D_Viewpoint[i] = degrees[static_cast<std::size_t>(i)];
    Plot_Form.Label_3D_Viewpoint[i] = std::to_string(degrees[static_cast<std::size_t>(i)]);
  }
  Plot_Host.Form_Changed();
  DoEvents();
  View.PlotBusy = false;
  Plot_Refresh();
}

void UpDown_3D_Viewpoint_Change(int index, std::int32_t degrees) {
  Plot_Form.UpDown_3D_Viewpoint[index] = degrees;
  Plot_Form.Label_3D_Viewpoint[index] = std::to_string(degrees);
  double* const angles[] = {&View.ViewAngleA, &View.ViewAngleB, &View.ViewAngleC};
  *angles[index] = degrees / Caption_Degrees;
  Plot_Host.Form_Changed();
  if (!View.PlotBusy) NIST_RePlot();
}

void Label_3D_Viewpoint_Click(int index) {
  const auto answer =
      Platform.Input_Box("3D Perspective", "Enter new angle:", Plot_Form.Label_3D_Viewpoint[index]);
  if (!answer || !IsNumeric(*answer)) return;
  Trap("Label_3D_Viewpoint_Error",
       [&] { UpDown_3D_Viewpoint_Change(index, To_Int32(std::fabs(To_Double(*answer)))); });
}

void Picture2_Mouse_Move(Mouse_Button held, double x, double y) {
  if (held != Mouse_Button::Left || View.PlotBusy) return;
  // In radians as it stands: the angles stop at the ends and do not wrap.
  const auto turned = [](double angle, double at) {
    return std::clamp(angle + (at - Pad_Middle) / Pad_Divisor, 0.0, Largest_Angle);
  };
  View.ViewAngleA = turned(View.ViewAngleA, x);
  View.ViewAngleB = turned(View.ViewAngleB, y);
  NIST_RePlot();
}

void Plot_Key_Up(int key_code) {
  if (key_code != key::Escape) return;
  Application.EscFlag = true;
  Plot_Form.HighlightEnabled = true;
}

// --- The window itself -----------------------------------------------------------------------

namespace {

constexpr double Tool_Room = 1100, Border_On_Resize = 100;
constexpr double Smallest_Form = 2000;

}  // namespace

void Plot_Form_Resize(double width, double height, bool minimised) {
  Plot_Form_Record& f = Plot_Form;
  f.Form_Width = width;
  f.Form_Height = height;
  if (minimised || width < Smallest_Form || height < Smallest_Form) return;
  const double side = height - Tool_Room - Border_On_Resize;
  f.Picture1.Height = f.Picture_ZAxis.Height = side;
  f.Frame_Zoom.Top = f.Frame_3D.Top = side;
  f.Picture1.Width = side;
  Plot_Host.Form_Changed();
}

// --- For the window's painting ---------------------------------------------------------------

World_Point Plot_Pixel_To_World(double x, double y, double width, double height) {
  const Plot_Scale s = Current_Scale();
  return {s.Left + x / width * s.Width(), s.Top + y / height * s.Height()};
}

void Paint_Shapes(Plot_Surface& over_picture) {
  const auto paint = [&](const Line_Shape& shape) {
    if (!shape.Visible) return;
    over_picture.Draw_Line({static_cast<float>(shape.X1), static_cast<float>(shape.Y1),
                            static_cast<float>(shape.X2), static_cast<float>(shape.Y2), shape.Color,
                            1});
  };
  for (const Line_Shape& shape : Plot_Form.Cursor) paint(shape);
  for (const Line_Shape& shape : Plot_Form.Band) paint(shape);
}

void Paint_Spindle(Plot_Surface& over_strip, std::int32_t strip_width_pixels,
                   std::int32_t strip_height_pixels) {
  constexpr double middle_x = 8;  // of the strip's scale: beside the line, over the ticks' ends
  const Spindle_Image& image = Plot_Form.Image_Spindle;
  if (!image.Visible) return;
  const Plot_Scale scale = Z_Strip_Scale();
  const double pixels = std::fabs(image.Height / scale.Height()) * strip_height_pixels;
  const Plot_Image picture =
      Spindle_Picture(image.Frame, static_cast<std::int32_t>(std::lround(pixels)),
                      Current_Palette()[plot_role::Background]);
  const double half_width = picture.Width / 2.0 / strip_width_pixels * scale.Width();
  over_strip.Draw_Picture(middle_x - half_width, image.Top, picture);
}

}  // namespace norvik
