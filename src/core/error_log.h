// error_log.h: the one writer of the error log.
#pragma once

#include <string_view>

namespace norvik {

// Shows the text in panels 1 and 3 for ten seconds and appends the line
// "mm/dd/yyyy hh:nn:ss Error Description: text", control characters as blanks and cut at 1000
// characters, to `Application.ErrorFile`. Any failure of these
// steps is ignored.
void ErrorLogWrite(std::string_view text);

// Recreates the log with the one line that says it was cleared at start.
void Reset_Error_Log();

}  // namespace norvik
