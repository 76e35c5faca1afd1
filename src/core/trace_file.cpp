#include "core/trace_file.h"

#include "core/error_log.h"

#include <cstdio>

namespace norvik {

bool Append_To_Trace(const std::string& path, std::string_view line) {
  Keep_File_Bounded(path, Log_Limits.Trace);
  std::FILE* file = std::fopen(path.c_str(), "ab");
  if (!file) return false;
  const bool written = std::fwrite(line.data(), 1, line.size(), file) == line.size();
  return std::fclose(file) == 0 && written;
}

}  // namespace norvik
