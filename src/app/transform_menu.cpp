#include "app/transform_menu.h"

#include "app/gcode_form.h"
#include "compiler/compile/compile.h"
#include "compiler/tables/program_wire.h"
#include "compiler/text/program_text.h"
#include "control/motion/motion.h"
#include "core/application.h"
#include "core/error_log.h"
#include "core/fault.h"
#include "core/format.h"
#include "core/messages.h"
#include "core/numbers.h"
#include "core/operation.h"
#include "core/paths.h"
#include "core/remembered_files.h"
#include "core/rounding.h"
#include "core/setup.h"
#include "platform/platform.h"
#include "plot/nist_plot.h"
#include "transform/exports.h"

#include <cmath>
#include <limits>
#include <optional>
#include <string>

namespace norvik {

namespace {

constexpr int Status_Seconds = 5, Failure_Seconds = 10;
constexpr const char* Title = "Norvik";

void Tell(const std::string& text) {
  SetStatus(1, text, Failure_Seconds);
  AddMessage(text);
}

void Tell_Failure(const Fault& fault, const char* what_stands) {
  ErrorLogWrite(std::string("GCode Process Error # ") + fault.Description);
  Platform.Message_Box(Title, fault.Description + "\n\n" + what_stands, Box_Buttons::Ok);
}

// What goes lost, with Continue and Cancel.
bool Operator_Goes_On(const Transformed& result) {
  std::string text;
  for (const std::string& sentence : Texts_Of(result.Losses)) text += sentence + "\n\n";
  if (text.empty()) return true;
  text +=
      "Continue changes the text; Ctrl+Z brings the old text back. Cancel leaves the text as it "
      "is.";
  return Platform.Message_Box(Title, text, Box_Buttons::Continue_Cancel) == Box_Answer::Ok;
}

bool Apply(Transform transform, const Transform_Values& values) {
  const auto before = GCode_Program.Text;
  Transformed result = Transform_Program(*before, transform, values);
  switch (result.State) {
    case Transform_State::Escaped:
      SetStatus(1, "Ended by ESC: the text is as it was.", Status_Seconds);
      return false;
    case Transform_State::Refused:
      Platform.Message_Box(Title, result.Refusal, Box_Buttons::Ok);
      return false;
    case Transform_State::Done:
      break;
  }
  if (!Operator_Goes_On(result)) {
    SetStatus(1, "The text is as it was.", Status_Seconds);
    return false;
  }
  // In a yield, or while the box was open.
  if (GCode_Program.Text != before || GCode_Program.Typed_Waits) {
    SetStatus(1, "The text was changed meanwhile: it stays as it is. Try again.", Failure_Seconds);
    return false;
  }
  Plot_Keep_Path_Before();
  return Take_New_Text(std::move(result.Text));
}

// A number that the operator has typed; absent when cancelled, left empty or no number.
std::optional<float> Asked_Number(const char* prompt, float present) {
  const auto answer = Platform.Input_Box(Title, prompt, RegionalFix(Shortest_Text(present)));
  if (!answer || Trim(*answer).empty()) return std::nullopt;
  const auto number = Try_Number(*answer);
  if (!number || std::abs(*number) > std::numeric_limits<float>::max()) {
    SetStatus(1, "\"" + *answer + "\" is no number: the text is as it was.", Failure_Seconds);
    return std::nullopt;
  }
  return To_Single(*number);
}

void Store(std::string_view section, std::string_view key, float value) {
  WriteSetup(section, key, RegionalFix(Shortest_Text(value)));
}

// Absolute and incremental open the program anew, and what is opened is compiled where the setup
// says so.
void Compile_As_Opened() {
  Machine.StartingStep = 1;
  if (MachineSetup.Plot_Auto_Loading == 0 || GCodeLineCount() == 0) return;
  GCode_Compile_All();
  Display_Gcode_Steps();
}

bool May_Transform() {
  return Stopped_For("Can't change the program");
}

}  // namespace

bool Take_New_Text(std::string text) {
  const auto before = GCode_Program.Text;
  SaveChanges(std::move(text));
  if (GCode_Program.Text == before) {
    SetStatus(1, "The new text is too large; the old one stays.", Failure_Seconds);
    return false;
  }
  GCode_Program.Typed_Waits = false;
  GCode_Program.Unsaved = true;
  Gcode_Host.Show_Changed_Program();
  Display_Gcode_Steps();
  SetStatus(1, "GCode has changed and needs to be compiled.", Status_Seconds);
  Show_Table_Notice();
  return true;
}

bool Transform_Shown_Program(Transform transform, const Transform_Values& values) {
  if (!May_Transform()) return false;
  Take_Typed_Text();
  if (GCodeLineCount() == 0) return false;
  bool changed = false;
  Trap_With([](const Fault& fault) { Tell_Failure(fault, "The text is as it was."); },
            [&] {
              const Operation_Scope edit(Operation::Edit);
              changed = Apply(transform, values);
            });
  return changed;
}

// --- Menu ----------------------------------------------------------------------------------------

void Menu_Functions_Scale() {
  if (!May_Transform()) return;
  const auto asked_x = Asked_Number("Enter X Scale ", MachineSetup.GC_ScaleX);
  if (!asked_x) return;
  const auto asked_y = Asked_Number("Enter Y Scale ", MachineSetup.GC_ScaleY);
  if (!asked_y) return;
  MachineSetup.GC_ScaleX = *asked_x == 0 ? 1 : *asked_x;
  MachineSetup.GC_ScaleY = *asked_y == 0 ? 1 : *asked_y;
  Store("G_CODE", "GC_ScaleX", MachineSetup.GC_ScaleX);
  Store("G_CODE", "GC_ScaleY", MachineSetup.GC_ScaleY);
  Transform_Shown_Program(Transform::Scale, Values_Of_Setup(Transform::Scale));
}

void Menu_Functions_Offset() {
  if (!May_Transform()) return;
  constexpr const char* prompts[] = {"Enter X offset ", "Enter Y offset ", "Enter Z offset "};
  Indexed<float, 1, 3> offsets;
  for (int axis = 1; axis <= 3; ++axis) {
    const auto asked = Asked_Number(prompts[axis - 1], MachineSetup.Default_Offset[axis]);
    if (!asked) return;
    offsets[axis] = *asked;
  }
  MachineSetup.Default_Offset = offsets;
  for (int axis = 1; axis <= 3; ++axis) {
    Store("General", "Default_Offset_" + std::to_string(axis), offsets[axis]);
  }
  Transform_Shown_Program(Transform::Offset, Values_Of_Setup(Transform::Offset));
}

void Menu_Functions_Conv_Absolute() {
  if (Transform_Shown_Program(Transform::Absolute, {})) Compile_As_Opened();
}

void Menu_Functions_Conv_Incremental() {
  if (Transform_Shown_Program(Transform::Incremental, {})) Compile_As_Opened();
}

void Menu_Functions_OptimizeToolPath() {
  if (!May_Transform()) return;
  Take_Typed_Text();
  bool whole = false;
  Trap("GCode File Sort Error", [&] {
    const Operation_Scope edit(Operation::Edit);
    whole =
        Transform_Program(*GCode_Program.Text, Transform::Sort, {}).State == Transform_State::Done;
  });
  Display_Gcode_Steps();
  Plot_Redraw(true);
  if (whole) {
    SetStatus(1, "The file sort orders nothing: the program is as it was.", Status_Seconds);
  }
}

// --- Buttons -------------------------------------------------------------------------------------

void Command_Add_Seq_Click() {
  Transform_Shown_Program(Transform::Add_Sequence, {});
}

void Command_Rem_Seq_Click() {
  Transform_Shown_Program(Transform::Remove_Sequence, {});
}

void Command_DecimalFormat_Click() {
  Transform_Shown_Program(Transform::Decimal_Format, {});
}

void Command_Convert_Click() {
  const bool metric = Gcode_Form.Combo_Convert.ListIndex == 0;
  Transform_Shown_Program(metric ? Transform::Metric : Transform::Imperial, {});
}

// --- Exports -------------------------------------------------------------------------------------

namespace {

struct Export_Row {
  const char* Title;
  const char* Filter;
  const char* Extension;
  File_Kind Remembered;
  Export_Report (*Save)(const std::string& path, const std::string& wire_table);
};
constexpr Export_Row Export_Rows[] = {
    {"Export DXF", "DXF Files (*.dxf)|*.dxf|All Files (*.*)|*.*", "dxf", File_Kind::DXF_Out,
     Save_DXF_File},
    {"Export HPGL", "HPGL Files (*.plt)|*.plt|All Files (*.*)|*.*", "plt", File_Kind::HPGL_Out,
     Save_HPGL_File},
};

// The tables on disk are of the program as it stands in the window.
bool Bring_Tables_Up_To_Date() {
  Take_Typed_Text();
  const Table_Standing standing = Judge_Program_Table().Standing;
  if (standing == Table_Standing::Ready && Program_Wire.Program_Origin().Kind != Table_Kind::None) {
    return true;
  }
  const bool whole = GCode_Compile_All();
  Display_Gcode_Steps();
  if (!whole) Tell("Not exported: the compile did not come to its end.");
  return whole;
}

void Export(const Export_Row& row) {
  if (!Stopped_For("Can't export")) return;
  const Remembered_File& last = Last_File(row.Remembered);
  auto path = Platform.Save_File_Dialog({row.Title, row.Filter, last.Directory,
                                         ChangeExtension(last.Name, row.Extension), row.Extension});
  if (!path) return;
  if (PathFileName(*path).find('.') == std::string::npos) {
    *path += std::string(".") + row.Extension;
  }
  RememberFile(row.Remembered, *path);
  if (!Bring_Tables_Up_To_Date()) return;
  Export_Report report;
  {
    const Operation_Scope edit(Operation::Edit);
    report = row.Save(*path, Join_Path(Application.Table_Folder, Wire_Table_Name));
  }
  if (!report.Written) {
    if (report.Failure.empty())
      return SetStatus(1, "Ended by ESC: nothing was written.", Status_Seconds);
    Platform.Message_Box(Title, report.Failure + "\n\nThe drawing is not written.",
                         Box_Buttons::Ok);
    return;
  }
  const auto texts = Texts_Of(report);
  if (texts.empty()) SetStatus(1, "Exported: " + *path, Status_Seconds);
  for (const std::string& text : texts) Tell(text);
}

}  // namespace

void Menu_File_Export_DXF() {
  Export(Export_Rows[0]);
}

void Menu_File_Export_HPGL() {
  Export(Export_Rows[1]);
}

}  // namespace norvik
