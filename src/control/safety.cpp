#include "control/safety.h"

#include "control/cnc_controller.h"
#include "control/cnc_controls_form.h"
#include "control/control_texts.h"
#include "control/controller_state.h"
#include "control/displays.h"
#include "core/application.h"
#include "core/error_log.h"
#include "core/event_sounds.h"
#include "core/messages.h"
#include "core/setup.h"
#include "drive/drive.h"
#include "drive/drive_status.h"
#include "platform/platform.h"

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
  if (MachineSetup.E_Stop_Output_Disable) {
    for (int n = 1; n <= 5; ++n) Drive().Switch_Output(n, false);
    for (Check_Control& box : CNC_Controls.Check_Outputs) box.Value = false;
  }
  Show_EStop_Button();
  Play_Event_Sound(sound::E_Stop);
}

void Clear() {
  Drive().EStop(false);
  Controller.Stop_Request = false;
  Controller.Program_Busy = false;
  Show_EStop_Button();
}

}  // namespace

void Command_EStop_Click() {
  if (Machine.EStop_Flag && Anything_Moves()) {
    // Two presses in one yield would otherwise let the operation go on as if none had been made.
    SetStatus(1, control_text::EStop_Stays_Set, 5);
    return;
  }
  Machine.EStop_Flag = !Machine.EStop_Flag;
  if (Machine.EStop_Flag) {
    ErrorLogWrite(control_text::Log_Tripped);
    Trip();
  } else {
    ErrorLogWrite(control_text::Log_Cleared);
    Clear();
  }
  Application.EscFlag = false;
  CNC_Display();
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

void Look_At_Home_Switches() {
  Drive_Status.Home_Safety_Off = false;
  Drive().Read_Switches();
  Drive_Status.Home_Safety_Off = Drive().Starts_On_A_Switch();
}

void Tell_Home_Safety() {
  if (!Drive_Status.Home_Safety_Off) return;
  Platform.Message_Box(std::string(control_text::Home_Safety_Title),
                       std::string(control_text::Home_Safety_Box), Box_Buttons::Ok);
}

void Home_Safety_Check() {
  Look_At_Home_Switches();
  Tell_Home_Safety();
}

void Toggle_Outputs(int index) {
  const bool on = CNC_Controls.Check_Outputs[index].Value;
  if (on && Machine.EStop_Flag) {
    CNC_Controls.Check_Outputs[index].Value = false;
    SetStatus(1, control_text::Outputs_Stay_Off, 5);
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

void Watch_EStop_Input() {
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

}  // namespace norvik
