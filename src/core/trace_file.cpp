#include "core/trace_file.h"

#include "core/error_log.h"

#include <cstdio>

namespace norvik {

Trace_Watch_State Trace_Watch;

namespace {

// A look at the file's length with every line would cost a quarter of the line.
void Keep_Bounded(const std::string& path, std::size_t length) {
  const std::int64_t between_looks = Log_Limits.Trace / 100;
  Trace_Watch.Written += static_cast<std::int64_t>(length);
  if (path == Trace_Watch.Path && Trace_Watch.Written < between_looks) return;
  Keep_File_Bounded(path, Log_Limits.Trace);
  Trace_Watch = {path, 0};
}

}  // namespace

bool Append_To_Trace(const std::string& path, std::string_view line) {
  Keep_Bounded(path, line.size());
  std::FILE* file = std::fopen(path.c_str(), "ab");
  if (!file) return false;
  const bool written = std::fwrite(line.data(), 1, line.size(), file) == line.size();
  return std::fclose(file) == 0 && written;
}

}  // namespace norvik
