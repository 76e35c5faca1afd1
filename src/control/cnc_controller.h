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
#include <string_view>

namespace norvik {

// --- Operations of the panel ---------------------------------------------------------------------
// Stops after the running wire and goes back to the first step.
void CNC_Stop();
// Pauses after the running step.
void CNC_Pause();
// Runs one step, or to the end. Refused with a status text while the E-stop is set, a compile runs
// or the drive is missing; ignored while the panel is busy.
void CNC_Step();
void CNC_Play();
// Moves to the ReTool position and ends in the E-stop state.
void CNC_Retool();

// The loop itself, by the mode and the requests that stand.
void NIST_CNC_Controller();

// --- Buttons -------------------------------------------------------------------------------------
void Command_CNC_Play_Click();
void Command_CNC_Step_Click();
void Command_CNC_Pause_Click();
void Command_CNC_Stop_Click();

// ESC was seen by the main window's timer: stops the run; sequences and waits see `EscFlag`.
void CNC_Controls_Esc();

// --- For every operation that moves --------------------------------------------------------------
// Called first. False, with a status text, while the E-stop is set, a compile runs or the drive is
// missing; false in silence while the panel is busy. Otherwise clears what a past operation left
// (stop request, ESC, its text).
bool Begin_Operation();
// The mark of such an operation (`Panel_Busy`, `Key_Busy`) until the end of the scope. At its end
// the machine rests, so that the measured feed is 0.
class Operation_Mark {
 public:
  explicit Operation_Mark(bool& mark) : Mark(mark) { Mark = true; }
  ~Operation_Mark();
  Operation_Mark(const Operation_Mark&) = delete;
  Operation_Mark& operator=(const Operation_Mark&) = delete;

 private:
  bool& Mark;
};
// Why the executing table is not to be run now, in the operator's words; empty: it may.
std::string Unfit_To_Run();
// False, with a status text, in a yield of a compile: the executing table is then still that of the
// program before.
bool Compile_Is_Over();
// Another machine setup is loaded: what earlier operations left (directions, step counts, where
// ReTool would return to, estimate) belongs to the machine before. Only while nothing moves.
void Forget_Operations();
// Why the operation ended before its time, in the operator's words; empty when it did not.
std::string_view End_Reason();
// Says it in panel 1.
void Announce_End();

// True when nothing moves, no run is paused and no program is being compiled. Otherwise says in
// panel 1 that `what` ("Can't open file", ...) has to wait. For opening, compiling and loading a
// machine setup.
bool Stopped_For(std::string_view what);

}  // namespace norvik
