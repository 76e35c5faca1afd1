#include "plot/nist_plot.h"

#include "compiler/tables/program_wire.h"
#include "core/application.h"
#include "core/error_log.h"
#include "core/format.h"
#include "core/messages.h"
#include "core/setup.h"
#include "core/waiting.h"
#include "platform/platform.h"
#include "plot/line_painter.h"
#include "plot/plot_form.h"
#include "plot/plot_host.h"
#include "plot/view.h"
#include "plot/z_strip.h"

#include <algorithm>
#include <string>
#include <utility>

namespace norvik {

Plot_State Plot;
Plot_Host_Operations Plot_Host;

namespace {

constexpr double Pixel_Factor_Divisor = 15.05;
constexpr std::int16_t Highlight_Widening = 5;
// With `Plot_FastDraw` off the picture grows in so many pieces.
constexpr std::size_t Watched_Pieces = 150;

double Window_Pixel_Factor() {
  return Pixel_Factor(Current_Scale(), Plot_Form.Picture1.Width);
}

bool Grid_Shown() {
  return MachineSetup.Plot_Show_Grid == 1;
}

bool Stop_Asked() {
  return Application.EscFlag || Application.Closing_Program;
}

// --- Building --------------------------------------------------------------------------------

// Shows the time of a dwell in the growing picture. Yields; ESC and a closing program end it.
void Wait_Out_Dwell(double seconds) {
  Yield_Until([] { return !Plot_Host.Motion_Active() || Stop_Asked(); });
  Yield_Until(Stop_Asked, To_Nanoseconds(seconds));
}

void Build_Plot_Lines() {
  Display_List& list = Plot.PlotLines;
  list.Reserve(Program_Wire.Count());
  Wire_Pens pens(Window_Pixel_Factor(), Current_Palette());
  // A dwell yields, and the table may be another one afterwards: it is looked up by place.
  for (std::size_t i = 0; i < Program_Wire.Count(); ++i) {
    const float dwell = Program_Wire.Rows()[i].Dwell;
    if (MachineSetup.Plot_Dwell_Enable && dwell > 0) {
      Wait_Out_Dwell(dwell);
      if (i >= Program_Wire.Count()) break;
    }
    pens.Append_To(list, Program_Wire.Rows()[i]);
  }
}

void Report_Too_Large(std::size_t count) {
  if (count == 0) return;
  ErrorLogWrite("DrawLine3D Error # " + std::to_string(static_cast<int>(Fault_Number::Overflow)) +
                " " + std::to_string(count) + " lines have a coordinate too large to draw");
}

void Build_Table_Pictures() {
  Plot_Z_Strip();
  if (!Grid_Shown()) return;
  Trap("Plot_Grid_Error",
       [] { Build_Grid(Current_Palette(), MachineSetup.Axis_Table_Grid_Size, Plot.GridLines); });
}

// --- Painting --------------------------------------------------------------------------------

Line_Painter Window_Painter() {
  return {*Plot_Host.Picture1, Current_Projection(), Current_Scale(), Plot.Last_Line};
}

void Paint_Table() {
  Plot_Host.Picture1->Set_Scale(Current_Scale());
  Plot_Host.Picture1->Clear(Current_Palette()[plot_role::Background]);
  if (!Grid_Shown()) return;
  Line_Painter painter = Window_Painter();
  painter.Draw(Plot.GridLines, 0, Plot.GridLines.Count());
  painter.Flush();
  const std::int32_t color = Current_Palette()[plot_role::Grid];
  Plot_Host.Picture1->Draw_Line({0, 0, 0, 0, color, 1});
  painter.Draw({0.0, 0.0, 0.0, 0.0, 0.0, 0.0}, color, 1);
  painter.Flush();
}

void Paint_Path_Before() {
  if (Plot.Path_Before_Waits || Plot.Path_Before.Count() == 0) return;
  Plot.Last_Line = {};
  Line_Painter painter = Window_Painter();
  painter.Draw(Plot.Path_Before, 0, Plot.Path_Before.Count());
  painter.Flush();
}

// In one piece, or in pieces that the operator sees grow. Each yield may close the window.
void Paint_Program(bool watched) {
  // Coordinates that nothing has named yet stand at 0, whatever was drawn before.
  Plot.Last_Line = {};
  Plot.PlotLines.Fill_Leading(Plot.Last_Line);
  const std::size_t count = Plot.PlotLines.Count();
  const std::size_t piece = watched ? std::max<std::size_t>(1, count / Watched_Pieces) : count;
  for (std::size_t first = 0; first < count && Plot_Host.Picture1; first += piece) {
    Line_Painter painter = Window_Painter();
    painter.Draw(Plot.PlotLines, first, std::min(count, first + piece));
    painter.Flush();
    if (watched && !Stop_Asked()) {
      Plot_Host.Frame_Changed();
      DoEvents();
    }
  }
}

// One wire of a run or of a highlight.
void Paint_Wire(Line_Painter& painter, const Wire& wire, bool highlight, std::int32_t lineMode) {
  Wire_Pens pens(Window_Pixel_Factor(), Current_Palette());
  pens.Remembered_Tool = Plot.Remembered_Tool;
  std::int16_t width = pens.Width(wire);
  std::int32_t color = pens.Color(wire);
  if (highlight) {
    color = Ink_On(Current_Palette()[plot_role::Background]);
    width = static_cast<std::int16_t>(std::min<int>(width * Highlight_Widening, INT16_MAX));
  }
  painter.Draw(Ends_Of(wire), color, width);
  Plot.Remembered_Tool = pens.Remembered_Tool;
  if (lineMode != Line_Mode_Run) return;
  for (int axis = 1; axis <= 3; ++axis) Plot.Current_Point[axis] = wire.End[axis];
  Plot.Remembered_Tool.reset();
}

void Paint(bool watched) {
  if (!Plot_Host.Picture1) return;
  Trap("NIST_RePlot_Error", [watched] {
    Paint_Table();
    Paint_Path_Before();
    Paint_Program(watched);
  });
  Plot_Host.Frame_Changed();
}

}  // namespace

const Plot_Palette& Current_Palette() {
  return Plot.Palette ? *Plot.Palette : MachineSetup.Plot_Color;
}

double Pixel_Factor(const Plot_Scale& window, double surface_width) {
  return window.Width() / surface_width / Pixel_Factor_Divisor;
}

void NIST_Plot(bool rebuild) {
  if (View.PlotBusy) return;
  View.PlotBusy = true;
  if (rebuild) Plot.PlotLines.Clear();
  Trap("NIST_Plot_Error", [rebuild] {
    Derive_View_Scale();
    SetStatus(1, "Nist Plot: Plotting Data...", 5);
    DoEvents();
    Build_Table_Pictures();
    Platform.Set_Mouse_Pointer(Mouse_Pointer::Busy);
    if (rebuild) Build_Plot_Lines();
  });
  // A fault above leaves the lines before it, and these are shown.
  if (rebuild) Plot.PlotLines.Close();
  Report_Too_Large(rebuild ? Plot.PlotLines.Too_Large : 0);
  Paint(MachineSetup.Plot_FastDraw == 0);
  Set_Panel(1, "");
  Platform.Set_Mouse_Pointer(Mouse_Pointer::Normal);
  View.PlotBusy = false;
}

void Plot_Redraw(bool rebuild) {
  NIST_Plot(rebuild);
}

void NIST_RePlot() {
  Paint(false);
}

void Plot_Z_Strip() {
  if (!Plot_Host.Picture_ZAxis) return;
  if (Grid_Shown()) {
    Draw_Z_Strip(*Plot_Host.Picture_ZAxis, Current_Palette());
  } else {
    Plot_Host.Picture_ZAxis->Clear(Current_Palette()[plot_role::Background]);
  }
}

void Plot_Draw_Wire(const Wire& wire, std::int32_t displayMode, std::int32_t lineMode) {
  if (!Plot_Host.Picture1) return;
  Trap("NIST_Plot_Block_Error", [&] {
    Line_Painter painter = Window_Painter();
    Paint_Wire(painter, wire, displayMode > Highlight_Above, lineMode);
    painter.Flush();
  });
  Plot_Host.Frame_Changed();
}

void NIST_Plot_Block(std::int32_t stepIndex, std::int32_t displayMode, std::int32_t lineMode) {
  if (!Plot_Host.Picture1) return;
  Trap("NIST_Plot_Block_Error", [&] {
    Plot.Last_Line = {};  // as the program was drawn
    Line_Painter painter = Window_Painter();
    for (auto k = Program_Wire.Next_Of_Step(stepIndex, 0); k;
         k = Program_Wire.Next_Of_Step(stepIndex, *k + 1))
      Paint_Wire(painter, Program_Wire.Rows()[*k], displayMode > Highlight_Above, lineMode);
    painter.Flush();
  });
  Plot_Host.Frame_Changed();
}

void Plot_Mark_At_Cursor(std::string_view text) {
  if (!Plot_Host.Picture1) return;
  Trap("Plot_Mark_Error", [&] {
    const auto& here = Machine.Position;
    const Plot_Point point =
        Current_Projection().Project(here[1], here[2], here[3] * Z_Display_Sign());
    Plot_Host.Picture1->Draw_Text(point.X, point.Y, text,
                                  Ink_On(Current_Palette()[plot_role::Background]));
  });
  Plot_Host.Frame_Changed();
}

void Plot_Refresh() {
  constexpr double day = 86400;
  const double begin = Platform.Day_Clock();
  NIST_Plot(true);
  double seconds = Platform.Day_Clock() - begin;
  if (seconds < 0) seconds += day;  // past midnight
  seconds = std::max(seconds, 0.0);
  SetStatus(1, "GCode Plot: Plotting Data time " + Format_Number(seconds, "0.000") + " Seconds.",
            5);
}

void Plot_New_Program() {
  if (!std::exchange(Plot.Path_Before_Waits, false)) Plot.Path_Before.Clear();
  Recompute_Program_Extents();
  NIST_Plot(true);
}

void Plot_Keep_Path_Before() {
  Plot.Path_Before = Plot.PlotLines;
  Display_List& path = Plot.Path_Before;
  path.Fill_Leading({});
  const std::int32_t color = Faint_On(Current_Palette()[plot_role::Background]);
  std::fill(path.Color.begin(), path.Color.end(), color);
  std::fill(path.Width.begin(), path.Width.end(), std::int16_t{1});
  path.NodeMark.assign(path.Count(), false);
  path.Has_Nodes = false;
  Plot.Path_Before_Waits = true;
}

void Plot_Forget_Path_Before() {
  Plot.Path_Before.Clear();
  Plot.Path_Before_Waits = false;
}

void Plot_Highlight_Step(std::int32_t step) {
  if (View.PlotBusy) return;
  // The one before goes. A long program is not painted anew for each row that a key runs over.
  if (Plot_Host.Picture1 && !Plot_Host.Picture1->Bring_Back_Picture()) {
    NIST_RePlot();
    Plot_Host.Picture1->Keep_Picture();
  }
  NIST_Plot_Block(step, Highlight_On, 0);
}

}  // namespace norvik
