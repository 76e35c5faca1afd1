// board_hands.h: what is done to a board and its machine from outside the wire.
#pragma once

#include "simulate/board/board_state.h"

namespace norvik {

// Puts a carriage somewhere; it rests there. The counter stays; the encoder follows the carriage.
void Place_Board_Carriage(Simulated_Board& board, int axis, double steps);
void Set_Board_Aux(Simulated_Board& board, Input_State state);
// As after power-up but for what the board keeps: its encoder configuration.
void Restart_Board(Simulated_Board& board);

}  // namespace norvik
