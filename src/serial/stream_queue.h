// stream_queue.h: what the board still has to do, and where its counters may be. For this room.
#pragma once

#include "drive/move.h"
#include "serial/stream.h"

#include <cstdint>
#include <optional>

namespace norvik {

// What ends the present operation before its time; absent: nothing.
std::optional<Move_End> Ended();
// Yields and rests a millisecond.
void Rest();

// An entry has reached the board, which answered with so many free places.
void Entry_Was_Taken(const Queued_Entry& entry, const Indexed<std::int32_t, 1, 4>& excess,
                     std::int32_t free);
// The board has told how many places are free.
void Free_Was_Told(std::int32_t free);
// Seconds of motion beyond the running entry.
double Seconds_Behind_Running();

// Counters as the program counts, from the last status reply.
Indexed<std::int64_t, 1, 4> Program_Counters();
// Where the counters would stand behind a further entry; the way may be empty.
bool Counters_Match(const Indexed<std::int64_t, 1, 4>& counters,
                    const Indexed<std::int32_t, 1, 4>& further);

// The axes rest: how the moves ended that were sent, and the place is taken over.
Move_End Judge_Place();
// The sides that are free at the switches that are on.
void Note_Free_Sides();

}  // namespace norvik
