// The command `import`.
#include "app/import_menu.h"
#include "app/openers.h"
#include "cli/companion.h"
#include "core/application.h"
#include "core/fault.h"
#include "core/paths.h"
#include "core/setup.h"
#include "import/gerber/layers.h"
#include "import/pipeline/file_unit.h"
#include "import/pipeline/pipeline.h"
#include "import/pipeline/placing.h"
#include "import/pipeline/report.h"

#include <algorithm>
#include <filesystem>
#include <iostream>
#include <map>
#include <memory>
#include <optional>

namespace norvik {

namespace {

struct Import_Options {
  std::string File, Program, As;
  std::vector<std::string> Layers;  // empty: all
  std::string Origin = "as-is", Units;
  double Scale = 1, Rotate = 0;
  bool Mirror = false;
};

const std::map<std::string, Placed_Origin>& Origins_By_Name() {
  static const std::map<std::string, Placed_Origin> origins = {
      {"as-is", Placed_Origin::As_Is},
      {"lower-left", Placed_Origin::Lower_Left},
      {"centre", Placed_Origin::Centre}};
  return origins;
}

void Take_Placing(const Import_Options& options) {
  Import_Placing = {};
  Import_Placing.Origin = Origins_By_Name().at(options.Origin);
  Import_Placing.Scale = options.Scale;
  Import_Placing.Rotate = options.Rotate;
  Import_Placing.Mirror = options.Mirror;
  if (!options.Units.empty()) {
    Import_Placing.Unit = options.Units == "inch" ? Unit_Inches : Unit_Millimetres;
  }
}

// Why the options do not fit together, in words; empty: they do.
std::string Words_Against_Options(const Import_Options& options, Import_Kind kind) {
  if (!options.Layers.empty() && kind != Import_Kind::Gerber) {
    return "--layers selects layers of Gerber files only.";
  }
  if (kind == Import_Kind::Bitmap && (Is_Placed() || !options.Units.empty())) {
    return "A picture is placed by its own settings (section Bitmap), not by options.";
  }
  if (!options.Units.empty() && !MachineSetup.Import_Convert_Units) {
    return "--units acts with the correction Import_Convert_Units only. Switch it on: norvik-cli "
           "corrections set Import_Convert_Units";
  }
  return {};
}

const std::map<std::string, Import_Kind>& Kinds_By_Name() {
  static const std::map<std::string, Import_Kind> kinds = {{"dxf", Import_Kind::DXF},
                                                           {"hpgl", Import_Kind::HPGL},
                                                           {"excellon", Import_Kind::Excellon},
                                                           {"gerber", Import_Kind::Gerber},
                                                           {"picture", Import_Kind::Bitmap}};
  return kinds;
}

// By the option, else by the extension.
std::optional<Import_Kind> Kind_Of(const Import_Options& options) {
  if (!options.As.empty()) return Kinds_By_Name().at(options.As);
  return Import_Kind_Of(Kind_Of_File(options.File));
}

// The layers of the file as the window would show them: those asked for are selected. The names
// asked for that no layer has.
std::vector<std::string> Select_Layers(const std::vector<std::string>& wanted) {
  const auto is_among = [](const auto& names, const std::string& name) {
    return std::any_of(names.begin(), names.end(),
                       [&](const std::string& other) { return Is_Same_Layer(name, other); });
  };
  std::vector<std::string> present, unknown;
  for (auto& row : GerberLayerSelection.List_Layers) {
    row.Selected = wanted.empty() || is_among(wanted, row.Name);
    present.push_back(row.Name);
  }
  for (const std::string& name : wanted) {
    if (!is_among(present, name)) unknown.push_back(name);
  }
  return unknown;
}

std::string Joined(const std::vector<std::string>& names) {
  std::string text;
  for (const std::string& name : names) text += (text.empty() ? "" : ", ") + name;
  return text;
}

void Complain_Of_Layers(const std::string& file, const std::vector<std::string>& unknown) {
  std::vector<std::string> present;
  for (const auto& row : GerberLayerSelection.List_Layers) present.push_back(row.Name);
  Complain(file + ": no layer " + Joined(unknown) + ". The file has: " + Joined(present));
}

// One call of the command: what it asked for and what has become of it.
struct Import_Call {
  const Companion& Program_Call;
  const Import_Options& Options;
  std::vector<std::string> Unknown_Layers;
  bool Written = false;

  // Instead of the layer window. A file of one layer never asks, so the name is looked at before
  // the program is written, too.
  void Answer_Layers() {
    Unknown_Layers = Select_Layers(Options.Layers);
    if (Unknown_Layers.empty()) {
      GerberLayerSelection_Command_OK_Click();
    } else {
      GerberLayerSelection_Command_Cancel_Click();
    }
  }
  // The importers open the program that they made; here it is copied to where it was asked for. One
  // that was cut short leaves what an earlier call has written.
  void Take_Program(const std::string& path) {
    Unknown_Layers = Select_Layers(Options.Layers);
    const bool whole = !Application.EscFlag && !Import_Report.Cancelled && !Nothing_Arrived();
    if (whole && Unknown_Layers.empty() && !Program_Call.Environment.Asked_To_Stop()) {
      try {
        Write_Output(Options.Program, Read_Whole_File(path));
        Written = true;
      } catch (const Fault& fault) {
        Complain(fault.Description);
      }
    }
    std::error_code ignored;
    std::filesystem::remove(path, ignored);
  }
};

int Import(const Companion& companion, const Import_Options& options) {
  const auto kind = Kind_Of(options);
  if (!kind) {
    Complain(
        options.File +
        ": the name does not say what kind of file this is (.dxf, .plt, .nc, .gb*, .jpg, .bmp, "
        ".gif do). Name the kind: --as dxf, hpgl, excellon, gerber or picture.");
    return Wrong_Usage;
  }
  Take_Placing(options);
  if (const std::string words = Words_Against_Options(options, *kind); !words.empty()) {
    Complain(words);
    return Wrong_Usage;
  }
  Import_Call call{companion, options, {}, false};
  Import_Host.Select_Gerber_Layers = [&] { call.Answer_Layers(); };
  Import_Host.Open_GCode = [&](const std::string& path) { call.Take_Program(path); };
  Import_Host.Show_Report = [&](const std::vector<std::string>& lines) {
    if (!call.Unknown_Layers.empty() || companion.Environment.Asked_To_Stop()) return;
    for (const std::string& line : lines) std::cerr << line << '\n';
    for (const std::string& key : Import_Report.Answers) {
      std::cerr << "To switch it on: norvik-cli corrections set " << key << '\n';
    }
  };
  if (!Import_File(*kind, options.File)) {
    Complain(options.File + ": nothing was imported; there is no such file.");
    return Wrong_Usage;
  }
  if (!call.Written && companion.Was_Interrupted()) return Interrupted_By_Operator;
  if (!call.Unknown_Layers.empty()) {
    Complain_Of_Layers(options.File, call.Unknown_Layers);
    return Wrong_Usage;
  }
  return call.Written && !Import_Report.Cancelled ? Done : Failed;
}

std::vector<std::string> Kind_Names() {
  std::vector<std::string> names;
  for (const auto& [name, kind] : Kinds_By_Name()) names.push_back(name);
  return names;
}

}  // namespace

void Add_Import_Command(CLI::App& app, Companion& companion) {
  const auto import = std::make_shared<Import_Options>();
  CLI::App* command = app.add_subcommand(
      "import", "Make a program of a DXF, HPGL, Excellon or Gerber file or of a picture");
  command->add_option("file", import->File, "File to import")->required()->type_name("FILE");
  command->add_option("-o,--output", import->Program, "Program to write; - is standard output")
      ->required()
      ->type_name("PROGRAM");
  command->add_option("--as", import->As, "What kind of file it is, whatever its name ends in")
      ->check(CLI::IsMember(Kind_Names()));
  command->add_option("--layers", import->Layers, "Layers of a Gerber file; without it all of them")
      ->type_name("NAME,NAME")
      ->delimiter(',')
      ->allow_extra_args(false);
  command->add_option("--origin", import->Origin, "What comes to X0 Y0; as-is: what the file says")
      ->check(CLI::IsMember({"as-is", "lower-left", "centre"}));
  command->add_option("--scale", import->Scale, "Larger by this factor, depths excepted")
      ->check(CLI::PositiveNumber);
  command->add_option("--rotate", import->Rotate, "Turned counter-clockwise, before it is moved")
      ->type_name("DEGREES");
  command->add_flag("--mirror", import->Mirror, "Left and right change places, before the turn");
  command->add_option("--units", import->Units, "Of a file that names none")
      ->check(CLI::IsMember({"inch", "mm"}));
  command->callback([&companion, import] {
    companion.Takes_Pictures = Kind_Of(*import) == Import_Kind::Bitmap;
    companion.Command = [&companion, import] { return Import(companion, *import); };
  });
}

}  // namespace norvik
