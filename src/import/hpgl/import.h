// import.h: plotter files to G-code.
//
//   HPGL_Load -> HPGL_Sort_Step -> HPGL_Add_Passes -> writer (line_gcode.h)
//
// All steps work on the thirteen-field line file.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace norvik {

inline constexpr std::string_view HPGL_Fault_Name = "HPGL Line File to GCode Error";

struct HPGL_Import_State {
  // The pen size times ten, stored for the tool handling; no G-code text depends on it.
  std::int16_t Tool_Diameter = 0;
};
extern HPGL_Import_State HPGL_Import;

// False when the file does not exist, after a beep.
bool Import_HPGL_File(const std::string& path);

// With `HPGL_Sort_Lines`: orders the records of `line_file` by nearest neighbour from (0, 0),
// turning them as needed, and rewrites it without records that repeat the one before or begin where
// they end. Coordinates become singles. Failures are logged as "HPGL Sort Lines Error".
void HPGL_Sort_Step(const std::string& line_file);

// With `HPGL_Ingore_Depth` and two passes or more: rewrites `line_file` with all records once for
// each pass, from one step below the travel depth down to the normal cut depth.
void HPGL_Add_Passes(const std::string& line_file);

}  // namespace norvik
