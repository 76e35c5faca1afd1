// stream_queue.h: what the board still has to do, and where its counters may be. For this room.
#pragma once

#include "core/nullable.h"
#include "drive/move.h"
#include "serial/stream.h"

#include <cstdint>
#include <optional>

namespace norvik {

// What ends the present operation before its time; absent: nothing.
std::optional<Move_End> Ended();
// Yields and rests a millisecond.
void Rest();

// Sends a held jog piece by piece until it is released, and then a piece that slows down. False: a
// piece did not reach the queue.
bool Jog_In_Pieces(const Step_Request& jog, Nullable s_word);

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
