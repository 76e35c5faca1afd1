#include "tools/tool_list.h"

#include "compiler/tables/program_wire.h"
#include "core/application.h"
#include "core/fault.h"
#include "core/format.h"
#include "core/messages.h"
#include "core/numbers.h"
#include "core/paths.h"
#include "core/rounding.h"
#include "core/setup.h"
#include "platform/platform.h"
#include "tools/standstill.h"

#include <algorithm>
#include <cmath>
#include <filesystem>

namespace norvik {

Tool_Form_Record Tool_Form;
Tool_Host_Operations Tool_Host;

namespace {

constexpr const char* Value_Pattern = "########0.0#######";

double& Value_Of(int tool, int column) {
  return column == tool_column::Diameter ? Tools.Diameter[tool] : Tools.Length[tool];
}

void Show_Change() {
  Display_Tools();
  Tool_Host.Tools_Changed();
}

}  // namespace

void Display_Tools() {
  Tool_Form.Label_Tool = "Tool List: " + PathFileName(MachineSetup.Tool_File_Name);
  Tool_Host.Form_Changed();
}

std::string Tool_Number_Text(int tool) {
  return Format_Number(tool, "000    ");
}

std::string Tool_Value_Text(double value) {
  return Format_Number(value, Value_Pattern);
}

double Tool_Value(int tool, int column) {
  return Value_Of(tool, column);
}

std::vector<Tool_Use> Tools_Used() {
  std::vector<Tool_Use> uses(static_cast<std::size_t>(Tools.Diameter.last) + 1);
  Nullable tool;
  for (const Wire& wire : Program_Wire.Rows()) {
    if (wire.Tool) tool = wire.Tool;
    const double number = tool.value_or(0);
    if (!(number >= 0) || number > Tools.Diameter.last) continue;
    Tool_Use& use = uses[static_cast<std::size_t>(Round_Half_Even(number))];
    if (wire.Tool) use.Used = true;
    if (wire.Cutter_Comp != 0) use.Compensated = true;
  }
  return uses;
}

std::string Use_Text(const std::vector<Tool_Use>& uses, int tool) {
  const Tool_Use& use = uses.at(static_cast<std::size_t>(tool));
  if (use.Compensated && Tools.Diameter[tool] == 0) return "G41/G42 with diameter 0";
  return use.Used ? "used" : "";
}

std::optional<int> Nearest_Tool(double diameter) {
  std::optional<int> nearest;
  for (int tool = 1; tool <= Tools.Diameter.last; ++tool) {
    const double size = Tools.Diameter[tool];
    if (size == 0) continue;
    if (!nearest || std::abs(size - diameter) < std::abs(Tools.Diameter[*nearest] - diameter))
      nearest = tool;
  }
  return nearest;
}

// --- Handlers ------------------------------------------------------------------------------------

void Tool_Form_Load() {
  Tool_Form.Selected = 1;
  Display_Tools();
}

bool Take_Tool_Value(int tool, int column, std::string_view text) {
  if (!Tool_Host.May_Change()) return false;
  const auto number = Trim(text).empty() ? std::optional(0.0) : Try_Number(text);
  if (!number || (column == tool_column::Diameter && *number < 0)) {
    SetStatus(1,
              "\"" + std::string(text) + "\" is no " +
                  (column == tool_column::Diameter ? "diameter" : "offset") +
                  "; the old value stays.",
              10);
    return false;
  }
  if (Value_Of(tool, column) == *number) return true;
  Value_Of(tool, column) = *number;
  Tool_Form.Modified = true;
  Show_Change();
  return true;
}

void List_Tools_DblClick(int tool, int column) {
  const bool diameter = column == tool_column::Diameter;
  if ((!diameter && column != tool_column::Offset) || !Stands_Still()) return;
  const auto typed =
      Platform.Input_Box(diameter ? "Tool Diameter" : "Tool Offset",
                         diameter ? "Enter new tool diameter" : "Enter new tool offset",
                         Tool_Value_Text(Tool_Value(tool, column)));
  if (typed) Take_Tool_Value(tool, column, *typed);
}

void Save_Tools(const std::string& path) {
  Replace_File(path, Tool_Text());
}

namespace {

// The file becomes the one that the setup names.
void Become_Tool_File(const std::string& path) {
  MachineSetup.Tool_File_Name = path;
  MachineSetup.Tool_Directory = PathDirectory(path);
  Write_Setup_Together([] {
    WriteSetup("Tools", "Tool_File_Name", MachineSetup.Tool_File_Name);
    WriteSetup("Tools", "Tool_Directory", MachineSetup.Tool_Directory);
  });
  Tool_Form.Modified = false;
}

File_Dialog Dialog(const char* title, const std::string& name) {
  const std::string& folder = MachineSetup.Tool_Directory;
  return {title, "Tool Files (*.tol)|*.tol", folder.empty() ? Application.AppDirectory : folder,
          name, "tol"};
}

bool Told(const std::function<void()>& work) {
  return Trap_With(
      [](const Fault& fault) {
        Log_Fault("Tool List", fault);
        Platform.Message_Box("Tool List", fault.Description, Box_Buttons::Ok);
      },
      work);
}

bool Save_To(const std::string& path) {
  return Told([&] {
    Save_Tools(path);
    Become_Tool_File(path);
    Display_Tools();
  });
}

}  // namespace

Tool_Findings Load_Tools(const std::string& path) {
  constexpr std::uintmax_t most_bytes = 1 << 20;
  std::error_code unknown;
  const auto size = std::filesystem::file_size(path, unknown);
  if (!unknown && size > most_bytes)
    throw Fault(Fault_Number::Overflow, path + " is no tool file: it has more than 1 MB.");
  auto findings = Take_Tool_Text(Read_Whole_File(path));
  Become_Tool_File(path);
  return findings;
}

namespace {

void Tell(const std::string& name, const Tool_Findings& findings) {
  constexpr std::size_t most = 5;
  std::string text;
  for (std::size_t n = 0; n < std::min(findings.Lines.size(), most); ++n) {
    text += "\n" + findings.Lines[n];
  }
  if (findings.Lines.size() > most) {
    text += "\n" + std::to_string(findings.Lines.size() - most) + " more lines";
  }
  if (!findings.Rows.empty()) text += "\n" + findings.Rows;
  if (text.empty()) return;
  AddMessage("Tool file " + name + ": " +
             (findings.Lines.empty() ? findings.Rows : findings.Lines.front()));
  Platform.Message_Box("Tool List", name + ":" + text, Box_Buttons::Ok);
}

}  // namespace

void Tool_Command_Save_Click() {
  if (!Stands_Still()) return;
  auto path = Platform.Save_File_Dialog(Dialog("Save", PathFileName(MachineSetup.Tool_File_Name)));
  if (!path) return;
  if (PathFileName(*path).find('.') == std::string::npos) *path += ".tol";
  if (FileExists(*path) &&
      Platform.Message_Box("File Exists", "That file already exists!  Do you want to replace it?",
                           Box_Buttons::Ok_Cancel) != Box_Answer::Ok)
    return;
  Save_To(*path);
}

void Tool_Command_Load_Click() {
  if (!Tool_Host.May_Change()) return;
  const auto path = Platform.Open_File_Dialog(Dialog("Load", ""));
  if (!path) return;
  Tool_Findings findings;
  if (!Told([&] { findings = Load_Tools(*path); })) return;
  Show_Change();
  Tell(PathFileName(*path), findings);
}

void Tool_Command_Clear_Click() {
  if (!Tool_Host.May_Change()) return;
  if (Platform.Message_Box("Tool List Clear", "Do you want to clear the tool list?",
                           Box_Buttons::Yes_No) != Box_Answer::Yes)
    return;
  Tools = {};
  Tool_Form.Modified = true;
  Show_Change();
}

bool Tool_Command_OK_Click() {
  if (!Tool_Form.Modified) return true;
  if (!Stands_Still()) return false;
  const Box_Answer answer =
      Platform.Message_Box("Tool File Save",
                           "The tool list has been modified.  Do you want to save " +
                               PathFileName(MachineSetup.Tool_File_Name) + "?",
                           Box_Buttons::Yes_No_Cancel);
  if (answer == Box_Answer::Yes) return Save_To(MachineSetup.Tool_File_Name);
  if (answer == Box_Answer::No)
    Tool_Form.Modified = false;  // asked once; the tools stay as they are
  return answer == Box_Answer::No;
}

}  // namespace norvik
