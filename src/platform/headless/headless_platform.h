// headless_platform.h: the environment of a program without windows.
//
// Clocks and timers are real, message boxes go to standard error, dialogs are cancelled, there is
// no joystick, sound or printer. Ctrl-C, a request to terminate and a terminal that hangs up are
// seen as the ESC key: the first asks the running work to stop the orderly way, the second ends the
// process at the next yield through `Headless.On_End`, so that a program that drives a machine can
// switch it off first. Where no yield comes any more the third ends it at once, unless a machine is
// driven (`Guard_Driven_Machine`).
#pragma once

#include <functional>

namespace norvik {

struct Headless_State {
  // Ends the process; exit status 130 by default.
  std::function<void()> On_End;
  bool End_Requested = false;  // End_Process was called: main shall return
};
extern Headless_State Headless;

// Fills `Platform` with the operations of a program without windows and takes over the signals.
void Install_Headless_Platform();

// From here on the process drives a machine: no signal of a terminal, a shell or a closed pipe ends
// or halts it by itself, however often it comes, because outputs would stay on. Requests to stop
// stay requests; Ctrl-Z does nothing. For a process that hangs there is Ctrl-\ (SIGQUIT), which
// switches outputs and motors of a real port off (platform/linux/fatal_signals.h).
void Guard_Driven_Machine();

// How often the operator asked to stop since the installation.
int Interrupts_Seen();

}  // namespace norvik
