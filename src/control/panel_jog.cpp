#include "control/panel_jog.h"

#include "control/cnc_controller.h"
#include "control/cnc_controls_form.h"
#include "control/control_texts.h"
#include "control/controller_state.h"
#include "control/displays.h"
#include "control/jog_key.h"
#include "control/machine_move.h"
#include "control/scope.h"
#include "core/application.h"
#include "core/fault.h"
#include "core/format.h"
#include "core/messages.h"
#include "core/numbers.h"
#include "core/rounding.h"
#include "core/setup.h"
#include "drive/drive.h"
#include "platform/platform.h"

#include <algorithm>
#include <string>

namespace norvik {

namespace {

constexpr double Held_Distance = 1000;  // units; a held jog ends there
constexpr const char* Slave_Names[] = {"X Axis", "Y Axis", "Z Axis"};

// What a single step is commonly set to, in units of the setup.
constexpr float Inch_Distances[] = {0.001F, 0.005F, 0.01F, 0.05F, 0.1F, 0.5F, 1};
constexpr float Millimetre_Distances[] = {0.01F, 0.05F, 0.1F, 0.5F, 1, 5, 10};

std::string Distance_Text(float distance) {
  return Format_Number(distance, "####.00##########");
}

struct Corner {
  bool X_Negative, Y_Negative;
};
constexpr Corner Corners[] = {{true, false}, {false, false}, {true, true}, {false, true}};

// The product is rounded to single first, so that 0.01 units at 4000 steps are 40 steps although
// the single nearest to 0.01 lies below it.
std::int32_t Whole_Steps(int axis, double distance) {
  Require_Scale(axis, distance);
  return To_Int32(Whole_Part(To_Single(distance * MachineSetup.Axis_SPI[axis])));
}

// Z in single steps needs its own key: without it Z moves only as long as the button is held, so
// that no step drives it into the table.
bool In_Single_Steps(int axis) {
  return CNC_Controls.Check_SingleStep.Value && (axis != 3 || MachineSetup.Axis_Z_Jog_Step_Enable);
}

// Adds the axes of a press, then runs the jog.
template <class Add_Axes>
void Press(bool single, Add_Axes add_axes) {
  if (!Begin_Jog()) return;
  ResetRetoolDisplay();
  const Operation_Mark busy(Controller.Panel_Busy);
  Trap_Jog("Jog_Error", [&] {
    Step_Request request = Jog_Request();
    add_axes(request, single ? MachineSetup.CNC_Jog_Increment : Held_Distance);
    request.Start = MachineSetup.Axis_Ramp_Start;
    request.Run = MachineSetup.Axis_Feed_Rate_Jogging;
    request.End = single ? MachineSetup.Axis_Ramp_Start : MachineSetup.Axis_Feed_Rate_Jogging;
    Controller.Live_Feed = MachineSetup.Axis_Feed_Rate_Jogging;
    Run_Jog(request, !single);
  });
}

}  // namespace

bool Begin_Jog() {
  if (Anything_Moves()) {
    SetStatus(1, control_text::Still_Moving, 5);
    return false;
  }
  return Begin_Operation();
}

void Trap_Jog(std::string_view name, const std::function<void()>& jog) {
  if (!Trap(name, jog)) SetStatus(1, control_text::Ended_By_Failure, 10);
}

bool Jogs_By_Itself(int axis) {
  if (axis != 4 || MachineSetup.Slave_A_Axis_to == "None") return true;
  SetStatus(1, control_text::A_Is_Slaved, 5);
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
  {
    const Value_In_Scope holds(Controller.Jog_Held, held);
    const Move_End end = Drive_Move(request, std::nullopt, 0);
    if (end == Move_End::Limit) SetStatus(1, Ended_By_Limit(), 5);
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

void Jog_MouseDown(int axis, int index) {
  if (!Jogs_By_Itself(axis)) return;
  const bool negative = (index == 0) != (axis == 3 && MachineSetup.Display_Z_Coordinate_Invert);
  Press(In_Single_Steps(axis), [&](Step_Request& request, double distance) {
    Add_Jog_Axis(request, axis, negative, distance);
  });
}

void Jog_XY_MouseDown(int index) {
  if (index < 0 || index > 3) return;
  const Corner corner = Corners[index];
  Press(In_Single_Steps(1), [&](Step_Request& request, double distance) {
    Add_Jog_Axis(request, 1, corner.X_Negative, distance);
    Add_Jog_Axis(request, 2, corner.Y_Negative, distance);
  });
}

void Jog_MouseUp(int, int) {
  Release_Jog();
  DoEvents();
}

void Jog_XY_MouseUp(int) {
  Release_Jog();
  DoEvents();
}

void Load_Jog_Controls() {
  const bool metric = MachineSetup.UnitsofMeasurement == 1;
  auto& offered = CNC_Controls.Combo_SStep_Distance.List;
  offered.clear();
  for (const float distance : metric ? Millimetre_Distances : Inch_Distances)
    offered.push_back(Distance_Text(distance));
  CNC_Controls.Combo_SStep_Distance.Text = Distance_Text(MachineSetup.CNC_Jog_Increment);
  CNC_Controls.Text_Jog_IPM.Text = Shortest_Text(MachineSetup.Axis_Feed_Rate_Jogging);
}

void Check_SingleStep_Click() {
  CNC_Controls.Check_SingleStep.Color =
      CNC_Controls.Check_SingleStep.Value ? Control_Color::Red : Control_Color::Normal;
  CNC_Controls_Host.Form_Changed();
}

void Combo_SStep_Distance_Change() {
  // A half-typed number is no fault; the last readable one stands.
  float value = 0;
  Trap_With([](const Fault&) {},
            [&] { value = To_Single(RegionalNumber(CNC_Controls.Combo_SStep_Distance.Text)); });
  if (!(value > 0)) return;
  MachineSetup.CNC_Jog_Increment = value;
  WriteSetup("Jog", "CNC_Jog_Increment", RegionalFix(Shortest_Text(value)));
}

void Combo_SStep_Distance_Click() {
  Combo_SStep_Distance_Change();
}

void Combo_SStep_Distance_LostFocus() {
  CNC_Controls.Combo_SStep_Distance.Text = Distance_Text(MachineSetup.CNC_Jog_Increment);
  CNC_Controls_Host.Form_Changed();
}

void Change_Jog_Feed(float ipm) {
  MachineSetup.Axis_Feed_Rate_Jogging = ipm;
  Display_Jog_Feed();
  if (Controller.Jog_Held) Controller.Live_Feed = ipm / static_cast<float>(Running_Jog_Divisor());
}

void Text_Jog_IPM_KeyUp(int key_code) {
  if (key_code != Key_Enter) return;
  Trap("Text_Jog_IPM_Error", [] {
    const float typed = To_Single(RegionalNumber(CNC_Controls.Text_Jog_IPM.Text));
    Change_Jog_Feed(std::max(typed, MachineSetup.Axis_Ramp_Start));
  });
  Text_Jog_IPM_LostFocus();
}

void Text_Jog_IPM_LostFocus() {
  CNC_Controls.Text_Jog_IPM.Text = Shortest_Text(MachineSetup.Axis_Feed_Rate_Jogging);
  CNC_Controls_Host.Form_Changed();
}

}  // namespace norvik
