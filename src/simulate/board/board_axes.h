// board_axes.h: where the axes of a board are while an entry runs.
#pragma once

#include "simulate/board/board_state.h"

#include <cstdint>

namespace norvik {

// Steps that an axis has made after so many counts of the running entry; 0 for one that stands.
std::int64_t Steps_Made(const Simulated_Board& board, int axis, std::int64_t counts);
// +1, or -1 where the entry's direction bit is set.
int Direction_Of(const Simulated_Board& board, int axis);
std::int64_t Counter_After(const Simulated_Board& board, int axis, std::int64_t counts);
double Carriage_After(const Simulated_Board& board, int axis, std::int64_t counts);
// `lag`: the axis moves, so that its carriage is behind by what it lags.
double Encoder_After(const Simulated_Board& board, int axis, std::int64_t counts, bool lag);
double Encoder_Error_After(const Simulated_Board& board, int axis, std::int64_t counts, bool lag);
// Encoder counts a step.
double Encoder_Ratio(const Board_Axis& axis);
// The encoder's count becomes `count` where the carriage is.
void Set_Encoder_Count(Board_Axis& axis, double count);

// The switches follow the carriages, which are at rest or between two entries.
void Follow_Switches(Board_Axis& axis);
// The axis is where the running entry has brought it after so many counts; what stands still
// against a hard stop or passes 24 bits is noted.
void Rebase_Axis(Simulated_Board& board, int axis, std::int64_t counts);
// Looks for the first switch or encoder fault in the rest of the running entry.
void Plan_Event(Simulated_Board& board);
// True when a switch in the entry's direction is on for an axis that it moves.
bool Moves_Into_Switch(const Simulated_Board& board, const Board_Entry& entry);

// --- Looking, at `board.Now` --------------------------------------------------------------------

// Steps of the axis's counter, all of its bits.
std::int64_t Counter_Of(const Simulated_Board& board, int axis);
double Carriage_Of(const Simulated_Board& board, int axis);
std::int64_t Encoder_Of(const Simulated_Board& board, int axis);
// Steps by which the encoder is behind the counter.
double Encoder_Error_Of(const Simulated_Board& board, int axis);
bool Low_Switch_On(const Simulated_Board& board, int axis);
bool High_Switch_On(const Simulated_Board& board, int axis);
bool Home_Input_On(const Simulated_Board& board, int axis);

inline bool Has_Steps(const Board_Entry& entry, int axis) {
  return entry.Dividers[static_cast<std::size_t>(axis - 1)] != No_Steps_Divider &&
         entry.Major > 0 && (entry.Ignored & Axis_Bit(axis)) == 0;
}

}  // namespace norvik
