#include "control/panel/connect.h"

#include "control/manual/jog_guard.h"
#include "control/motion/motion.h"
#include "control/panel/drive_choice.h"
#include "control/state/cnc_controls_form.h"
#include "control/state/controller_state.h"
#include "control/state/run_plot_host.h"
#include "core/operation.h"
#include "core/rounding.h"
#include "core/setup.h"
#include "core/setup_tail.h"
#include "drive/drive.h"
#include "drive/drive_host.h"
#include "serial/monitor.h"
#include "serial/serial_session.h"

#include <string_view>

namespace norvik {

void Connect_Control() {
  Choose_Drive_By_Setup();
  Drive_Host.Stop_Run = [] { CNC_Stop(); };
  Drive_Host.Live_Feed = [] { return std::optional<double>(Controller.Live_Feed); };
  Drive_Host.Set_Live_Feed = [](double ipm) { Controller.Live_Feed = To_Single(ipm); };
  Drive_Host.Set_Panel_Interval = [](int interval_ms) {
    CNC_Controls_Host.Set_Timer_Interval(interval_ms);
  };
  Drive_Host.Mark_Rate_Error = [] { Run_Plot_Host.Mark_Rate_Error(); };
  Operation_Host.Drive_Missing = [] {
    const std::string_view lost = Lost_Tail.Stands_Against;
    const std::string_view missing = Drive().Missing();
    return missing.empty() ? lost : missing;
  };
  Setup_Host.Copy_Steps_Per_Unit = Copy_Steps_Per_Unit;
  Setup_Host.Send_To_Controller = Serial_Setup_Loaded;
  Jog_Guard_Watch_Dialogs();
}

}  // namespace norvik
