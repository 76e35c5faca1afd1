#include "compiler/interpreter/line_pass.h"

#include "compiler/interpreter/interpreter.h"
#include "compiler/state/compile_losses.h"
#include "compiler/state/compiler_state.h"
#include "compiler/state/record_table.h"
#include "compiler/text/block_reader.h"
#include "compiler/text/compile_sources.h"
#include "compiler/text/program_text.h"
#include "core/application.h"
#include "core/beside_machine.h"
#include "core/error_log.h"
#include "core/fault.h"
#include "core/foreign_file.h"
#include "core/format.h"
#include "core/messages.h"
#include "core/numbers.h"
#include "core/paths.h"
#include "core/rounding.h"
#include "core/setup.h"
#include "platform/platform.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <utility>

namespace norvik {

Line_Pass_Limits_State Line_Pass_Limits;

namespace {

// What the records of one compile point into.
struct Compile_Texts {
  std::shared_ptr<const GCode_Text> Program;
  std::string Block;
  std::map<std::int16_t, Macro_Text> Macros;
};

struct Line_Pass_State {
  bool Runs = false;
  Line_Pass_Operations Operations;
  std::shared_ptr<Compile_Texts> Texts;
  Indexed<bool, 0, 150> MacroOpen;
  Indexed<bool, 0, 150> Macro_Shown;  // a box about this macro was shown in this compile

  // --- Progress ---------------------------------------------------------------------------------
  std::int32_t Program_Line = 0, Program_Lines = 0;
  int Lines_Since_Yield = 0;
  std::size_t Bytes_Since_Yield = 0, Rows_At_Yield = 0;
  double Shown_Percent = -1;
  std::string Progress_Text;

  // --- Work done --------------------------------------------------------------------------------
  std::uint64_t Lines_Run = 0, Macro_Calls = 0;
  std::uint64_t Text_Bytes = 0;  // of all records
  std::size_t Rows_Counted = 0;

  std::string_view Call_Text;  // the line of the macro call at hand
};
Line_Pass_State Line_Pass;

// A yield is due after more than so many lines; sooner where lines are long or make many records.
constexpr int Lines_Between_Yields = 100;
constexpr std::size_t Bytes_Between_Yields = 1 << 20, Rows_Between_Yields = 50'000;

std::size_t Row_Count() {
  return Compile_Tables.Program_LineArc.Rows.size();
}

void Yield_With_Progress() {
  const double percent = Whole_Part(100.0 * Line_Pass.Program_Line / Line_Pass.Program_Lines);
  Compile_Status.CompileProgress = To_Single(percent);
  if (percent != Line_Pass.Shown_Percent) {
    Line_Pass.Shown_Percent = percent;
    Line_Pass.Progress_Text = Line_Pass.Operations.Progress_Front +
                              Format_Number(percent, "###.00") + Line_Pass.Operations.Progress_Back;
  }
  SetStatus(1, Line_Pass.Progress_Text, 5);
  Line_Pass.Lines_Since_Yield = 0;
  Line_Pass.Bytes_Since_Yield = 0;
  Line_Pass.Rows_At_Yield = Row_Count();
  Line_Pass.Operations.Before_Yield();
  DoEvents();
}

void Count_Line(std::string_view text) {
  ++Line_Pass.Lines_Run;
  Line_Pass.Text_Bytes += (Row_Count() - Line_Pass.Rows_Counted) * text.size();
  Line_Pass.Rows_Counted = Row_Count();
  ++Line_Pass.Lines_Since_Yield;
  Line_Pass.Bytes_Since_Yield += text.size();
  if (Line_Pass.Program_Lines > 0 &&
      (Line_Pass.Lines_Since_Yield > Lines_Between_Yields ||
       Line_Pass.Bytes_Since_Yield > Bytes_Between_Yields ||
       Row_Count() - Line_Pass.Rows_At_Yield > Rows_Between_Yields)) {
    Yield_With_Progress();
  }
}

// What the program has too much of; empty: it may go on.
std::string Excess() {
  const auto more_than = [](std::uint64_t count, const char* what) {
    return "more than " + std::to_string(count) + what;
  };
  if (Row_Count() >= LineArc_Table_Limit) return more_than(LineArc_Table_Limit, " records");
  if (Line_Pass.Lines_Run >= Line_Pass_Limits.Lines)
    return more_than(Line_Pass_Limits.Lines, " lines of repeats and macros");
  if (Line_Pass.Macro_Calls >= Line_Pass_Limits.Macro_Calls)
    return more_than(Line_Pass_Limits.Macro_Calls, " calls of macros");
  if (Line_Pass.Text_Bytes >= Line_Pass_Limits.Text_Bytes)
    return more_than(Line_Pass_Limits.Text_Bytes / 1'000'000, " MB of block texts");
  return {};
}

bool Has_Excess() {
  return Row_Count() >= LineArc_Table_Limit || Line_Pass.Lines_Run >= Line_Pass_Limits.Lines ||
         Line_Pass.Macro_Calls >= Line_Pass_Limits.Macro_Calls ||
         Line_Pass.Text_Bytes >= Line_Pass_Limits.Text_Bytes;
}

// ESC stays set until the pass over the program clears it, so that macros and repeats end on it
// too.
bool Ends_Early() {
  return Application.EscFlag || Has_Excess();
}

// `words` may quote the line, so a line of a macro is named by its place alone.
void Log_Line_Fault(const char* name, const Fault& fault, const std::string& words) {
  Line_Pass.Operations.Log(name + std::to_string(static_cast<int>(fault.Number)) + " " +
                           (Compiler.Source_Macro ? Place_In_Macro() : words));
}

// --- Repeats -------------------------------------------------------------------------------------

template <class Line_At>
void Run_Pending_Repeat(Repeat_State& repeat, Line_At&& line_at) {
  if (repeat.End <= 0) return;
  do {
    for (std::int32_t line = repeat.Start + 1; line < repeat.End - 1 && !Ends_Early(); ++line) {
      Compiler.CurrentLineNumber = Compiler.Source_Line = line;
      Compiler.CurrentLineText = line_at(line);
      CompileLine(Compiler.CurrentLineText);
      Count_Line(Compiler.CurrentLineText);
    }
    repeat.Count = To_Int16(repeat.Count - 1.0);
  } while (repeat.Count > 0 && !Ends_Early());
  repeat.End = 0;
}

template <class Line_At>
void Look_For_Repeat(std::string_view text, Repeat_State& repeat, std::int32_t index,
                     Line_At&& line_at) {
  if (!MayHoldRepeat(text)) return;
  const auto report = [&](const Fault& fault) {
    Log_Line_Fault("ScanRepeat # ", fault, fault.Description);
    Note_Loss(Loss_Kind::Line, text, "its count is not read: " + fault.Description);
  };
  Trap_With(report, [&] {
    ScanRepeat(text, repeat, index);
    Run_Pending_Repeat(repeat, line_at);
  });
}

// --- Macros --------------------------------------------------------------------------------------

// Marks a macro as open while it runs; its file is then where lines stand.
class Open_Macro {
 public:
  explicit Open_Macro(std::int16_t macro) : Macro(macro) {
    Line_Pass.MacroOpen[Macro] = true;
    Compiler.Source_Macro = Macro;
  }
  ~Open_Macro() {
    Line_Pass.MacroOpen[Macro] = false;
    Compiler.Source_Macro = Caller;
    Compiler.Source_Line = Caller_Line;
  }
  Open_Macro(const Open_Macro&) = delete;
  Open_Macro& operator=(const Open_Macro&) = delete;

 private:
  std::int16_t Macro;
  std::optional<std::int16_t> Caller = Compiler.Source_Macro;
  std::int32_t Caller_Line = Compiler.Source_Line;
};

// The call of a macro that does not run.
void Lose_Macro(const std::string& why) {
  Note_Loss(Loss_Kind::Macro, Line_Pass.Call_Text, why);
}

const Macro_Text& Text_Of_Macro(std::int16_t macro, const std::string& path) {
  auto& macros = Line_Pass.Texts->Macros;
  const auto known = macros.find(macro);
  if (known != macros.end()) return known->second;
  return macros.try_emplace(macro, Read_Foreign_File(path, Largest_Macro_File)).first->second;
}

void Run_Macro_Lines(const Macro_Text& text) {
  Repeat_State repeat;
  const auto line_at = [&](std::int32_t line) {
    return text.Lines[static_cast<std::size_t>(line - 1)];
  };
  const auto count = static_cast<std::int32_t>(text.Lines.size());
  for (std::int32_t line = 1; line <= count && !Ends_Early(); ++line) {
    Compiler.Source_Line = line;
    CompileLine(line_at(line));
    Compiler.Source_Line = line;
    Look_For_Repeat(line_at(line), repeat, line, line_at);
    Count_Line(line_at(line));
  }
}

void Expand(std::int16_t macro) {
  const std::string name = "Macro " + std::to_string(macro);
  if (Line_Pass.MacroOpen[macro]) {
    Line_Pass.Operations.Show(macro, name + " already open");
    return Lose_Macro(name + " calls itself; a macro never runs within itself");
  }
  const std::string path = Beside_Machine_File(MachineSetup.MacroFile[macro]);
  Add_Macro_Source(Present_Compile, macro);
  if (path.empty()) {
    Line_Pass.Operations.Show(macro, name + " has no file assigned");
    return Lose_Macro(name + " has no file; choose one in the macro list");
  }
  if (!FileExists(path)) return Lose_Macro("the file of " + name + " is missing: " + path);
  ++Line_Pass.Macro_Calls;
  const Open_Macro open(macro);
  SetStatus(1, "NIST Compile: Processing " + name, 5);
  const Macro_Text& text = Text_Of_Macro(macro, path);
  Line_Pass.Operations.Macro_Begin(macro, text);
  Run_Macro_Lines(text);
  Line_Pass.Operations.Macro_End();
}

// --- The pass ------------------------------------------------------------------------------------

void Report_Full_Table(std::string_view line) {
  const std::string excess = Excess();
  const std::string text = "The program makes " + excess + "; the compile ends at line " +
                           std::to_string(Text_Line_Of_Step(Line_Pass.Program_Line)) +
                           ". Look for a REPEAT, an L word or a macro that runs too often";
  Line_Pass.Operations.Table_Full(text);
  Note_Loss_At(Line_Pass.Program_Line, Loss_Kind::Records, line, "the program makes " + excess);
}

// The state of a pass ends with it, whatever happens.
struct Pass_End {
  ~Pass_End() { Line_Pass = {}; }
};

void Begin(std::shared_ptr<Compile_Texts> texts, Line_Pass_Operations operations) {
  Line_Pass = {};
  Line_Pass.Runs = true;
  Line_Pass.Operations = std::move(operations);
  Line_Pass.Texts = texts;
  Begin_Compiler_State(std::move(texts));
  Take_User_Output_Codes();
}

void Run_All_Lines(const GCode_Text& program) {
  const auto line_at = [&](std::int32_t line) { return program.Line(line); };
  Repeat_State repeat;
  for (std::int32_t line = 1; line <= program.Line_Count(); ++line) {
    const std::string_view text = program.Line(line);
    Line_Pass.Program_Line = line;
    Compiler.CurrentLineNumber = Compiler.Source_Line = line;
    Compiler.CurrentLineText = text;
    CompileLine(text);
    Look_For_Repeat(text, repeat, line, line_at);
    Count_Line(text);
    if (Ends_Early()) break;
  }
  if (Has_Excess()) Report_Full_Table(program.Line(Line_Pass.Program_Line));
  if (std::exchange(Application.EscFlag, false)) Compile_Status.Cut_Short = true;
}

}  // namespace

Line_Pass_Operations Compile_Operations() {
  Line_Pass_Operations operations;
  operations.Read_Block = ReadBlock;
  operations.Log = [](const std::string& text) { ErrorLogWrite(text); };
  operations.Table_Full = [](const std::string& text) {
    ErrorLogWrite(text);
    AddMessage(text);
  };
  operations.Show = [](std::int16_t macro, const std::string& text) {
    AddMessage(text);
    // One box a macro and compile: a repeated call must not hold the operator with a hundred boxes.
    if (std::exchange(Line_Pass.Macro_Shown[macro], true)) return;
    Platform.Message_Box("GCode Compile", text, Box_Buttons::Ok);
  };
  operations.Macro_Call = [](std::string_view, const std::optional<std::string>&) {};
  operations.Macro_Begin = [](std::int16_t, const Macro_Text&) {};
  operations.Macro_End = [] {};
  operations.Before_Yield = [] {};
  operations.Progress_Front = "GCode Compile: Compiling Program ";
  operations.Progress_Back = "% completed, press ESC to cancel";
  return operations;
}

bool Run_Line_Pass(std::shared_ptr<const GCode_Text> program, Line_Pass_Operations operations) {
  if (Line_Pass.Runs) return false;
  const Pass_End end;
  auto texts = std::make_shared<Compile_Texts>();
  texts->Program = program;
  Begin(std::move(texts), std::move(operations));
  Line_Pass.Program_Lines = program->Line_Count();
  Run_All_Lines(*program);
  return true;
}

bool Run_Block_Pass(std::string text, Line_Pass_Operations operations,
                    const Indexed<Nullable, 1, 6>& from) {
  if (Line_Pass.Runs) return false;
  const Pass_End end;
  auto texts = std::make_shared<Compile_Texts>();
  texts->Block = std::move(text);
  const std::string_view line = texts->Block;
  Begin(std::move(texts), std::move(operations));
  Line_Pass.Program_Line = Line_Pass.Program_Lines = 1;
  Compiler.CurrentPosition = from;
  Compiler.CurrentLineText = line;
  CompileLine(line);
  return true;
}

bool Line_Pass_Runs() {
  return Line_Pass.Runs;
}

void CompileLine(std::string_view text) {
  if (!HasMacroCall(text)) {
    Line_Pass.Operations.Read_Block(text);
    return;
  }
  const auto number = MacroNumber(text);
  Line_Pass.Operations.Macro_Call(text, number);
  Line_Pass.Call_Text = text;
  if (!number) return Lose_Macro("the call has no number; write M98 and the number of the macro");
  ExpandMacro(*number);
}

void ExpandMacro(const std::string& number) {
  const auto report = [&](const Fault& fault) {
    Log_Line_Fault("ExpandMacro # ", fault, "M98 " + number + ": " + fault.Description);
    Lose_Macro("macro " + number + ": " + fault.Description);
  };
  Trap_With(report, [&] { Expand(To_Int16(To_Double(RegionalFix(number)))); });
}

}  // namespace norvik
