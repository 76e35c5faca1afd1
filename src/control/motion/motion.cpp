#include "control/motion/motion.h"

#include "control/displays/displays.h"
#include "control/motion/machine_move.h"
#include "control/motion/waits.h"
#include "control/state/cnc_controls_form.h"
#include "control/state/control_texts.h"
#include "control/state/controller_state.h"
#include "control/state/run_plot_host.h"
#include "core/application.h"
#include "core/messages.h"
#include "core/setup.h"
#include "drive/drive.h"
#include "drive/drive_status.h"
#include "platform/platform.h"

namespace norvik {

void Settle_Stopped() {
  Controller.Step_Position = Machine.Position;
  Resynchronise_Position();
  Machine.Run_Step = Machine.StartingStep;
  Controller.Live_Feed_Cut = MachineSetup.Axis_Feed_Rate_Cut;
  Controller.Live_Feed_Travel = MachineSetup.Axis_Feed_Rate_Travel;
  Controller.Run_Started = false;
  Controller.Run_Row.reset();
  Controller.Repeat_Step.reset();
  Drive_Status.Actual_IPM = 0;
}

void Switch_Outputs_Off_By_EStop() {
  if (!MachineSetup.E_Stop_Output_Disable) return;
  for (int n = 1; n <= 5; ++n) Drive().Switch_Output(n, false);
  for (Check_Control& box : CNC_Controls.Check_Outputs) box.Value = false;
  CNC_Controls_Host.Form_Changed();
}

void CNC_Stop() {
  Run_Plot_Host.Draw_Cursor();
  Controller.Stop_Request = true;
  Machine.CNCMode = CNC_Stopped;
  Drive().Stop();
  CNCMode_Display();
  Settle_Stopped();
}

Motion_Scope::Motion_Scope(Operation what) {
  Entry.emplace(what);
  CNCMode_Display();
}

Motion_Scope::~Motion_Scope() {
  Entry.reset();
  CNCMode_Display();
  Drive_Status.Actual_IPM = 0;
}

bool Begin_Operation(Operation wanted) {
  const Obstacle obstacle = Obstacle_To(wanted);
  if (obstacle == Obstacle::Something_Moves) return false;
  if (obstacle != Obstacle::None) {
    Tell(Why_Not_Begin(wanted), obstacle == Obstacle::No_Drive ? 10 : 5);
    return false;
  }
  Clear_Standing_Status();
  Controller.Stop_Request = false;
  Controller.Stop_Text.clear();
  Operation_Host.Forget_Presses();
  return true;
}

void ResetRetoolDisplay() {
  CNC_Controls.Command_AutoRetool[0].Enabled = true;
  CNC_Controls.Command_AutoRetool[1].Enabled = false;
  CNC_Controls.Command_AutoRetool[1].Color = Control_Color::Normal;
  Controller.Retool_Active = false;
  CNC_Controls_Host.Form_Changed();
}

void Show_Retool_Way_Back() {
  Controller.Retool_Active = true;
  CNC_Controls.Command_AutoRetool[0].Enabled = false;
  CNC_Controls.Command_AutoRetool[1].Enabled = true;
  CNC_Controls_Host.Form_Changed();
}

void Forget_Operations() {
  Controller = {};
  Controller.Live_Feed = Controller.Live_Feed_Cut = MachineSetup.Axis_Feed_Rate_Cut;
  Controller.Live_Feed_Travel = MachineSetup.Axis_Feed_Rate_Travel;
  ResetRetoolDisplay();
  for (int axis = 1; axis <= 4; ++axis) Command_Lim_Latch_Click(axis);
}

std::string_view End_Reason() {
  if (!Controller.Stop_Text.empty()) return Controller.Stop_Text;
  switch (Interrupted()) {
    case Interruption::EStop:
      return control_text::Ended_By_EStop;
    case Interruption::Esc:
      return control_text::Ended_By_Esc;
    case Interruption::Stop:
      return control_text::Ended_By_Operator;
    case Interruption::None:
    case Interruption::Closing:
      break;
  }
  return {};
}

void Announce_End() {
  if (const std::string_view reason = End_Reason(); !reason.empty()) Tell(reason, 10);
}

bool Stopped_For(std::string_view what) {
  const Obstacle obstacle = Obstacle_To(Operation::Open);
  if (obstacle == Obstacle::None) return true;
  if (obstacle == Obstacle::Program_Is_Held) {
    Tell(Why_Not_Begin(Operation::Open), 5);
    return false;
  }
  Platform.Beep();
  const bool runs = Machine.CNCMode == CNC_Running || Anything_Moves();
  Tell(std::string(what) + (runs ? " while CNC running" : " while a run is paused"), 5);
  return false;
}

}  // namespace norvik
