// goto.h: the Goto box: one line of G-code, executed at once, and its ten memories.
//
//   Text_Goto --CompileBlock--> block wire file, Program_Wire --> Execute_Step(CurrentStep)
//
// While a Goto runs, its line is the executing table. The program's table is set aside meanwhile
// and put back when the Goto has ended (`Put_Back_Table`, called by the spine through
// `Run_Plot_Host.Goto_Ended`).
//
// All wires of the line have step 0, and the step that is executed is the one at which the `Gcode`
// window points, `CurrentStep`. So a Goto moves only while that pointer is 0, as a compile leaves
// it; with any other value the line has no wires of that step, and the operator reads what to do.
//
// With G91 the line's targets count from 0 and not from where the machine is, unless the setting
// `Goto_From_Position` is on. As that surprises, a box says where the line ends, and the machine
// moves only when the operator agrees.
#pragma once

namespace norvik {

// Refused unless the machine is stopped: the program of a paused run would be lost.
void Command_Goto_Click();

// The list from the memories, and the selected one into the text box.
void Load_Goto_Controls();
void Combo_Goto_DropDown();
void Combo_Goto_Click();
// Each key writes the memory to the machine file; Enter executes the line.
void Text_Goto_KeyUp(int key_code);

}  // namespace norvik
