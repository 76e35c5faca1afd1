#include "compiler/check/program_check.h"

#include "compiler/check/arcs.h"
#include "compiler/check/blocks.h"
#include "compiler/check/meaning.h"
#include "compiler/check/stops.h"
#include "compiler/check/words.h"
#include "compiler/compensation/compensation.h"
#include "compiler/interpreter/compile_section.h"
#include "compiler/interpreter/interpreter.h"
#include "compiler/interpreter/line_pass.h"
#include "compiler/state/compile_losses.h"
#include "compiler/state/record_table.h"
#include "compiler/text/block_reader.h"
#include "compiler/text/compile_sources.h"
#include "compiler/wires/wire_pass.h"
#include "core/application.h"
#include "core/axes.h"
#include "core/beside_machine.h"
#include "core/format.h"
#include "core/messages.h"
#include "core/numbers.h"
#include "core/paths.h"
#include "core/rounding.h"
#include "core/setup.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <map>
#include <set>
#include <tuple>
#include <utility>

namespace norvik {

namespace {

// Puts everything that a pass changes back when the check ends.
class Kept_State {
 public:
  Kept_State() = default;
  ~Kept_State() {
    Compiler = State;
    Compiler_Memory = Memory;
    Compile_Tables = std::move(Tables);
    Compile_Status = Status;
    Compile_Losses = std::move(Losses);
    Present_Compile = std::move(Sources);
  }
  Kept_State(const Kept_State&) = delete;
  Kept_State& operator=(const Kept_State&) = delete;

 private:
  Compiler_State State = Compiler;
  Compiler_Memory_State Memory = Compiler_Memory;
  Compile_Tables_State Tables = std::exchange(Compile_Tables, {});
  Compile_Status_State Status = Compile_Status;
  Compile_Losses_State Losses = std::exchange(Compile_Losses, {});
  Compile_Sources Sources = std::exchange(Present_Compile, {});
};

// A line of the program or of a macro.
struct Check_Place {
  std::optional<std::int16_t> Macro;
  std::int32_t Line = 0;
  friend bool operator<(const Check_Place& a, const Check_Place& b) {
    return std::tie(a.Macro, a.Line) < std::tie(b.Macro, b.Line);
  }
};

constexpr const char* Progress_Front = "GCode Check: ";

class Checker {
 public:
  explicit Checker(std::shared_ptr<const GCode_Text> program) : Program(std::move(program)) {}

  std::vector<Check_Finding> Run(bool& whole);  // whole: no line was left out by ESC

 private:
  struct Open_File {
    std::int16_t Macro;
    const Macro_Text* Text;
  };

  Line_Pass_Operations Operations();
  Check_Place Place_Of(std::string_view text) const;
  Report_Finding Reporter(Check_Place place);
  void Report(Check_Place place, Check_Kind kind, std::size_t column, std::string what,
              std::string_view instead = {});
  bool First_Time(Check_Place place);

  void Read_Block(std::string_view text);
  void Macro_Call(std::string_view text, const std::optional<std::string>& number);
  void Tell_Macro_Number(Check_Place place, const std::string& number);
  void Tell_Lost_Words(Check_Place place, std::string_view text);
  void Macro_Begin(std::int16_t macro, const Macro_Text& text);
  void Tell_Commas(std::int16_t macro, const Macro_Text& text);
  void Tell_Repeat_Count(Check_Place place, std::string_view text,
                         std::optional<std::int16_t> count);
  void Tell_Repeat_Order(Check_Place begin, std::int32_t end);
  template <class Line_At>
  void Check_Repeats(std::optional<std::int16_t> macro, std::int32_t count, Line_At&& line_at);
  void Check_Arc_Walks();
  void Check_Compensation();
  void Check_Wires();
  void Sort();

  std::shared_ptr<const GCode_Text> Program;
  std::vector<Check_Finding> Findings;
  std::set<std::pair<Check_Place, Check_Kind>> Told;
  std::set<Check_Place> Serious;  // with a finding of grade lost or wrong
  std::map<std::optional<std::int16_t>, std::vector<bool>> Lines_Seen;  // by file
  std::vector<Open_File> Files;  // macros that are open, the innermost last
  std::set<std::int16_t> Macros_Seen;
  Check_Place Last_Call;  // the line of the last M98

  Reader_Outcome Outcome;
  Check_Memory Memory;
  Meaning As_Meant;
  std::vector<Check_Place> Arc_Places;
  std::vector<Pending_Arc> Arcs;
};

// --- Findings ------------------------------------------------------------------------------------

void Checker::Report(Check_Place place, Check_Kind kind, std::size_t column, std::string what,
                     std::string_view instead) {
  // A line may hold several of one kind at different columns; those come from its first run alone.
  if (column == 0 && !Told.insert({place, kind}).second) return;
  if (Info_Of(kind).Grade <= Check_Grade::Wrong) Serious.insert(place);
  if (instead.empty()) instead = Info_Of(kind).Instead;
  constexpr std::size_t most = std::numeric_limits<std::int32_t>::max();
  Findings.push_back({kind, place.Macro, place.Line,
                      static_cast<std::int32_t>(std::min(column, most)), std::move(what),
                      std::string(instead)});
}

// True for the first run of a line.
bool Checker::First_Time(Check_Place place) {
  std::vector<bool>& lines = Lines_Seen[place.Macro];
  const auto line = static_cast<std::size_t>(place.Line);
  if (lines.size() <= line) lines.resize(std::max(line + 1, lines.size() * 2));
  const bool first = !lines[line];
  lines[line] = true;
  return first;
}

Report_Finding Checker::Reporter(Check_Place place) {
  return [this, place](Check_Kind kind, std::size_t column, std::string what,
                       std::string_view instead) {
    Report(place, kind, column, std::move(what), instead);
  };
}

// Lines of a macro are found by where their text lies.
Check_Place Checker::Place_Of(std::string_view text) const {
  if (Files.empty()) return {std::nullopt, Compiler.CurrentLineNumber};
  const auto& lines = Files.back().Text->Lines;
  const auto line = std::ranges::lower_bound(lines, text.data(), std::less<>(),
                                             [](std::string_view each) { return each.data(); });
  return {Files.back().Macro, static_cast<std::int32_t>(line - lines.begin()) + 1};
}

// --- Blocks --------------------------------------------------------------------------------------

std::string Line_Number(Check_Place place) {
  return std::to_string(place.Macro ? place.Line : Text_Line_Of_Step(place.Line));
}

std::string Line_Name(Check_Place place) {
  return (place.Macro ? "macro " + std::to_string(*place.Macro) + " line " : "line ") +
         Line_Number(place);
}

void Checker::Read_Block(std::string_view text) {
  const Check_Place place = Place_Of(text);
  Meant_Line meant = Read_As_Meant(text);
  As_Meant.Take(meant, Line_Name(place));
  const Compiler_State before = Compiler;
  const Compiler_Memory_State memory_before = Compiler_Memory;
  const std::size_t rows = Compile_Tables.Program_LineArc.Rows.size();
  Outcome.Was_Read = false;
  Outcome.Failure.reset();
  Trap_With([&](const Fault& fault) { Outcome.Failure = fault; },
            [&] {
              Compiler.BlockText = text;
              Read_Words(text, Outcome.Read);
              Outcome.Was_Read = true;
              ExecuteBlock(Outcome.Read);
            });
  const Report_Finding report = Reporter(place);
  if (First_Time(place)) Check_Words(text, std::move(meant), Outcome, report);
  if (!Outcome.Was_Read) return;
  const Block_Event event{Outcome.Read, Outcome.Failure.has_value(), before, memory_before, rows};
  Check_Motion(event, Memory, report);
  Check_Cycles(event, report);
  const std::size_t arcs = Arcs.size();
  Check_Arcs(event, As_Meant.Modes(), Arc_Places.size(), Arcs, report);
  if (Arcs.size() > arcs) Arc_Places.push_back(place);
  As_Meant.Compare(
      event, [&] { return Serious.contains(place); }, report);
}

void Checker::Check_Arc_Walks() {
  for (const Pending_Arc& arc : Arcs) {
    if (const auto why = Walked_Elsewhere(arc)) {
      Report(Arc_Places[arc.Finding_Place], Check_Kind::Arc_Walked_Elsewhere, 0, *why);
    }
  }
  Check_Open_Arcs(Arcs, [&](const Pending_Arc& arc, std::string what) {
    Report(Arc_Places[arc.Finding_Place], Check_Kind::Arc_Other_Centre, 0, std::move(what));
  });
}

// By the compile's own pass, over the records as they are.
void Checker::Check_Compensation() {
  if (!Compiler.UsesCompensation) return;
  const auto kind_of = [](Compensation_Trouble trouble) {
    switch (trouble) {
      case Compensation_Trouble::No_Diameter:
        return Check_Kind::Comp_Without_Diameter;
      case Compensation_Trouble::Lead_Cuts:
        return Check_Kind::Comp_Lead_Cuts;
      case Compensation_Trouble::Changes_Side:
        return Check_Kind::Comp_Changes_Side;
      case Compensation_Trouble::Leaves_Material:
        return Check_Kind::Comp_Leaves_Material;
      case Compensation_Trouble::Passed_Over:
        return Check_Kind::Comp_Passed_Over;
      case Compensation_Trouble::Wrong_Plane:
        return Check_Kind::Comp_Wrong_Plane;
      case Compensation_Trouble::Does_Not_Fit:
      case Compensation_Trouble::Fault:
        break;
    }
    return Check_Kind::Comp_Does_Not_Fit;
  };
  Check_Radius_Compensation(
      Compile_Tables.Program_LineArc,
      [&](Compensation_Trouble trouble, const LineArc& record, std::string what) {
        Report({std::nullopt, record.LineNumber}, kind_of(trouble), 0, std::move(what));
      });
}

// --- Macros --------------------------------------------------------------------------------------

void Checker::Tell_Macro_Number(Check_Place place, const std::string& number) {
  const auto value = Try_Number(number);
  if (!value || *value < 0 || std::nearbyint(*value) > MachineSetup.MacroFile.last) {
    Report(place, Check_Kind::Macro_Missing, 0, "macro " + number + " does not exist",
           "macros are numbered from 0 to 150");
    return;
  }
  const std::string path = Beside_Machine_File(MachineSetup.MacroFile[To_Int16(*value)]);
  if (!path.empty() && !FileExists(path)) {
    Report(place, Check_Kind::Macro_Missing, 0,
           "the file of macro " + number + " is missing: " + path);
  }
}

// Everything but the call itself, its number and a line number.
void Checker::Tell_Lost_Words(Check_Place place, std::string_view text) {
  const Meant_Line meant = Read_As_Meant(text);
  bool called = false, numbered = false;
  for (const Meant_Word& each : meant.Words) {
    const bool call = each.Letter == 'M' && each.Number.starts_with("98");
    const bool number = called && !numbered && each.Letter == 'P';
    called = called || call;
    numbered = numbered || number;
    if (call || number || each.Letter == 'N') continue;
    Report(place, Check_Kind::Macro_Line_Lost, each.Column,
           each.Letter + std::string(each.Number) + " is not read");
  }
  if (!called) {
    Report(place, Check_Kind::Macro_Line_Lost, 0,
           "M98 within a comment counts as a call: the line is not read",
           "leave M98 out of comments");
  }
}

void Checker::Macro_Call(std::string_view text, const std::optional<std::string>& number) {
  const Check_Place place = Place_Of(text);
  Last_Call = place;
  if (!First_Time(place)) return;
  Tell_Lost_Words(place, text);
  if (number) {
    Tell_Macro_Number(place, *number);
  } else {
    Report(place, Check_Kind::Macro_Without_Number, 0, "the line does nothing");
  }
}

void Checker::Tell_Commas(std::int16_t macro, const Macro_Text& text) {
  const char* begin = text.Text.data();
  for (std::size_t n = 0; n < text.Lines.size(); ++n) {
    const auto end = static_cast<std::size_t>(text.Lines[n].data() - begin) + text.Lines[n].size();
    if (end >= text.Text.size() || text.Text[end] != ',') continue;
    Report({macro, static_cast<std::int32_t>(n) + 1}, Check_Kind::Macro_Comma,
           text.Lines[n].size() + 1, "what follows the comma is a line of its own");
  }
}

void Checker::Macro_Begin(std::int16_t macro, const Macro_Text& text) {
  Files.push_back({macro, &text});
  if (!Macros_Seen.insert(macro).second) return;
  Tell_Commas(macro, text);
  Check_Repeats(macro, static_cast<std::int32_t>(text.Lines.size()),
                [&](std::int32_t line) { return text.Lines[static_cast<std::size_t>(line - 1)]; });
}

// --- Repeats -------------------------------------------------------------------------------------

template <class Line_At>
void Checker::Check_Repeats(std::optional<std::int16_t> macro, std::int32_t count,
                            Line_At&& line_at) {
  constexpr std::int16_t none = std::numeric_limits<std::int16_t>::min();
  std::int32_t open = 0;
  for (std::int32_t line = 1; line <= count; ++line) {
    if (!MayHoldRepeat(line_at(line))) continue;
    Repeat_State found{none, 0, 0};
    const bool readable =
        Trap_With([](const Fault&) {}, [&] { ScanRepeat(line_at(line), found, line); });
    const Check_Place place{macro, line};
    if (found.End > 0) {
      if (open == 0) {
        Report(place, Check_Kind::Repeat_Not_Begun, 0,
               "the lines from the last REPEAT on, or from the first, run again");
      } else {
        Tell_Repeat_Order({macro, open}, line);
      }
      open = 0;
    } else if (found.Start > 0) {
      if (open != 0) {
        Report(place, Check_Kind::Repeat_Nested, 0,
               "the REPEAT of " + Line_Name({macro, open}) + " is forgotten");
      }
      open = line;
      Tell_Repeat_Count(
          place, line_at(line),
          readable && found.Count != none ? std::optional(found.Count) : std::nullopt);
    }
  }
  if (open != 0) {
    Report({macro, open}, Check_Kind::Repeat_Not_Ended, 0, "the lines run once");
  }
}

void Checker::Tell_Repeat_Count(Check_Place place, std::string_view text,
                                std::optional<std::int16_t> count) {
  if (count) {
    Report(place, Check_Kind::Repeat_Runs_Once_More, 0,
           "the lines run " + std::to_string(std::max<int>(*count, 1) + 1) + " times in all");
    return;
  }
  const std::size_t keyword = Upper(text).find("REPEAT");
  const bool written = text.find_first_of("0123456789", keyword) != std::string_view::npos;
  if (written) {
    Report(place, Check_Kind::Repeat_Count_Not_Read, 0,
           "the count is not read: the lines run twice, or by the count that was read last");
  } else {
    Report(place, Check_Kind::Repeat_Without_Count, 0, "no count is read");
  }
}

// A step of the run takes all rows of its line number at once.
void Checker::Tell_Repeat_Order(Check_Place begin, std::int32_t end) {
  if (MachineSetup.Run_In_Table_Order) return;
  const std::string lines = "lines " + Line_Number({begin.Macro, begin.Line + 1}) + " to " +
                            Line_Number({begin.Macro, end - 1});
  Report(begin, Check_Kind::Repeat_Order, 0,
         begin.Macro ? lines +
                           " of the macro run at the steps of the program's lines with these "
                           "numbers, and all passes of a line follow each other"
                     : "each of " + lines +
                           " runs all its passes at once before the next line begins: the first "
                           "plunge goes to the depth of the last pass");
}

// --- The program as a whole ----------------------------------------------------------------------

void Check_Travel(const Record_List<Wire>& wires,
                  const std::function<void(std::int32_t line, std::string what)>& report) {
  struct Range {
    double Low = std::numeric_limits<double>::infinity(), High = -Low;
    bool Told = false;
  };
  Indexed<Range, 1, 4> ranges;
  for (const Wire& wire : wires) {
    if (wire.Motion != 1) continue;
    for (int axis = 1; axis <= 4; ++axis) {
      Range& range = ranges[axis];
      for (const Nullable position : {wire.Start[axis], wire.End[axis]}) {
        if (!position) continue;
        range.Low = std::min(range.Low, *position);
        range.High = std::max(range.High, *position);
      }
      if (range.Told || !(range.High - range.Low > MachineSetup.Axis_Depth[axis])) continue;
      range.Told = true;
      report(wire.Step, std::string(1, Axis_Letter(axis)) + " travels from " +
                            Format_Number_Point(range.Low, "0.###") + " to " +
                            Format_Number_Point(range.High, "0.###") + ", the axis is " +
                            Format_Number_Point(MachineSetup.Axis_Depth[axis], "0.###") + " long");
    }
  }
}

void Checker::Check_Wires() {
  if (Compile_Tables.Program_LineArc.Rows.size() >= LineArc_Table_Limit) {
    Report({}, Check_Kind::Too_Many_Records, 0,
           "more than " + std::to_string(LineArc_Table_Limit) + " records: the rest is left out");
  }
  Check_Compensation();
  const Table<Wire> wires =
      NIST_ConvertLineArctoWire(std::exchange(Compile_Tables.Program_LineArc, {}));
  Check_Travel(wires.Rows, [&](std::int32_t line, std::string what) {
    // One line may exceed several axes.
    Told.erase({{std::nullopt, line}, Check_Kind::Travel_Too_Long});
    Report({std::nullopt, line}, Check_Kind::Travel_Too_Long, 0, std::move(what));
  });
  Check_Stops(wires.Rows, [&](std::int32_t line, std::string what) {
    Report({std::nullopt, line}, Check_Kind::Stop_At_Full_Feed, 0, std::move(what));
  });
  if (wires.Rows.size() > Wire_Table_Limit) {
    Report({std::nullopt, wires.Rows[Wire_Table_Limit].Step}, Check_Kind::Too_Many_Wires, 0,
           "wire " + std::to_string(Wire_Table_Limit + 1) +
               " and all behind it are left out of the machine's table");
  }
}

void Checker::Sort() {
  const auto key = [](const Check_Finding& finding) {
    return std::tuple(finding.Kind != Check_Kind::Code_Runs_Together, finding.Macro, finding.Line,
                      finding.Column);
  };
  std::ranges::stable_sort(Findings, {}, key);
}

Line_Pass_Operations Checker::Operations() {
  Line_Pass_Operations operations;
  operations.Read_Block = [this](std::string_view text) { Read_Block(text); };
  operations.Log = [](const std::string&) {};
  operations.Table_Full = [](const std::string&) {};  // a finding of its own, by the number of rows
  operations.Show = [this](std::int16_t macro, const std::string& text) {
    const bool open = std::ranges::find(Files, macro, &Open_File::Macro) != Files.end();
    Report(Last_Call, open ? Check_Kind::Macro_Calls_Itself : Check_Kind::Macro_Missing, 0, text);
  };
  operations.Macro_Call = [this](std::string_view text, const std::optional<std::string>& number) {
    Macro_Call(text, number);
  };
  operations.Macro_Begin = [this](std::int16_t macro, const Macro_Text& text) {
    Macro_Begin(macro, text);
  };
  operations.Macro_End = [this] { Files.pop_back(); };
  operations.Before_Yield = [] {};
  operations.Progress_Front = Progress_Front;
  operations.Progress_Back = "% completed, press ESC to cancel";
  return operations;
}

std::vector<Check_Finding> Checker::Run(bool& whole) {
  const Compile_Section section(Operation::Check);
  const Progress_Status progress(Progress_Front);
  const Kept_State kept;
  Compile_Status.Cut_Short = false;
  Check_Repeats(std::nullopt, Program->Line_Count(),
                [&](std::int32_t line) { return Program->Line(line); });
  Run_Line_Pass(Program, Operations());
  Check_Arc_Walks();
  Check_Wires();
  whole = !Compile_Status.Cut_Short;
  Sort();
  return std::move(Findings);
}

}  // namespace

std::vector<Check_Finding> Check_Program(std::shared_ptr<const GCode_Text> program, bool* whole) {
  bool finished = false;
  std::vector<Check_Finding> findings;
  if (!Compile_Busy()) findings = Checker(std::move(program)).Run(finished);
  if (whole != nullptr) *whole = finished;
  return findings;
}

}  // namespace norvik
