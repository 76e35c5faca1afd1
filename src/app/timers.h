// timers.h: the two timers of the main window.
//
// They run from the event queue, so only while no code runs or where it yields. ESC and the
// function keys are polled as states of the keyboard and act whichever window has the focus.
#pragma once

namespace norvik {

// Every 100 ms: ESC, F4 (plot), F5 (program), F6 (panel), motor supervision.
void Main_Timer1();
// Every second: the status panels.
void Main_Timer2();

}  // namespace norvik
