// parallel_drive.h: the parallel port as a drive.
#pragma once

#include "drive/drive.h"

namespace norvik {

// A move blocks its caller, so that there is no queue: pause, Stop and a released jog are flags
// that the step loop reads.
extern const Drive_Operations Parallel_Drive;

// Every output pin to its off state and every motor off, whatever drive is chosen.
void Leave_Parallel_Port();

}  // namespace norvik
