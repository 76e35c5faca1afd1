#include "control/run/cnc_controller.h"

#include "compiler/state/compile_host.h"
#include "compiler/state/compiler_state.h"
#include "compiler/tables/program_wire.h"
#include "compiler/text/program_text.h"
#include "control/displays/displays.h"
#include "control/manual/home.h"
#include "control/manual/jog.h"
#include "control/motion/machine_move.h"
#include "control/motion/motion.h"
#include "control/run/execute_step.h"
#include "control/safety/safety.h"
#include "control/state/cnc_controls_form.h"
#include "control/state/control_texts.h"
#include "control/state/controller_state.h"
#include "control/state/run_consent.h"
#include "control/state/run_plot_host.h"
#include "core/application.h"
#include "core/axis_memory.h"
#include "core/event_sounds.h"
#include "core/messages.h"
#include "core/operation.h"
#include "core/scope.h"
#include "core/setup.h"
#include "drive/drive.h"
#include "drive/drive_status.h"
#include "platform/platform.h"

#include <algorithm>

namespace norvik {

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

// --- The run in the order of the table (correction) ----------------------------------------------

// The rows to run: from the first one of `StartingStep` to the last one of `EndingStep`. A step
// without rows gives way to the next one behind it, or the last one before it.
std::size_t First_Row() {
  if (const auto row = Program_Wire.Next_Of_Step(Machine.Run_Step, 0)) return *row;
  const auto& rows = Program_Wire.Rows();
  std::size_t k = 0;
  while (k < rows.size() && rows[k].Step < Machine.Run_Step) ++k;
  return k;
}

std::size_t Behind_Last_Row() {
  const auto& rows = Program_Wire.Rows();
  const bool has_rows = Program_Wire.Next_Of_Step(Machine.EndingStep, 0).has_value();
  std::size_t k = rows.size();
  while (k > 0 && (has_rows ? rows[k - 1].Step != Machine.EndingStep
                            : rows[k - 1].Step > Machine.EndingStep))
    --k;
  return k;
}

bool In_Table_Order() {
  return MachineSetup.Run_In_Table_Order;
}

// --- One pass ------------------------------------------------------------------------------------

bool Is_At_Start() {
  if (In_Table_Order()) return !Controller.Run_Row;
  return Machine.Run_Step == First_Step() && !Controller.Run_Started;
}

void Begin_Run_If_At_Start() {
  if (!Is_At_Start()) {
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

// Executes the step that is due. `last`: the run has come to its end with it.
bool Execute_Due_Step(std::int32_t& step, bool& last) {
  if (!In_Table_Order()) {
    const bool whole = Execute_Step(step, Move_And_Draw);
    last = step >= Machine.EndingStep;
    return whole;
  }
  const std::size_t end = Behind_Last_Row();
  std::size_t row = Controller.Run_Row.value_or(First_Row());
  last = row >= end;
  if (last) return true;
  step = Program_Wire.Rows()[row].Step;
  const bool whole = Execute_Rows(row, step);
  // A Stop in a yield has taken the run back to its start.
  if (Machine.CNCMode == CNC_Stopped) return whole;
  Controller.Run_Row = row;
  last = row >= end;
  return whole;
}

// What comes behind `step`.
std::int32_t Step_Behind(std::int32_t step) {
  return In_Table_Order() ? Program_Wire.Rows()[*Controller.Run_Row].Step : step + 1;
}

// One step. False when the loop must be left.
bool Run_Pass() {
  Machine.Run_Step = std::max(Machine.Run_Step, First_Step());
  Enable_Step_Range(false);
  Begin_Run_If_At_Start();
  std::int32_t step = Machine.Run_Step;
  bool last = false;
  const bool whole = Execute_Due_Step(step, last);
  Add_Elapsed_Time();
  if (!whole && Machine.CNCMode != CNC_Stopped) CNC_Stop();
  if (Machine.CNCMode == CNC_Stopped) return false;
  ++Controller.Steps_Executed;
  Controller.Step_Done = step;
  if (Machine.CNCMode == CNC_Paused) Announce_Pause();
  if (last) {
    End_Run();
    return false;
  }
  Machine.Run_Step = Step_Behind(step);
  return Machine.CNCMode == CNC_Running;
}

// A run that is under way goes on with the table that it began with, and the operator knows it.
bool Goes_On_With_Old_Text() {
  if (Judge_Table().Standing != Table_Standing::Other_Text) return true;
  if (Controller.Agreed_Text == GCode_Program.Text && !GCode_Program.Typed_Waits) return true;
  if (Platform.Message_Box("Norvik 4", std::string(control_text::Text_Changed_In_Run),
                           Box_Buttons::Ok_Cancel) != Box_Answer::Ok) {
    SetStatus(1, control_text::Run_Not_Continued, 10);
    return false;
  }
  Controller.Agreed_Text = GCode_Program.Text;
  return true;
}

bool Begins_With_Consent() {
  if (const std::string why_not = Unfit_To_Run(); !why_not.empty()) {
    SetStatus(1, why_not, 10);
    return false;
  }
  if (Run_Consent.May_Begin()) return true;
  SetStatus(1, control_text::Run_Not_Begun, 10);
  return false;
}

// Positions in doubt are asked about; what was pressed before the answer moves nothing.
bool Positions_Stand() {
  if (Position_Memory.Doubt.empty()) return true;
  Ask_About_Positions();
  SetStatus(1,
            Position_Memory.Doubt.empty() ? control_text::Play_Once_More
                                          : control_text::Positions_In_Doubt,
            10);
  return false;
}

// Play and Step up to the loop. False when there is nothing to run.
bool Prepare_Run(Operation wanted) {
  if (!Begin_Operation(wanted) || !Positions_Stand()) return false;
  Compile_Host.Settle_Typed_Text();
  const bool begins = Machine.CNCMode == CNC_Stopped;
  if (!(begins ? Begins_With_Consent() : Goes_On_With_Old_Text())) return false;
  // A box may have been open: what has happened meanwhile, and the keys that closed it.
  if (!Begin_Operation(wanted)) return false;
  if (begins != (Machine.CNCMode == CNC_Stopped)) return false;
  Drive().Refresh_Parameters();
  if (Machine.CNCMode == CNC_Stopped) Controller.Run_Row.reset();
  if (Machine.Run_Step > Machine.EndingStep)
    Machine.Run_Step = 1;
  else if (Machine.CNCMode == CNC_Stopped)
    Machine.Run_Step = First_Step();
  Resynchronise_Position();
  return true;
}

void Run_In_Mode(std::int16_t mode) {
  const Motion_Scope run(mode == CNC_Stepped ? Operation::Step : Operation::Run);
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
  const bool at_once = Controller.Jog_Held || Runs(Operation::Calibration);
  if (Runs(Operation::Move) && !at_once) SetStatus(1, control_text::Move_Ends_First, 5);
}

}  // namespace

void NIST_CNC_Controller() {
  {
    const Operation_Scope loop(Operation::Run_Loop);
    while (May_Run() && Run_Pass()) continue;
  }
  if (Machine.CNCMode == CNC_Stopped || Machine.EStop_Flag) Settle_Stopped();
  // The inner call of a yield leaves the marks to the outer one.
  if (Runs(Operation::Run_Loop)) return;
  Enable_Step_Range(true);
}

void CNC_Pause() {
  Machine.CNCMode = CNC_Paused;
  Drive().Hold(true);
  CNCMode_Display();
  NIST_CNC_Controller();
}

void CNC_Step() {
  if (!Prepare_Run(Operation::Step)) return;
  Run_In_Mode(CNC_Stepped);
}

void CNC_Play() {
  if (!Prepare_Run(Operation::Run)) return;
  SetStatus(1, "", -1);
  Run_In_Mode(CNC_Running);
}

void CNC_Retool() {
  if (!Begin_Operation(Operation::ReTool)) return;
  const Motion_Scope retool(Operation::ReTool);
  Controller.Retool_Request = true;
  NIST_CNC_Controller();
}

void Command_CNC_Play_Click() {
  if (Anything_Moves()) return;
  Controller.From_Rest = true;
  ResetRetoolDisplay();
  Play_Event_Sound(sound::Play);
  CNC_Play();
  DoEvents();
}

void Command_CNC_Step_Click() {
  if (Anything_Moves()) return;
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
  if (Runs(Operation::Calibration)) Application.EscFlag = true;
  Release_Jog();
  CNC_Stop();
  Tell_What_Ends_First();
}

void CNC_Controls_Esc() {
  // A run that is paused stays so behind a box; what moves is stopped whatever else ESC closes.
  if (!Anything_Moves() && Operation_Host.Escape_Taken()) {
    Application.EscFlag = false;
    return;
  }
  if (Machine.CNCMode != CNC_Stopped || Anything_Moves()) CNC_Stop();
}

std::string Unfit_To_Run() {
  const Table_Judgement table = Judge_Table();
  const bool old_text = table.Standing == Table_Standing::Other_Text;
  if (GCodeLineCount() == 0 && (Program_Wire.Count() == 0 || old_text))
    return std::string(control_text::No_Program);
  switch (table.Standing) {
    case Table_Standing::Ready:
      break;
    case Table_Standing::Of_Goto:
      return std::string(control_text::Program_Behind_Goto);
    case Table_Standing::Other_Text:
      return std::string(control_text::Program_Not_Compiled);
    case Table_Standing::Cut_Short:
      return std::string(Program_Wire.Origin().Kind == Table_Kind::Motion_File
                             ? control_text::Motion_File_Cut_Short
                             : control_text::Program_Cut_Short);
    case Table_Standing::Other_Sources:
      return table.Changed + std::string(control_text::Source_Has_Changed);
  }
  return {};
}

}  // namespace norvik
