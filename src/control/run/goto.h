// goto.h: the Goto box: one line of G-code, executed at once, and its ten memories.
//
//   Text_Goto --CompileBlock--> block wire file, Program_Wire --> Execute_Step(CurrentStep)
//
// A Goto replaces the executing table, until it is put back (`Put_Back_Table`, which the spine does
// when the Goto has ended) or the next full compile. The wires of a block carry step 0, and the
// step executed is the pointer of the `Gcode` window, `CurrentStep`: a Goto moves while that
// pointer stands at 0, as it does after a compile.
//
// Words with G91 count from 0, wherever the machine is, unless `Goto_From_Position` is on. Such a
// line says where it will end and is executed only when the operator wants that.
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
