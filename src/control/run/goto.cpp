#include "control/run/goto.h"

#include "compiler/compile/compile.h"
#include "compiler/state/compiler_state.h"
#include "compiler/tables/program_wire.h"
#include "compiler/text/block_reader.h"
#include "control/displays/displays.h"
#include "control/motion/machine_move.h"
#include "control/motion/motion.h"
#include "control/run/execute_step.h"
#include "control/state/cnc_controls_form.h"
#include "control/state/control_texts.h"
#include "control/state/run_plot_host.h"
#include "core/application.h"
#include "core/axes.h"
#include "core/fault.h"
#include "core/format.h"
#include "core/messages.h"
#include "core/operation.h"
#include "core/rounding.h"
#include "core/setup.h"
#include "platform/platform.h"

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

// Looked for before the line is compiled, as the compile needs the answer. A line that cannot be
// read has no G91; the compile then names what is wrong with it.
bool Holds_G91(const std::string& text) {
  Block block;
  bool found = false;
  Trap_With([](const Fault&) {},
            [&] {
              Read_Words(text, block);
              found = block.GFlags.test(91);
            });
  return found;
}

Start_Position Place_To_Count_From(bool incremental) {
  Start_Position from;
  if (incremental && MachineSetup.Goto_From_Position)
    for (int axis = 1; axis <= 4; ++axis) from[axis] = Machine.Position[axis];
  return from;
}

// "X0.5 Y2": the last target of each axis; empty when nothing moves.
std::string End_Of_Table() {
  Indexed<Nullable, 1, 4> end;
  for (const Wire& wire : Program_Wire.Rows())
    for (int axis = 1; axis <= 4; ++axis)
      if (wire.Motion == 1 && wire.End[axis]) end[axis] = wire.End[axis];
  std::string text;
  for (int axis = 1; axis <= 4; ++axis) {
    if (!end[axis]) continue;
    if (!text.empty()) text += ' ';
    text += Axis_Letter(axis) + Format_Number(*end[axis], "0.######");
  }
  return text;
}

// True when the operator wants to go where a line with G91 ends.
bool Wanted_From_Zero() {
  const std::string end = End_Of_Table();
  if (end.empty()) return true;
  const std::string text =
      "G91 in a Goto counts from 0, not from where the machine is. This line "
      "ends at " +
      end +
      ".\n\nGo there? (The setting Goto_From_Position makes G91 count from "
      "where the machine is.)";
  return Platform.Message_Box("Goto", text, Box_Buttons::Ok_Cancel) == Box_Answer::Ok;
}

void Execute_Block() {
  std::int32_t step = Compile_Status.CurrentStep;
  if (!Program_Wire.Next_Of_Step(step, 0)) {
    const bool empty = Program_Wire.Count() == 0;
    Tell(empty ? control_text::Goto_Is_Empty : control_text::Goto_Needs_Reset, 10);
    return;
  }
  const bool whole = Execute_Step(step, Move_And_Draw);
  if (whole && !Arrived(Wait_For_Moves())) CNC_Stop();
  Announce_End();
}

// A wire of the line may have asked for a pause.
void Leave_No_Pause() {
  if (Machine.CNCMode == CNC_Stopped) return;
  Machine.CNCMode = CNC_Stopped;
  if (End_Reason().empty()) Tell(control_text::Goto_Has_No_Run, 10);
}

void Run_Goto() {
  if (!Begin_Operation(Operation::Goto)) return;
  const Motion_Scope line(Operation::Goto);
  ResetRetoolDisplay();
  Resynchronise_Position();
  Trap("Command_Goto_Error", [] {
    const std::string text = CNC_Controls.Text_Goto.Text;
    const bool incremental = Holds_G91(text);
    if (!CompileBlock(text, Place_To_Count_From(incremental))) {
      Tell(control_text::Goto_Not_Compiled, 10);
      return;
    }
    Ramp_First_Wire();
    if (incremental && !MachineSetup.Goto_From_Position && !Wanted_From_Zero()) {
      Tell(control_text::Goto_Not_Done, 10);
      return;
    }
    Execute_Block();
  });
  Leave_No_Pause();
  Run_Plot_Host.Goto_Ended();
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
