// table_round_trip.h: what a fuzzed table file must keep to, for both tables.
#pragma once

#include "compiler/tables/tables_io.h"
#include "core/fault.h"

#include <cstdlib>
#include <filesystem>
#include <string>

#include <unistd.h>

namespace norvik {

// A file of this process on a disk in memory where there is one, removed at the end.
inline const std::string& Fuzz_File() {
  namespace fs = std::filesystem;
  static const struct Scratch {
    ~Scratch() {
      std::error_code ignored;
      fs::remove(Path, ignored);
    }
    std::string Path = ((fs::is_directory("/dev/shm") ? "/dev/shm" : fs::temp_directory_path()) /
                        fs::path("norvik_fuzz_" + std::to_string(::getpid()) + ".csv"))
                           .string();
  } scratch;
  return scratch.Path;
}

// Reading either raises a fault or gives a table that comes back equal once written.
template <class Read, class Write, class Read_File>
void Expect_Round_Trip(std::string_view bytes, Read&& read, Write&& write, Read_File&& read_file) {
  try {
    const auto table = read(bytes, "fuzz", No_Record_Limit);
    write(Fuzz_File(), table);
    if (!(read_file(Fuzz_File(), No_Record_Limit).Rows == table.Rows)) std::abort();
  } catch (const Fault&) {
  }
}

}  // namespace norvik
