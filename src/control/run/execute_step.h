// execute_step.h: the wires of one program step, executed in the order of the table.
#pragma once

#include <cstddef>
#include <cstdint>

namespace norvik {

// Modes of Execute_Step.
inline constexpr int Draw_Only = 0, Move_And_Draw = 2;

// Executes all wires that carry `step`. A wire with a repeat count may lead back: `step` then names
// the step to go on behind, and the scan goes on with its wires. Mode 2 moves the machine and
// serves waits, dwells and repeats; other modes only draw.
//
// Between two wires, and after a wait or dwell, the closing program, the E-stop (button or input),
// ESC and Stop end it, as does a move that did not arrive; nothing of what remains is executed.
// True when every wire was executed. A wire with `Dwell` -1 sets `CNCMode` to paused and does not
// end the step.
bool Execute_Step(std::int32_t& step, int mode);

// The same in mode 2 for the rows of one step that stand together from `row` on; `row` is left
// behind the last one executed. A repeat count leads behind the first rows of the step to come back
// to.
bool Execute_Rows(std::size_t& row, std::int32_t& step);

}  // namespace norvik
