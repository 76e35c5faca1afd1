#include "plot/view.h"

#include "compiler/tables/program_wire.h"
#include "core/error_log.h"
#include "core/messages.h"
#include "core/rounding.h"
#include "core/setup.h"
#include "platform/platform.h"
#include "plot/nist_plot.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace norvik {

View_State View;

namespace {

// The last coordinates that `Get3D_XYnormal` was given.
struct Point_Memory_State {
  Indexed<double, 1, 3> Last;
};
Point_Memory_State Point_Memory;

constexpr double Corner_Margin = 0.05;  // of the half span

// The picture's corner (x, y) a little inside the window's lower left corner.
void Put_Lower_Left(double x, double y) {
  const double z = View.ZoomHalfSpan;
  View.ViewOffsetX = -x - z + Corner_Margin * z;
  View.ViewOffsetY = (z + y) - Corner_Margin * z;
}

// Coordinates are kept to 22 decimals; above a millionth a double holds no more.
double Round_To_22_Decimals(double value) {
  if (!(std::fabs(value) < 1e-6)) return value;
  return Round_Half_Even(value * 1e22) / 1e22;
}

}  // namespace

std::optional<std::size_t> Find_Preset(std::string_view name) {
  for (std::size_t i = 0; i < Preset_Views.size(); ++i)
    if (Preset_Views[i].Name == name) return i;
  return std::nullopt;
}

Projection Current_Projection() {
  return {View.ViewAngleA, View.ViewAngleB, View.ViewAngleC};
}

Plot_Scale Current_Scale() {
  return {View.ViewLeft, View.ViewTop, View.ViewRight, View.ViewBottom};
}

void Set_Preset_Angles(long long index) {
  constexpr auto count = static_cast<long long>(Preset_Views.size());
  if (index < 0 || index >= count) Raise_Index_Fault(index, 0, count - 1);
  const auto& degrees = Preset_Views[static_cast<std::size_t>(index)].Degrees;
  View.ViewAngleA = degrees[0] / Preset_Degrees;
  View.ViewAngleB = degrees[1] / Preset_Degrees;
  View.ViewAngleC = degrees[2] / Preset_Degrees;
}

void Get3D_XYnormal(Nullable x, Nullable y, Nullable z, double& px, double& py) {
  const auto report = [](const Fault& fault) {
    ErrorLogWrite("Get3D_XYnormal Error " + std::to_string(static_cast<int>(fault.Number)));
  };
  Trap_With(report, [&] {
    auto& last = Point_Memory.Last;
    last[1] = x.value_or(last[1]);
    last[2] = y.value_or(last[2]);
    last[3] = z.value_or(last[3]);
    const Plot_Point point = Current_Projection().Project(last[1], last[2], last[3]);
    px = point.X;
    py = point.Y;
  });
}

void Derive_View_Scale() {
  View.ZoomHalfSpan = std::min(View.ZoomHalfSpan, Largest_Half_Span);
  const double z = View.ZoomHalfSpan;
  View.ViewLeft = Round_To_22_Decimals(-z - View.ViewOffsetX);
  View.ViewRight = Round_To_22_Decimals(z - View.ViewOffsetX);
  View.ViewTop = Round_To_22_Decimals(View.ViewOffsetY + z);
  View.ViewBottom = Round_To_22_Decimals(View.ViewOffsetY - z);
}

void Recompute_Program_Extents() {
  View.ProgramMax.Fill(0);
  // The Z minimum stays as the programs before left it.
  View.ProgramMin[1] = View.ProgramMin[2] = 9999;
  for (const Wire& wire : Program_Wire.Rows()) {
    for (int axis = 1; axis <= 3; ++axis) {
      for (const Nullable value : {wire.Start[axis], wire.End[axis]}) {
        if (!value) continue;
        View.ProgramMin[axis] = std::min(View.ProgramMin[axis], *value);
        View.ProgramMax[axis] = std::max(View.ProgramMax[axis], *value);
      }
    }
  }
}

void Zoom_Table() {
  Trap("Gcode Zoom Table", [] {
    const double width = MachineSetup.Axis_Depth[1], height = MachineSetup.Axis_Depth[2];
    const double span = width > height ? width : height;
    const double z = span / 2 * 1.125;
    if (!(z >= Smallest_Half_Span)) {
      Platform.Beep();
      return;
    }
    View.ZoomHalfSpan = z;
    View.ViewOffsetX = -z / 1.125;
    View.ViewOffsetY = z / 1.125;
    if (MachineSetup.Plot_Centered) {
      View.ViewOffsetX += width / 2;
      View.ViewOffsetY -= height / 2;
    }
    Plot_Redraw(true);
  });
}

void Zoom_All() {
  Trap("Gcode Zoom All", [] {
    SetStatus(1, "GCode ZoomAll: Checking Data...", 5);
    SetStatus(1, "", 5);
    const double dx = View.ProgramMax[1] - View.ProgramMin[1];
    const double dy = View.ProgramMax[2] - View.ProgramMin[2];
    const double z = (dx > dy ? dx : dy) / 2 * 1.15;
    if (!(z >= Smallest_Half_Span)) {
      Platform.Beep();
      return;
    }
    View.ZoomHalfSpan = z;
    double px = 0, py = 0;
    Get3D_XYnormal(View.ProgramMin[1], View.ProgramMin[2], View.ProgramMin[3], px, py);
    Put_Lower_Left(px, py);
    Plot_Redraw(true);
  });
}

void Zoom_In_At(double x, double y) {
  View.ZoomHalfSpan /= 2;
  if (View.ZoomHalfSpan < Smallest_Half_Span) {
    View.ZoomHalfSpan = Smallest_Half_Span;
    Platform.Beep();
  }
  Pan_To(x, y);
}

void Zoom_Out() {
  View.ZoomHalfSpan = std::min(View.ZoomHalfSpan * 2, Largest_Half_Span);
  Plot_Redraw(true);
}

void Zoom_Window(double x1, double y1, double x2, double y2) {
  if (x1 > x2) std::swap(x1, x2);
  if (y1 > y2) std::swap(y1, y2);
  const double span_x = x2 - x1, span_y = y2 - y1;
  double z = (span_x > span_y ? span_x : span_y) / 2 * 1.1;
  if (z < Smallest_Half_Span) {
    z = Smallest_Half_Span;
    Platform.Beep();
  }
  View.ZoomHalfSpan = z;
  Put_Lower_Left(x1, y1);
  Plot_Redraw(true);
}

void Pan_To(double x, double y) {
  View.ViewOffsetX = -x;
  View.ViewOffsetY = y;
  Plot_Redraw(true);
}

void Zoom_About(double factor, double x, double y) {
  const double wanted = View.ZoomHalfSpan * factor;
  const double z = std::clamp(wanted, Smallest_Half_Span, Largest_Half_Span);
  if (z != wanted) Platform.Beep();
  // The point's distance from the centre shrinks with the span.
  const double kept = z / View.ZoomHalfSpan;
  View.ViewOffsetX = -(x + (-View.ViewOffsetX - x) * kept);
  View.ViewOffsetY = y + (View.ViewOffsetY - y) * kept;
  View.ZoomHalfSpan = z;
  Plot_Redraw(true);
}

}  // namespace norvik
