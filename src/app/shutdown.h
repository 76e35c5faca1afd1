// shutdown.h: the one way out of the program.
#pragma once

namespace norvik {

// Outputs off, all loops told to end, positions saved, motors off, layout saved, windows closed,
// process ended. Called a second time it does nothing. May be called in a yield of a move: the move
// ends when this returns, and no step is made any more.
void bye();

// The operator closes the main window: `bye` alone ends the process, so the close itself is
// refused. Always false.
bool Unload_Main();

}  // namespace norvik
