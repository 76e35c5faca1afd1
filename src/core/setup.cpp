#include "core/setup.h"

namespace norvik {

Machine_Setup MachineSetup;

}  // namespace norvik
