#include "control/position_memory.h"

#include "core/application.h"
#include "core/fault.h"
#include "core/format.h"
#include "core/setup.h"

#include <string>

namespace norvik {

void Save_Axis_Positions() {
  Trap("Axis_Position_Error", [] {
    for (int axis = 1; axis <= 4; ++axis) {
      const std::string position = Shortest_Text(Machine.Position[axis]);
      WriteSetup("Axis Position", "Axis_Cur_Pos_" + std::to_string(axis), position);
      WriteSetup("Axis Position", "Axis_Mach_Pos_" + std::to_string(axis), position);
    }
  });
}

}  // namespace norvik
