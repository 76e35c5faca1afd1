#include "control/run/execute_step.h"

#include "compiler/tables/program_wire.h"
#include "control/motion/machine_move.h"
#include "control/motion/motion.h"
#include "control/motion/waits.h"
#include "control/state/cnc_controls_form.h"
#include "control/state/control_texts.h"
#include "control/state/controller_state.h"
#include "control/state/run_plot_host.h"
#include "core/application.h"
#include "core/fault.h"
#include "core/messages.h"
#include "core/rounding.h"
#include "core/setup.h"
#include "drive/drive.h"
#include "platform/platform.h"

#include <algorithm>
#include <string>

namespace norvik {

namespace {

class Busy_Pointer {
 public:
  Busy_Pointer() { Platform.Set_Mouse_Pointer(Mouse_Pointer::Busy); }
  ~Busy_Pointer() { Platform.Set_Mouse_Pointer(Mouse_Pointer::Normal); }
  Busy_Pointer(const Busy_Pointer&) = delete;
  Busy_Pointer& operator=(const Busy_Pointer&) = delete;
};

void Clear_Status() {
  if (!Messages.Panel[1].empty()) SetStatus(1, "", -1);
}

// A wire with a count above 0 begins a repeat: its step is the one to come back to. A wire with any
// other count ends a round: while rounds are left `step` becomes the step to come back to, after
// the last one it stays as it is and the run goes on.
void Serve_Repeat(double repeat, std::int32_t& step) {
  if (repeat > 0) {
    Controller.Repeat_Step = step;
    Controller.Repeat_Count = To_Int16(repeat);
  } else if (--Controller.Repeat_Count < 0) {
    Controller.Repeat_Count = 0;
    Controller.Repeat_Step.reset();
  }
  if (Controller.Repeat_Step) step = *Controller.Repeat_Step;
}

bool Serve_Aux_Wait() {
  SetStatus(1, control_text::Waiting_For_Aux, -1);
  const bool came = Wait_For_Aux_Input();
  Clear_Status();
  return came;
}

// Chords of an arc stand together under one step.
bool Is_Chord(std::size_t k) {
  const auto& rows = Program_Wire.Rows();
  const auto same = [&](std::size_t other) {
    return other < rows.size() && rows[other].Motion == 1 && rows[other].Step == rows[k].Step;
  };
  return rows[k].Motion == 1 && (same(k + 1) || (k > 0 && same(k - 1)));
}

Move_Order Order_Of(std::size_t k, const Wire& wire, std::int32_t step) {
  Move_Order order;
  if (wire.Motion == 1)
    for (int axis = 1; axis <= 4; ++axis) order.Target[axis] = wire.End[axis];
  order.Start = Controller.From_Rest ? MachineSetup.Axis_Ramp_Start : wire.IPM_S;
  order.Run = wire.IPM_R;
  order.End = wire.IPM_E;
  order.Out = wire.Out;
  order.S_Word = wire.S_Word;
  order.Step = step;
  order.Is_Arc = Drive().Queues_Moves && Is_Chord(k);
  return order;
}

// A move that did not reach its end stops the run. Where a limit switch did it, this is the reason
// that the operator reads, unless there is an earlier one.
void End_By(Move_End end) {
  if (end == Move_End::Limit && Controller.Stop_Text.empty())
    Controller.Stop_Text = Ended_By_Limit();
  CNC_Stop();
}

// The parts of a wire that move something. False when the step must end here.
bool Move_Wire(std::size_t k, const Wire& wire, std::int32_t step) {
  const Move_End end = Machine_Move(Order_Of(k, wire, step));
  if (end != Move_End::No_Steps) Controller.From_Rest = false;
  if (!Arrived(end)) {
    End_By(end);
    return false;
  }
  if (wire.Tool) Controller.Tool = wire.Tool;
  CNC_Controls.Text_Program_Messages.Text = wire.Block_Text;
  if (wire.Dwell == -1) Machine.CNCMode = CNC_Paused;
  return !Application.Closing_Program;
}

bool Execute_Wire(std::size_t k, std::int32_t& step, bool moves) {
  // A copy: a handler that runs in a yield may install another table.
  const Wire wire = Program_Wire.Rows()[k];
  if (moves) {
    if (!Look_At_Stops()) return false;
    if (wire.Repeat) Serve_Repeat(*wire.Repeat, step);
    if (wire.Aux_Wait == 1 && !Serve_Aux_Wait()) return false;
  }
  if (moves && wire.Dwell > 0 && !Dwell_Wait(wire.Dwell, step)) return false;
  Run_Plot_Host.Draw_Segment(k, wire);
  return !moves || Move_Wire(k, wire, step);
}

// One wire; a failure is logged and ends the step.
bool Execute_Wire_Trapped(std::size_t k, std::int32_t& step, bool moves) {
  bool whole = false;
  if (Trap("Execute_Step_Error", [&] { whole = Execute_Wire(k, step, moves); })) return whole;
  if (moves && Controller.Stop_Text.empty()) Controller.Stop_Text = control_text::Ended_By_Failure;
  return false;
}

// The first row behind those that stand together with row `k` under one step.
std::size_t Behind_Rows_Of_Step(std::size_t k) {
  const auto& rows = Program_Wire.Rows();
  const std::int32_t step = rows[k].Step;
  while (k < rows.size() && rows[k].Step == step) ++k;
  return k;
}

}  // namespace

bool Execute_Step(std::int32_t& step, int mode) {
  const Busy_Pointer pointer;
  bool whole = true;
  for (auto k = Program_Wire.Next_Of_Step(step, 0); k && whole;
       k = Program_Wire.Next_Of_Step(step, *k + 1))
    whole = Execute_Wire_Trapped(*k, step, mode == Move_And_Draw);
  Clear_Status();
  return whole;
}

bool Execute_Rows(std::size_t& row, std::int32_t& step) {
  const Busy_Pointer pointer;
  const std::int32_t first_step = step;
  const std::size_t end = Behind_Rows_Of_Step(row);
  bool whole = true;
  for (; row < end && step == first_step && whole; ++row)
    whole = Execute_Wire_Trapped(row, step, true);
  if (whole && step != first_step) {
    const auto back = Program_Wire.Next_Of_Step(step, 0);
    row = back ? Behind_Rows_Of_Step(*back) : end;
  }
  Clear_Status();
  return whole;
}

}  // namespace norvik
