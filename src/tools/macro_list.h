// macro_list.h: the window `MacroFiles`: the files that M98 calls by number.
//
// The window edits `MachineSetup.MacroFile` at once; the machine file follows when the window
// closes.
#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace norvik {

struct MacroFiles_Record {
  std::vector<std::string> List_Macros;  // one line for each number from 0
  int Selected = 0;
  bool Modified = false;  // the list differs from the machine file
};
extern MacroFiles_Record MacroFiles;

struct Macro_Host_Operations {
  std::function<void()> Form_Changed = [] {};
  std::function<void()> Macros_Changed = [] {};
  // May the macros be changed now? Tells the operator why not.
  std::function<bool()> May_Change = [] { return true; };
};
extern Macro_Host_Operations Macro_Host;

// Number in the form "000            " and the path, shortened where it is too long for the line.
void Display_Macros();
// A path in at most `most` characters, with "..." in place of its middle.
std::string Shortened_Path(std::string_view path, std::size_t most);
// What an operator has to know of a number: "called, no file", "called, file missing", "file
// missing", "called"; empty: nothing.
std::string Macro_Mark(int number);
// The first lines of the file of a number; what stands instead of them when it cannot be read.
std::string First_Lines(int number);

// --- Handlers ------------------------------------------------------------------------------------

void AddNewMacro(int number, const std::string& path);
void MacroFiles_Command_Add_Click();
void MacroFiles_Command_Remove_Click();
// Moves the selected macro to another number; what stood there comes to the old one.
void MacroFiles_Command_Index_Click();
// Writes the table to the machine file. False when it could not be written; it has been told then.
bool Save_Macros();
// The window closes.
void MacroFiles_Command_Close_Click();
// Prints the list.
void MacroFiles_Print_Data();

}  // namespace norvik
