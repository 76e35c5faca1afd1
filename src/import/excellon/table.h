// table.h: the holes of a drill file, by tool.
//
//   Excellon_Load -> Excellon_Sort_Step -> Excellon_Write_GCode
//
// Holes stay grouped by tool. Tools are drilled as 1, 2, ... up to the count of selections in the
// file, so a file whose numbers leave gaps loses its highest tools; the report says which.
#pragma once

#include "core/indexed.h"

#include <cstdint>
#include <vector>

namespace norvik {

struct Excellon_Hole {
  float X = 0, Y = 0;  // units of the setup
};

struct Excellon_Tool {
  std::vector<Excellon_Hole> Holes;
  float Size = 0;  // diameter; 0: never selected nor named
};

inline constexpr std::size_t Excellon_Holes_Limit = 10000;  // on one tool

struct Excellon_State {
  Indexed<Excellon_Tool, 0, 500> Tool;
  std::int32_t Tools_Used = 0;  // selections in the body of the file
  std::int32_t Header_Tools = 0;
};
extern Excellon_State Excellon_Table;

// The tools that are drilled: 1 to this.
inline std::int32_t Excellon_Tools_Drilled() {
  return Excellon_Table.Tools_Used < Excellon_Table.Tool.last ? Excellon_Table.Tools_Used
                                                              : Excellon_Table.Tool.last;
}

}  // namespace norvik
