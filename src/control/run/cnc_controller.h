// cnc_controller.h: the run loop.
//
// Walks the steps of the executing table from `StartingStep` to `EndingStep` and executes the wires
// of each through the drive. Everything happens on the one thread: a move blocks the loop, and the
// buttons reach it because the drive yields now and then, so that a pressed button changes
// `Machine.CNCMode` and the loop sees it when the wire is done.
//
//                Play                        Pause, wire with Dwell -1
//   Stopped ------------> Running ----------------------------> Paused
//      ^  \---Step---> Stepped --Play--> Running                  | Play: Running
//      |                  |                                       | Step: Stepped
//      +------------------+--- Stop, ESC, E-stop, limit, last ----+
//                              step done
//
// `Machine.Run_Step` always names the step to run next (the running one during a pass). After a
// stop it is `StartingStep`, after a pause the step behind the paused one.
//
// The loop re-enters: a handler in a yield may run `CNC_Stop`, which calls `NIST_CNC_Controller`
// again; the inner call takes the stop branch and returns, and the outer one finds the mode changed
// when the drive comes back.
#pragma once

#include <string>

namespace norvik {

// --- Operations of the panel ---------------------------------------------------------------------
// Pauses after the running step.
void CNC_Pause();
// Runs one step, or to the end. Refused with a status text while the E-stop is set, a compile runs
// or the drive is missing; ignored while the panel is busy.
void CNC_Step();
void CNC_Play();
// Moves to the ReTool position and ends in the E-stop state.
void CNC_Retool();

// The loop itself: does what `Machine.CNCMode` and `Retool_Request` ask for, until the run pauses
// or ends.
void NIST_CNC_Controller();

// --- Buttons -------------------------------------------------------------------------------------
void Command_CNC_Play_Click();
void Command_CNC_Step_Click();
void Command_CNC_Pause_Click();
void Command_CNC_Stop_Click();

// ESC was seen by the main window's timer: stops the run; sequences and waits see `EscFlag`. An ESC
// that closes a box leaves a paused run paused.
void CNC_Controls_Esc();

// Why the executing table is not to be run now, in the operator's words; empty: it may.
std::string Unfit_To_Run();

}  // namespace norvik
