#include "compiler/text/compile_sources.h"

#include "core/application.h"
#include "core/beside_machine.h"
#include "core/fault.h"
#include "core/foreign_file.h"
#include "core/paths.h"
#include "core/setup.h"
#include "core/setup_table.h"

#include <algorithm>
#include <filesystem>
#include <string_view>

namespace norvik {

Compile_Sources Present_Compile;

namespace {

struct Setting {
  const Setup_Row* Row;
  int Index;
};

// What the setup's table marks as asking for a compile. Tools and macros are looked at themselves.
const std::vector<Setting>& Settings() {
  static const std::vector<Setting> settings = [] {
    std::vector<Setting> found;
    for (const Setup_Row& row : Setup_Rows()) {
      if (!Needs(row.Needed_Then, After_Change::Recompile)) continue;
      if (row.Section == "Tools" || row.Section == "Macros") continue;
      for (int index = row.Loaded.First; index <= row.Loaded.Last; ++index)
        found.push_back({&row, index});
    }
    return found;
  }();
  return settings;
}

std::uint64_t Hash_Of(std::string_view bytes) {
  std::uint64_t hash = 0xCBF29CE484222325;  // FNV-1a
  for (const char c : bytes) hash = (hash ^ static_cast<unsigned char>(c)) * 0x100000001B3;
  return hash;
}

// What the file system says of a file; its content is read only when asked for.
Macro_Source Look_At(std::int16_t macro, bool with_content) {
  Macro_Source source;
  source.Number = macro;
  source.Path = Beside_Machine_File(MachineSetup.MacroFile[macro]);
  source.Present = !source.Path.empty() && FileExists(source.Path);
  if (!source.Present) return source;
  std::error_code ignored;
  source.Size = std::filesystem::file_size(source.Path, ignored);
  source.Modified =
      std::filesystem::last_write_time(source.Path, ignored).time_since_epoch().count();
  if (with_content)
    Trap_With([](const Fault&) {},
              [&] { source.Hash = Hash_Of(Read_Foreign_File(source.Path, Largest_Macro_File)); });
  return source;
}

bool Is_As_It_Was(const Macro_Source& before) {
  const Macro_Source now = Look_At(before.Number, false);
  if (now.Path != before.Path || now.Present != before.Present) return false;
  if (!now.Present || (now.Size == before.Size && now.Modified == before.Modified)) return true;
  // Written again, perhaps with the same content.
  return Look_At(before.Number, true).Hash == before.Hash;
}

}  // namespace

Compile_Sources Present_Sources() {
  Compile_Sources sources;
  sources.Text = GCode_Program.Text;
  sources.Settings.reserve(Settings().size());
  for (const Setting& setting : Settings())
    sources.Settings.push_back(Setup_Text(*setting.Row, setting.Index));
  return sources;
}

void Add_Macro_Source(Compile_Sources& sources, std::int16_t macro) {
  const auto known = [macro](const Macro_Source& source) { return source.Number == macro; };
  if (std::ranges::none_of(sources.Macros, known)) sources.Macros.push_back(Look_At(macro, true));
}

bool Same_Lines(const GCode_Text& a, const GCode_Text& b) {
  if (a.Line_Count() != b.Line_Count()) return false;
  for (std::int32_t line = 1; line <= a.Line_Count(); ++line)
    if (a.Line(line) != b.Line(line)) return false;
  return true;
}

bool Is_Of_Present_Text(const Compile_Sources& sources) {
  if (!sources.Text || sources.Text == GCode_Program.Text) return true;
  // Displays ask again and again: the last two texts that were compared are remembered.
  struct Comparison {
    std::weak_ptr<const GCode_Text> Made_From, Present;
    bool Same = false;
  };
  static Comparison last;
  if (last.Made_From.lock() != sources.Text || last.Present.lock() != GCode_Program.Text)
    last = {sources.Text, GCode_Program.Text, Same_Lines(*sources.Text, *GCode_Program.Text)};
  return last.Same;
}

std::string Changed_Source(const Compile_Sources& sources) {
  for (std::size_t n = 0; n < sources.Settings.size(); ++n) {
    const Setting& setting = Settings()[n];
    if (Setup_Text(*setting.Row, setting.Index) != sources.Settings[n])
      return "The setting \"" + Setting_Label(*setting.Row, setting.Index) + "\" (" +
             Setting_Key(*setting.Row, setting.Index) + ")";
  }
  if (sources.Tool_Diameters && *sources.Tool_Diameters != Tools.Diameter)
    return "A tool of the tool file";
  for (const Macro_Source& macro : sources.Macros)
    if (!Is_As_It_Was(macro)) return "Macro " + std::to_string(macro.Number);
  return {};
}

}  // namespace norvik
