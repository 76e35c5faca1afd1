#include "ui/tools/tool_windows.h"

#include "core/setup.h"
#include "ui/tools/macro_files_window.h"
#include "ui/tools/motion_analyzer_window.h"
#include "ui/tools/motion_file_window.h"
#include "ui/tools/sounds_window.h"
#include "ui/tools/tool_window.h"

namespace norvik {

const std::vector<List_Window_Row>& List_Window_Rows() {
  const auto always = [] { return true; };
  static const std::vector<List_Window_Row> rows = {
      {"Tool", "&Tool list", [] { return new Tool_Window; }, always},
      {"MacroFiles", "&Macro list", [] { return new Macro_Files_Window; }, always},
      {"Event_Sounds", "&Event sounds", [] { return new Sounds_Window; }, always},
      {"MotionFile", "Motion &file text", [] { return new Motion_File_Window; }, always},
      {"frmMotionAnalyzer", "Motion &analyzer", [] { return new Motion_Analyzer_Window; },
       [] { return MachineSetup.Motion_Analyzer_Enable == 1; }},
  };
  return rows;
}

}  // namespace norvik
