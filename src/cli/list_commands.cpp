// The commands `tools` and `sounds`.
#include "cli/companion.h"
#include "cli/json_text.h"
#include "core/application.h"
#include "core/event_sounds.h"
#include "core/fault.h"
#include "core/format.h"
#include "core/numbers.h"
#include "core/paths.h"
#include "core/setup.h"
#include "core/tool_file.h"
#include "tools/sound_list.h"
#include "tools/tool_list.h"

#include <iostream>
#include <memory>
#include <optional>

namespace norvik {

namespace {

struct Tool_Options {
  std::string File, Diameter, Offset;
  int Tool = 0;
  bool All = false, Json = false, Accept_Losses = false;
};

int List_Tools(const Tool_Options& options) {
  bool first = true;
  if (options.Json) std::cout << '[';
  for (int tool = 1; tool <= Tools.Diameter.last; ++tool) {
    const double diameter = Tools.Diameter[tool], offset = Tools.Length[tool];
    if (!options.All && diameter == 0 && offset == 0) continue;
    if (options.Json) {
      std::cout << (first ? "\n  {" : ",\n  {") << "\"tool\": " << tool
                << ", \"diameter\": " << Shortest_Text(diameter)
                << ", \"offset\": " << Shortest_Text(offset) << '}';
    } else {
      if (first) std::cout << Tool_List_Header << '\n';
      std::cout << Tool_Number_Text(tool) << Tool_Value_Text(diameter) << "  "
                << Tool_Value_Text(offset) << '\n';
    }
    first = false;
  }
  if (options.Json) std::cout << "\n]\n";
  return Done;
}

// The tools as they stand become the tool file of the setup.
int Store_Tools() {
  try {
    Save_Tools(MachineSetup.Tool_File_Name);
  } catch (const Fault& fault) {
    Complain(fault.Description);
    return Failed;
  }
  std::cerr << "Saved " << MachineSetup.Tool_File_Name << '\n';
  return Done;
}

// False, with the reason printed, for what is no number.
bool Take(int tool, int column, const std::string& text) {
  if (text.empty() || Take_Tool_Value(tool, column, text)) return true;
  Complain("\"" + text + "\" is no " + (column == tool_column::Diameter ? "diameter." : "offset."));
  return false;
}

int Set_Tool(const Tool_Options& options) {
  if (options.Tool < 1 || options.Tool > Tools.Diameter.last) {
    Complain("Tools have the numbers 1 to 200.");
    return Wrong_Usage;
  }
  if (options.Diameter.empty() && options.Offset.empty()) {
    Complain("Give --diameter, --offset or both.");
    return Wrong_Usage;
  }
  if (!Take(options.Tool, tool_column::Diameter, options.Diameter) ||
      !Take(options.Tool, tool_column::Offset, options.Offset))
    return Wrong_Usage;
  return Store_Tools();
}

int Import_Tools(const Tool_Options& options) {
  try {
    const Tool_Findings findings = Take_Tool_Text(Read_Input(options.File));
    for (const std::string& line : findings.Lines)
      std::cerr << options.File << ", " << line << '\n';
    if (!findings.Rows.empty()) std::cerr << options.File << ": " << findings.Rows << '\n';
    if (!findings.Lines.empty() && !options.Accept_Losses) {
      Complain("Nothing is imported; correct the file, or import it with --accept-losses.");
      return Failed;
    }
  } catch (const Fault& fault) {
    Complain(fault.Description);
    return Failed;
  }
  return Store_Tools();
}

int List_Sounds(bool json) {
  if (json) std::cout << '[';
  for (int slot = 0; slot < Sound_Slots; ++slot) {
    const std::string& path = MachineSetup.Sound_Files[slot];
    const std::string file = path.empty() ? std::string(Sound_Disabled) : path;
    const std::string mark = Sound_Mark(slot);
    if (json) {
      std::cout << (slot == 0 ? "\n  {" : ",\n  {") << "\"slot\": " << slot << ", \"event\": "
                << Json_Text(Trim(Sound_Label(slot).substr(0, Sound_Label(slot).find('='))))
                << ", \"file\": " << Json_Text(file) << ", \"fault\": " << Json_Text(mark) << '}';
    } else {
      std::cout << slot << "  " << Sound_Label(slot) << file
                << (mark.empty() ? "" : "   [" + mark + "]") << '\n';
    }
  }
  if (json) std::cout << "\n]\n";
  return Done;
}

int Play(const Companion& companion, int slot) {
  if (slot < 0 || slot >= Sound_Slots) {
    Complain("Sounds have the numbers 0 to 8; \"norvik-cli sounds list\" shows them.");
    return Wrong_Usage;
  }
  const std::string& path = MachineSetup.Sound_Files[slot];
  if (path.empty() || path == Sound_Disabled) {
    Complain("Sound " + std::to_string(slot) + " is disabled; nothing is played.");
    return Failed;
  }
  std::string fault = Sound_File_Fault(path);
  if (fault.empty()) fault = companion.Environment.Play_Sound(path);
  if (fault.empty()) return Done;
  Complain(path + ": " + fault + ".");
  return Failed;
}

void Add_Tools(CLI::App& app, Companion& companion) {
  CLI::App* tools = app.add_subcommand("tools", "The tool file of the machine");
  tools->require_subcommand(1);
  const auto options = std::make_shared<Tool_Options>();
  const auto run = [&companion, options](CLI::App* command, int (*work)(const Tool_Options&)) {
    command->callback([&companion, options, work] {
      companion.Command = [options, work] { return work(*options); };
    });
  };
  CLI::App* list = tools->add_subcommand("list", "Tools with a diameter or an offset");
  list->add_flag("--all", options->All, "All 200");
  list->add_flag("--json", options->Json, "As JSON");
  run(list, List_Tools);

  CLI::App* set = tools->add_subcommand("set", "Change one tool in the tool file");
  set->add_option("tool", options->Tool, "Number of the tool, 1 to 200")
      ->required()
      ->type_name("N");
  set->add_option("--diameter", options->Diameter, "In units of the setup")->type_name("LENGTH");
  set->add_option("--offset", options->Offset, "In units of the setup")->type_name("LENGTH");
  run(set, Set_Tool);

  CLI::App* import = tools->add_subcommand("import", "Take the tools of another tool file");
  import->add_option("file", options->File, "Tool file; - is standard input")
      ->required()
      ->type_name("FILE.tol");
  import->add_flag("--accept-losses", options->Accept_Losses,
                   "Import although lines of the file cannot be read");
  run(import, Import_Tools);
}

void Add_Sounds(CLI::App& app, Companion& companion) {
  CLI::App* sounds = app.add_subcommand("sounds", "The sounds of the machine's events");
  sounds->require_subcommand(1);
  const auto json = std::make_shared<bool>(false);
  CLI::App* list = sounds->add_subcommand("list", "Which file each event plays");
  list->add_flag("--json", *json, "As JSON");
  list->callback([&companion, json] { companion.Command = [json] { return List_Sounds(*json); }; });

  const auto slot = std::make_shared<int>(0);
  CLI::App* play = sounds->add_subcommand("play", "Play the sound of an event");
  play->add_option("number", *slot, "0 to 8, as the list shows them")->required()->type_name("N");
  play->callback([&companion, slot] {
    companion.Command = [&companion, slot] { return Play(companion, *slot); };
  });
}

}  // namespace

void Add_List_Commands(CLI::App& app, Companion& companion) {
  Add_Tools(app, companion);
  Add_Sounds(app, companion);
}

}  // namespace norvik
