// drive_session.h: taking a machine in hand and letting it go, the same for desktop and companion.
//
//   Begin   port chosen -> steps and motors idle, outputs off -> priority -> look at home switches
//           -> mark of a session with a real machine
//   ...     moves
//   End     outputs and motors off -> positions into the machine file -> mark
//
// The flag of the home switches stands when Begin returns, before anything can move. Its message
// box (`Tell_Session_Start`) waits for the caller: the desktop says it when the main window is
// there to answer in, in `Activate_Main`, and after another setup when the windows are back; the
// companion says it at once on standard error.
//
// Between Begin and `Load_Main`'s first window nothing yields, so no timer of a panel reads a
// switch before the pins are set up.
#pragma once

#include "platform/platform.h"

#include <functional>

namespace norvik {

struct Drive_Session_Host_Operations {
  // Whether steps move a real machine, as the port was chosen.
  std::function<bool()> Machine_Is_Real = [] { return false; };
};
extern Drive_Session_Host_Operations Drive_Session_Host;

struct Drive_Session_State {
  bool Open = false;   // the pins are ours: they have to be left switched off
  Timer_Id Watch = 0;  // looks after switches and E-stop (`Watch_Machine`) while the session lasts
};
extern Drive_Session_State Drive_Session;

// The port is chosen and the machine file loaded. What the drive and the panel kept of a machine
// before is forgotten. Nothing once the program is closing. Raises nothing.
void Begin_Drive_Session();

// What an operator must know before the first move: home switches found on, and positions that an
// end without order has left in doubt, which are asked about.
void Tell_Session_Start();

// Outputs and motors off and the positions saved, at any moment, within a move too. Nothing when no
// session is open. Raises nothing.
void End_Drive_Session();

}  // namespace norvik
