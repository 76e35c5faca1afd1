// startup.h: the start of the program, in its fixed order.
//
// What a program means depends on machine file, tool file and feeds; desktop and companion read
// them by one and the same `Load_Machine`, so that both make the same tables of it.
#pragma once

#include "platform/platform.h"

#include <functional>

namespace norvik {

struct Main_Window_State {
  Timer_Id Timer1 = 0, Timer2 = 0;  // 0: not running
  // Whether the pointer file was there before this run wrote to it.
  bool Pointer_File_Was_There = false;
  bool Was_Activated = false;
};
extern Main_Window_State Main_Window;

// The machine file, then `loaded`, then the tool file that the setup names and the feeds that a
// compile starts from. `loaded` may change the setup; with false it ends the load there. False when
// the machine file could not be read; the operator has read why. Raises nothing.
bool Load_Machine(const std::function<bool()>& loaded);

// Load of the main window. The folders are set (`Enter_Desktop_Folders`) and the back ends chosen.
// A second instance ends itself, and so does a start whose port another program drives, after
// saying so: `Application.ShutdownFlag` is set then, as after a request to terminate in one of the
// boxes of the start, and the caller goes no further. Raises nothing.
void Load_Main();

// Each time the main window becomes active; only the first does something: shows the plot, says
// when there was no pointer file, draws the table, and says when a home switch was found on.
void Activate_Main();

}  // namespace norvik
