// shutdown.h: the one way out of the program.
#pragma once

namespace norvik {

// Outputs off, all loops told to end, positions saved, motors off, windows closed, process ended.
// Called a second time it does nothing.
void bye();

// For an end that may not wait: while a run or a move is going on, outputs and motors off and the
// positions saved. Otherwise nothing.
void Switch_Off_Running_Machine();

// The operator closes the main window: `bye` alone ends the process, so the close itself is
// refused. Always false.
bool Unload_Main();

}  // namespace norvik
