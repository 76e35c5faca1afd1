// priority.h: how hard this program asks the system for its time.
#pragma once

namespace norvik {

// Applies `MachineSetup.Application_Priority`: 0 normal, 1 high, 2 real time. A refused right is
// said once for each level in the message list and status panel 1.
void Set_Application_Priority(int level);

}  // namespace norvik
