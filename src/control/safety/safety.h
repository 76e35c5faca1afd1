// safety.h: what protects the machine while it is idle and while it runs.
//
//   software E-stop   button Command_EStop; `Machine.EStop_Flag` true: motors disabled
//   E-stop input      polled in moves by the drive, elsewhere here; does the same as Stop
//   limit switches    the drive's guard ends a move; the run-mode watch trips the E-stop
//   home safety       a switch that is on at start: no direction is known to be safe
//   outputs           five check boxes, the two spindle directions exclude each other
//
// The hardware E-stop input stops the run and, with `E_Stop_Output_Disable`, switches the outputs
// off for as long as it is on; it does not set `EStop_Flag`.
#pragma once

namespace norvik {

// The E-stop button: sets or clears the flag. While a move is still ending, it only sets.
void Command_EStop_Click();
// The one-way form: trips, and makes no log line.
void EStop_Engage();
// The end of a ReTool request: flag, red button, stopped, sound.
void Engage_EStop_State();

// Looks for a switch that is on; once, after the ports were set up and before the first window can
// move anything.
void Home_Safety_Check();
// Its box, which waits until there is a window to answer it in. Nothing where no switch was on.
void Tell_Home_Safety();

// After an end without order: asks whether the positions are those of the machine. Nothing while
// there is no doubt about them.
void Ask_About_Positions();

// Check box 0..4 was changed by the operator. While the E-stop is set, or its input is on with
// `E_Stop_Output_Disable`, one that was switched on goes back to off with a status text.
void Toggle_Outputs(int index);

// --- The watch -----------------------------------------------------------------------------------
// Reads the switches and does what each asks for: the E-stop input stops whatever runs; with
// `LimitDisableinRunMode` 1 a switch of X, Y or Z that is on in a run trips the E-stop; all
// switches off end the home safety. The drive's session calls it every `Watch_Interval_ms`,
// whatever windows are open; in a move it runs in the yields of the step loop.
inline constexpr int Watch_Interval_ms = 250;
void Watch_Machine();

// Its two halves that stop something.
void Watch_EStop_Input();
void Watch_Limits_In_Run();

}  // namespace norvik
