// transform_menu.h: the menu `Functions`, the text buttons of the window `Gcode`, and the exports.
//
// A transform works on the program's text and takes its place as one step that the editor can undo.
// What it drops or would misread is shown before that, with a way back; ESC leaves the text as it
// was. All of them are refused unless the machine stands.
#pragma once

#include "transform/gcode_process.h"

#include <string>

namespace norvik {

// --- Menu `Functions` ----------------------------------------------------------------------------
// Scale and offset ask for their values first and store them; an empty or cancelled answer ends
// them.
void Menu_Functions_Scale();
void Menu_Functions_Offset();
void Menu_Functions_Conv_Absolute();
void Menu_Functions_Conv_Incremental();
// Reads the program and orders nothing.
void Menu_Functions_OptimizeToolPath();

// --- Buttons of the window `Gcode` ---------------------------------------------------------------
void Command_Add_Seq_Click();
void Command_Rem_Seq_Click();
void Command_DecimalFormat_Click();
// To millimetres where `Gcode_Form.Combo_Convert` stands on its first entry, else to inches.
void Command_Convert_Click();

// --- Menu `File`, `Export` -----------------------------------------------------------------------
// Ask for the file. A program whose tables are not of its present text is compiled first.
void Menu_File_Export_DXF();
void Menu_File_Export_HPGL();

// --- Inside --------------------------------------------------------------------------------------
// What every transform of the window goes through. True when the text is another one now.
bool Transform_Shown_Program(Transform transform, const Transform_Values& values);
// A new text in place of the old one, in the program and as one step of the window's undo. False,
// with a status text, where it is too large.
bool Take_New_Text(std::string text);

}  // namespace norvik
