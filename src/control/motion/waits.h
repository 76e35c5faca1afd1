// waits.h: what ends an operation before its time, and the waits that it ends.
//
// Every wait of the run loop and of the sequences goes through one round: yield, look at ESC, look
// at the E-stop input, rest a millisecond. Handlers that run in the yield set flags; after it an
// interrupted wait is over. Waits are measured on the monotonic clock, so that neither midnight nor
// a clock that is set hangs or shortens them.
#pragma once

#include <cstdint>

namespace norvik {

enum class Interruption { None, Closing, EStop, Esc, Stop };

// What stands against going on: the program is closing, the E-stop, ESC, Stop; in this order.
Interruption Interrupted();

// Looks at ESC and at the E-stop input of the drive, which does the same as the button Stop: it
// calls CNC_Stop. True when nothing stands against going on.
bool Look_At_Stops();

// True when the whole time has passed, false when it was interrupted.
bool Wait_Seconds(double seconds);

// The dwell of a wire. True when it was served whole.
bool Dwell_Wait(double seconds, std::int32_t step);

// A rising edge of the auxiliary input: high before the edge is waited out first. True when it
// came; there is no time limit, only an interruption ends the wait otherwise.
bool Wait_For_Aux_Input();

}  // namespace norvik
