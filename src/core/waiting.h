// waiting.h: the short helpers that wait for time or for the operator.
#pragma once

namespace norvik {

// Yields to the event queue again and again until so many seconds have passed by the monotonic
// clock; a change of the day's clock or midnight makes it neither longer nor shorter. If that clock
// does not advance at all, as in a test with a fixed clock, the wait ends after 10,000 yields
// instead of never.
void Wait(double seconds);

// Sets `EscFlag` when the ESC key is down or went down since the last look. True when it did.
bool CheckEsc();

}  // namespace norvik
