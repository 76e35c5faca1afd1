// reset.h: rooms put back to their state at the start of a program.
//
// One function a room; it resets the records of the rooms below as well, hooks included, and leaves
// `Platform` alone. Each is a library of its own (CMakeLists.txt), so that a test includes nothing
// of the rooms that it does not use. A record added to a room is added to the room's function:
// resets.py looks that none is missing.
#pragma once

namespace norvik {

void Reset_Core();
void Reset_Drive();     // and core
void Reset_Compiler();  // and core
void Reset_Plot();      // and compiler
void Reset_Parallel();  // and drive
void Reset_Serial();    // and drive
void Reset_Tools();     // and compiler
void Reset_Simulate();  // and core; the ports of `Platform` are not connected to the machine by it
void Reset_Control();   // and compiler, parallel, serial
void Reset_Import();    // and core
void Reset_App();       // and control, plot, import, tools

}  // namespace norvik
