#include "cli/companion.h"

#include "app/folders.h"
#include "app/startup.h"
#include "compiler/compile/table_pair.h"
#include "compiler/state/compile_losses.h"
#include "compiler/state/compiler_state.h"
#include "compiler/text/loss_text.h"
#include "compiler/text/program_text.h"
#include "core/application.h"
#include "core/fault.h"
#include "core/messages.h"
#include "core/operation.h"
#include "core/paths.h"
#include "core/setup.h"
#include "core/setup_keys.h"
#include "core/version.h"
#include "core/waiting.h"
#include "platform/platform.h"

#include <array>
#include <cctype>
#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <iostream>
#include <optional>

#include <poll.h>
#include <unistd.h>

namespace norvik {

namespace {

// Progress texts of the long passes: one line that is written over, on a terminal only.
void Show_Progress_On_Terminal() {
  if (isatty(STDERR_FILENO) == 0) return;
  Messages_Host.Panel_Changed = [](int panel) {
    if (panel == 1) Print_Status_Line(Messages.Panel[1]);
  };
}

// Ctrl-C is the ESC key; every pass looks at `EscFlag` behind its yields.
constexpr int Escape_Poll_ms = 100;

bool Apply_Setting(const std::string& setting) {
  const auto equals = setting.find('=');
  const auto key = Find_Setup_Key(std::string_view(setting).substr(0, equals));
  if (equals == std::string::npos || !key) {
    Complain("--set " + setting + ": no such key. \"norvik-cli setup show\" lists them all.");
    return false;
  }
  try {
    Change_Setup_Key(*key, std::string_view(setting).substr(equals + 1));
  } catch (const Fault& fault) {
    Complain("--set " + setting + ": " + fault.Description);
    return false;
  }
  return true;
}

// What the load could not use, and what a file that never was saved whole lacks.
void Name_Unusable_Values() {
  for (const std::string& finding : Setup_Store.Findings) {
    Complain(Application.MachineFile + ": " + finding);
  }
  if (FileExists(Application.MachineFile) && !Saved_Whole()) {
    Complain(Application.MachineFile +
             " was never saved whole; the keys that it lacks have their factory values.");
  }
}

// Ends early when the operator asks to stop.
std::string Read_Standard_Input() {
  std::string text;
  std::array<char, 65'536> bytes{};
  pollfd input{STDIN_FILENO, POLLIN, 0};
  for (;;) {
    if (::poll(&input, 1, -1) < 0) break;  // a signal; what follows sees it
    const ssize_t count = ::read(STDIN_FILENO, bytes.data(), bytes.size());
    if (count < 0) throw File_Fault("standard input", "Cannot read", errno);
    if (count == 0) break;
    text.append(bytes.data(), static_cast<std::size_t>(count));
  }
  return text;
}

}  // namespace

int Companion::Start() const {
  Setup_Store.Leaves_Files = Setup_Store.Without_Windows = true;
  try {
    Set_Companion_Folders(Options.Home);
  } catch (const std::exception& failure) {
    Complain(failure.what());
    return Wrong_Usage;
  }
  Application.DecimalSeparator = Options.Decimal_Comma ? ',' : '.';
  if (!Options.Machine.empty()) {
    if (!std::filesystem::exists(Options.Machine)) {
      Complain("The machine file " + Options.Machine + " does not exist.");
      return Wrong_Usage;
    }
    Application.MachineFile = Options.Machine;
  }
  bool settings_fit = true;
  const bool readable = Load_Machine([&] {
    for (const std::string& setting : Options.Settings) {
      settings_fit = settings_fit && Apply_Setting(setting);
    }
    return settings_fit;
  });
  if (!readable) return Failed;
  Environment.Find_Cards();
  Name_Unusable_Values();
  if (!settings_fit) return Wrong_Usage;
  Show_Progress_On_Terminal();
  Platform.Start_Timer(Escape_Poll_ms, [] { CheckEsc(); });
  Operation_Host.Forget_Presses = [] {};  // Ctrl-C ends the whole command, whatever it begins next
  return Done;
}

bool Companion::Was_Interrupted() const {
  if (!Environment.Asked_To_Stop()) return false;
  if (isatty(STDERR_FILENO) != 0) Print_Status_Line("");
  Complain("interrupted; what an earlier call has left stands as it was.");
  return true;
}

bool Load_Program(const std::string& path) {
  try {
    SaveChanges(Read_Input(path));
    return true;
  } catch (const std::exception& failure) {
    Complain(failure.what());
    return false;
  }
}

std::string Read_Input(const std::string& path) {
  return path == "-" ? Read_Standard_Input() : Read_Whole_File(path);
}

void Write_Output(const std::string& path, std::string_view bytes) {
  if (path == "-") {
    std::cout << bytes;
  } else {
    Replace_File(path, bytes);
  }
}

Staged_Tables::Staged_Tables() : Folder(Application.Table_Folder), Staging(Folder) {
  Application.Table_Folder = Staging.Path();
}

Staged_Tables::~Staged_Tables() {
  Application.Table_Folder = Folder;
}

void Staged_Tables::Put_In_Place() {
  Application.Table_Folder = Folder;
  Place_Table_Pair(Folder, Compile_Tables.LineArc_Path, Compile_Tables.Wire_Path);
}

void Print_Losses() {
  if (!Compile_Losses.Any()) return;
  for (const Compile_Loss& loss : Compile_Losses.List) std::cout << Text_Of(loss) << '\n';
  std::cout << "Left out: " << Summary_Of(Compile_Losses) << '\n';
}

int Compile_Whole(const Companion& companion, const std::function<bool()>& compile) {
  try {
    const bool mixed_before = Standing_Of_Pair(Application.Table_Folder) == Pair_Standing::Mixed;
    Staged_Tables tables;
    const bool whole = compile();
    if (companion.Was_Interrupted()) return Interrupted_By_Operator;
    if (whole) {
      tables.Put_In_Place();
      if (mixed_before) {
        Complain("the tables of before in " + Application.Table_Folder +
                 " were not from one compile; now they are.");
      }
      return Done;
    }
    Complain("The tables were not written; the earlier ones stand.");
  } catch (const Fault& fault) {
    Complain(fault.Description);
  }
  return Failed;
}

void Complain(const std::string& text) {
  std::cerr << "norvik-cli: " << text << '\n';
}

void Print_Status_Line(const std::string& text) {
  std::cerr << "\r\033[K" << text << std::flush;
}

namespace {

// "-.5" is a number; the reader of the command line takes only "-0.5" for one.
std::string With_Leading_Digit(std::string word) {
  if (word.size() > 2 && word[0] == '-' && (word[1] == '.' || word[1] == ',') &&
      std::isdigit(static_cast<unsigned char>(word[2])) != 0) {
    word.insert(1, 1, '0');
  }
  return word;
}

}  // namespace

int Run_Companion(int argument_count, char** arguments, Companion_Environment environment) {
  Companion companion;
  companion.Environment = std::move(environment);
  CLI::App app(
      "Norvik without windows: compile, check, run, plot and import for small CNC machines");
  app.set_version_flag("--version", std::string(Program_Version()));
  app.require_subcommand(1);
  Companion_Options& options = companion.Options;
  app.add_option("--home", options.Home, "Folder for setup, tables and scratch files")
      ->type_name("DIR");
  app.add_option("--machine", options.Machine, "Machine file to use; it is only read")
      ->type_name("FILE");
  app.add_option("--set", options.Settings, "A setting for this call only")
      ->type_name("SECTION.KEY=VALUE")
      ->allow_extra_args(false);
  app.add_flag("--decimal-comma", options.Decimal_Comma, "Work as in a region with decimal comma");
  Add_Compile_Commands(app, companion);
  Add_Setup_Command(app, companion);
  Add_Corrections_Command(app, companion);
  Add_Run_Commands(app, companion);
  Add_Plot_Command(app, companion);
  Add_Import_Command(app, companion);
  Add_Transform_Command(app, companion);
  Add_Adapt_Commands(app, companion);
  companion.Environment.Add_Commands(app, companion);
  Add_Export_Command(app, companion);
  Add_Motion_Command(app, companion);
  Add_List_Commands(app, companion);
  Add_Support_Command(app, companion);
  try {
    std::vector<std::string> words(arguments, arguments + argument_count);
    std::vector<const char*> pointers;
    for (std::string& word : words) pointers.push_back((word = With_Leading_Digit(word)).c_str());
    app.parse(argument_count, pointers.data());
  } catch (const CLI::ParseError& error) {
    return app.exit(error) == 0 ? Done : Wrong_Usage;
  }
  if (companion.Takes_Pictures) {
    if (const std::string reason = companion.Environment.Take_Pictures(); !reason.empty()) {
      Complain(reason);
      return Failed;
    }
  }
  int status = companion.Start();
  if (status == Done) status = companion.Command();
  if (isatty(STDERR_FILENO) != 0) Print_Status_Line("");
  std::cout.flush();
  if (!std::cout && status == Done) {
    Complain("Standard output cannot be written: closed, or its disk is full.");
    status = Failed;
  }
  return status;
}

}  // namespace norvik
