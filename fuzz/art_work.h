// art_work.h: a working folder for the targets that run whole imports, and what must hold after
// one.
#pragma once

#include "core/application.h"
#include "core/paths.h"
#include "core/setup.h"
#include "import/pipeline/pipeline.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <string>

#include <unistd.h>

namespace norvik {

// Fills the paths of the working files; the folder lies on a disk in memory where there is one and
// is removed when the process ends.
inline std::string Enter_Work_Folder() {
  namespace fs = std::filesystem;
  static struct Folder {
    fs::path Path = (fs::is_directory("/dev/shm") ? "/dev/shm" : fs::temp_directory_path()) /
                    ("norvik_fuzz_art_" + std::to_string(::getpid()));
    Folder() { fs::create_directories(Path); }
    ~Folder() {
      std::error_code ignored;
      fs::remove_all(Path, ignored);
    }
  } folder;
  const auto under = [&](const char* name) { return (folder.Path / name).string(); };
  Application = {};
  Application.Temporary_GCode = under("TEMP_NORVIK999.GC");
  Application.Gerber_Scratch = under("Graftmp.txt");
  Application.Bitmap_Scratch = under("Bitmaptmp.txt");
  return folder.Path.string();
}

// Takes values from the front of the input; zeros when it is used up.
struct Byte_Source {
  const std::uint8_t* Data;
  std::size_t Size;

  template <class Value>
  Value Take() {
    Value value{};
    const std::size_t count = std::min(Size, sizeof value);
    std::memcpy(&value, Data, count);
    Data += count;
    Size -= count;
    return value;
  }
  bool Bit() { return (Take<std::uint8_t>() & 1) != 0; }
};

inline void Check(bool holds) {
  if (!holds) std::abort();
}

// Either no program, or one with header and footer; no line file is left.
inline void Check_Import(bool opened) {
  Check(!FileExists(Application.Gerber_Scratch) && !FileExists(Application.Bitmap_Scratch));
  Check(!Application.EscFlag);
  if (!opened) return;
  const std::string program = Read_Whole_File(Application.Temporary_GCode);
  Check(program.rfind("N001 [Norvik Conversion]\r\n", 0) == 0);
  Check(program.size() > 6 && program.substr(program.size() - 6) == " M30\r\n");
  Check(program.find("nan") == std::string::npos && program.find("inf") == std::string::npos);
}

}  // namespace norvik
