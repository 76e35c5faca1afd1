// The command `import`.
#include "app/openers.h"
#include "cli/companion.h"
#include "core/fault.h"
#include "core/paths.h"
#include "import/dxf_import.h"
#include "import/excellon_import.h"
#include "import/hpgl_import.h"
#include "import/import_pipeline.h"

#include <filesystem>
#include <iostream>
#include <memory>

namespace norvik {

namespace {

struct Import_Options {
  std::string File, Program;
};

using Importer = bool (*)(const std::string& path);

// None for kinds that are not built in.
Importer Importer_Of(Opened_Kind kind) {
  switch (kind) {
    case Opened_Kind::DXF:
      return Import_DXF_File;
    case Opened_Kind::HPGL:
      return Import_HPGL_File;
    case Opened_Kind::Excellon:
      return Import_Excellon_File;
    default:
      return nullptr;
  }
}

// The importers open the program that they made; here it is copied to where it was asked for.
int Import(const Import_Options& options) {
  const Importer importer = Importer_Of(Kind_Of_File(options.File));
  if (importer == nullptr) {
    Complain(options.File +
             ": no importer for this kind of file. It reads .dxf, .plt and .nc files.");
    return Wrong_Usage;
  }
  bool written = false;
  Import_Host.Open_GCode = [&](const std::string& path) {
    try {
      Replace_File(options.Program, Read_Whole_File(path));
      std::filesystem::remove(path);
      written = true;
    } catch (const Fault& fault) {
      Complain(fault.Description);
    }
  };
  Import_Host.Show_Report = [](const std::vector<std::string>& lines) {
    for (const std::string& line : lines) std::cerr << line << '\n';
  };
  if (!importer(options.File)) {
    Complain(options.File + ": nothing was imported; the file is missing or cannot be read.");
    return Wrong_Usage;
  }
  return written ? Done : Failed;
}

}  // namespace

void Add_Import_Command(CLI::App& app, Companion& companion) {
  const auto import = std::make_shared<Import_Options>();
  CLI::App* command =
      app.add_subcommand("import", "Make a program of a DXF, HPGL or Excellon file");
  command->add_option("file", import->File, "File to import")->required()->type_name("FILE");
  command->add_option("-o,--output", import->Program, "Program to write")
      ->required()
      ->type_name("PROGRAM");
  command->callback(
      [&companion, import] { companion.Command = [import] { return Import(*import); }; });
}

}  // namespace norvik
