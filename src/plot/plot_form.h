// plot_form.h: the `Plot` window as a record of its controls, and its handlers.
//
// The window lays out what stands here, calls the handlers, and shows the record again when
// `Plot_Host` says that it changed. Handlers take plot coordinates: `Plot_Pixel_To_World` turns a
// pixel of the surface into them.
//
// Tools. One of three is armed at a time; the right mouse button or another tool ends it:
//
//   ZoomInActive       click: half the span around the point       stays armed
//   ZoomWindowActive   drag:  the rectangle fills the window       stays armed
//   PanActive          click: the point becomes the centre         stays armed
//   HighlightEnabled   drag:  a line that measures and finds the element that it crosses
//
//   flag                set by                       read by            cleared by
//   ------------------------------------------------------------------------------------------
//   ZoomWindowDragging  press with a zoom window     mouse move         release, any tool change
//   LineDragging        press with HighlightEnabled  mouse move         release
//   HighlightEnabled    right button, Refresh, ESC   press, mouse move  arming a tool
//
// Units: window units are 15 to a pixel; angles of the up-downs are degrees.
#pragma once

#include "core/indexed.h"
#include "plot/plot_image.h"
#include "plot/plot_surface.h"

#include <cstdint>
#include <string>

namespace norvik {

inline constexpr double Units_Per_Pixel = 15;

// A line that moves over the finished picture, in plot coordinates.
struct Line_Shape {
  double X1 = 0, Y1 = 0, X2 = 0, Y2 = 0;
  std::int32_t Color = 0;
  bool Visible = false;
};

// Pointers over the surface.
enum class Surface_Pointer : std::int16_t { Cross = 2, Zoom_Cross = 5 };

// Place of a control in window units.
struct Control_Box {
  double Left = 0, Top = 0, Width = 0, Height = 0;
};

// The spindle on the strip, in units of the strip's scale.
struct Spindle_Image {
  double Top = 0;     // of the picture's upper edge
  double Height = 0;  // set by the window from the picture's pixels
  int Frame = 0;      // 0 or 1 of its turning
  bool Visible = false;
};

struct Plot_Form_Record {
  // --- Tools ---------------------------------------------------------------------------------
  bool ZoomInActive = false, PanActive = false, ZoomWindowActive = false;
  bool ZoomWindowDragging = false, LineDragging = false;
  bool HighlightEnabled = true;
  bool Command_ZoomIn = false, Command_Zoom_Win = false, Command_Zoom_Pan = false;  // pressed
  Surface_Pointer Pointer = Surface_Pointer::Cross;

  // --- The mouse, in plot coordinates --------------------------------------------------------
  float MouseDownX = 0, MouseDownY = 0;
  double BandX1 = 0, BandY1 = 0, BandX2 = 0, BandY2 = 0;

  // --- Shapes over the picture ---------------------------------------------------------------
  Indexed<Line_Shape, 0, 3> Band;    // rubber band
  Indexed<Line_Shape, 0, 1> Cursor;  // position cross
  Spindle_Image Image_Spindle;

  // --- Viewpoint -----------------------------------------------------------------------------
  Indexed<std::int32_t, 0, 2> UpDown_3D_Viewpoint{{0, 180, 180}};
  Indexed<std::string, 0, 2> Label_3D_Viewpoint{{"0", "180", "180"}};

  // --- Places, window units ------------------------------------------------------------------
  double Form_Height = 0, Form_Width = 0;
  Control_Box Picture1{0, 0, 9000, 9000}, Picture_ZAxis{0, 0, 1200, 9000};
  Control_Box Frame_Zoom, Frame_3D;
};
extern Plot_Form_Record Plot_Form;

// --- Mouse on Picture1 -----------------------------------------------------------------------

enum class Mouse_Button { None, Left, Right, Middle };

void Picture1_Mouse_Down(Mouse_Button button, double x, double y);
void Picture1_Mouse_Move(double x, double y);
void Picture1_Mouse_Up(Mouse_Button button, double x, double y);
// Wheel: `notches` away from the operator zoom in around the point.
void Picture1_Mouse_Wheel(double notches, double x, double y);
// Dragging with the middle button moves the picture by (dx, dy) in plot coordinates; the lists are
// painted as they are.
void Picture1_Drag_Picture(double dx, double dy);

// --- Buttons ---------------------------------------------------------------------------------

void Command_ZoomIn_Click();
void Command_ZoomOut_Click();
void Command_Zoom_Win_Click();
void Command_Zoom_Table_Click();
void Command_Zoom_All_Click();
void Command_Zoom_Pan_Click();
void Command_Refresh_Click();
// One of the eight preset viewpoints.
void Command_3D_Click(int index);
// The operator has turned an up-down to `degrees`.
void UpDown_3D_Viewpoint_Change(int index, std::int32_t degrees);
// Asks for an angle.
void Label_3D_Viewpoint_Click(int index);
// Dragging on the pad turns the view; pad coordinates run from 0 to 20, its middle rests.
void Picture2_Mouse_Move(Mouse_Button held, double x, double y);
// A key was released while the window has the focus.
void Plot_Key_Up(int key_code);

// --- The window itself -----------------------------------------------------------------------

// Width and height in window units, 15 to a pixel.
void Plot_Form_Resize(double width, double height, bool minimised);

// --- For the window's painting ---------------------------------------------------------------

struct World_Point {
  double X = 0, Y = 0;
};
// The plot coordinates of a place on a surface of `width` x `height` pixels.
World_Point Plot_Pixel_To_World(double x, double y, double width, double height);
// Draws the visible shapes over a copy of the picture, the spindle over a copy of the strip. The
// surfaces must have the scales of the originals.
void Paint_Shapes(Plot_Surface& over_picture);
void Paint_Spindle(Plot_Surface& over_strip, std::int32_t strip_width_pixels,
                   std::int32_t strip_height_pixels);

}  // namespace norvik
