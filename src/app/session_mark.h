// session_mark.h: the mark of a session with a real machine.
//
// File `Session.ini` of the working folder:
//
//   [Session]
//   Machine=/home/op/.local/share/norvik/mill.ini
//   Began=2026-11-25 12:40:03
//   State=running             running, ended, or ended without positions
//   Positions=2026-11-25 12:38:51     when the positions of the machine file were stored last
//
// A start that finds anything but an orderly end behind it (a crash, a kill, a power cut, positions
// that could not be stored) does not believe the stored positions: `Position_Memory.Doubt` says so,
// and no program runs until the operator has confirmed them or the machine is homed. Simulated
// machines leave no mark.
#pragma once

namespace norvik {

struct Session_Mark_State {
  bool Open = false;
  bool Was_Read = false;  // by an earlier session of this process
};
extern Session_Mark_State Session_Mark;

// A session with a real machine begins, with the positions as they were loaded. Only the first one
// of a process looks at the mark of before. Raises nothing.
void Mark_Session_Begin();

// It ends. `stored`: the positions stand in the machine file. Doubt that nobody has cleared stays
// for the next start. Nothing when no session was begun. Raises nothing.
void Mark_Session_End(bool stored);

}  // namespace norvik
