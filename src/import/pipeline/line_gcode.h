// line_gcode.h: the writer of the thirteen-field line file, for HPGL and bitmap, and its depth
// passes.
#pragma once

#include "import/pipeline/line.h"
#include "import/pipeline/pipeline.h"

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

namespace norvik {

// What differs between the two importers. The pass counts are settings and not what was done.
struct Line_GCode_Rules {
  Import_Kind Kind = Import_Kind::HPGL;
  std::string_view Fault_Name;
  double Travel = 0;              // Z between contours and at the end
  std::int16_t Passes = 1;        // below 2: a contour start prints its plunge line
  std::int16_t Start_Passes = 1;  // 2 or more: records print a move to their start
  bool Multiple_Pens = false;     // feeds follow the pen
  bool Retool_Pause = false;      // M06 at a new pen
};

// Prints the working G-code file from `line_file`. True when the program is complete.
bool Write_Line_GCode(const std::string& line_file, const Line_GCode_Rules& rules);

// Changes one record for the pass under way.
using Pass_Change = std::function<void(ImportLine&)>;

// Rewrites `line_file` with all its records once for each pass from 1 on; `change_of(pass)` gives
// the change of its records. Z levels are written as singles. ESC ends it.
void Rewrite_Passes(const std::string& line_file, std::string_view fault_name, int passes,
                    const std::function<Pass_Change(int pass)>& change_of);

}  // namespace norvik
