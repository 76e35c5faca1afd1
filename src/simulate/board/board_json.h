// board_json.h: what a board is doing, and what its logs hold, as JSON in one line each.
#pragma once

#include "simulate/board/board_line.h"

#include <string>

namespace norvik {

// Everything that a panel or a test asks for: link, queue, running entry, axes, inputs, outputs,
// findings.
std::string Board_State_Json(const Board_Line& line);
// The entries that wait, the running one first, `most` at most.
std::string Board_Queue_Json(const Simulated_Board& board, std::size_t most);

// {"t":1.234567,"way":"in","hex":"1b0c2700","words":"StopMotion","verdict":"done"}
std::string Frame_Log_Line(const Simulated_Board& board, const Board_Frame_Event& event);
// {"t":..,"entry":"begin",..} with where the axes stand, rates, outputs and PWM.
std::string Motion_Log_Line(const Simulated_Board& board, const Board_Motion_Event& event);

}  // namespace norvik
