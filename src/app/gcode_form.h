// gcode_form.h: the window `Gcode` as a record of its controls, and its handlers.
//
// The text box is the operator's; the program is what the last `SaveChanges` took from it. A typed
// text is taken when something needs the program (compile, save, print), never in passing, and the
// status line says that it waits.
//
//   Text_GCode --typed--> Typed_Waits --Take_Typed_Text--> GCode_Program --compile--> tables
//
// The box itself is reached through `Gcode_Host`, so that a program of a million lines is not
// copied with every change of a label.
#pragma once

#include "control/state/form_controls.h"
#include "core/indexed.h"

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

namespace norvik {

struct Gcode_Form_Record {
  Text_Control Text_StartingStep, Text_EndingStep;
  Indexed<Text_Control, 0, 1> Text_Feed_Rates;  // 0 travel, 1 cut; IPM
  Label_Control Label_GC_NOS;                   // number of lines
  Label_Control Label_GStep;                    // current step
  Label_Control Label_CGStep;                   // text of the current line
  Label_Control Label_FRUnits;                  // "IPM" or "mmPM"
  // What `Command_Convert` converts to.
  Combo_Control Combo_Convert{{"to mm", "to inches"}, 0, "to mm"};
  // Beside plot, panel and text: that they do not show one and the same program; empty: they do.
  Label_Control Label_Table_Notice;
  // The bar above the editor: what Adapt would mend; empty: no bar.
  Label_Control Label_Adapt;
};
extern Gcode_Form_Record Gcode_Form;

// What the logic asks of the window. Each does nothing by default.
struct Gcode_Host_Operations {
  std::function<void()> Form_Changed = [] {};
  // The text as it stands in Text_GCode; asked only while `GCode_Program.Typed_Waits`.
  std::function<std::string()> Typed_Text = [] { return std::string(); };
  // `GCode_Program` is to be shown in Text_GCode.
  std::function<void()> Show_Program = [] {};
  // The same, as one change that the editor can undo.
  std::function<void()> Show_Changed_Program = [] {};
  // Colours all lines anew and drops every mark.
  std::function<void()> GCode_HighlightAll = [] {};
  // Marks one line, counted from 1 over the lines of the text, empty ones included.
  std::function<void(std::int32_t text_line)> GCode_HighlightWords = [](std::int32_t) {};
  // Shows what `Program_Findings` lists.
  std::function<void()> Show_Findings = [] {};
  // Selects the first place of a text.
  std::function<void(const std::string& text)> Select_Text = [](const std::string&) {};
};
extern Gcode_Host_Operations Gcode_Host;

// --- The text ------------------------------------------------------------------------------------

// The operator has typed.
void Text_GCode_Change();
// Takes a typed text as the program; nothing happens when none waits.
void Take_Typed_Text();
// Nothing waits any more where what is typed has the lines of the program again.
void Settle_Typed_Text();
// The program's lines, without empty ones, back into the box. Yields.
void Gcode_Step_Display();
// Marks the plot element of a line of the text, counted with empty ones, and shows its words.
void Text_GCode_DblClick(std::int32_t text_line);
// Prints the lines. Yields. Refused unless the machine is stopped: the dialog would hold a move.
void Print_Data();

// --- Compile and steps ---------------------------------------------------------------------------

// Takes the text and compiles it.
void Command_Update_Click();
// Takes the text for a check of it. False, with a status text, while something moves: a check does
// not yield, and the pulses of the move would stop.
bool Begin_Check();
// Marks the current step in the plot and goes on to the next.
void Command_GStep_Click();
// Back to the first step.
void Command_GCode_Reset_Click();
// The operator has changed a step box of this window; the record holds the text. The panel's boxes
// have handlers of their own.
void Gcode_StartingStep_Change();
void Gcode_EndingStep_Change();
// The step boxes are locked while a program runs, as the run loop tells the panel's.
void Refresh_Step_Range();

// --- Displays ------------------------------------------------------------------------------------

// Brings `Label_Table_Notice` up to date and tells the windows when it has changed.
void Show_Table_Notice();
void Display_Gcode_Steps();  // the three labels and the two boxes
void Display_Parameters();   // feeds and their unit
// The operator has changed a feed: 0 travel, 1 cut. What is no number above 0 is put back.
void Text_Feed_Rates_Change(int index);

}  // namespace norvik
