// The command `export`.
#include "cli/companion.h"
#include "compiler/compile/compile.h"
#include "compiler/state/compile_losses.h"
#include "compiler/text/loss_text.h"
#include "core/application.h"
#include "core/fault.h"
#include "core/paths.h"
#include "transform/exports.h"

#include <iostream>
#include <memory>

namespace norvik {

namespace {

struct Export_Options {
  std::string Program, Tables, Output;
  bool Accept_Losses = false;
};

// The drawing on standard output.
Export_Report Print_Drawing(Export_Kind kind, const std::string& wire_table) {
  Export_Report report;
  try {
    report = Export_Drawing(kind, "standard output", wire_table,
                            [](std::string_view bytes) { std::cout << bytes; });
  } catch (const Fault& fault) {
    report.Failure = fault.Description;
  }
  return report;
}

Export_Report Make_Drawing(Export_Kind kind, const std::string& output,
                           const std::string& wire_table) {
  if (output == "-") return Print_Drawing(kind, wire_table);
  return kind == Export_Kind::DXF ? Save_DXF_File(output, wire_table)
                                  : Save_HPGL_File(output, wire_table);
}

// True when the compile left something out; it has been told then.
bool Told_Losses() {
  if (!Compile_Losses.Any()) return false;
  for (const Compile_Loss& loss : Compile_Losses.List) Complain(Text_Of(loss));
  Complain("Left out: " + Summary_Of(Compile_Losses));
  return true;
}

int Export(const Companion& companion, Export_Kind kind, const Export_Options& options) {
  if (options.Program.empty() == options.Tables.empty()) {
    Complain(
        "Name either a program, which is compiled first, or the folder of its tables with "
        "--tables.");
    return Wrong_Usage;
  }
  bool lossy = false;
  if (options.Tables.empty()) {
    if (!Load_Program(options.Program)) return Failed;
    const int status = Compile_Whole(companion, [] { return CompileProgram(); });
    if (status != Done) return status;
    lossy = Told_Losses();
  } else {
    Application.Table_Folder = options.Tables;
  }
  const Export_Report report =
      Make_Drawing(kind, options.Output, Join_Path(Application.Table_Folder, Wire_Table_Name));
  if (companion.Was_Interrupted()) return Interrupted_By_Operator;
  if (!report.Written) {
    Complain(report.Failure);
    return Failed;
  }
  // The box of the HPGL export has said it already.
  if (kind == Export_Kind::DXF || options.Output == "-") {
    for (const std::string& text : Texts_Of(report)) Complain(text);
  }
  lossy = lossy || report.Missing_Cuts > 0;
  return lossy && !options.Accept_Losses ? Failed : Done;
}

void Add_Kind(CLI::App& all, Companion& companion, Export_Kind kind, const char* name,
              const char* description) {
  const auto options = std::make_shared<Export_Options>();
  CLI::App* command = all.add_subcommand(name, description);
  command
      ->add_option("program", options->Program, "G-code file, compiled first; - is standard input")
      ->type_name("PROGRAM");
  command->add_option("--tables", options->Tables, "Folder with the tables of a compile instead")
      ->type_name("DIR");
  command->add_option("-o,--output", options->Output, "Drawing to write; - is standard output")
      ->required()
      ->type_name("FILE");
  command->add_flag("--accept-losses", options->Accept_Losses,
                    "Exit status 0 also when lines or moves are left out");
  command->callback([&companion, kind, options] {
    companion.Command = [&companion, kind, options] { return Export(companion, kind, *options); };
  });
}

}  // namespace

void Add_Export_Command(CLI::App& app, Companion& companion) {
  CLI::App* all = app.add_subcommand("export", "The compiled path as a drawing");
  all->require_subcommand(1);
  Add_Kind(*all, companion, Export_Kind::DXF, "dxf", "The cutting moves as lines of a DXF file");
  Add_Kind(*all, companion, Export_Kind::HPGL, "hpgl", "The moves in the plane as a HPGL file");
}

}  // namespace norvik
