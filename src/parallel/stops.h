// stops.h: what ends a running move or wait at once: the E-stop and the ESC key.
//
// One place looks, so that the step loop, backlash take-up and every wait of the rooms above act
// alike: latch the flag, stop the run (`Drive_Host.Stop_Run`), answer true.
#pragma once

namespace norvik {

// True when the panel's E-stop flag is set or the E-stop input is on; the run is then stopped. One
// port read when the input is used.
bool EStop_Met();

// From here on `Escape_Met` looks for a new ESC: an `EscFlag` that is set already is old.
void Begin_Watching_Stops();
// True when ESC is down, or went down since the last look, or another poll has latched `EscFlag`
// meanwhile. Latches `EscFlag`; the run is then stopped.
bool Escape_Met();

}  // namespace norvik
