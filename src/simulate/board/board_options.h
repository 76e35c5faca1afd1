// board_options.h: what a simulated board, its line and its machine are like, as options in text.
//
// "usb_latency=16", "limit=stop_axis", "x.high_switch=60000". One table names them: the command
// line, the control socket and the manual go through it.
#pragma once

#include "simulate/board/board_line.h"

#include <string>
#include <string_view>
#include <vector>

namespace norvik {

struct Board_Option {
  std::string_view Name;  // of an axis: without its "x."
  bool Of_Axis = false;
  std::string_view Values;  // "on or off", "milliseconds"
  std::string_view Help;
};
const std::vector<Board_Option>& Board_Options();

// Takes "name=value" or "axis.name=value". The empty text, or what is wrong and what is possible.
std::string Set_Board_Option(Board_Line& line, std::string_view text);

// A machine behind the board: "bench" has no ends, "router" and "plasma" have travels, switches,
// hard stops and limits of rate. False when there is no such machine.
bool Take_Board_Preset(Board_Line& line, std::string_view name);

}  // namespace norvik
