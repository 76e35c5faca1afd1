// headless_platform.h: the environment of a program without windows.
//
// Clocks and timers are real, message boxes go to standard error, dialogs are cancelled, there is
// no joystick, sound or printer. Ctrl-C and a request to terminate are seen as the ESC key: the
// first asks the running work to stop the orderly way, the second ends the process at the next
// yield through `Headless.On_End`, so that a program that drives a machine can switch it off first.
// Where no yield comes any more the third ends it at once.
#pragma once

#include <functional>

namespace norvik {

struct Headless_State {
  // Ends the process; exit status 130 by default.
  std::function<void()> On_End;
  bool End_Requested = false;  // End_Process was called: main shall return
};
extern Headless_State Headless;

// Fills `Platform` with the operations of a program without windows and takes over the two signals.
void Install_Headless_Platform();

// How often the operator asked to stop since the installation.
int Interrupts_Seen();

}  // namespace norvik
