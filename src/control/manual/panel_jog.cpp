#include "control/manual/panel_jog.h"

#include "control/manual/jog.h"
#include "control/manual/jog_key.h"
#include "control/motion/motion.h"
#include "control/state/cnc_controls_form.h"
#include "control/state/controller_state.h"
#include "core/application.h"
#include "core/fault.h"
#include "core/format.h"
#include "core/messages.h"
#include "core/numbers.h"
#include "core/operation.h"
#include "core/rounding.h"
#include "core/scope.h"
#include "core/setup.h"
#include "drive/drive.h"
#include "platform/platform.h"

#include <algorithm>
#include <string>

namespace norvik {

namespace {

constexpr double Held_Distance = 1000;  // units; a held jog ends there

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

// Z in single steps needs its own key: without it Z moves only as long as the button is held, so
// that no step drives it into the table.
bool In_Single_Steps(int axis) {
  return CNC_Controls.Check_SingleStep.Value && (axis != 3 || MachineSetup.Axis_Z_Jog_Step_Enable);
}

// Adds the axes of a press, then runs the jog.
template <class Add_Axes>
void Press(bool single, Add_Axes add_axes) {
  if (!Begin_Jog(Operation::Jog)) return;
  ResetRetoolDisplay();
  const Motion_Scope jog(Operation::Jog);
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
