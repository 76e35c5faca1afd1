// displays.h: what the panel shows, and its timer.
//
// The displays run from the panel's `Timer1` every 250 milliseconds and write to the record
// `CNC_Controls`. During a move the timer runs in the yields of the step loop.
#pragma once

#include <string>

namespace norvik {

// Buttons and `Label_CNC_Status` by `CNCMode`. While the E-stop is set the label keeps saying so.
void CNCMode_Display();
// Step, run timer, feeds, estimate, home safety. All switches off ends the home safety.
void CNC_Display();
// Positions and the distance to go of the running move.
void CNC_Axis_Display();

// "00:00:00": whole hours, minutes and seconds, at least two digits each.
std::string Convert_Process_Time(double seconds);

// The AutoRetool buttons back to "go there".
void ResetRetoolDisplay();

// `Timer1` of the panel. With `Axis_Position_Update_Disable` the displays and the plot's cursor
// stand still during a move; what guards the move goes on.
void CNC_Controls_Timer1();
// A click on a latched limit lamp puts it out.
void Command_Lim_Latch_Click(int axis);

// Fills the record from the setup; at start and after another setup was loaded.
void Load_CNC_Controls();

}  // namespace norvik
