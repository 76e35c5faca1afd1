// The commands `adapt` and `path`.
#include "cli/adapt_command.h"

#include "cli/companion.h"
#include "compiler/interpreter/line_pass.h"
#include "compiler/state/compile_losses.h"
#include "compiler/state/compiler_state.h"
#include "core/fault.h"
#include "core/format.h"
#include "core/json_text.h"
#include "core/numbers.h"

#include <algorithm>
#include <array>
#include <iostream>
#include <memory>
#include <optional>
#include <string_view>
#include <utility>
#include <vector>

namespace norvik {

namespace {

struct Adapt_Command {
  std::string Program, Output, Units, Centres, Machine_Zero, Home, Second_Home;
  std::vector<std::string> Offsets;
  std::optional<double> Tolerance;
  bool Report = false, Json = false, Accept = false, Simplify = false, Block_Delete = false,
       Milliseconds = false;
};

// --- Options -------------------------------------------------------------------------------------

// "1,2,3" or "1,2,3,4". Absent, with the reason printed, when it is something else.
std::optional<Adapt_Axes> Axes_Of(const std::string& text, const std::string& option) {
  Adapt_Axes axes{};
  std::size_t at = 0, count = 0;
  while (at <= text.size() && count < axes.size()) {
    const std::size_t end = std::min(text.find(',', at), text.size());
    const auto number = Try_Number(std::string_view(text).substr(at, end - at));
    if (!number) break;
    axes[count++] = *number;
    at = end + 1;
  }
  if (count >= 3 && at == text.size() + 1) return axes;
  Complain(option + " needs three numbers, as in 10,0,-2.5; \"" + text + "\" is something else.");
  return std::nullopt;
}

// "G55=10,0,0" or "G59.1=...".
bool Take_Offset(const std::string& text, Adapt_Options& options) {
  const std::size_t equal = std::min(text.find('='), text.size());
  const std::string name = text.substr(0, equal);
  for (int row = 1; row <= 9; ++row) {
    const std::string known =
        row <= 6 ? "G" + std::to_string(53 + row) : "G59." + std::to_string(row - 6);
    if (name != known) continue;
    const auto axes =
        Axes_Of(equal < text.size() ? text.substr(equal + 1) : "", "--offset " + known);
    options.Work_Offsets[static_cast<std::size_t>(row)] = axes;
    return axes.has_value();
  }
  Complain("--offset needs a work offset and its place, as in G55=100,0,0.");
  return false;
}

bool Take_Place(const std::string& text, const char* option, std::optional<Adapt_Axes>& place) {
  if (!text.empty()) place = Axes_Of(text, option);
  return text.empty() || place.has_value();
}

std::optional<Adapt_Options> Options_Of(const Adapt_Command& command) {
  Adapt_Options options = Adapt_Options_Of_Setup();
  if (!command.Units.empty()) options.Program_In_Millimetres = command.Units == "mm";
  if (!command.Centres.empty()) options.Program_Centres_From_Start = command.Centres == "start";
  options.Leave_Out_Deleted = command.Block_Delete;
  if (command.Milliseconds) options.Dwell_Factor = 0.001;
  options.Simplify = command.Simplify;
  options.Tolerance = command.Tolerance;
  bool good = Take_Place(command.Machine_Zero, "--machine-zero", options.Machine_Zero) &&
              Take_Place(command.Home, "--home", options.Home) &&
              Take_Place(command.Second_Home, "--second-home", options.Second_Home);
  for (const std::string& offset : command.Offsets) good = good && Take_Offset(offset, options);
  return good ? std::optional(options) : std::nullopt;
}

// --- Reports -------------------------------------------------------------------------------------

void Print_Finding(std::ostream& out, const std::string& file, const Adapt_Finding& finding) {
  out << file;
  if (finding.Line > 0) out << ':' << finding.Line;
  out << ": " << finding.Number << ": " << Name_Of(finding.Grade) << ": " << finding.What;
  if (!finding.Instead.empty()) out << " -> " << finding.Instead;
  if (!finding.Text.empty()) out << " | " << finding.Text;
  out << '\n';
}

void Print_Report(std::ostream& out, const std::string& file, const Adapted& result, bool all) {
  for (const Adapt_Finding& finding : result.Findings) {
    if (all || finding.Grade == Adapt_Grade::Refused) Print_Finding(out, file, finding);
  }
  if (result.More_Findings > 0) out << file << ": " << result.More_Findings << " more findings\n";
}

void Print_Json(std::ostream& out, const Adapted& result) {
  out << "{\n\"refused\": " << result.Refused << ",\n\"more_findings\": " << result.More_Findings
      << ",\n\"units_read\": \"" << (result.In_Millimetres ? "mm" : "inch")
      << "\",\n\"findings\": [";
  const char* before = "\n";
  for (const Adapt_Finding& finding : result.Findings) {
    out << before << "  {\"number\": " << finding.Number << ", \"line\": " << finding.Line
        << ", \"grade\": \"" << Name_Of(finding.Grade) << "\", \"what\": \""
        << Json_Text(finding.What) << "\", \"instead\": \"" << Json_Text(finding.Instead)
        << "\", \"text\": \"" << Json_Text(finding.Text) << "\"}";
    before = ",\n";
  }
  out << "\n],\n\"old_lines\": [";
  for (std::size_t line = 0; line < result.Old_Lines.size(); ++line) {
    out << (line == 0 ? "" : ",") << result.Old_Lines[line];
  }
  out << "]\n}\n";
}

int Adapt_File(const Companion& companion, const Adapt_Command& command) {
  const auto options = Options_Of(command);
  if (!options) return Wrong_Usage;
  if (!Load_Program(command.Program)) return Failed;
  try {
    const Adapted result = Adapt(*GCode_Program.Text, *options);
    if (companion.Was_Interrupted()) return Interrupted_By_Operator;
    Write_Output(command.Output, result.Text);
    std::ostream& out = command.Output == "-" ? std::cerr : std::cout;
    if (command.Json) {
      Print_Json(out, result);
    } else {
      Print_Report(command.Report ? out : std::cerr, command.Program, result, command.Report);
      out << "Lines    " << GCodeLineCount() << " -> " << result.Old_Lines.size() << '\n'
          << "Findings " << result.Findings.size() + static_cast<std::size_t>(result.More_Findings)
          << ", " << result.Refused << " left to you\n";
    }
    return result.Refused > 0 && !command.Accept ? Failed : Done;
  } catch (const Fault& fault) {
    Complain(fault.Description);
    return Failed;
  }
}

// --- Path ----------------------------------------------------------------------------------------

const char* Kind_Of(const LineArc& row) {
  if (row.RecordType == Record_Type::Arc) return row.ArcDirection == std::int16_t{0} ? "cw" : "ccw";
  return row.FeedMove ? "cut" : "travel";
}

void Print_Motion(const LineArc& row) {
  std::cout << row.LineNumber << ' ' << Kind_Of(row);
  for (int axis = 1; axis <= 4; ++axis) {
    if (row.End[axis]) std::cout << ' ' << "XYZA"[axis - 1] << Shortest_Text(*row.End[axis]);
  }
  if (row.CenterI) std::cout << " I" << Shortest_Text(*row.CenterI);
  if (row.CenterJ) std::cout << " J" << Shortest_Text(*row.CenterJ);
  std::cout << " F" << Shortest_Text(row.Feed[1]) << '\n';
}

int Print_Path(const Companion& companion, const std::string& program, bool adapt) {
  if (!Load_Program(program, adapt, true)) return Failed;
  Run_Line_Pass(GCode_Program.Text, Compile_Operations());
  if (companion.Was_Interrupted()) return Interrupted_By_Operator;
  for (const LineArc& row : Compile_Tables.Program_LineArc.Rows) {
    if (row.RecordType != Record_Type::Control) Print_Motion(row);
  }
  if (!Compile_Losses.Any()) return Done;
  Complain("left out: " + Summary_Of(Compile_Losses));
  return Failed;
}

void Add_Adapt_Program(CLI::App& app, Companion& companion) {
  const auto adapt = std::make_shared<Adapt_Command>();
  CLI::App* command =
      app.add_subcommand("adapt", "Rewrite a program of another controller for this machine");
  command->add_option("program", adapt->Program, "G-code file; - is standard input")
      ->required()
      ->type_name("PROGRAM");
  command->add_option("-o,--output", adapt->Output, "Program to write; - is standard output")
      ->required()
      ->type_name("PROGRAM");
  command->add_flag("--report", adapt->Report, "Print every finding, notes too");
  command->add_flag("--json", adapt->Json, "Findings and the old line of each new one as JSON");
  command->add_flag("--accept-losses", adapt->Accept,
                    "Exit status 0 also when something is left to you");
  command
      ->add_option("--units", adapt->Units, "What the program's numbers are where it does not say")
      ->check(CLI::IsMember({"mm", "inch"}));
  command
      ->add_option("--centres", adapt->Centres,
                   "From where I, J and K count; else as the arcs show")
      ->check(CLI::IsMember({"start", "zero"}));
  command
      ->add_option("--offset", adapt->Offsets, "Zero of a work offset from that of G54: G55=X,Y,Z")
      ->type_name("G55=X,Y,Z");
  command->add_option("--machine-zero", adapt->Machine_Zero, "Where G53 counts from")
      ->type_name("X,Y,Z");
  command->add_option("--home", adapt->Home, "Where G28 goes to")->type_name("X,Y,Z");
  command->add_option("--second-home", adapt->Second_Home, "Where G30 goes to")->type_name("X,Y,Z");
  command->add_flag("--block-delete", adapt->Block_Delete, "Leave out lines behind a slash");
  command->add_flag("--dwell-ms", adapt->Milliseconds, "P of G4 counts milliseconds");
  command->add_flag("--simplify", adapt->Simplify, "Join straight runs and fit arcs");
  command
      ->add_option("--tolerance", adapt->Tolerance,
                   "Of --simplify, units of the machine; else the last digit")
      ->check(CLI::PositiveNumber);
  command->callback([&companion, adapt] {
    companion.Command = [&companion, adapt] { return Adapt_File(companion, *adapt); };
  });
}

}  // namespace

void Add_Adapt_Flag(CLI::App& command, bool& adapt) {
  command.add_flag("--adapt", adapt, "Take a program of another controller as its author meant it");
}

bool Load_Program(const std::string& path, bool adapt, bool accept_refused) {
  if (!Load_Program(path)) return false;
  if (!adapt) return true;
  try {
    Adapted result = Adapt(*GCode_Program.Text, Adapt_Options_Of_Setup());
    Print_Report(std::cerr, path, result, false);
    SaveChanges(std::move(result.Text));
    if (result.Refused == 0 || accept_refused) return true;
    Complain("adapting leaves " + std::to_string(result.Refused) +
             " findings to you: write the program by \"norvik-cli adapt\", look at them, and take "
             "the result.");
  } catch (const Fault& fault) {
    Complain(fault.Description);
  }
  return false;
}

void Add_Adapt_Commands(CLI::App& app, Companion& companion) {
  Add_Adapt_Program(app, companion);
  struct Path_Options {
    std::string Program;
    bool Adapt = false;
  };
  const auto path = std::make_shared<Path_Options>();
  CLI::App* command = app.add_subcommand(
      "path", "End points of all motions, one a line: line, kind, place, centre, feed");
  command->add_option("program", path->Program, "G-code file; - is standard input")
      ->required()
      ->type_name("PROGRAM");
  Add_Adapt_Flag(*command, path->Adapt);
  command->callback([&companion, path] {
    companion.Command = [&companion, path] {
      return Print_Path(companion, path->Program, path->Adapt);
    };
  });
}

}  // namespace norvik
