#include "parallel/pin_map.h"
#include "parallel/port_display.h"
#include "parallel/port_ranges.h"
#include "parallel/port_setup.h"
#include "parallel/ports.h"
#include "parallel/read_back.h"
#include "parallel/step_engine.h"
#include "parallel/system_timing.h"
#include "parallel/timing.h"
#include "support/reset.h"

namespace norvik {

void Reset_Parallel() {
  Reset_Drive();
  Pins = {};
  Port_IO = {};
  Port_Setup = {};
  Port_Failures = {};
  Port_Ranges = {};
  Port_Recorder = {};
  Forget_Written_Bytes();
  Read_Back = {};
  Step_Engine = {};
  System_Timing = {};
  Timing = {};
}

}  // namespace norvik
