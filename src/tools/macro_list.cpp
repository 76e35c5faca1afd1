#include "tools/macro_list.h"

#include "compiler/tables/program_wire.h"
#include "core/application.h"
#include "core/fault.h"
#include "core/format.h"
#include "core/messages.h"
#include "core/numbers.h"
#include "core/paths.h"
#include "core/remembered_files.h"
#include "core/rounding.h"
#include "core/setup.h"
#include "platform/platform.h"
#include "tools/standstill.h"

#include <algorithm>
#include <fstream>
#include <utility>

namespace norvik {

MacroFiles_Record MacroFiles;
Macro_Host_Operations Macro_Host;

namespace {

constexpr std::size_t Longest_Path = 60;

bool Is_Called(int number) {
  const auto& sources = Program_Wire.Program_Origin().Sources;
  return sources && std::ranges::any_of(sources->Macros, [number](const Macro_Source& macro) {
           return macro.Number == number;
         });
}

bool Is_Number(double number) {
  return number >= MachineSetup.MacroFile.first && number <= MachineSetup.MacroFile.last &&
         number == Whole_Part(number);
}

void Note_Change() {
  MacroFiles.Modified = true;
  Display_Macros();
  Macro_Host.Macros_Changed();
}

}  // namespace

std::string Shortened_Path(std::string_view path, std::size_t most) {
  constexpr std::string_view dots = "...";
  if (path.size() <= most) return std::string(path);
  // The name counts more than the folders; letters of several bytes stay whole.
  std::size_t tail = std::min(path.size(), std::max(most / 2, PathFileName(path).size() + 1));
  tail = std::min(tail, most - dots.size());
  std::size_t head = most - dots.size() - tail;
  const auto inside = [&](std::size_t at) {
    return at < path.size() && (static_cast<unsigned char>(path[at]) & 0xC0U) == 0x80U;
  };
  while (head > 0 && inside(head)) --head;
  std::size_t from = path.size() - tail;
  while (inside(from)) ++from;
  return std::string(path.substr(0, head)).append(dots).append(path.substr(from));
}

std::string Macro_Mark(int number) {
  const std::string& path = MachineSetup.MacroFile[number];
  const std::string called = Is_Called(number) ? "called" : "";
  if (path.empty()) return called.empty() ? "" : "called, no file";
  if (FileExists(path)) return called;
  return called.empty() ? "file missing" : "called, file missing";
}

void Display_Macros() {
  MacroFiles.List_Macros.clear();
  for (int number = MachineSetup.MacroFile.first; number <= MachineSetup.MacroFile.last; ++number) {
    MacroFiles.List_Macros.push_back(Format_Number(number, "000            ") +
                                     Shortened_Path(MachineSetup.MacroFile[number], Longest_Path));
  }
  Macro_Host.Form_Changed();
}

std::string First_Lines(int number) {
  constexpr std::size_t most_lines = 12, most_bytes = 4000;
  const std::string& path = MachineSetup.MacroFile[number];
  if (path.empty()) return "No file is assigned to this number.";
  std::string bytes(most_bytes, '\0');
  std::ifstream file(path, std::ios::binary);
  if (!file || !FileExists(path)) return "The file cannot be read: " + path;
  file.read(bytes.data(), static_cast<std::streamsize>(bytes.size()));
  bytes.resize(static_cast<std::size_t>(file.gcount()));
  const auto lines = Split_Lines(bytes);
  std::string text;
  for (std::size_t n = 0; n < std::min(lines.size(), most_lines); ++n) text += lines[n] + "\n";
  return text.empty() ? "The file is empty." : text;
}

// --- Handlers ------------------------------------------------------------------------------------

void AddNewMacro(int number, const std::string& path) {
  MachineSetup.MacroFile[number] = path;
  Note_Change();
}

void MacroFiles_Command_Add_Click() {
  if (!Macro_Host.May_Change()) return;
  const std::string& present = MachineSetup.MacroFile[MacroFiles.Selected];
  const auto path = Platform.Open_File_Dialog(
      {"Add macro", "Gcode Files (*.gc)|*.gc|All Files(*.*)|*.*|",
       present.empty() ? Last_File(File_Kind::GCode).Directory : PathDirectory(present), "", "gc"});
  if (path) AddNewMacro(MacroFiles.Selected, *path);
}

void MacroFiles_Command_Remove_Click() {
  if (!Macro_Host.May_Change() || MachineSetup.MacroFile[MacroFiles.Selected].empty()) return;
  AddNewMacro(MacroFiles.Selected, "");
}

void MacroFiles_Command_Index_Click() {
  if (!Macro_Host.May_Change()) return;
  const int from = MacroFiles.Selected;
  if (MachineSetup.MacroFile[from].empty()) {
    SetStatus(1, "Select a number with a file first.", 5);
    return;
  }
  const auto typed =
      Platform.Input_Box("Macro Number", "Enter new macro number, 0 to 150", std::to_string(from));
  if (!typed) return;
  const auto number = Try_Number(*typed);
  if (!number || !Is_Number(*number)) {
    SetStatus(1, "\"" + *typed + "\" is no number from 0 to 150; the macro stays where it is.", 10);
    return;
  }
  const auto to = static_cast<int>(*number);
  std::swap(MachineSetup.MacroFile[from], MachineSetup.MacroFile[to]);
  MacroFiles.Selected = to;
  Note_Change();
}

bool Save_Macros() {
  const bool saved = Write_Setup_Together([] {
    for (int number = MachineSetup.MacroFile.first; number <= MachineSetup.MacroFile.last; ++number)
      WriteSetup("Macros", "MacroFile" + std::to_string(number), MachineSetup.MacroFile[number]);
  });
  if (saved) MacroFiles.Modified = false;
  return saved;
}

void MacroFiles_Command_Close_Click() {
  if (MacroFiles.Modified) Save_Macros();
}

void MacroFiles_Print_Data() {
  if (!Stands_Still()) return;
  std::vector<std::string> lines;
  for (int number = MachineSetup.MacroFile.first; number <= MachineSetup.MacroFile.last; ++number) {
    const std::string& path = MachineSetup.MacroFile[number];
    if (!path.empty()) lines.push_back(Format_Number(number, "000   ") + path);
  }
  if (!Platform.Print_Lines(lines))
    SetStatus(1, "Nothing was printed: there is no printer, or it was cancelled.", 5);
}

}  // namespace norvik
