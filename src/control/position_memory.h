// position_memory.h: the positions that survive a restart.
#pragma once

namespace norvik {

// Writes `Axis_Cur_Pos_<n>` and `Axis_Mach_Pos_<n>` of the four axes to section "Axis Position" of
// the machine file. A failure is logged as "Axis_Position_Error".
void Save_Axis_Positions();

}  // namespace norvik
