// stops.h: what ends a running move or wait at once: the E-stop and the ESC key.
//
// Step loop, backlash take-up, queues and waits look here, so that they act alike: the flag is set,
// the run is stopped (`Drive_Host.Stop_Run`), the answer is true.
#pragma once

#include "core/application.h"
#include "drive/drive_host.h"

namespace norvik {

// True when the panel's E-stop flag is set or the input is on. The input is read only while the
// flag is not set.
template <class Read_EStop_Input>
bool EStop_Met(Read_EStop_Input input_is_on) {
  if (!Machine.EStop_Flag && !input_is_on()) return false;
  Drive_Host.Stop_Run();
  return true;
}

// From here on `Escape_Met` looks for a new press: an `EscFlag` that is set already is old.
void Begin_Watching_Stops();
// True when ESC is down, or went down since the last look, or somebody else has seen it meanwhile
// and set `EscFlag`. Sets `EscFlag`; the run is then stopped.
bool Escape_Met();

}  // namespace norvik
