#include "support/reset.h"
#include "tools/macro_list.h"
#include "tools/motion_analyzer.h"
#include "tools/motion_file.h"
#include "tools/sound_list.h"
#include "tools/tool_list.h"

namespace norvik {

void Reset_Tools() {
  Reset_Compiler();
  Event_Sounds = {};
  Event_Sounds_Host = {};
  MotionFile = {};
  Tool_Form = {};
  Tool_Host = {};
  frmMotionAnalyzer = {};
  Motion_Analyzer_Host = {};
  MacroFiles = {};
  Macro_Host = {};
}

}  // namespace norvik
