// compile_host.h: what the compiler asks of the windows above it.
//
// The windows fill the record at start. Each operation does nothing by default, so that the
// compiler runs without them.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

namespace norvik {

struct Compile_Host_Operations {
  // Shows the `Progress_Bar` window under a caption; it polls `Compile_Status.CompileDone` and
  // closes itself.
  std::function<void(const std::string& caption)> Show_Progress = [](const std::string&) {};
  // Marks a line in the G-code window (`GCode_HighlightWords`).
  std::function<void(std::int32_t line_number, std::string_view text)> Highlight_Line =
      [](std::int32_t, std::string_view) {};
  // Plays the sound of a slot of `Sound_Files`.
  std::function<void(int slot)> Play_Sound_Slot = [](int) {};
  // Clears `GCode_Program.Typed_Waits` where what is typed is the text of the program again.
  std::function<void()> Settle_Typed_Text = [] {};
  // Shows the motion analyzer and runs its check over the wire file.
  std::function<void()> Show_Motion_Analyzer = [] {};
};
extern Compile_Host_Operations Compile_Host;

}  // namespace norvik
