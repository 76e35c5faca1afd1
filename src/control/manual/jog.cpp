#include "control/manual/jog.h"

#include "control/motion/machine_move.h"
#include "control/motion/motion.h"
#include "control/state/control_texts.h"
#include "control/state/controller_state.h"
#include "core/application.h"
#include "core/axes.h"
#include "core/fault.h"
#include "core/messages.h"
#include "core/rounding.h"
#include "core/scope.h"
#include "core/setup.h"
#include "drive/drive.h"

namespace norvik {

namespace {

constexpr const char* Slave_Names[] = {"X Axis", "Y Axis", "Z Axis"};

// The product is rounded to single first, so that 0.01 units at 4000 steps are 40 steps although
// the single nearest to 0.01 lies below it.
std::int32_t Whole_Steps(int axis, double distance) {
  Require_Scale(axis, distance);
  return To_Int32(Whole_Part(To_Single(distance * MachineSetup.Axis_SPI[axis])));
}

// "X+ Y-".
std::string Ways_Text(const Step_Request& request) {
  std::string text;
  for (int axis = 1; axis <= 4; ++axis) {
    if (request.Steps[axis] <= 0) continue;
    text += (text.empty() ? "" : " ") + std::string(1, Axis_Letter(axis));
    text += request.Negative[axis] ? '-' : '+';
  }
  return text;
}

}  // namespace

bool Begin_Jog(Operation wanted) {
  if (Anything_Moves()) {
    Tell(control_text::Still_Moving, 5);
    return false;
  }
  return Begin_Operation(wanted);
}

void Trap_Jog(std::string_view name, const std::function<void()>& jog) {
  if (!Trap(name, jog)) Tell(control_text::Ended_By_Failure, 10);
}

bool Jogs_By_Itself(int axis) {
  if (axis != 4 || MachineSetup.Slave_A_Axis_to == "None") return true;
  Tell(control_text::A_Is_Slaved, 5);
  return false;
}

Step_Request Jog_Request() {
  Step_Request request;
  request.Negative = Controller.Jog_Dir;
  request.No_Rate_Check = true;
  return request;
}

void Add_Jog_Axis(Step_Request& request, int axis, bool negative, double distance) {
  request.Negative[axis] = negative;
  request.Steps[axis] = Whole_Steps(axis, distance);
  if (axis > 3 || MachineSetup.Slave_A_Axis_to != Slave_Names[axis - 1]) return;
  request.Negative[4] = negative;
  request.Steps[4] = Whole_Steps(4, distance);
}

void Run_Jog(const Step_Request& request, bool held) {
  for (int axis = 1; axis <= 4; ++axis) {
    const double sign = request.Negative[axis] ? -1 : 1;
    const double scale = MachineSetup.Axis_SPI[axis];
    const double way = request.Steps[axis] > 0 ? request.Steps[axis] / scale : 0;
    Controller.Move_Target[axis] = Machine.Position[axis] + sign * way;
  }
  Tell_Detail(Ways_Text(request));
  {
    const Value_In_Scope holds(Controller.Jog_Held, held);
    Move_End end = Drive_Move(request, std::nullopt, 0);
    if (Arrived(end)) end = Wait_For_Moves();
    if (end == Move_End::Limit) Tell(Ended_By_Limit(), 5);
    if (end == Move_End::EStop || end == Move_End::Escape || end == Move_End::Failed)
      Announce_End();
  }
  Machine.Jog_Stop_Request = true;
  Resynchronise_Position();
  Controller.Jog_Dir = request.Negative;
}

void Release_Jog() {
  if (Controller.Jog_Held) Drive().Release_Jog();
}

}  // namespace norvik
