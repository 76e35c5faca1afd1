// error_log.h: the one writer of the error log.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace norvik {

// Largest size, bytes, of the error log and of the trace of moves.
struct Log_Limits_State {
  std::int64_t Error_Log = 10'000'000, Trace = 100'000'000;
};
extern Log_Limits_State Log_Limits;

// Shows the text in panels 1 and 3 for ten seconds and appends the line
// "mm/dd/yyyy hh:nn:ss Error Description: text", control characters as blanks and cut at 1000
// characters, to `Application.ErrorFile`. A line that the log does not take goes to standard error,
// after the cause. Raises nothing.
void ErrorLogWrite(std::string_view text);

// Before a line is appended: a file that has reached `limit` bytes becomes the older one beside it,
// "Name.1.extension". What cannot be renamed goes on growing.
void Keep_File_Bounded(const std::string& path, std::int64_t limit);

// Recreates the log with the one line that says it was cleared at start.
void Reset_Error_Log();

}  // namespace norvik
