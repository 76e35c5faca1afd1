#include "app/adapt_bar.h"
#include "app/bitmap_form.h"
#include "app/drive_session.h"
#include "app/forms.h"
#include "app/gcode_form.h"
#include "app/guide/guide.h"
#include "app/main_form.h"
#include "app/options/options_form.h"
#include "app/program_findings.h"
#include "app/session_mark.h"
#include "app/startup.h"
#include "support/reset.h"

namespace norvik {

void Reset_App() {
  Reset_Control();
  Reset_Plot();
  Reset_Import();
  Reset_Tools();
  Adapt_Bar = {};
  Bitmap_Import = {};
  Bitmap_Host = {};
  Drive_Session = {};
  Drive_Session_Host = {};
  Forms = {};
  Gcode_Form = {};
  Gcode_Host = {};
  Guide_Form = {};
  Guide_Host = {};
  Main_Form = {};
  Main_Host = {};
  Main_Window = {};
  Options_Form = {};
  Options_Host = {};
  Program_Findings = {};
  Session_Mark = {};
}

}  // namespace norvik
