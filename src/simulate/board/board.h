// board.h: a simulated controller board, `Dravon` or `Pelmar`, with the machine behind it.
//
// The board answers every command of its generation, runs its queue of motion entries in closed
// form and moves carriages that have switches, hard stops and encoders. It knows no clock, no port
// and no program: bytes come in with their time, replies go out with theirs. So one core serves in
// process, on a pseudo-terminal, in real time, in time that is stepped from outside, and on a
// virtual clock.
//
//   bytes --> frame receiver --> command --> queue --> running entry --> motors --> carriages
//                                   |                     |                            |
//   bytes <--- reply <--------------+      outputs, PWM <-+      switches, encoders <--+
//
// The boards' firmware is not known here. How long frames are and what the replies hold follows the
// wire format; what is marked "invented" below is this simulation's own idea of a board.
//
// Units: times in ns of whatever clock the caller keeps, counted from any start; rates in Hz and
// counts as the frames carry them, smoothing factor included; positions of axes in steps. Axes 1..4
// are X, Y, Z, A.
#pragma once

#include "simulate/board/board_axes.h"
#include "simulate/board/board_faults.h"
#include "simulate/board/board_hands.h"
#include "simulate/board/board_motion.h"
#include "simulate/board/board_state.h"
#include "simulate/board/running_entry.h"

#include <cstdint>

namespace norvik {

// A board after power-up: queue empty, counters 0, limits on, motors enabled, all carriages at 0.
// Its settings are those of the generation; switches, stops and homes are absent.
Simulated_Board Make_Board(Board_Generation generation);

// A byte that has come in whole at `time`. The reply, if a frame ended with it.
const Board_Reply& Receive_Byte(Simulated_Board& board, std::uint8_t byte, std::int64_t time);

}  // namespace norvik
