#include "adapt/adapt.h"
#include "adapt/context.h"
#include "adapt/flow.h"
#include "adapt/plain_line.h"
#include "compiler/text/user_outputs.h"
#include "core/application.h"
#include "core/format.h"
#include "core/numbers.h"
#include "core/setup.h"

#include <algorithm>
#include <utility>

namespace norvik {

namespace adapting {

Context::Context(const Adapt_Options& options, Adapted& result, bool centres_from_start)
    : Options(options),
      Findings(result),
      Out(result, options),
      Place(options, Mode, Findings),
      Simple(options, Place),
      Home(options.Home),
      Second_Home(options.Second_Home),
      Tool_Lengths(options.Tool_Lengths) {
  Mode.Centres_From_Start = centres_from_start;
  Values.Of_Machine = [this](int number) { return Place.Parameter(number); };
  Values.Unset = [this](int number) {
    Findings.Note("#" + std::to_string(number) + " was never set and counts as 0");
  };
}

namespace {

// --- Units ---------------------------------------------------------------------------------------

bool Is_Unit_Code(std::string_view code, std::string_view number) {
  for (std::size_t at = code.find('G'); at != std::string_view::npos; at = code.find('G', at + 1)) {
    std::string_view rest = code.substr(at + 1);
    while (rest.size() > 2 && rest.front() == '0') rest.remove_prefix(1);
    if (!rest.starts_with(number)) continue;
    const char next = rest.size() > 2 ? rest[2] : ' ';
    if (next != '.' && !(next >= '0' && next <= '9')) return true;
  }
  return false;
}

// A line that may name units, by a look at its characters alone.
bool May_Name_Units(std::string_view text) {
  for (std::size_t at = 0; at + 1 < text.size(); ++at) {
    if ((text[at] | 0x20) != 'g') continue;
    std::size_t digit = at + 1;
    while (digit < text.size() && (text[digit] == ' ' || text[digit] == '0')) ++digit;
    if (digit < text.size() && (text[digit] == '2' || text[digit] == '7')) return true;
  }
  return false;
}

// The units that the program states first; absent: none.
std::optional<bool> Stated_Millimetres(const GCode_Text& program) {
  Foreign_Line line;
  for (std::int32_t number = 1; number <= program.Line_Count(); ++number) {
    const std::string_view text = program.Line(number);
    if (!May_Name_Units(text)) continue;
    Take_Apart(text, line);
    for (const std::string_view inch : {"20", "70"}) {
      if (Is_Unit_Code(line.Code, inch)) return false;
    }
    for (const std::string_view millimetre : {"21", "71"}) {
      if (Is_Unit_Code(line.Code, millimetre)) return true;
    }
  }
  return std::nullopt;
}

// --- Lines ---------------------------------------------------------------------------------------

class Adaption {
 public:
  Adaption(const GCode_Text& program, const Adapt_Options& options, Adapted& result,
           bool centres_from_start)
      : Program(program),
        All(options, result, centres_from_start),
        Result(result),
        Lines(program, All) {}

  void Run();
  const Context& State() const { return All; }

 private:
  void Begin_Units();
  void Take_Line(std::int32_t number, std::string_view text);
  void Read_Line(std::int32_t number);
  void Keep_Comments();
  void Keep_Blank_Lines(std::int32_t number, std::string_view text);
  bool Too_Long() const;
  void Tell_Rest();
  void Tell_Rounding();

  const GCode_Text& Program;
  Context All;
  Adapted& Result;
  Flow Lines;
  Foreign_Line Line;
  Foreign_Block Block;
  std::int32_t Before = 0;  // the line taken before
  const char* Before_End = nullptr;
};

void Adaption::Begin_Units() {
  const Adapt_Options& options = All.Options;
  std::optional<bool> millimetres = options.Program_In_Millimetres;
  if (!millimetres) millimetres = Stated_Millimetres(Program);
  if (!millimetres) {
    All.Findings.Tell_Whole(Adapt_Grade::Note,
                            std::string("the program states no units: its numbers are taken as ") +
                                (options.Millimetres ? "millimetres" : "inches"),
                            "say in the options what they are, if they are not");
  }
  Result.In_Millimetres = millimetres.value_or(options.Millimetres);
  All.Place.Take_Units(Result.In_Millimetres);
}

// Empty lines part the sections of a program for its reader.
void Adaption::Keep_Blank_Lines(std::int32_t number, std::string_view text) {
  const auto gap = number == Before + 1 && Before_End ? text.data() - Before_End : 0;
  if (gap > 2 || (gap == 2 && *Before_End == '\n')) {
    const auto ends = std::count(Before_End, text.data(), '\n');
    if (ends > 1) {
      All.Simple.Flush(All.Out);
      for (auto n = ends; n > 1; --n) All.Out.Blank_Line();
    }
  }
  Before = number;
  Before_End = text.data() + text.size();
}

void Adaption::Keep_Comments() {
  for (const std::string_view comment : Line.Comments) All.Out.Comment(comment);
  if (Line.Open_Comment)
    All.Findings.Note("the comment has no end: it runs to the end of the line");
}

void Adaption::Read_Line(std::int32_t number) {
  const bool says_nothing = Line.Code.empty() && Line.Comments.empty() && !Line.Deleted;
  if (says_nothing) return All.Out.Blank_Line();
  if (Line.Tape_Mark) {
    All.Findings.Note("% marks the beginning or end of a tape and is left out");
    return;
  }
  if (Line.Deleted) {
    All.Findings.Note(All.Options.Leave_Out_Deleted
                          ? "a slash stands in front: the line is left out"
                          : "a slash stands in front: the line runs",
                      "block delete is an option");
    if (All.Options.Leave_Out_Deleted) return All.Out.Comment(Line.Raw);
  }
  const bool had_code = !Line.Code.empty();
  if (Lines.Take(Line, number)) {
    if (Line.Comments.empty() && Line.Code.find("M9") == std::string::npos)
      All.Out.Comment(Line.Raw);
    return;
  }
  if (had_code && Line.Code.empty() && Line.Comments.empty()) return All.Out.Comment(Line.Raw);
  Read_Block(Line, All.Values, Block);
  if (Block.Assigns && Block.Empty()) {
    All.Out.Comment(Line.Comments.empty() ? Line.Raw : std::string_view(Line.Code));
    return;
  }
  if (!All.Options.Simplify && Block.Sequence.size() <= 9) All.Out.Number_Lines(Block.Sequence);
  Execute(All, Block);
}

void Adaption::Take_Line(std::int32_t number, std::string_view text) {
  All.Findings.At(number, text);
  All.Out.Begin(number);
  if (Take_Plain_Line(All, text)) return;
  Take_Apart(text, Line);
  Keep_Comments();
  try {
    Read_Line(number);
  } catch (const Unreadable& trouble) {
    All.Feed.reset();
    Refuse(All, trouble.Why, "write it in other words; the program halts there", text, true);
    if (!Block.G.empty() || Block.Has_Any("XYZA")) Lose_Axes(All, Axis_Words_Of(Block));
  }
  if (All.Out.Comment_Waits()) All.Simple.Flush(All.Out);
  All.Out.Finish();
}

bool Adaption::Too_Long() const {
  const auto most = static_cast<std::size_t>(All.Options.Most_Lines) + Program.Line_Count();
  return Result.Lines_Run > All.Options.Most_Lines + Program.Line_Count() ||
         Result.Old_Lines.size() > most;
}

void Adaption::Tell_Rest() {
  const std::int32_t next = Lines.Next();
  if (next == 0) return;
  std::int32_t left = 0;
  for (std::int32_t number = next; number <= Program.Line_Count(); ++number) {
    Take_Apart(Program.Line(number), Line);
    if (!Line.Code.empty() && !Line.Tape_Mark) ++left;
  }
  if (left == 0 || Lines.Used()) return;
  All.Findings.At(next, Program.Line(next));
  All.Findings.Note(std::to_string(left) + " lines behind the end of the program are left out");
}

void Adaption::Tell_Rounding() {
  const Writer& out = All.Out;
  if (out.Rounded_Count == 0) return;
  All.Findings.Tell_Whole(Adapt_Grade::Note,
                          std::to_string(out.Rounded_Count) + " numbers are rounded to the " +
                              std::to_string(out.Numbers().Decimals()) +
                              " decimals of the axis format, by at most " +
                              Format_Number_Point(out.Rounded_Most, "0.0######"),
                          "give Axis_Format more decimals and adapt again, where that matters");
}

void Adaption::Run() {
  Result.Text.reserve(Program.Whole().size() + Program.Whole().size() / 8 + 64);
  Result.Old_Lines.reserve(static_cast<std::size_t>(Program.Line_Count()) + 16);
  Begin_Units();
  for (std::int32_t number = Lines.Next(); number != 0; number = Lines.Next()) {
    const std::string_view text = Program.Line(number);
    Keep_Blank_Lines(number, text);
    ++Result.Lines_Run;
    Take_Line(number, text);
    if (All.Ended) break;
    if (!Too_Long()) continue;
    All.Findings.At(number, text);
    All.Out.Begin(number);
    Refuse(All, "the program is too long with its loops written out; it ends here",
           "look for a loop that does not end", text, true);
    break;
  }
  All.Simple.Flush(All.Out);
  All.Out.Finish();
  Tell_Rest();
  Tell_Rounding();
}

struct Centre_Counts {
  int Fit = 0, Fit_Otherwise = 0, Full_Circles = 0;
};

// The program read with its centres one way.
Centre_Counts Run_Once(const GCode_Text& program, const Adapt_Options& options, bool from_start,
                       Adapted& result) {
  Adaption adaption(program, options, result, from_start);
  adaption.Run();
  const Context& state = adaption.State();
  return {state.Arcs_That_Fit, state.Arcs_That_Fit_Otherwise, state.Full_Circles};
}

}  // namespace
}  // namespace adapting

// --- Entry ---------------------------------------------------------------------------------------

std::string_view Name_Of(Adapt_Grade grade) {
  switch (grade) {
    case Adapt_Grade::Refused:
      return "refused";
    case Adapt_Grade::Wrong:
      return "wrong";
    case Adapt_Grade::Note:
      break;
  }
  return "note";
}

Adapt_Options Adapt_Options_Of_Setup() {
  Adapt_Options options;
  const Machine_Setup& setup = MachineSetup;
  options.Millimetres = setup.UnitsofMeasurement == 1;
  options.Centres_From_Start = setup.GC_IJ_Incremental;
  const Number_Pattern pattern(setup.Axis_Format);
  options.Whole_Digits = pattern.Whole_Digits;
  options.Decimals = std::min(pattern.Decimals, 6);
  options.Least_Decimals = std::min(pattern.Least_Decimals, options.Decimals);
  const auto code = [](const std::string& entry) -> std::optional<std::int16_t> {
    const auto number = Try_Number(entry);
    if (!number || *number < 0 || *number > 1000) return std::nullopt;
    return static_cast<std::int16_t>(*number);
  };
  const User_Output_Texts outputs = User_Outputs_Of_Setup();
  options.Output_High = code(outputs.High);
  options.Output_Low = code(outputs.Low);
  for (std::int16_t tool = 0; tool <= 200; ++tool) {
    options.Tool_Diameters[static_cast<std::size_t>(tool)] = Tools.Diameter[tool];
    options.Tool_Lengths[static_cast<std::size_t>(tool)] = Tools.Length[tool];
  }
  return options;
}

Adapted Adapt(const GCode_Text& program, const Adapt_Options& options) {
  using adapting::Run_Once;
  const bool as_setup = options.Program_Centres_From_Start.value_or(options.Centres_From_Start);
  Adapted result;
  const auto counts = Run_Once(program, options, as_setup, result);
  const auto tell = [&](std::string what, std::string instead) {
    result.Findings.push_back(
        {static_cast<std::int32_t>(result.Findings.size()) + result.More_Findings + 1,
         0,
         Adapt_Grade::Note,
         std::move(what),
         std::move(instead),
         {}});
  };
  if (options.Program_Centres_From_Start) return result;
  if (counts.Fit_Otherwise > counts.Fit) {
    result = {};
    Run_Once(program, options, !as_setup, result);
    tell(std::string("I, J and K count from ") + (as_setup ? "zero" : "the start of the arc") +
             " in this program, as its arcs show",
         "");
  } else if (counts.Full_Circles > 0 && counts.Fit == 0 && !as_setup) {
    tell(
        "the program has full circles alone, which fit either reading of I and J: they are taken "
        "as coordinates of the centre, as the setup says",
        "say in the options that they count from the start of the arc, if they do");
  }
  return result;
}

}  // namespace norvik
