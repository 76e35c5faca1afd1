// macros.h: macro calls and repeats, the two constructs above the level of a block.
//
//   M98 12          runs the lines of the file of macro 12 in its place; the rest of the line is
//   lost
//
//   REPEAT 2        the lines between run once on the way, then 2 times more
//   G1 X1
//   ENDREPEAT       without a count, or with 0, once more
//
// A line holds a macro call when "M98" stands anywhere in it, comments included. A macro runs other
// macros to any depth, but never itself. Repeats cannot be nested; a macro may hold one of its own.
// A macro file's lines end at commas too.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace norvik {

// True when "M98" stands anywhere, in any case.
bool HasMacroCall(std::string_view text);
// The first call of a line: where it stands, up to behind its number, and the number (empty: none).
struct Macro_Call {
  std::size_t Begin, End;
  std::string Number;
};
std::optional<Macro_Call> Find_Macro_Call(std::string_view text);
// The digits, "," and "." behind the first "M98"; what stands before the first of them is passed
// over. Absent when there are none.
std::optional<std::string> MacroNumber(std::string_view text);
// The file that a call of this number runs; absent when none is assigned or it is not there.
std::optional<std::string> Macro_File(const std::string& number);

// One stretch of lines that repeats.
struct Repeat_State {
  std::int16_t Count = 0;  // runs left
  std::int32_t Start = 0;  // line of REPEAT; 0: none yet
  std::int32_t End = 0;    // line behind ENDREPEAT; 0: none pending
};
// True when a line may hold REPEAT or ENDREPEAT; nearly all lines do not, and this says so quickly.
bool MayHoldRepeat(std::string_view text);
// Looks for REPEAT and ENDREPEAT in line `index`. Raises a type or overflow fault for a count that
// is no 16-bit number; `repeat.Start` is then set all the same.
void ScanRepeat(std::string_view text, Repeat_State& repeat, std::int32_t index);

// A macro file as its lines, from index 0.
struct Macro_Text {
  std::string Text;
  std::vector<std::string_view> Lines;

  explicit Macro_Text(std::string text);
  Macro_Text(const Macro_Text&) = delete;
  Macro_Text& operator=(const Macro_Text&) = delete;
};

}  // namespace norvik
