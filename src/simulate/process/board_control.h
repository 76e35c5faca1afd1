// board_control.h: the line commands of a simulated board's control socket.
#pragma once

#include "simulate/board/board_line.h"

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

namespace norvik {

// What a command may ask of the process around the board.
struct Board_Control_Host {
  // Time passes, ns; false: the clock is a real one.
  std::function<bool(std::int64_t ns)> Advance = [](std::int64_t) { return false; };
  std::function<bool(double scale)> Set_Scale = [](double) { return false; };
  std::function<void(const std::string& text)> Mark = [](const std::string&) {};
  // Empty, or why the file cannot be written.
  std::function<std::string(const std::string& path, const std::string& text)> Save =
      [](const std::string&, const std::string&) { return std::string(); };
  std::function<void()> Quit = [] {};
  // Events go to the caller from here on.
  std::function<void()> Watch = [] {};
  // The answer comes when the board is idle, or after so many seconds.
  std::function<void(double seconds)> Expect_Idle = [](double) {};
};

// Carries a line out; the line of JSON that answers it, empty when the answer comes later.
std::string Answer_Control_Line(Board_Line& line, std::string_view command,
                                const Board_Control_Host& host);
// {"ok":true} with more members behind it, such as "\"entries\":[]"; and {"ok":false,"error":..}.
std::string Control_Done(std::string_view members = {});
std::string Control_Error(std::string_view words);

}  // namespace norvik
