// board_motion.h: the queue of a board and the entry that runs.
#pragma once

#include "simulate/board/board_state.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>

namespace norvik {

// Lets everything happen up to `time`. Earlier times change nothing.
void Follow_Board(Simulated_Board& board, std::int64_t time);
// Puts an entry behind the queue, which has room; it begins at once where nothing runs.
void Queue_Entry(Simulated_Board& board, const Board_Entry& entry);
// Everything comes to rest where it is, and the queue is empty.
void Stop_Board(Simulated_Board& board, std::string_view why);
// The running entry slows with its ramp to `rate` and ends there; what stands behind it is dropped.
void Stop_Jog(Simulated_Board& board, double rate);
// Time passes in entries at 1 / 1024 of `value` from here on.
void Set_Board_Throttle(Simulated_Board& board, std::uint32_t value);
// The running entry meets switches and encoders as they are now.
void Plan_Again(Simulated_Board& board);
// The axis makes a part less of its steps from where it is.
void Slip_From_Here(Simulated_Board& board, int axis, double part);
// Output 1 to 7, as by its command.
void Switch_Output(Simulated_Board& board, int output, bool on);

// What the queue says of itself: entries in it, and places that are free.
std::int32_t Queue_Used(const Simulated_Board& board);
std::int32_t Queue_Free(const Simulated_Board& board);
const Board_Entry& Entry_In_Queue(const Simulated_Board& board, std::size_t place);
// When something next happens by itself; absent: never.
std::optional<std::int64_t> Next_Board_Event(const Simulated_Board& board);
// True value of the spindle output, 0 to 1023.
int Pwm_Value(const Simulated_Board& board);

// Adds a case of a finding; `words` are those of the first one.
template <class Words>
void Note_Finding(Simulated_Board& board, Board_Finding_Kind kind, int axis, Words words) {
  auto& finding = Count_Board_Finding(board.Findings, kind, axis, board.Now);
  if (finding.Text.empty()) finding.Text = words();
}

}  // namespace norvik
