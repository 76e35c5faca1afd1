// import_round.h: one whole import of any bytes, for the fuzz targets of the importers.
//
// The first two bytes choose the options (sorts, passes, formats), the rest is the file. A third
// choice lets ESC come at one of the first yields. What must hold: the program has its footer, its
// lines are numbered, and no scratch file is left behind.
#pragma once

#include "core/application.h"
#include "core/paths.h"
#include "core/setup.h"
#include "import/pipeline/pipeline.h"
#include "platform/platform.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <string_view>

#include <unistd.h>

namespace norvik {

inline void Fuzz_Check(bool holds) {
  if (!holds) std::abort();
}

// A folder of this process on a disk in memory where there is one.
inline std::string Fuzz_Folder() {
  namespace fs = std::filesystem;
  const fs::path root = fs::is_directory("/dev/shm") ? "/dev/shm" : fs::temp_directory_path();
  static struct Work {
    fs::path Folder;
    ~Work() {
      std::error_code ignored;
      fs::remove_all(Folder, ignored);
    }
  } work{root / ("norvik_fuzz_import_" + std::to_string(::getpid()))};
  fs::create_directories(work.Folder);
  return work.Folder.string();
}

inline void Fuzz_Setup(unsigned options) {
  const auto bit = [&](int n) { return (options >> n & 1U) != 0; };
  static const Machine_Setup as_delivered = [] {
    MachineSetup = {};
    Restore_Factory_Setup();
    return MachineSetup;
  }();
  MachineSetup = as_delivered;
  MachineSetup.DXF_Sort_Layers = bit(0);
  MachineSetup.DXF_Sort_Lines = MachineSetup.HPGL_Sort_Lines = bit(1);
  MachineSetup.Excellon_Sort_Location = bit(1);
  MachineSetup.DXF_Ingore_Depth = MachineSetup.HPGL_Ingore_Depth = bit(2);
  MachineSetup.DXF_MultiDepth_Passes.Fill(bit(3) ? 2 : 1);
  MachineSetup.HPGL_Passes_to_Depth = bit(3) ? 2 : 1;
  MachineSetup.DXF_Passes_to_Depth = bit(4) ? 2 : 1;
  MachineSetup.DXF_Line_Tolerance = bit(5) ? 0.5F : 0.001F;
  MachineSetup.HPGL_Multiple_Pen_Enable = MachineSetup.HPGL_Multiple_Retool_Pause = bit(6);
  MachineSetup.HPGL_Multiple_Pen_Plunge_Depth[2] = bit(6) ? "-0.1" : "";
  MachineSetup.GC_IJ_Incremental = bit(7);
  MachineSetup.Excellon_Zero_Format = static_cast<std::int16_t>(options >> 8 & 3U);
  MachineSetup.UnitsofMeasurement = bit(10) ? 1 : 0;
  MachineSetup.Auto_Dwell_Insertion = MachineSetup.Auto_Spindle_OnOff_Insertion = bit(11);
  Application.DecimalSeparator = bit(12) ? ',' : '.';
}

inline void Fuzz_Check_Program(const std::string& program, std::string_view last_line) {
  std::int64_t number = 0;
  std::string last;
  for (const std::string& line : Split_Lines(program)) {
    const std::string begin = "N" + Import_Sequence_Text(++number);
    Fuzz_Check(line.rfind(begin, 0) == 0);
    last = line.substr(begin.size());
  }
  Fuzz_Check(last == last_line);
}

inline void Fuzz_Import(const std::uint8_t* data, std::size_t size, const char* name,
                        bool (*import)(const std::string& path), std::string_view last_line) {
  static const std::string folder = Fuzz_Folder();
  const unsigned options = size < 2 ? 0U : data[0] | static_cast<unsigned>(data[1]) << 8;
  const std::size_t used = size < 2 ? size : 2;
  Application = {};
  // Neither a folder of its own nor an error log: the files of a round cost more than the round.
  Application.Temporary_GCode = folder + "/TEMP.GC";
  Application.DXF_Scratch = folder + "/DXFtmp.txt";
  Application.HPGL_Scratch = folder + "/HPGLtmp.txt";
  Fuzz_Setup(options);
  int until_escape = (options >> 13) == 7U ? static_cast<int>(size % 16) : -1;
  Platform.Do_Events = [&until_escape] {
    if (until_escape >= 0 && until_escape-- == 0) Application.EscFlag = true;
  };
  bool opened = false;
  Import_Host.Open_GCode = [&](const std::string& path) {
    opened = true;
    Fuzz_Check_Program(Read_Whole_File(path), last_line);
  };
  const std::string path = folder + "/" + name;
  std::ofstream(path, std::ios::binary | std::ios::trunc)
      .write(reinterpret_cast<const char*>(data) + used, static_cast<std::streamsize>(size - used));
  Fuzz_Check(import(path));
  Fuzz_Check(opened);
  Fuzz_Check(!FileExists(Application.DXF_Scratch) && !FileExists(Application.HPGL_Scratch));
}

}  // namespace norvik
