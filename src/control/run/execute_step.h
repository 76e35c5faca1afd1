// execute_step.h: the wires of one program step, executed in the order of the table.
#pragma once

#include <cstddef>
#include <cstdint>

namespace norvik {

// Modes of Execute_Step.
inline constexpr int Draw_Only = 0, Move_And_Draw = 2;

// Executes all wires of `step`, from the first row of the table to the last. `Move_And_Draw` moves
// the machine and serves waits, dwells and repeats; `Draw_Only` shows the wires and does nothing
// else.
//
// The wire that ends a round of a repeat sets `step` back to the step where the repeat began. The
// rows behind it that belong to that earlier step are then executed, and the caller goes on with
// the step after it.
//
// Between two wires, and after a wait or dwell, these end the step: the program closes, the E-stop
// (button or input), ESC, Stop, a move that did not reach its end. The wires that are left are not
// executed, and the result is false; true when every wire was executed. A wire with `Dwell` -1 sets
// `CNCMode` to paused and does not end the step.
bool Execute_Step(std::int32_t& step, int mode);

// The same, moving, for a run in the order of the table (`Run_In_Table_Order`), where a step may
// have rows in several places: executes the rows that follow each other from `row` on as long as
// they belong to one step, and sets `row` to the row behind them. After the end of a round of a
// repeat `row` is the one behind the first group of rows of the step where the repeat began.
bool Execute_Rows(std::size_t& row, std::int32_t& step);

}  // namespace norvik
