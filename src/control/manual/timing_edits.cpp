#include "control/manual/timing_edits.h"

#include "control/displays/displays.h"
#include "control/motion/motion.h"
#include "control/state/cnc_controls_form.h"
#include "control/state/control_texts.h"
#include "core/application.h"
#include "core/messages.h"
#include "core/operation.h"
#include "parallel/system_timing.h"
#include "parallel/timing.h"

namespace norvik {

namespace {

bool May_Calibrate() {
  return Stopped_For("Can't find the time constant");
}

}  // namespace

void Panel_Time_Constant_Click() {
  if (Anything_Moves()) {
    Tell(control_text::Not_While_Moving, 5);
    return;
  }
  Label_Time_Constant_Click();
  CNC_Display();
}

void Panel_TC_Adjust_Click(int index) {
  Command_TC_Adjust(index);
  CNC_Display();
}

void Panel_Autotune_Click() {
  Check_FeedRate_Autotune_Click(CNC_Controls.Check_FeedRate_Autotune.Value);
}

void Load_Timing_Controls() {
  Load_FeedRate_Autotune();
  CNC_Controls.Check_FeedRate_Autotune.Value = FeedRate_Autotune();
}

void Panel_Get_Time_Constant_Click() {
  if (Runs(Operation::Calibration)) {
    Application.EscFlag = true;
    return;
  }
  if (!May_Calibrate()) return;
  // The panel's timer may stand still meanwhile, but the way out is to be seen at once.
  CNC_Controls.Command_Get_Time_Constant.Caption = "Cancel";
  CNC_Controls_Host.Form_Changed();
  Command_Get_Time_Constant_Click();
  CNC_Display();
}

void Timing_Test_Start_Click() {
  if (Runs(Operation::Calibration) || !May_Calibrate()) return;
  System_Timing_Start_Click();
  CNC_Display();
}

}  // namespace norvik
