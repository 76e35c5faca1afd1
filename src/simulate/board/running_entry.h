// running_entry.h: how far the running entry of a board has come.
#pragma once

#include "simulate/board/board_state.h"

#include <cstdint>

namespace norvik {

bool In_Motion(const Simulated_Board& board);
// Seconds of the running entry that have passed at `board.Now`.
double Entry_Seconds(const Simulated_Board& board);
// The time when that many of its seconds have passed at the present throttle; the largest number:
// never.
std::int64_t Time_Of_Seconds(const Simulated_Board& board, double seconds);
// Counts of the running entry that are made.
std::int64_t Counts_Made(const Simulated_Board& board);
double Current_Rate(const Simulated_Board& board);

}  // namespace norvik
