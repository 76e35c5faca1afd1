#include "simulate/findings.h"
#include "simulate/port_space.h"
#include "simulate/simulated_machine.h"
#include "simulate/trail.h"
#include "simulate/virtual_clock.h"
#include "support/reset.h"

namespace norvik {

void Reset_Simulate() {
  Reset_Core();
  Findings = {};
  Simulated_Machine = {};
  Port_Space = {};
  Trail = {};
  Virtual_Clock = {};
}

}  // namespace norvik
