// nist_plot.h: drawing the program.
//
//   NIST_Plot(rebuild)    Program_Wire --> PlotLines, grid, strip;  then NIST_RePlot
//   NIST_RePlot           the lists --> projection --> Picture1      (rotations end here)
//   NIST_Plot_Block       the wires of one step over the finished picture, while the machine runs
//
// `View.PlotBusy` is held through a rebuild. The rebuild yields to the event queue, so handlers run
// in it; every tool and rotation looks at the flag. Without an open plot window the lists are built
// and nothing is painted.
//
// A wire is drawn in the colour of its kind: travel, cut, or deep cut where it starts on the deep
// level. Its pen is as wide as the pixel factor makes of the tool's diameter.
//
// Units: lengths in units of the setup, pens in pixels. `Plot_Form.Picture1` has its size in window
// units, 15 to a pixel.
#pragma once

#include "compiler/state/tables.h"
#include "core/nullable.h"
#include "plot/display_list.h"
#include "plot/plot_colour.h"

#include <cstdint>
#include <optional>
#include <string_view>

namespace norvik {

struct Plot_State {
  // --- Built by NIST_Plot --------------------------------------------------------------------
  Display_List PlotLines, GridLines;

  // --- Kept from drawing to drawing ----------------------------------------------------------
  Line_Memory Last_Line{};                // stands for coordinates that are absent
  Nullable Remembered_Tool;               // the last tool that a wire of a run named
  Indexed<Nullable, 1, 3> Current_Point;  // end of the last wire drawn by a run

  // --- The path of before a change of the program's text ---------------------------------------
  Display_List Path_Before;        // drawn faint under the program
  bool Path_Before_Waits = false;  // kept, but the program that is drawn is still that of before

  // --- Set by the window ---------------------------------------------------------------------
  // Colours for a background that the setup does not know (a dark desktop); absent: the setup's.
  std::optional<Plot_Palette> Palette;
};
extern Plot_State Plot;

// The seven colours in use.
const Plot_Palette& Current_Palette();

// What turns a tool's diameter into a pen's width: the width of the shown world over the width of
// the surface in window units, and a constant.
double Pixel_Factor(const Plot_Scale& window, double surface_width);

// Highlights in NIST_Plot_Block: `displayMode` above this.
inline constexpr std::int32_t Highlight_Above = 65534, Highlight_On = 65535;
// `lineMode` of a run: the point is recorded and the tool forgotten.
inline constexpr std::int32_t Line_Mode_Run = 2;

// Rebuilds the lists when asked to and paints. Does nothing while a plot runs.
void NIST_Plot(bool rebuild);
// The same; what every change of the view calls with true.
void Plot_Redraw(bool rebuild);
// Paints the lists as they are.
void NIST_RePlot();
// Draws the Z strip for the size that it has; empty while the grid is off.
void Plot_Z_Strip();
// Draws the wires of one step; with a `displayMode` above 65534 as a highlight, in the ink of the
// background and five times as wide.
void NIST_Plot_Block(std::int32_t stepIndex, std::int32_t displayMode, std::int32_t lineMode);
// The same for one wire, as a run executes it.
void Plot_Draw_Wire(const Wire& wire, std::int32_t displayMode, std::int32_t lineMode);
// A text at the machine's position, on the picture.
void Plot_Mark_At_Cursor(std::string_view text);
// A full redraw; panel 1 says how long it took.
void Plot_Refresh();
// After a compile or load: extents of the program, then a redraw.
void Plot_New_Program();
// The path that is drawn now is kept, and drawn faint under that of the next new program. The one
// after it forgets it.
void Plot_Keep_Path_Before();
// Another program takes the place of this one: there is nothing to compare.
void Plot_Forget_Path_Before();
// Marks a step of the program: paints the lists and the step's highlight.
void Plot_Highlight_Step(std::int32_t step);

}  // namespace norvik
