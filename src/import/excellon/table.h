// table.h: the holes of a drill file, by tool.
//
//   Excellon_Load -> Excellon_Sort_Step -> Excellon_Write_GCode
//
// Holes stay grouped by tool. Tools are drilled as 1, 2, ... up to the count of selections in the
// file, so a file whose numbers leave gaps loses its highest tools; the report says which. With the
// correction `Excellon_Header` every tool with holes is drilled.
#pragma once

#include "core/indexed.h"

#include <cstdint>
#include <utility>
#include <vector>

namespace norvik {

struct Excellon_Hole {
  float X = 0, Y = 0;  // units of the setup
  // A slot or a route: the points behind the start that are cut to; empty: a hole.
  std::vector<std::pair<float, float>> Path = {};
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
  bool By_Number = false;  // every tool with holes is drilled, whatever was selected
};
extern Excellon_State Excellon_Table;

// As stated, the tools that are drilled: 1 to this.
inline std::int32_t Excellon_Tools_Drilled() {
  return Excellon_Table.Tools_Used < Excellon_Table.Tool.last ? Excellon_Table.Tools_Used
                                                              : Excellon_Table.Tool.last;
}

// The tools that are drilled, in their order.
std::vector<std::int32_t> Excellon_Tools_To_Drill();

}  // namespace norvik
