// record_table.h: where the records of the line pass are appended.
#pragma once

#include "compiler/state/tables.h"

#include <cstddef>

namespace norvik {

// Appends a record of the current state and returns it for what is left to fill in. Raises a memory
// fault when the table is full (`LineArc_Table_Limit`).
LineArc& AddLineArc(Record_Type type);

// No program needs so many records; a repeat or a cycle with a wrong count would fill the memory.
inline constexpr std::size_t LineArc_Table_Limit = 10'000'000;

}  // namespace norvik
