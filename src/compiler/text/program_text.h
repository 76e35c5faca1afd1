// program_text.h: the program as lines of text.
//
//   Text    "G90\r\nG1 X1\r\n\r\nG1 X2"        one block of bytes, as the window or the file has it
//   Lines   [0,3) [5,10) [14,19)               where each line lies; empty lines are not lines
//
// A text never changes once made; an edit makes another. Records of a compile point into it and
// share it, so they stay readable when the operator types on. A line costs eight bytes beside its
// text, which keeps a program of ten million lines small.
//
// Lines count from 1. Line ends are CR LF, LF or CR.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace norvik {

class GCode_Text {
 public:
  GCode_Text() = default;
  // Raises an overflow fault for a text of 4 GB or more.
  explicit GCode_Text(std::string text);

  std::int32_t Line_Count() const { return static_cast<std::int32_t>(Lines.size()); }
  // Raises an out-of-range fault for a line that does not exist.
  std::string_view Line(std::int32_t number) const;
  const std::string& Whole() const { return Text; }

 private:
  struct Span {
    std::uint32_t Start, Length;
  };
  void Add_Line(std::size_t start, std::size_t end);

  std::string Text;
  std::vector<Span> Lines;
};

struct GCode_Program_State {
  std::shared_ptr<const GCode_Text> Text = std::make_shared<const GCode_Text>();
  // The window's text holds what `Text` does not have yet.
  bool Typed_Waits = false;
  // The text, or what is typed, is in no file.
  bool Unsaved = false;
  // A text was taken while a run was going on, whose step range stands; the next compile brings the
  // range to the text.
  bool Range_Waits = false;
};
extern GCode_Program_State GCode_Program;

inline std::int32_t GCodeLineCount() {
  return GCode_Program.Text->Line_Count();
}
inline std::string_view GCode_Line(std::int32_t number) {
  return GCode_Program.Text->Line(number);
}

// What the machine counts are steps; what an operator sees and an editor shows are lines of the
// text, empty ones included. The line on which a step stands, 0: there is no such step; and the
// last step that begins at or before a line, 0: none.
std::int32_t Text_Line_Of_Step(std::int32_t step);
std::int32_t Step_Of_Text_Line(std::int32_t text_line);

// `Machine.EndingStep` to the last line. A run that is not stopped keeps the range that it was
// started with, and the range waits for the next compile.
void Range_To_Whole_Program();

// Takes the text of the G-code window as the program: panel text, lines, the range to the whole
// program, the step pointer held to it. A text that is too large is logged and the program of
// before stands.
void SaveChanges(std::string text);

}  // namespace norvik
