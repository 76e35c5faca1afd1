// board_commands.h: what a board does with a frame.
#pragma once

#include "simulate/board/board_state.h"

#include <cstdint>
#include <span>
#include <string_view>

namespace norvik {

// Carries out a whole frame with a right checksum and fills `reply`. Answers the verdict: "done",
// "full", "disabled", "fault", "switch", "unprepared", "moving".
std::string_view Carry_Out(Simulated_Board& board, std::span<const std::uint8_t> frame,
                           Board_Reply& reply);
// A reply that says no, of the command's length.
void Refuse(Simulated_Board& board, const Board_Command& command, Board_Reply& reply);

}  // namespace norvik
