// line_pass.h: all lines of a program, in order, to records.
//
//   for each line:  CompileLine  ->  M98: the macro's lines, each through CompileLine again
//                                ->  otherwise the block reader and the interpreter
//                   repeat, when the line ended one
//                   after a hundred lines: progress and a yield
//
// Lines of macros and repeats count like the program's own, so that the operator's ESC is heard
// within any of them; so do very long lines and cycles that write thousands of records.
//
// Macro files are read when first called in a compile. Their text is kept with the records.
#pragma once

#include "compiler/text/macros.h"
#include "compiler/text/program_text.h"
#include "core/indexed.h"
#include "core/nullable.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>

namespace norvik {

// What the pass does with a line and whom it tells. `check` puts its own here, so that it runs the
// same pass without a word to the operator.
struct Line_Pass_Operations {
  std::function<void(std::string_view text)> Read_Block;
  // One line for the error log.
  std::function<void(const std::string& text)> Log;
  // The table of records is full and the pass ends; what to tell the operator.
  std::function<void(const std::string& text)> Table_Full;
  // A message that the operator must see, about a macro.
  std::function<void(std::int16_t macro, const std::string& text)> Show;
  // A line calls a macro, by the number's text; absent: without a number. Before it is expanded.
  std::function<void(std::string_view text, const std::optional<std::string>& number)> Macro_Call;
  // The lines of a macro begin and end.
  std::function<void(std::int16_t macro, const Macro_Text& text)> Macro_Begin;
  std::function<void()> Macro_End;
  // Just before each yield; the records made so far are final.
  std::function<void()> Before_Yield;
  // Text of the progress in panel 1, before and behind the percentage.
  std::string Progress_Front, Progress_Back;
};
// What a compile uses.
Line_Pass_Operations Compile_Operations();

// More than any program needs; a wrong count in nested repeats or macros would work for hours or
// fill the disk. The pass ends there as at a full table.
struct Line_Pass_Limits_State {
  std::uint64_t Lines = 20'000'000;  // run, those of repeats and macros each time
  std::uint64_t Macro_Calls = 1'000'000;
  std::uint64_t Text_Bytes = 500'000'000;  // of the blocks of all records
};
extern Line_Pass_Limits_State Line_Pass_Limits;

// Runs the whole pass over `program`: state reset, all lines, into `Compile_Tables`. ESC ends it
// early and is cleared, and so does a program that makes too many records, which is logged.
// Nothing happens when a pass runs already: false.
bool Run_Line_Pass(std::shared_ptr<const GCode_Text> program, Line_Pass_Operations operations);

// The same for one line of its own, as line 0, from a position.
bool Run_Block_Pass(std::string text, Line_Pass_Operations operations,
                    const Indexed<Nullable, 1, 6>& from = {});

// True while one of the two runs.
bool Line_Pass_Runs();

// Dispatches one line of a running pass: a macro call or a block.
void CompileLine(std::string_view text);

// Runs the lines of a macro. A macro that is open already and an entry without a file are shown, a
// missing file is passed over; faults are logged under "ExpandMacro # ".
void ExpandMacro(const std::string& number);

}  // namespace norvik
