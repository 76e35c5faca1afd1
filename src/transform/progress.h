// progress.h: panel 1, the yields and ESC of a pass over the lines of a program.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace norvik {

class Line_Progress {
 public:
  // Shows `what` for a pass over so many lines; then, as it goes on, `before`, the whole percent
  // and `behind`.
  Line_Progress(std::string_view what, std::string_view before, std::string_view behind,
                std::int32_t lines);

  // After each line. Yields now and then, which is where handlers run and the percentage is
  // refreshed. False: the operator pressed ESC, and the flag is cleared.
  bool Goes_On(std::int32_t line) { return line % Lines_Per_Yield != 0 || Yield(line); }

 private:
  // Often enough for a live display; a yield costs as much as dozens of lines.
  static constexpr std::int32_t Lines_Per_Yield = 2000;
  bool Yield(std::int32_t line);

  std::string Before, Behind;
  std::int32_t Lines;
  int Shown_Percent = -1;
};

}  // namespace norvik
