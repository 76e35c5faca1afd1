// displays.h: what the panel shows: the record `CNC_Controls` filled from the state of the machine.
//
// Nothing here decides anything. The panel's timer fills it all every 250 milliseconds, and whoever
// changes something that must be seen at once fills his part. During a move the timer runs in the
// yields of the step loop.
#pragma once

#include <string>

namespace norvik {

// Buttons and `Label_CNC_Status` by `CNCMode`. While the E-stop is set the label keeps saying so.
void CNCMode_Display();
// Step, range of a run, run timer, feeds, estimate, home safety.
void CNC_Display();
// What the machine really does at this moment, beside the state that the mode names: "pausing: ends
// with this move, 3.2 s", "homing Z: seek". Empty: nothing to add.
std::string Activity_Text();
// Positions and the distance to go of the running move.
void CNC_Axis_Display();
// Spindle, E-stop, outputs and limit switches.
void Display_IO();
// All of it, and the next half blink of the AutoRetool button.
void Display_Panel();

// "00:00:00": whole hours, minutes and seconds, at least two digits each.
std::string Convert_Process_Time(double seconds);

// Puts the lamps of switches that are on; each stays red until it is clicked, so that a switch that
// was on for a moment is not missed.
void Latch_Limits();
void Command_Lim_Latch_Click(int axis);

}  // namespace norvik
