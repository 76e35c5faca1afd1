#include "import/gerber/import.h"

#include "core/application.h"
#include "core/format.h"
#include "core/messages.h"
#include "core/rounding.h"
#include "import/gerber/apertures.h"
#include "import/gerber/gcode.h"
#include "import/gerber/layers.h"
#include "import/gerber/passes.h"
#include "import/gerber/reader.h"
#include "import/gerber/table.h"
#include "import/pipeline/pipeline.h"
#include "import/pipeline/placing.h"
#include "import/pipeline/report.h"
#include "platform/platform.h"

#include <cmath>
#include <cstdio>
#include <utility>

namespace norvik {

namespace {

void Clear_Gerber_Tables() {
  Gerber_Table = {};
  Gerber_Apertures = {};
  Gerber_Layers = {};
  Gerber_Format = {};
}

// Pads are upright, so a board turns by quarter turns.
bool Place_Artwork() {
  if (!Is_Placed()) return true;
  const bool quarters = std::fmod(Import_Placing.Rotate, 90) == 0;
  if (!quarters) {
    Report_Note("A board can be turned by 90, 180 or 270 degrees only; nothing was imported.");
    return false;
  }
  const bool upright = std::fmod(Import_Placing.Rotate, 180) == 0;
  const auto map = [upright](const Placing& placing, auto& table) {
    const auto point = [&](float& x, float& y) {
      const Placed_Point at = placing(x, y);
      x = To_Single(at.X);
      y = To_Single(at.Y);
    };
    for (Gerber_Line& line : table.Lines) {
      point(line.X1, line.Y1);
      point(line.X2, line.Y2);
      line.Width = To_Single(line.Width * placing.Scale());
    }
    for (Gerber_Pad& pad : table.Pads) {
      point(pad.X, pad.Y);
      pad.Size_X = To_Single(pad.Size_X * placing.Scale());
      pad.Size_Y = To_Single(pad.Size_Y * placing.Scale());
      if (!upright) std::swap(pad.Size_X, pad.Size_Y);
    }
    for (Thin_Line& line : table.Thin_Lines) {
      point(line.X1, line.Y1);
      point(line.X2, line.Y2);
    }
  };
  const Placing placing([&](Drawing_Extent& extent, const Placing& turned) {
    Gerber_Table_State copy = Gerber_Table;
    map(turned, copy);
    const auto take = [&](double x, double y, double half_x, double half_y) {
      extent.Take(x - half_x, y - half_y);
      extent.Take(x + half_x, y + half_y);
    };
    for (const Gerber_Line& line : copy.Lines) {
      take(line.X1, line.Y1, line.Width / 2, line.Width / 2);
      take(line.X2, line.Y2, line.Width / 2, line.Width / 2);
    }
    for (const Gerber_Pad& pad : copy.Pads) take(pad.X, pad.Y, pad.Size_X / 2, pad.Size_Y / 2);
    for (const Thin_Line& line : copy.Thin_Lines) {
      take(line.X1, line.Y1, 0, 0);
      take(line.X2, line.Y2, 0, 0);
    }
  });
  map(placing, Gerber_Table);
  return true;
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
  if (!Place_Artwork()) return false;
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
