#include "cli/companion.h"

#include "app/folders.h"
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

#include <iostream>

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

}  // namespace

bool Companion::Start() const {
  if (!Set_Companion_Folders(Options.Home)) {
    Complain("The folder " + Options.Home + " cannot be made. Name a folder that may be written.");
    return false;
  }
  Application.DecimalSeparator = Options.Decimal_Comma ? ',' : '.';
  if (!Options.Machine.empty()) {
    if (!FileExists(Options.Machine)) {
      Complain("The machine file " + Options.Machine + " does not exist.");
      return false;
    }
    Application.MachineFile = Options.Machine;
  }
  LoadMachineSetup();
  for (const std::string& setting : Options.Settings) {
    if (!Apply_Setting(setting)) return false;
  }
  Show_Progress_On_Terminal();
  Platform.Start_Timer(Escape_Poll_ms, [] { CheckEsc(); });
  Operation_Host.Forget_Presses = [] {};  // Ctrl-C ends the whole command, whatever it begins next
  return true;
}

bool Load_Program(const std::string& path) {
  try {
    SaveChanges(Read_Whole_File(path));
    return true;
  } catch (const std::exception& failure) {
    Complain(failure.what());
    return false;
  }
}

void Complain(const std::string& text) {
  std::cerr << "norvik-cli: " << text << '\n';
}

void Print_Status_Line(const std::string& text) {
  std::cerr << "\r\033[K" << text << std::flush;
}

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
  app.add_option("--machine", options.Machine, "Machine file to use")->type_name("FILE");
  app.add_option("--set", options.Settings, "A setting for this call only")
      ->type_name("SECTION.KEY=VALUE")
      ->allow_extra_args(false);
  app.add_flag("--decimal-comma", options.Decimal_Comma, "Work as in a region with decimal comma");
  Add_Compile_Commands(app, companion);
  Add_Setup_Command(app, companion);
  Add_Run_Commands(app, companion);
  Add_Plot_Command(app, companion);
  Add_Import_Command(app, companion);
  try {
    app.parse(argument_count, arguments);
  } catch (const CLI::ParseError& error) {
    return app.exit(error) == 0 ? Done : Wrong_Usage;
  }
  if (!companion.Start()) return Wrong_Usage;
  const int status = companion.Command();
  if (isatty(STDERR_FILENO) != 0) Print_Status_Line("");
  return status;
}

}  // namespace norvik
