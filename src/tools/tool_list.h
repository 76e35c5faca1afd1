// tool_list.h: the window `Tool`: the 200 tools that T words select.
//
// The window edits the table `Tools` at once; the tool file follows when it is saved. Rows count
// from 1; lengths in units of the setup.
#pragma once

#include "core/tool_file.h"

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace norvik {

namespace tool_column {
inline constexpr int Number = 0, Diameter = 1, Offset = 2, Used = 3, Count = 4;
}

struct Tool_Form_Record {
  std::string Label_Tool;  // "Tool List: " and the name of the tool file
  bool Modified = false;   // the list differs from its file
  int Selected = 1;
};
extern Tool_Form_Record Tool_Form;

struct Tool_Host_Operations {
  std::function<void()> Form_Changed = [] {};
  // The table has changed: what is drawn and compiled by it is no longer current.
  std::function<void()> Tools_Changed = [] {};
  // May the tools be changed now? Tells the operator why not.
  std::function<bool()> May_Change = [] { return true; };
};
extern Tool_Host_Operations Tool_Host;

// --- The list ------------------------------------------------------------------------------------

inline constexpr std::string_view Tool_List_Header = "Tool#  Diameter            Offset";

void Display_Tools();
// "000    ", and "########0.0#######" of diameter or offset.
std::string Tool_Number_Text(int tool);
std::string Tool_Value_Text(double value);
// A value of a row, by its column: Diameter or Offset.
double Tool_Value(int tool, int column);

// What the program that is compiled does with a tool.
struct Tool_Use {
  bool Used = false;         // a T word selects it
  bool Compensated = false;  // under G41 or G42
};
// By tool, from 1; index 0 stands for moves before any T word. Walks the executing table.
std::vector<Tool_Use> Tools_Used();
// "used"; "G41/G42 with diameter 0" where a compensated path has no tool; empty: not used.
std::string Use_Text(const std::vector<Tool_Use>& uses, int tool);

// The tool whose diameter is nearest, the first of several; absent when no tool has one.
std::optional<int> Nearest_Tool(double diameter);

// --- Handlers ------------------------------------------------------------------------------------

// At the opening of the window.
void Tool_Form_Load();
// A value typed into a cell or a box, with either decimal sign. False, with the reason told, for
// what is no number or a diameter below 0; the old value then stays.
bool Take_Tool_Value(int tool, int column, std::string_view text);
// Asks for the value in a box.
void List_Tools_DblClick(int tool, int column);
void Tool_Command_Save_Click();
void Tool_Command_Load_Click();
void Tool_Command_Clear_Click();
// Asks whether a changed list is to be saved. True when the window may close.
bool Tool_Command_OK_Click();

// Writes the 200 rows. Raises a file fault that says what to do; the file of before then stands.
void Save_Tools(const std::string& path);
// Reads the rows, makes the file the one of the setup and answers what is wrong with it. Raises a
// file fault; the tools of before then stay.
Tool_Findings Load_Tools(const std::string& path);

}  // namespace norvik
