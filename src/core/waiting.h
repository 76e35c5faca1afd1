// waiting.h: the short helpers that wait for time or for the operator.
#pragma once

namespace norvik {

// Yields to the event queue until so many seconds have passed. Measured by the clock that never
// goes back, so that neither midnight nor a changed clock hangs or shortens it; a clock that stands
// still ends it.
void Wait(double seconds);

// Sets `EscFlag` when the ESC key is down or went down since the last look. True when it did.
bool CheckEsc();

}  // namespace norvik
