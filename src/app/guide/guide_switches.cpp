// The pages Pins, Home switches and E-stop.
#include "app/guide/guide.h"
#include "app/guide/pin_layouts.h"
#include "app/guide/values.h"
#include "app/main_form.h"
#include "app/setup_apply.h"
#include "control/manual/home.h"
#include "control/motion/motion.h"
#include "control/motion/waits.h"
#include "core/axes.h"
#include "core/setup.h"
#include "drive/drive.h"
#include "parallel/pin_map.h"
#include "parallel/port_setup.h"
#include "platform/platform.h"

namespace norvik {

namespace {

// A seek goes on for a little longer than the axis is, wherever it began.
constexpr double Seek_Beyond = 1.05;

std::string Home_Path(int axis, int end) {
  const double way = MachineSetup.Axis_Depth[axis] * Seek_Beyond;
  return end == 0 ? "" : Guide_Number(end == 1 ? -way : way);
}

// Zero at the negative end; the length at the positive one, but for Z, whose zero is at the top.
std::string Home_Target(int axis, int end) {
  if (end == 0) return "";
  return end == 1 || axis == 3 ? "0" : Guide_Number(MachineSetup.Axis_Depth[axis]);
}

// A little off the switch, so that the next start does not find it on.
std::string Home_Place(int axis, int end) {
  if (end == 0) return "";
  const double off = MachineSetup.UnitsofMeasurement == 1 ? 5 : 0.2;
  const double target = end == 1 || axis == 3 ? 0 : MachineSetup.Axis_Depth[axis];
  return Guide_Number(end == 1 ? target + off : target - off);
}

std::string Key(const char* family, int axis) {
  return family + std::to_string(axis);
}

}  // namespace

std::string Guide_Drive_Words() {
  std::string words = Main_Form.Port_Text + ". ";
  if (Drive().Times_Half_Steps) return words + Guide_Host.Port_Right();
  const auto ports = Platform.Serial_Ports();
  words += ports.empty() ? "This computer shows no serial port: plug the board in." : "Ports:";
  for (const Serial_Port_Info& port : ports) {
    words += "\n" + port.Device;
    if (!port.Description.empty()) words += " (" + port.Description + ")";
    if (!port.Problem.empty()) words += ": " + port.Problem;
  }
  return words + "\n" + Drive().Health();
}

void Guide_Take_Layout(int index) {
  const auto layouts = Pin_Layouts();
  if (index < 0 || index >= std::ssize(layouts)) return;
  if (!May_Change("Can't change the pins")) return;
  Port_Setup_Form_Load();
  Show_Pin_Layout(layouts[static_cast<std::size_t>(index)]);
  Port_Setup_Apply_Click();
  Guide_Form.Label_Hint.clear();
  Guide_Host.Form_Changed();
}

void Guide_Wiggle_Output(int output) {
  if (Drive().Times_Half_Steps && !Output_Bit(Output_Slot(output))) {
    Refuse("Output " + std::to_string(output) + " has no pin: choose a layout, or set its pin.");
    return;
  }
  if (!Begin_Operation(Operation::Jog)) {
    Refuse(Why_Not_Begin(Operation::Jog));
    return;
  }
  const Motion_Scope scope(Operation::Jog);
  constexpr int times = 3;
  constexpr double half = 0.3;  // seconds
  for (int i = 0; i < times; ++i) {
    Drive().Switch_Output(output, true);
    const bool waited = Wait_Seconds(half);
    Drive().Switch_Output(output, false);
    if (!waited || !Wait_Seconds(half)) break;
  }
  Refuse("Output " + std::to_string(output) + " was switched on and off. Off now.");
}

std::string Guide_Input_Words(int input) {
  if (Drive().Times_Half_Steps && !Input_Bit(input)) return "not wired";
  bool on = false;
  if (input == EStop_Input)
    on = Drive().EStop_Input_On();
  else if (input == Auxiliary_Input)
    on = Drive().Aux_Input_High();
  else
    on = Drive_Status.Limit_State[input];
  return on ? "on" : "off";
}

void Guide_Take_Homing() {
  const auto& axes = Guide_Form.Axes;
  bool any = false;
  for (int axis = 1; axis <= Axis_Count; ++axis) any = any || axes[axis].Combo_Home_End != 0;
  for (int axis = 1; axis <= Axis_Count; ++axis) {
    const int end = axes[axis].Combo_Home_End;
    if (!Take_Values({{Key("Axis_HomePath_", axis), Home_Path(axis, end)},
                      {Key("Axis_HomeTarget_", axis), Home_Target(axis, end)},
                      {Key("Axis_HomePos_", axis), Home_Place(axis, end)}}))
      return;
  }
  Take_Values({{"Validate_Home_Position", any ? "True" : "False"}});
  Guide_Host.Form_Changed();
}

void Guide_Rehearse_Homing() {
  if (!MachineSetup.Validate_Home_Position) {
    Refuse("No axis has a home switch here: choose the ends and press Take first.");
    return;
  }
  if (const std::string why = Why_Not_Begin(Operation::Home); !why.empty()) {
    Refuse(why);
    return;
  }
  Guide_Form.Label_Hint.clear();
  Command_Home_Click();
  const std::string_view reason = End_Reason();
  Refuse(reason.empty() ? "Homing has ended. Is each axis at its end, and does the panel show it?"
                        : reason);
}

void Guide_Watch_EStop() {
  const bool on = Drive().EStop_Input_On();
  if (on) Guide_Form.EStop_Seen_On = true;
  if (!on && Guide_Form.EStop_Seen_On) Guide_Form.EStop_Seen_Off = true;
  Guide_Host.Form_Changed();
}

}  // namespace norvik
