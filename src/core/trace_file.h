// trace_file.h: files that grow line by line.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace norvik {

// The file whose length was looked at last, and the bytes written since.
struct Trace_Watch_State {
  std::string Path;
  std::int64_t Written = 0;
};
extern Trace_Watch_State Trace_Watch;

// Appends a line with its end to a file that is kept to the bound of traces (error_log.h). It is
// opened and closed for each line, so that it is whole whenever the process dies. False when it
// could not be written.
bool Append_To_Trace(const std::string& path, std::string_view line);

}  // namespace norvik
