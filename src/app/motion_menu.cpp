#include "app/motion_menu.h"

#include "app/gcode_form.h"
#include "app/main_form.h"
#include "app/openers.h"
#include "compiler/tables/program_wire.h"
#include "compiler/text/program_text.h"
#include "control/motion/motion.h"
#include "core/messages.h"
#include "core/operation.h"
#include "core/paths.h"
#include "core/recent_files.h"
#include "core/remembered_files.h"
#include "platform/platform.h"
#include "plot/nist_plot.h"
#include "tools/macro_list.h"
#include "tools/motion_analyzer.h"
#include "tools/motion_file.h"
#include "tools/tool_list.h"

namespace norvik {

namespace {

constexpr const char* Filter = "Motion Files (*.mcd)|*.mcd|All Files(*.*)|*.*";

void Become_Current(const std::string& path) {
  RememberFile(File_Kind::Motion, path);
  Main_Form.Current_File = path;
  Set_Caption(path);
  Add_Recent_File(path);
}

bool Load(const std::string& path) {
  Take_Typed_Text();  // what is typed later is newer than the motion file
  if (!Load_Motion_File(PathFileName(path), path)) return false;
  Display_Gcode_Steps();
  return true;
}

// The table on disk is that of the last compile. True when the operator wants that one.
bool Wants_This_Table() {
  const Table_Judgement table = Judge_Program_Table();
  std::string why;
  switch (table.Standing) {
    case Table_Standing::Other_Text:
      why = "The text has changed since the last compile.";
      break;
    case Table_Standing::Cut_Short:
      why = "The last compile was cut short.";
      break;
    case Table_Standing::Other_Sources:
      why = table.Changed + " has changed since the last compile.";
      break;
    case Table_Standing::Ready:
    case Table_Standing::Of_Goto:
      return true;
  }
  return Platform.Message_Box("Save motion",
                              why +
                                  " The motion file would hold what was compiled then. Cancel and "
                                  "compile (Ctrl+B), or save it all the same?",
                              Box_Buttons::Ok_Cancel) == Box_Answer::Ok;
}

// A row of the analyzer in the plot, and its line in the text where that is the line it came from.
void Show_Analyzed_Step(std::int32_t step, std::string_view text) {
  if (Anything_Moves()) return;
  Plot_Highlight_Step(step);
  if (step >= 1 && step <= GCodeLineCount() && GCode_Line(step) == text)
    Gcode_Host.GCode_HighlightWords(Text_Line_Of_Step(step));
}

void Show_Changed_Tools() {
  Show_Table_Notice();
  if (!Anything_Moves()) Plot_Refresh();
}

}  // namespace

void Menu_File_Save_Motion() {
  if (!Stopped_For("Can't save file") || !Wants_This_Table()) return;
  const std::string stem = FileNameStem(PathFileName(Main_Form.Current_File));
  auto path =
      Platform.Save_File_Dialog({"Save motion", Filter, Last_File(File_Kind::Motion).Directory,
                                 stem.empty() ? "" : stem + ".mcd", "mcd"});
  if (!path) return;
  if (PathFileName(*path).find('.') == std::string::npos) *path += ".mcd";
  if (!Save_Motion_File(PathFileName(*path), *path)) return;
  RememberFile(File_Kind::Motion, *path);
  SetStatus(1, "Saved: " + *path, 5);
}

void Menu_File_Open_Motion() {
  if (!Stopped_For("Can't open file")) return;
  const auto path = Platform.Open_File_Dialog(
      {"Open motion", Filter, Last_File(File_Kind::Motion).Directory, "", "mcd"});
  if (path && Load(*path)) Become_Current(*path);
}

void Show_Marks_Of_Table() {
  Tool_Host.Form_Changed();
  Macro_Host.Form_Changed();
}

void Connect_Tools() {
  Register_Opener(Opened_Kind::Motion, [](const std::string& path) { Load(path); });
  Motion_Analyzer_Host.May_Replace_Table = [] {
    return Stopped_For("Can't change the motion table");
  };
  Motion_Analyzer_Host.Show_Step = Show_Analyzed_Step;
  Tool_Host.May_Change = [] { return Stopped_For("Can't change the tools"); };
  Tool_Host.Tools_Changed = Show_Changed_Tools;
  Macro_Host.May_Change = [] { return Stopped_For("Can't change the macros"); };
  Macro_Host.Macros_Changed = Show_Table_Notice;
}

}  // namespace norvik
