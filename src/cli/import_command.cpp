// The command `import`.
#include "app/openers.h"
#include "cli/companion.h"
#include "core/fault.h"
#include "core/paths.h"
#include "import/import_pipeline.h"

#include <iostream>
#include <memory>

namespace norvik {

namespace {

struct Import_Options {
  std::string File, Program;
  std::vector<std::string> Layers;
};

int Import(const Import_Options& options) {
  bool written = false;
  Import_Host.Open_GCode = [&](const std::string& path) {
    try {
      Replace_File(options.Program, Read_Whole_File(path));
      written = true;
    } catch (const Fault& fault) {
      Complain(fault.Description);
    }
  };
  Import_Host.Show_Report = [](const std::vector<std::string>& lines) {
    for (const std::string& line : lines) std::cerr << line << '\n';
  };
  if (!FileExists(options.File)) {
    Complain("The file " + options.File + " does not exist.");
    return Wrong_Usage;
  }
  return written ? Done : Failed;
}

}  // namespace

void Add_Import_Command(CLI::App& app, Companion& companion) {
  const auto import = std::make_shared<Import_Options>();
  CLI::App* command = app.add_subcommand(
      "import", "Make a program of a DXF, HPGL, Excellon, Gerber or picture file");
  command->add_option("file", import->File, "File to import")->required()->type_name("FILE");
  command->add_option("-o,--output", import->Program, "Program to write")
      ->required()
      ->type_name("PROGRAM");
  command->add_option("--layers", import->Layers, "DXF layers to take; all without it")
      ->delimiter(',')
      ->type_name("NAME,NAME");
  command->callback(
      [&companion, import] { companion.Command = [import] { return Import(*import); }; });
}

}  // namespace norvik
