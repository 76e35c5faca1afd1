// stream_trace.h: the record of all moves that are handed to a board, for whoever looks for a
// fault.
//
// One line a move: step, steps of X, Y, Z, A with their signs, start, run and end speed, 1 for a
// chord of an arc, five outputs, S word; empty where there is none.
#pragma once

#include "core/nullable.h"
#include "drive/move.h"

#include <cstdint>
#include <string>

namespace norvik {

struct Dravon_Trace_State {
  bool Enabled = false;     // `Serial_Trace` of section `Platform`
  std::string Failed_Path;  // reported already
};
extern Dravon_Trace_State Dravon_Trace;

// Reads the key.
void Choose_Dravon_Trace();
// Appends to "TestFile2.csv" in the folder of the tables where the trace is on. A file that cannot
// be written is reported once and stops nothing.
void Trace_Dravon_Move(const Step_Request& request, Nullable s_word, std::uint32_t step);

}  // namespace norvik
