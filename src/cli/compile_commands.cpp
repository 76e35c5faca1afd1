// The commands `compile` and `check`.
#include "cli/adapt_command.h"
#include "cli/companion.h"
#include "compiler/check/program_check.h"
#include "compiler/compile/compile.h"
#include "compiler/state/compile_losses.h"
#include "compiler/state/compiler_state.h"
#include "compiler/tables/program_wire.h"
#include "compiler/text/program_text.h"
#include "core/application.h"
#include "core/paths.h"

#include <algorithm>
#include <filesystem>
#include <iostream>
#include <map>
#include <memory>

namespace norvik {

namespace {

struct Compile_Options {
  std::string Program, Tables;
  bool Block = false, Accept_Losses = false, Adapt = false;
};

// What this compile added to the error log, its first lines on standard error.
void Print_Faults(std::size_t log_start) {
  constexpr std::size_t most_lines = 20;
  try {
    const std::string log = Read_Whole_File(Application.ErrorFile);
    // Behind the start, unless the log has become the older one meanwhile.
    const auto lines = Split_Lines(log.size() < log_start ? log : log.substr(log_start));
    for (std::size_t i = 0; i < std::min(lines.size(), most_lines); ++i) {
      std::cerr << lines[i] << '\n';
    }
    if (lines.size() > most_lines) {
      std::cerr << lines.size() - most_lines << " more lines in " << Application.ErrorFile << '\n';
    }
  } catch (const std::exception&) {  // no log, no faults
  }
}

std::size_t Log_Size() {
  std::error_code missing;
  const auto size = std::filesystem::file_size(Application.ErrorFile, missing);
  return missing ? 0 : static_cast<std::size_t>(size);
}

int Compile(const Companion& companion, const Compile_Options& options) {
  if (!options.Tables.empty()) {
    std::error_code failure;
    std::filesystem::create_directories(options.Tables, failure);
    if (failure) {
      Complain("The folder " + options.Tables + " cannot be made: " + failure.message());
      return Failed;
    }
    Application.Table_Folder = options.Tables;
    Application.ErrorFile = Join_Path(options.Tables, "NorvikErr.txt");
  }
  if (!Load_Program(options.Program, options.Adapt, options.Accept_Losses)) return Failed;
  const std::size_t log_start = Log_Size();
  const int status = Compile_Whole(companion, [&] {
    const bool complete =
        options.Block ? CompileBlock(GCodeLineCount() > 0 ? GCode_Line(1) : std::string_view())
                      : CompileProgram();
    Print_Faults(log_start);
    return complete;
  });
  if (status != Done) return status;
  std::cout << "Lines    " << GCodeLineCount() << '\n'
            << "Wires    " << Program_Wire.Count() << '\n'
            << "Table    " << Compile_Tables.LineArc_Path << '\n'
            << "Table    " << Compile_Tables.Wire_Path << '\n';
  Print_Losses();
  return Compile_Losses.Any() && !options.Accept_Losses ? Failed : Done;
}

struct Check_Options {
  std::string Program;
  int Most = 20;  // findings of one kind that are printed; 0: all
  bool Adapt = false;
};

void Print_Finding(const std::string& file, const Check_Finding& finding) {
  std::cout << file;
  if (finding.Macro) std::cout << " (macro " << *finding.Macro << ')';
  if (finding.Text_Line() > 0) std::cout << ':' << finding.Text_Line();
  if (finding.Column > 0) std::cout << ':' << finding.Column;
  std::cout << ": " << Name_Of(Info_Of(finding.Kind).Grade) << ": " << finding.What;
  if (!finding.Instead.empty()) std::cout << " -> " << finding.Instead;
  std::cout << Correction_Word(Info_Of(finding.Kind).Correction);
  std::cout << '\n';
}

// Nothing that changes the job: 0. Otherwise 1, so that a script may stop there.
int Check(const Companion& companion, const Check_Options& options) {
  if (!Load_Program(options.Program, options.Adapt, true)) return Failed;
  const auto findings = Check_Program(GCode_Program.Text);
  if (companion.Was_Interrupted()) return Interrupted_By_Operator;
  std::map<Check_Kind, int> counts;
  bool serious = false;
  for (const Check_Finding& finding : findings) {
    if (Info_Of(finding.Kind).Grade != Check_Grade::Note) serious = true;
    if (options.Most > 0 && ++counts[finding.Kind] > options.Most) continue;
    Print_Finding(options.Program, finding);
  }
  for (const auto& [kind, count] : counts) {
    if (options.Most > 0 && count > options.Most) {
      std::cout << options.Program << ": " << count - options.Most
                << " more of: " << Info_Of(kind).Title << " (--all shows them)\n";
    }
  }
  std::cout << findings.size() << (findings.size() == 1 ? " finding" : " findings") << '\n';
  return serious ? Failed : Done;
}

}  // namespace

void Add_Compile_Commands(CLI::App& app, Companion& companion) {
  const auto compile = std::make_shared<Compile_Options>();
  CLI::App* command = app.add_subcommand("compile", "Compile a program into both tables");
  command->add_option("program", compile->Program, "G-code file; - is standard input")
      ->required()
      ->type_name("PROGRAM");
  command->add_flag("--block", compile->Block, "Only the first line, as a Goto does");
  command->add_flag("--accept-losses", compile->Accept_Losses,
                    "Exit status 0 also when lines, macros or wires are left out");
  command->add_option("--tables", compile->Tables, "Folder for the tables and the error log")
      ->type_name("DIR");
  Add_Adapt_Flag(*command, compile->Adapt);
  command->callback([&companion, compile] {
    companion.Command = [&companion, compile] { return Compile(companion, *compile); };
  });

  const auto check = std::make_shared<Check_Options>();
  command = app.add_subcommand("check", "List what the compiler ignores or would misread, by line");
  command->add_option("program", check->Program, "G-code file; - is standard input")
      ->required()
      ->type_name("PROGRAM");
  command->add_flag_callback(
      "--all", [check] { check->Most = 0; }, "Print every finding, however many of a kind");
  Add_Adapt_Flag(*command, check->Adapt);
  command->callback([&companion, check] {
    companion.Command = [&companion, check] { return Check(companion, *check); };
  });
}

}  // namespace norvik
