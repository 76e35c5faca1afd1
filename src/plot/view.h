// view.h: where the operator looks from, and how much is seen.
//
// The plot shows a square window of the projected world:
//
//                    ViewTop = ViewOffsetY + ZoomHalfSpan
//                 +---------------------------+
//                 |                           |        centre: (-ViewOffsetX, ViewOffsetY)
//      ViewLeft   |             +             |  ViewRight
//   = -ViewOffsetX|                           |= -ViewOffsetX + ZoomHalfSpan
//   - ZoomHalfSpan+---------------------------+
//                    ViewBottom = ViewOffsetY - ZoomHalfSpan
//
// The X offset is stored negated, the Y offset is not. The tools below change these values within
// their limits and have the plot rebuilt; each is refused with a beep where its limit says so.
//
// Units: lengths in units of the setup, angles in radians unless a name says degrees.
#pragma once

#include "core/indexed.h"
#include "core/nullable.h"
#include "plot/plot_surface.h"
#include "plot/projection.h"

#include <array>
#include <optional>
#include <string_view>

namespace norvik {

inline constexpr double Smallest_Half_Span = 0.001, Largest_Half_Span = 50000;
// Degrees to a radian as the presets and as the angle captions take it; they differ in a digit.
inline constexpr double Preset_Degrees = 57.29577951, Caption_Degrees = 57.2957795;

// The eight viewpoints of `Command_3D`, angles in degrees.
struct Preset_View {
  std::string_view Name;  // as the companion's `--view` takes it
  std::array<int, 3> Degrees;
};
inline constexpr std::array<Preset_View, 8> Preset_Views{{
    {"top", {0, 180, 180}},
    {"bottom", {180, 180, 180}},
    {"front", {90, 180, 180}},
    {"rear", {270, 180, 0}},
    {"left", {90, 90, 180}},
    {"right", {90, 270, 180}},
    {"isometric-right", {45, 215, 210}},
    {"isometric-left", {45, 145, 150}},
}};
// The place of a view in the table by its name; absent when there is none.
std::optional<std::size_t> Find_Preset(std::string_view name);

struct View_State {
  // --- Where from; Top at start --------------------------------------------------------------
  double ViewAngleA = 0, ViewAngleB = 180 / Preset_Degrees, ViewAngleC = 180 / Preset_Degrees;

  // --- What is seen --------------------------------------------------------------------------
  double ZoomHalfSpan = 1;
  double ViewOffsetX = 0, ViewOffsetY = 0;
  double ViewLeft = -1, ViewTop = 1, ViewRight = 1, ViewBottom = -1;

  // --- The compiled program, axes 1..3 are X, Y, Z -------------------------------------------
  Indexed<double, 1, 3> ProgramMin, ProgramMax;

  // True while a rebuild or a change of viewpoint runs. Set and cleared by NIST_Plot and
  // Command_3D; tools and rotations that find it set are refused.
  bool PlotBusy = false;
};
extern View_State View;

Projection Current_Projection();
Plot_Scale Current_Scale();

// Sets the angles of `Preset_Views[index]`. Raises a range fault for an index that is none.
void Set_Preset_Angles(long long index);

// Point form of the projection for a point whose coordinates may be absent: each absent one takes
// the last value given for it. On a fault (a point beside the eye) one line goes to the error log
// and px, py stay as they were.
void Get3D_XYnormal(Nullable x, Nullable y, Nullable z, double& px, double& py);

// ViewLeft, ViewTop, ViewRight, ViewBottom from zoom and offsets; a half span above the limit is
// brought back to it.
void Derive_View_Scale();

// Extents of `Program_Wire`, anew: maxima start at 0 and minima at 9999, but the Z minimum goes on
// from the program before.
void Recompute_Program_Extents();

// --- Tools, each followed by a rebuild of the plot -------------------------------------------

// The whole table; centred in X or Y as `Plot_Centered` says. Beeps for a table without size.
void Zoom_Table();
// The program, its projected minimum corner 5 % of the half span inside the lower left corner.
// Beeps for an empty program.
void Zoom_All();
// Half the span, centred on a point of the plot. Beeps at the lower limit.
void Zoom_In_At(double x, double y);
// Twice the span around the same centre, up to the upper limit.
void Zoom_Out();
// The rectangle between two corners. A span below the limit is brought to it with a beep.
void Zoom_Window(double x1, double y1, double x2, double y2);
void Pan_To(double x, double y);
// Scales the span by `factor` so that the point (x, y) keeps its place on the surface. Beeps at a
// limit.
void Zoom_About(double factor, double x, double y);

}  // namespace norvik
