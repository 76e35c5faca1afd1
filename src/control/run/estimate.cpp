#include "control/run/estimate.h"

#include "compiler/compile/compile.h"
#include "compiler/compile/table_pair.h"
#include "compiler/state/compiler_state.h"
#include "compiler/tables/program_wire.h"
#include "compiler/tables/tables_io.h"
#include "control/displays/displays.h"
#include "control/motion/motion.h"
#include "control/state/control_texts.h"
#include "control/state/controller_state.h"
#include "core/application.h"
#include "core/fault.h"
#include "core/messages.h"
#include "core/operation.h"
#include "core/paths.h"
#include "core/rounding.h"
#include "core/scope.h"
#include "core/setup.h"
#include "drive/drive.h"
#include "drive/move_plan.h"

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

double Half_Step_Seconds(double scale, double ipm) {
  return Half_Period(scale, ipm) / 1e6;
}

// Half steps whose speed changes by `change` each, from `ipm` on; `ipm` is left at the end.
double Ramp_Seconds(double scale, double count, double& ipm, double change, double low,
                    double high) {
  double seconds = 0;
  for (double i = 0; i < count; ++i) {
    seconds += Half_Step_Seconds(scale, ipm);
    ipm = std::clamp(ipm + change, low, high);
  }
  return seconds;
}

double Move_Seconds(const Way& way, const Wire& wire) {
  if (Drive().Move_Seconds) {
    Step_Request request;
    for (int axis = 1; axis <= 4; ++axis) request.Steps[axis] = To_Int32(way.Steps[axis]);
    request.Start = wire.IPM_S, request.Run = wire.IPM_R, request.End = wire.IPM_E;
    return Drive().Move_Seconds(request);
  }
  const Move_Plan plan = Plan_Move(Rules_Of_Setup(), way.Steps, wire.IPM_S, wire.IPM_R, wire.IPM_E);
  const double scale = MachineSetup.Axis_SPI[Timing_Axis(Leading_Axis(way.Steps))];
  const double total = 2 * plan.Major;
  if (!(plan.Increment > 0)) return total * Half_Step_Seconds(scale, plan.Cruise);
  const double up = std::clamp<double>(plan.Ramp_Up, 0, total);
  const double down = std::clamp<double>(plan.Ramp_Down, 0, total);
  const double low = std::min(plan.Low, plan.Cruise);
  // Where the ramps overlap, one takes what the other gives.
  const double rise = std::floor(std::min(up, down));
  const double hold = std::floor(std::max(up, down)) - rise;
  double ipm = std::min(plan.Start, plan.Cruise);
  const double rising = Ramp_Seconds(scale, rise, ipm, plan.Increment, low, plan.Cruise);
  const double holding = hold * Half_Step_Seconds(scale, ipm);
  return rising + holding +
         Ramp_Seconds(scale, total - rise - hold, ipm, -plan.Increment, low, plan.Cruise);
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
  if (const std::string_view missing = Drive().Missing(); !missing.empty()) {
    Tell(missing, 10);
    return;
  }
  Controller.Estimated_Process_Time.reset();
  CNC_Display();
  if (const std::string_view why_not = Unfit_To_Estimate(); !why_not.empty()) {
    Tell(why_not, 10);
    return;
  }
  Trap("Estimate_Process_Time_Error", [] {
    // What a crash or another program has left half replaced is made again.
    if (Standing_Of_Pair(Application.Table_Folder) == Pair_Standing::Mixed) {
      AddMessage(Words_About_Mixed_Pair(Application.Table_Folder));
      if (!CompileProgram()) return;
    }
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
