#include "control/goto.h"

#include "compiler/compile/compile.h"
#include "compiler/state/compiler_state.h"
#include "compiler/tables/program_wire.h"
#include "control/cnc_controller.h"
#include "control/cnc_controls_form.h"
#include "control/control_texts.h"
#include "control/controller_state.h"
#include "control/displays.h"
#include "control/execute_step.h"
#include "control/machine_move.h"
#include "control/run_plot_host.h"
#include "core/application.h"
#include "core/fault.h"
#include "core/messages.h"
#include "core/rounding.h"
#include "core/setup.h"

#include <algorithm>
#include <string>

namespace norvik {

namespace {

constexpr int Memories = 10;

int Selected_Memory() {
  return std::clamp<int>(MachineSetup.Goto_Command_Index, 0, Memories - 1);
}

std::string List_Line(int index) {
  const int shown = index + 1;
  return (shown < 10 ? "0" : "") + std::to_string(shown) + ": " + MachineSetup.Goto_Command[index];
}

// The feed pass does not run over a block, so that its first wire gets its ramp here.
void Ramp_First_Wire() {
  if (!MachineSetup.Axis_Ramping || Program_Wire.Count() == 0) return;
  Wire& first = Program_Wire.Rows()[0];
  first.IPM_S = MachineSetup.Axis_Ramp_Start;
  first.IPM_R = first.IPM_D;
  first.IPM_E = To_Single(Whole_Part(MachineSetup.Axis_Ramp_Start));
}

void Execute_Block() {
  std::int32_t step = Compile_Status.CurrentStep;
  if (!Program_Wire.Next_Of_Step(step, 0)) {
    const bool empty = Program_Wire.Count() == 0;
    SetStatus(1, empty ? control_text::Goto_Is_Empty : control_text::Goto_Needs_Reset, 10);
    return;
  }
  Execute_Step(step, Move_And_Draw);
  Announce_End();
}

// A wire of the line may have asked for a pause.
void Leave_No_Pause() {
  if (Machine.CNCMode == CNC_Stopped) return;
  Machine.CNCMode = CNC_Stopped;
  if (End_Reason().empty()) SetStatus(1, control_text::Goto_Has_No_Run, 10);
}

void Run_Goto() {
  if (Machine.CNCMode != CNC_Stopped && !Anything_Moves()) {
    SetStatus(1, control_text::Goto_Needs_Stop, 5);
    return;
  }
  if (!Begin_Operation()) return;
  const Operation_Mark busy(Controller.Panel_Busy);
  ResetRetoolDisplay();
  Resynchronise_Position();
  Trap("Command_Goto_Error", [] {
    if (!CompileBlock(CNC_Controls.Text_Goto.Text)) {
      SetStatus(1, control_text::Goto_Not_Compiled, 10);
      return;
    }
    Take_Program_Wire(std::move(Compile_Tables.Program_Wire));
    Ramp_First_Wire();
    Run_Plot_Host.Program_Replaced();
    Execute_Block();
  });
  Leave_No_Pause();
  CNCMode_Display();
}

}  // namespace

void Command_Goto_Click() {
  Run_Goto();
}

void Load_Goto_Controls() {
  Combo_Goto_DropDown();
  CNC_Controls.Combo_Goto.ListIndex = Selected_Memory();
  CNC_Controls.Combo_Goto.Text = List_Line(Selected_Memory());
  CNC_Controls.Text_Goto.Text = MachineSetup.Goto_Command[Selected_Memory()];
  CNC_Controls_Host.Form_Changed();
}

void Combo_Goto_DropDown() {
  CNC_Controls.Combo_Goto.List.clear();
  for (int i = 0; i < Memories; ++i) CNC_Controls.Combo_Goto.List.push_back(List_Line(i));
}

void Combo_Goto_Click() {
  const int index = CNC_Controls.Combo_Goto.ListIndex;
  if (index < 0 || index >= Memories) return;
  MachineSetup.Goto_Command_Index = To_Int16(index);
  WriteSetup("General", "Goto_Command_Index", std::to_string(index));
  Load_Goto_Controls();
}

void Text_Goto_KeyUp(int key_code) {
  const int index = Selected_Memory();
  const std::string& text = CNC_Controls.Text_Goto.Text;
  MachineSetup.Goto_Command[index] = text;
  WriteSetup("General", "Goto_Command" + std::to_string(index), text);
  Load_Goto_Controls();
  if (key_code == Key_Enter) Run_Goto();
}

}  // namespace norvik
