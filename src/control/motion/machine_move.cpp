#include "control/motion/machine_move.h"

#include "control/motion/motion.h"
#include "control/state/control_texts.h"
#include "control/state/controller_state.h"
#include "core/application.h"
#include "core/axes.h"
#include "core/error_log.h"
#include "core/fault.h"
#include "core/format.h"
#include "core/messages.h"
#include "core/paths.h"
#include "core/rounding.h"
#include "core/setup.h"
#include "core/trace_file.h"
#include "drive/drive.h"
#include "drive/drive_status.h"

#include <cmath>
#include <cstdio>
#include <utility>

namespace norvik {

Move_Trace_State Move_Trace;

namespace {

constexpr const char* Slave_Names[] = {"X Axis", "Y Axis", "Z Axis"};

std::string Trace_Line(const Move_Order& order) {
  std::string line;
  for (const Nullable& target : order.Target)
    line += (target ? Shortest_Text(*target) : std::string("#NULL#")) + ",";
  for (const float speed : {order.Start, order.Run, order.End}) line += Shortest_Text(speed) + ",";
  for (const std::int16_t command : order.Out) line += std::to_string(command) + ",";
  line.back() = '\r';
  return line + "\n";
}

void Trace_Move(const Move_Order& order) {
  std::string path;
  if (Move_Trace.Path)
    path = *Move_Trace.Path;
  else if (!Application.Table_Folder.empty())
    path = Join_Path(Application.Table_Folder, "TestFile.csv");
  if (path.empty() || Append_To_Trace(path, Trace_Line(order))) return;
  if (path == Move_Trace.Failed_Path) return;
  Move_Trace.Failed_Path = path;
  ErrorLogWrite(std::string(control_text::Trace_Failed) + path);
}

Fault No_Step_Count(int axis, double distance) {
  return {Fault_Number::Overflow,
          "Axis " + std::to_string(axis) + ": " + Shortest_Text(MachineSetup.Axis_SPI[axis]) +
              " steps per unit over a distance of " + Shortest_Text(distance) +
              " give no step count. Check Axis_SPI_" + std::to_string(axis) + "."};
}

// Steps of an axis: its scale times the distance, to the nearest whole number.
std::int32_t Steps_To_Go(int axis, double delta) {
  if (delta == 0) return 0;
  Require_Scale(axis, delta);
  const double scale = MachineSetup.Axis_SPI[axis];
  const double steps = Round_Half_Even(scale * std::abs(delta));
  if (!std::isfinite(steps) || steps > 1e9) throw No_Step_Count(axis, delta);
  return To_Int32(steps);
}

// A move of 0 counts as negative on X and Y and keeps the last direction on Z and A.
bool Goes_Negative(int axis, double delta, bool last) {
  if (delta == 0 && axis >= 3) return last;
  return !(delta < 0);
}

void Count_Steps(const Indexed<Nullable, 1, 4>& target, Step_Request& request) {
  for (int axis = 1; axis <= 4; ++axis) {
    Controller.Move_Target[axis] = target[axis].value_or(Machine.Position[axis]);
    if (!target[axis]) continue;
    const double delta = Machine.Theoretical_Pos[axis] - *target[axis];
    request.Steps[axis] = Steps_To_Go(axis, delta);
    request.Negative[axis] = Goes_Negative(axis, delta, request.Negative[axis]);
  }
}

// Where the four axes stand by the commanded steps, had the move begun at `before`.
void Count_Commanded(const Indexed<double, 1, 6>& before, const Step_Request& request) {
  for (int axis = 1; axis <= 4; ++axis) {
    Machine.Theoretical_Pos[axis] = before[axis];
    if (request.Steps[axis] <= 0) continue;
    const double sign = request.Negative[axis] ? -1 : 1;
    Machine.Theoretical_Pos[axis] += sign * request.Steps[axis] / MachineSetup.Axis_SPI[axis];
    Controller.Step_Counter[axis] += request.Negative[axis] ? -request.Steps[axis]  //
                                                            : request.Steps[axis];
  }
}

// The steps that an early end left, from the counted edges.
void Count_Made(const Indexed<double, 1, 6>& position_before) {
  for (int axis = 1; axis <= 4; ++axis) {
    const double moved = Machine.Position[axis] - position_before[axis];
    Controller.Step_Counter[axis] += To_Int32(Round_Half_Even(moved * MachineSetup.Axis_SPI[axis]));
  }
  Resynchronise_Position();
}

std::string Failure_Text() {
  std::string why = Drive().Why_Failed();
  return why.empty() ? std::string(control_text::Ended_By_Failure) : why;
}

// The operator's words for an end that the flags alone do not tell.
void Note_End(Move_End end) {
  if (!Controller.Stop_Text.empty()) return;
  if (end == Move_End::EStop && !Machine.EStop_Flag)
    Controller.Stop_Text = control_text::Ended_By_EStop_Input;
  if (end == Move_End::Failed)
    Controller.Stop_Text =
        !Drive().Missing().empty() ? std::string(Drive().Missing()) : Failure_Text();
}

// A drive makes the steps of such an axis in silence: they move and count nothing.
void Tell_Missing_Step_Pins(const Step_Request& request) {
  for (int axis = 1; axis <= 4; ++axis) {
    if (request.Steps[axis] <= 0 || Drive().Can_Step(axis)) continue;
    if (std::exchange(Controller.No_Step_Pin_Told[axis], true)) continue;
    Tell(Axis_Letter(axis) + std::string(control_text::Has_No_Step_Pin), 10);
  }
}

Move_End Enter_Drive(const Move_Order& order, const Step_Request& request) {
  const Indexed<double, 1, 6> theoretical = Machine.Theoretical_Pos;
  const Indexed<double, 1, 6> position = Machine.Position;
  Controller.Live_Feed = order.Run;
  const Move_End end = Drive_Move(request, order.S_Word, order.Step);
  if (Arrived(end))
    Count_Commanded(theoretical, request);
  else
    Count_Made(position);
  for (int axis = 1; axis <= 4; ++axis) Controller.Last_Move_Dir[axis] = request.Negative[axis];
  return end;
}

}  // namespace

void Require_Scale(int axis, double distance) {
  constexpr double lowest = 0.001;  // a step in 1000 units
  const double scale = MachineSetup.Axis_SPI[axis];
  if (!std::isfinite(scale) || scale < lowest) throw No_Step_Count(axis, distance);
}

Move_End Drive_Move(const Step_Request& request, Nullable s_word, std::int32_t step) {
  // A release that comes late, of a jog before, must not end this move.
  Machine.Jog_Stop_Request = true;
  Tell_Missing_Step_Pins(request);
  const Move_End end = Drive().Move(request, s_word, step);
  if (end == Move_End::EStop && !Machine.EStop_Flag) Switch_Outputs_Off_By_EStop();
  Note_End(end);
  return end;
}

std::string Ended_By_Limit() {
  std::string sides;
  for (int axis = 1; axis <= 4; ++axis) {
    const auto negative = Drive_Status.Free_Negative[axis];
    if (!negative) continue;
    const bool turned = axis == 3 && MachineSetup.Display_Z_Coordinate_Invert;
    sides += (sides.empty() ? "" : ", ") + std::string(1, Axis_Letter(axis)) +
             (*negative != turned ? "-" : "+");
  }
  if (sides.empty()) return std::string(control_text::Ended_By_Limit);
  return std::string(control_text::Limit_Ended) + sides +
         std::string(control_text::Jog_The_Free_Way);
}

void Resynchronise_Position() {
  for (int axis = 1; axis <= 4; ++axis) Machine.Theoretical_Pos[axis] = Machine.Position[axis];
}

Move_End Wait_For_Moves() {
  const Move_End end = Drive().Wait_Empty();
  Note_End(end);
  return end;
}

Move_End Machine_Move_To_End(const Move_Order& order) noexcept {
  Move_End end = Machine_Move(order);
  if (!Arrived(end) || !Drive().Queues_Moves) return end;
  if (const Move_End waited = Wait_For_Moves(); !Arrived(waited)) {
    Resynchronise_Position();
    end = waited;
  }
  return end;
}

Move_End Machine_Move(const Move_Order& order) noexcept {
  Move_End end = Move_End::Failed;
  Trap("Machine_Move_Error", [&] {
    Trace_Move(order);
    Indexed<Nullable, 1, 4> target = order.Target;
    for (int axis = 1; axis <= 3; ++axis)
      if (MachineSetup.Slave_A_Axis_to == Slave_Names[axis - 1]) target[4] = target[axis];

    Step_Request request;
    for (int axis = 1; axis <= 4; ++axis) request.Negative[axis] = Controller.Last_Move_Dir[axis];
    if (Machine.EStop_Flag) {
      end = Move_End::EStop;
      return;
    }
    Count_Steps(target, request);
    request.Start = order.Start, request.Run = order.Run, request.End = order.End;
    request.Out = order.Out;
    request.Is_Arc = order.Is_Arc;
    end = Enter_Drive(order, request);
  });
  Note_End(end);
  return end;
}

}  // namespace norvik
