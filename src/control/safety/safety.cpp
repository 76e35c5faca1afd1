#include "control/safety/safety.h"

#include "control/displays/displays.h"
#include "control/motion/motion.h"
#include "control/state/cnc_controls_form.h"
#include "control/state/control_texts.h"
#include "control/state/controller_state.h"
#include "core/application.h"
#include "core/axis_memory.h"
#include "core/error_log.h"
#include "core/event_sounds.h"
#include "core/messages.h"
#include "core/operation.h"
#include "core/setup.h"
#include "drive/drive.h"
#include "drive/drive_status.h"
#include "platform/platform.h"

#include <algorithm>

namespace norvik {

namespace {

void Show_EStop_Button() {
  CNC_Controls.Command_EStop.Caption =
      Machine.EStop_Flag ? control_text::Motors_Disabled : control_text::Motors_Enabled;
  CNC_Controls.Command_EStop.Color =
      Machine.EStop_Flag ? Control_Color::Red : Control_Color::Normal;
  CNCMode_Display();
}

// What every trip does once the flag is set.
void Trip() {
  CNC_Stop();
  Drive().EStop(true);
  Machine.CNCMode = CNC_Stopped;
  Switch_Outputs_Off_By_EStop();
  Show_EStop_Button();
  Play_Event_Sound(sound::E_Stop);
}

void Clear() {
  Drive().EStop(false);
  Controller.Stop_Request = false;
  Show_EStop_Button();
}

// The switches, unless they are switched off: the panel's copy of them then stays as it was, and
// only the outputs are read back.
void Read_Inputs() {
  const auto limits = Drive_Status.Limit_State;
  const auto distances = Drive_Status.Home_Distance;
  Drive().Read_Switches();
  if (MachineSetup.LimitSwitchDisable != 1) return;
  Drive_Status.Limit_State = limits;
  Drive_Status.Home_Distance = distances;
}

// Once every switch is off, a switch met later tells which direction is safe.
void Lift_Home_Safety() {
  if (std::ranges::none_of(Drive_Status.Limit_State, [](bool on) { return on; }))
    Drive_Status.Home_Safety_Off = false;
}

}  // namespace

void Command_EStop_Click() {
  if (Machine.EStop_Flag && Anything_Moves()) {
    // Two presses in one yield would otherwise let the operation go on as if none had been made.
    Tell(control_text::EStop_Stays_Set, 5);
    return;
  }
  Machine.EStop_Flag = !Machine.EStop_Flag;
  if (Machine.EStop_Flag) {
    ErrorLogWrite(control_text::Log_Tripped);
    AddMessage(control_text::EStop_Has_Tripped);
    Trip();
  } else {
    ErrorLogWrite(control_text::Log_Cleared);
    AddMessage(control_text::EStop_Is_Cleared);
    Clear();
  }
  Application.EscFlag = false;
  CNC_Display();
  Display_IO();
}

void EStop_Engage() {
  Machine.EStop_Flag = true;
  Trip();
}

void Engage_EStop_State() {
  Machine.EStop_Flag = true;
  Machine.CNCMode = CNC_Stopped;
  Drive().EStop(true);
  Show_EStop_Button();
  Play_Event_Sound(sound::E_Stop);
}

void Home_Safety_Check() {
  Drive_Status.Home_Safety_Off = false;
  Drive().Read_Switches();
  Drive_Status.Home_Safety_Off = Drive().Starts_On_A_Switch();
}

void Tell_Home_Safety() {
  if (!Drive_Status.Home_Safety_Off) return;
  Platform.Message_Box(std::string(control_text::Home_Safety_Title),
                       std::string(control_text::Home_Safety_Box), Box_Buttons::Ok);
}

void Ask_About_Positions() {
  if (Position_Memory.Doubt.empty()) return;
  const Box_Answer answer = Platform.Message_Box(
      std::string(control_text::Home_Safety_Title),
      Position_Memory.Doubt + std::string(control_text::Positions_Question), Box_Buttons::Yes_No);
  if (answer != Box_Answer::Yes) return;
  Position_Memory.Doubt.clear();
  AddMessage(control_text::Positions_Confirmed);
}

void Toggle_Outputs(int index) {
  const bool on = CNC_Controls.Check_Outputs[index].Value;
  const bool input_holds = MachineSetup.E_Stop_Output_Disable && Drive().EStop_Input_On();
  if (on && (Machine.EStop_Flag || input_holds)) {
    CNC_Controls.Check_Outputs[index].Value = false;
    Tell(Machine.EStop_Flag ? control_text::Outputs_Stay_Off : control_text::Outputs_Wait_For_Input,
         5);
    CNC_Controls_Host.Form_Changed();
    return;
  }
  if (on && index <= 1) {
    const int other = 1 - index;
    Drive().Switch_Output(other + 1, false);
    CNC_Controls.Check_Outputs[other].Value = false;
  }
  Drive().Switch_Output(index + 1, on);
  CNC_Controls_Host.Form_Changed();
}

namespace {

bool Output_Is_On() {
  return std::ranges::any_of(Drive_Status.Output_Commanded, [](bool on) { return on; });
}

void Watch_Drive_Fault() {
  if (Output_Is_On() && Drive().In_Fault()) Switch_Outputs_Off_By_EStop();
}

}  // namespace

void Watch_EStop_Input() {
  if (Output_Is_On() && MachineSetup.E_Stop_Output_Disable && Drive().EStop_Input_On())
    Switch_Outputs_Off_By_EStop();
  const bool stops_already = Machine.CNCMode == CNC_Stopped &&  //
                             (Controller.Stop_Request || !Anything_Moves());
  if (stops_already || !Drive().EStop_Input_On()) return;
  Controller.Stop_Text = control_text::Ended_By_EStop_Input;
  CNC_Stop();
  if (!Anything_Moves()) Announce_End();
}

void Watch_Limits_In_Run() {
  if (MachineSetup.LimitDisableinRunMode != 1 || MachineSetup.LimitSwitchDisable == 1) return;
  if (Machine.CNCMode != CNC_Stepped && Machine.CNCMode != CNC_Running) return;
  if (!Drive_Status.Limit_State[1] && !Drive_Status.Limit_State[2] && !Drive_Status.Limit_State[3])
    return;
  Machine.EStop_Flag = false;
  Command_EStop_Click();
  ErrorLogWrite(control_text::Watch_Tripped);
  AddMessage(control_text::Watch_Tripped);
}

void Watch_Machine() {
  if (Application.Closing_Program || Application.ShutdownFlag) return;
  Read_Inputs();
  Lift_Home_Safety();
  Watch_Drive_Fault();
  Watch_EStop_Input();
  Watch_Limits_In_Run();
  Latch_Limits();
}

}  // namespace norvik
