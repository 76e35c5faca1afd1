#include "core/application.h"

namespace norvik {

Application_State Application;
Machine_State Machine;
Tool_Table Tools;

}  // namespace norvik
