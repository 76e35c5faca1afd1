// board_faults.h: adds faults to a board and lets them happen (board_fault.h tells what there is).
#pragma once

#include "simulate/board/board_state.h"

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace norvik {

// Adds the fault of a line; answers the empty text, or what is wrong with it and what is possible.
std::string Add_Board_Fault(Simulated_Board& board, std::string_view line);
// None any more, and what was in force by them is over; a counter that jumped stays where it is.
void Clear_Board_Faults(Simulated_Board& board);
// "code=MoveSteps:5 no-reply (happened 1 time)", in the order in which they were added.
std::vector<std::string> Board_Faults_Text(const Simulated_Board& board);

// --- For the board ------------------------------------------------------------------------------

// A frame has come in. Puts harm on its reply. The bytes that come in in place of it, if it was
// changed on its way.
std::optional<std::vector<std::uint8_t>> Frame_Meets_Faults(Simulated_Board& board,
                                                            std::span<const std::uint8_t> frame);
// The time `Next_Time` has come.
void Time_Meets_Faults(Simulated_Board& board);
// Depth of the queue or place of an axis may have changed.
void State_Meets_Faults(Simulated_Board& board);
// Puts an input to a state: "aux", "home-x", "low-a", "high-y". False when there is no such input.
bool Set_Board_Input(Simulated_Board& board, std::string_view name, int state);

}  // namespace norvik
