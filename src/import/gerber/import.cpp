#include "import/gerber/import.h"

#include "core/application.h"
#include "core/format.h"
#include "core/messages.h"
#include "import/gerber/apertures.h"
#include "import/gerber/gcode.h"
#include "import/gerber/layers.h"
#include "import/gerber/passes.h"
#include "import/gerber/reader.h"
#include "import/gerber/table.h"
#include "import/pipeline/pipeline.h"
#include "import/pipeline/report.h"
#include "platform/platform.h"

#include <cstdio>

namespace norvik {

namespace {

void Clear_Gerber_Tables() {
  Gerber_Table = {};
  Gerber_Apertures = {};
  Gerber_Layers = {};
  Gerber_Format = {};
}

// True when there is a program to open.
bool Convert(const std::string& path) {
  std::remove(Application.Gerber_Scratch.c_str());
  Clear_Gerber_Tables();
  Gerber_Read_Apertures(path);
  if (!Choose_Gerber_Layers()) {
    Import_Status("Gerber Import Canceled");
    Report_Note("No layers were chosen; nothing was imported.");
    return false;
  }
  Gerber_Read_Data(path);
  Gerber_Isolation_Passes();
  const bool written = Gerber_Write_GCode(Application.Gerber_Scratch);
  Clear_Gerber_Tables();
  return written;
}

}  // namespace

bool Import_Gerber_File(const std::string& path) {
  constexpr double nanoseconds = 1e9;
  const std::int64_t start = Platform.Monotonic_Clock();
  bool written = false;
  const bool exists = Run_Import(Import_Kind::Gerber, path, Application.Gerber_Scratch,
                                 [&] { return written = Convert(path); });
  if (written) {
    const double seconds = static_cast<double>(Platform.Monotonic_Clock() - start) / nanoseconds;
    AddMessage("Gerber Total Process Time: " + Format_Number(seconds, "#####0.00") + " Seconds");
  }
  return exists;
}

}  // namespace norvik
