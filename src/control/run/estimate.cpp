#include "control/run/estimate.h"

#include "compiler/compile/compile.h"
#include "compiler/state/compiler_state.h"
#include "compiler/tables/program_wire.h"
#include "compiler/tables/tables_io.h"
#include "control/displays/displays.h"
#include "control/motion/motion.h"
#include "control/state/control_texts.h"
#include "control/state/controller_state.h"
#include "control/state/drive.h"
#include "core/application.h"
#include "core/fault.h"
#include "core/messages.h"
#include "core/operation.h"
#include "core/paths.h"
#include "core/rounding.h"
#include "core/scope.h"
#include "core/setup.h"

#include <algorithm>
#include <cmath>

namespace norvik {

namespace {

struct Way {
  Indexed<double, 1, 4> Steps;
  double MaxSteps = 0;
};

Way Way_Of(const Wire& wire, Indexed<double, 1, 4>& from) {
  Way way;
  for (int axis = 1; axis <= 4; ++axis) {
    if (!wire.End[axis]) continue;
    const double scale = MachineSetup.Axis_SPI[axis];
    way.Steps[axis] = Round_Half_Even(scale * std::abs(*wire.End[axis] - from[axis]));
    from[axis] = *wire.End[axis];
    way.MaxSteps = std::max(way.MaxSteps, way.Steps[axis]);
  }
  return way;
}

// Cruise ceiling: the limit of the first axis that would run too fast.
double Cruise_Limit(const Way& way, double run) {
  double limit = run;
  for (int axis = 1; axis <= 4; ++axis) {
    const double highest = MachineSetup.Axis_Max_Feed_Rate[axis];
    const double axis_ipm = way.Steps[axis] / way.MaxSteps * run;
    if (highest < limit && axis_ipm > highest) limit = highest;
  }
  return limit;
}

double Half_Step_Seconds(double ipm) {
  return 60 / (MachineSetup.Axis_SPI[1] * std::clamp(ipm, 0.001, 2000.0)) / 2;
}

// Half steps whose speed changes by `change` each, from `ipm` on; `ipm` is left at the end.
double Ramp_Seconds(double count, double& ipm, double change, double low, double high) {
  double seconds = 0;
  for (double i = 0; i < count; ++i) {
    seconds += Half_Step_Seconds(ipm);
    ipm = std::clamp(ipm + change, low, high);
  }
  return seconds;
}

double Move_Seconds(const Way& way, const Wire& wire) {
  const double total = 2 * way.MaxSteps;
  const double cruise = Cruise_Limit(way, wire.IPM_R);
  const double change = MachineSetup.Axis_Ramp_Rate / 100.0;
  if (!MachineSetup.Axis_Ramping || !(change > 0)) return total * Half_Step_Seconds(cruise);
  const double low = std::min({99999.0, double{wire.IPM_S}, double{cruise}, double{wire.IPM_E}});
  double up = std::max(0.0, (cruise - wire.IPM_S) / change);
  if (up > total) up = way.MaxSteps;
  double down = total - std::max(0.0, (cruise - wire.IPM_E) / change);
  if (down < way.MaxSteps - up) down = up;
  // Where the ramps overlap, one takes what the other gives.
  const double rise = std::floor(std::max(0.0, std::min(up, down)));
  const double hold = std::floor(std::max(up, down)) - rise;
  double ipm = std::min(double{wire.IPM_S}, cruise);
  const double rising = Ramp_Seconds(rise, ipm, change, low, cruise);
  const double holding = hold * Half_Step_Seconds(ipm);
  return rising + holding + Ramp_Seconds(total - rise - hold, ipm, -change, low, cruise);
}

// Why the wire file is not that of the program, in the operator's words; empty: it is.
std::string_view Unfit_To_Estimate() {
  if (!Compile_Status.CompileDone) return control_text::Nothing_To_Estimate;
  switch (Judge_Program_Table().Standing) {
    case Table_Standing::Other_Text:
    case Table_Standing::Other_Sources:
      return control_text::Nothing_To_Estimate;
    case Table_Standing::Cut_Short:
      return control_text::Estimate_Cut_Short;
    case Table_Standing::Ready:
    case Table_Standing::Of_Goto:
      break;
  }
  return {};
}

}  // namespace

double Find_Material_ProcessTime(const Wire& wire, Indexed<double, 1, 4>& from) {
  const double dwell = std::max(0.0, double{wire.Dwell});
  if (wire.Motion != 1) return dwell;
  const Way way = Way_Of(wire, from);
  return way.MaxSteps > 0 ? dwell + Move_Seconds(way, wire) : dwell;
}

void Command_Estimate_Process_Time_Click() {
  // The walk over a long table does not yield; the pulses of a move would stop.
  if (Anything_Moves() && !Stopped_For("Can't estimate")) return;
  if (!Drive().Missing.empty()) {
    SetStatus(1, Drive().Missing, 10);
    return;
  }
  Controller.Estimated_Process_Time.reset();
  CNC_Display();
  if (const std::string_view why_not = Unfit_To_Estimate(); !why_not.empty()) {
    SetStatus(1, why_not, 10);
    return;
  }
  Trap("Estimate_Process_Time_Error", [] {
    // The program's own file; after a Goto the path of the last compile is that of the line.
    const Table<Wire> wires = Read_Wire_Table(Join_Path(Application.Table_Folder, Wire_Table_Name));
    Indexed<double, 1, 4> from;
    for (int axis = 1; axis <= 4; ++axis) from[axis] = Machine.Position[axis];
    double seconds = 0;
    for (const Wire& wire : wires.Rows) seconds += Find_Material_ProcessTime(wire, from);
    Controller.Estimated_Process_Time = seconds;
  });
  CNC_Display();
}

}  // namespace norvik
