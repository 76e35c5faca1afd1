// fatal_signals.h: one last act when a signal ends the process on the spot.
//
// SIGQUIT, SIGSEGV, SIGABRT, SIGBUS, SIGFPE, SIGILL and SIGXCPU end a process in the middle of a
// statement; SIGKILL and a power cut end it without asking, and no program can do anything there.
#pragma once

namespace norvik {

// From here on each of those signals runs `act` once, then ends the process as the system does, by
// the same signal. `act` must be safe in a signal handler. It runs on the thread that called this,
// which has the right to the ports, whichever thread the signal hits, and on a stack of its own. An
// earlier act is replaced.
void Install_Fatal_Signals(void (*act)() noexcept);

}  // namespace norvik
