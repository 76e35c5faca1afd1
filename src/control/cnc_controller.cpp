#include "control/cnc_controller.h"

#include "compiler/state/compiler_state.h"
#include "compiler/tables/program_wire.h"
#include "compiler/text/program_text.h"
#include "control/cnc_controls_form.h"
#include "control/control_texts.h"
#include "control/controller_state.h"
#include "control/displays.h"
#include "control/execute_step.h"
#include "control/home.h"
#include "control/jog_key.h"
#include "control/machine_move.h"
#include "control/run_plot_host.h"
#include "control/safety.h"
#include "control/scope.h"
#include "control/waits.h"
#include "core/application.h"
#include "core/event_sounds.h"
#include "core/messages.h"
#include "core/setup.h"
#include "drive/drive.h"
#include "drive/drive_status.h"
#include "platform/platform.h"

#include <algorithm>

namespace norvik {

Controller_State Controller;
CNC_Controls_Form CNC_Controls;
CNC_Controls_Host_Operations CNC_Controls_Host;
Run_Plot_Host_Operations Run_Plot_Host;

namespace {

void Add_Elapsed_Time() {
  const std::int64_t now = Platform.Monotonic_Clock();
  Controller.Machine_Run_Time += static_cast<double>(now - Controller.Run_Clock) * 1e-9;
  Controller.Run_Clock = now;
}

void Enable_Step_Range(bool enabled) {
  CNC_Controls.Text_StartingStep.Enabled = enabled;
  CNC_Controls.Text_EndingStep.Enabled = enabled;
}

// A compile leaves 0 as the starting step; steps count from 1.
std::int32_t First_Step() {
  return std::max(Machine.StartingStep, 1);
}

// What a stopped machine looks like, whichever way it was stopped.
void Settle_Stopped() {
  Controller.Step_Position = Machine.Position;
  Resynchronise_Position();
  Machine.Run_Step = Machine.StartingStep;
  Controller.Live_Feed_Cut = MachineSetup.Axis_Feed_Rate_Cut;
  Controller.Live_Feed_Travel = MachineSetup.Axis_Feed_Rate_Travel;
  Controller.Run_Started = false;
  Controller.Repeat_Step.reset();
  Drive_Status.Actual_IPM = 0;
}

// A request of CNC_Retool: the sequence, then motors off until the operator enables them again.
// Taken back first: a Stop in a yield of the sequence enters the loop again.
void Serve_Retool_Request() {
  Controller.Retool_Request = false;
  ReTool();
  Engage_EStop_State();
}

// What stands before a pass. False when the loop must be left.
bool May_Run() {
  if (Machine.EStop_Flag || Application.Closing_Program) return false;
  if (Controller.Retool_Request) Serve_Retool_Request();
  if (Machine.CNCMode == CNC_Paused) Drive_Status.Actual_IPM = 0;
  return Machine.CNCMode > CNC_Paused && !Application.Closing_Program;
}

void Begin_Run_If_At_Start() {
  if (Machine.Run_Step != First_Step() || Controller.Run_Started) {
    Controller.Run_Started = false;
    return;
  }
  Controller.Run_Started = true;
  Controller.Run_Clock = Platform.Monotonic_Clock();
  Controller.Machine_Run_Time = 0;
  Controller.Steps_Executed = 0;
  SetStatus(1, "", -1);
  if (MachineSetup.Plot_FastDraw == 1) Run_Plot_Host.Refresh();
}

// A wire asked for a pause, or the operator did.
void Announce_Pause() {
  Drive().Wait_Empty();
  CNC_Pause();
  SetStatus(1, control_text::Paused_For_Retooling, 5);
  Play_Event_Sound(sound::Pause);
}

void End_Run() {
  Drive().Wait_Empty();
  Machine.CNCMode = CNC_Stopped;
  CNCMode_Display();
  SetStatus(1,
            std::string(control_text::Machine_Run_Time) +
                Convert_Process_Time(Controller.Machine_Run_Time),
            -1);
  Play_Event_Sound(sound::Motion_Finished);
}

// One step. False when the loop must be left.
bool Run_Pass() {
  Machine.Run_Step = std::max(Machine.Run_Step, First_Step());
  Enable_Step_Range(false);
  Begin_Run_If_At_Start();
  Controller.Program_Busy = true;
  std::int32_t step = Machine.Run_Step;
  const bool whole = Execute_Step(step, Move_And_Draw);
  Add_Elapsed_Time();
  if (!whole && Machine.CNCMode != CNC_Stopped) CNC_Stop();
  if (Machine.CNCMode == CNC_Stopped) return false;
  ++Controller.Steps_Executed;
  if (Machine.CNCMode == CNC_Paused) Announce_Pause();
  if (step >= Machine.EndingStep) {
    End_Run();
    return false;
  }
  Machine.Run_Step = step + 1;
  Controller.Program_Busy = false;
  return Machine.CNCMode == CNC_Running;
}

// Why the executing table is not to be run, in the operator's words; empty: it may.
std::string_view Unfit_To_Run() {
  const bool other = Program_Wire.Standing == Wire_Standing::Another_Program;
  if (GCodeLineCount() == 0 && (other || Program_Wire.Count() == 0))
    return control_text::No_Program;
  if (Program_Wire.Standing == Wire_Standing::Cut_Short) return control_text::Program_Cut_Short;
  if (other) return control_text::Program_Not_Compiled;
  return Program_Wire.Of_Goto ? control_text::Program_Behind_Goto : std::string_view();
}

// Play and Step up to the loop. False when there is nothing to run.
bool Prepare_Run() {
  if (!Begin_Operation()) return false;
  if (const std::string_view why_not = Unfit_To_Run(); !why_not.empty()) {
    SetStatus(1, why_not, 10);
    return false;
  }
  Drive().Refresh_Parameters();
  if (Machine.Run_Step > Machine.EndingStep)
    Machine.Run_Step = 1;
  else if (Machine.CNCMode == CNC_Stopped)
    Machine.Run_Step = First_Step();
  Resynchronise_Position();
  return true;
}

void Run_In_Mode(std::int16_t mode) {
  const Operation_Mark busy(Controller.Panel_Busy);
  Machine.CNCMode = mode;
  Drive().Hold(false);
  CNCMode_Display();
  Controller.Run_Clock = Platform.Monotonic_Clock();
  NIST_CNC_Controller();
  CNC_Display();
  Announce_End();
}

// The button was heard, although the machine still moves.
void Tell_What_Ends_First() {
  if (Drive().Is_Moving()) SetStatus(1, control_text::Move_Ends_First, 5);
}

}  // namespace

bool Anything_Moves() {
  return Controller.Panel_Busy || Controller.Controller_Active || JogKey.Key_Busy ||
         Drive().Is_Moving();
}

void NIST_CNC_Controller() {
  {
    const Value_In_Scope active(Controller.Controller_Active, true);
    while (May_Run() && Run_Pass()) continue;
  }
  if (Machine.CNCMode == CNC_Stopped || Machine.EStop_Flag) Settle_Stopped();
  // The inner call of a yield leaves the marks to the outer one.
  if (Controller.Controller_Active) return;
  Enable_Step_Range(true);
  Controller.Program_Busy = false;
}

void CNC_Stop() {
  Run_Plot_Host.Draw_Cursor();
  Controller.Stop_Request = true;
  Machine.CNCMode = CNC_Stopped;
  Drive().Stop();
  CNCMode_Display();
  NIST_CNC_Controller();
}

void CNC_Pause() {
  Machine.CNCMode = CNC_Paused;
  Drive().Hold(true);
  CNCMode_Display();
  NIST_CNC_Controller();
}

void CNC_Step() {
  if (!Prepare_Run()) return;
  Run_In_Mode(CNC_Stepped);
}

void CNC_Play() {
  if (!Prepare_Run()) return;
  SetStatus(1, "", -1);
  Run_In_Mode(CNC_Running);
}

void CNC_Retool() {
  if (!Begin_Operation()) return;
  const Operation_Mark busy(Controller.Panel_Busy);
  Controller.Retool_Request = true;
  NIST_CNC_Controller();
}

void Command_CNC_Play_Click() {
  if (Controller.Panel_Busy) return;
  Controller.From_Rest = true;
  ResetRetoolDisplay();
  Play_Event_Sound(sound::Play);
  CNC_Play();
  DoEvents();
}

void Command_CNC_Step_Click() {
  if (Controller.Panel_Busy) return;
  Controller.From_Rest = true;
  ResetRetoolDisplay();
  Play_Event_Sound(sound::Step);
  CNC_Step();
  DoEvents();
}

void Command_CNC_Pause_Click() {
  if (Machine.CNCMode == CNC_Stopped && Anything_Moves()) {
    SetStatus(1, control_text::No_Run_To_Pause, 5);
    return;
  }
  if (!Anything_Moves()) Application.EscFlag = false;  // of something that is over
  Play_Event_Sound(sound::Pause);
  CNC_Pause();
  Tell_What_Ends_First();
}

void Command_CNC_Stop_Click() {
  Play_Event_Sound(sound::Stopped);
  CNC_Stop();
  Tell_What_Ends_First();
  Controller.Program_Busy = false;
}

void CNC_Controls_Esc() {
  if (Machine.CNCMode != CNC_Stopped || Anything_Moves()) CNC_Stop();
}

Operation_Mark::~Operation_Mark() {
  Mark = false;
  Drive_Status.Actual_IPM = 0;
}

bool Compile_Is_Over() {
  if (!Compile_Status.CompileRunning) return true;
  SetStatus(1, control_text::Compile_Runs, 5);
  return false;
}

bool Begin_Operation() {
  if (Anything_Moves()) return false;
  if (Machine.EStop_Flag) {
    SetStatus(1, control_text::Motors_Are_Disabled, 5);
    return false;
  }
  if (!Compile_Is_Over()) return false;
  if (!Drive().Missing.empty()) {
    SetStatus(1, Drive().Missing, 10);
    return false;
  }
  Controller.Operation_Began = Platform.Monotonic_Clock();
  Controller.Stop_Request = false;
  Controller.Stop_Text.clear();
  // A press of ESC that lies before this operation does not belong to it.
  (void)Platform.Key_Down(key::Escape);
  Application.EscFlag = false;
  return true;
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
  if (const std::string_view reason = End_Reason(); !reason.empty()) SetStatus(1, reason, 10);
}

bool Stopped_For(std::string_view what) {
  if (Machine.CNCMode == CNC_Stopped && !Anything_Moves()) return Compile_Is_Over();
  Platform.Beep();
  const bool runs = Machine.CNCMode == CNC_Running || Anything_Moves();
  SetStatus(1, std::string(what) + (runs ? " while CNC running" : " while a run is paused"), 5);
  return false;
}

}  // namespace norvik
