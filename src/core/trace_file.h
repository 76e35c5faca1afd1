// trace_file.h: files that grow line by line.
#pragma once

#include <string>
#include <string_view>

namespace norvik {

// Appends a line with its end to a file that is kept to the bound of traces (error_log.h). It is
// opened and closed for each line, so that it is whole whenever the process dies. False when it
// could not be written.
bool Append_To_Trace(const std::string& path, std::string_view line);

}  // namespace norvik
