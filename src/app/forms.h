// forms.h: the layout of the windows as a whole.
#pragma once

namespace norvik {

struct Forms_State {
  // Which of the tool windows `UnLoad_Forms` found open.
  bool Plot_Was_Open = false, GCode_Was_Open = false, CNC_Controls_Was_Open = false;
  bool Simulated_Machine_Was_Open = false, JogKey_Was_Open = false, Port_IO_Was_Open = false;
};
extern Forms_State Forms;

// Writes place and state of every window, and which of those opened in this run are open.
void Save_Default_Form_View();

// Before another machine setup: remembers which of the windows are open and closes all tool
// windows.
void UnLoad_Forms();
// After it: the layout of that setup; where it says nothing about a window, as it was before.
void ReLoad_Forms();

// Opens `CNC_Controls`, `Plot`, `Gcode`, `JogKey` and `Port_IO`, each when the machine file says
// that it was open. Where it says nothing about the first three, these open.
void Show_Open_Forms();

}  // namespace norvik
