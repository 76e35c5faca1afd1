#include "control/panel/panel.h"

#include "control/displays/displays.h"
#include "control/manual/jog_guard.h"
#include "control/manual/knob.h"
#include "control/manual/panel_edits.h"
#include "control/manual/panel_jog.h"
#include "control/manual/timing_edits.h"
#include "control/run/goto.h"
#include "control/state/cnc_controls_form.h"
#include "control/state/controller_state.h"
#include "control/state/run_plot_host.h"
#include "core/application.h"
#include "core/operation.h"
#include "core/setup.h"

namespace norvik {

void CNC_Controls_Timer1() {
  if (Application.Closing_Program || Application.ShutdownFlag) return;
  Jog_Guard_Tick();
  if (Runs(Operation::Move) && MachineSetup.Axis_Position_Update_Disable) return;
  Display_Panel();
  Run_Plot_Host.Draw_Cursor();
}

void Load_CNC_Controls() {
  Controller.Live_Feed = MachineSetup.Axis_Feed_Rate_Cut;
  Controller.Live_Feed_Cut = MachineSetup.Axis_Feed_Rate_Cut;
  Controller.Live_Feed_Travel = MachineSetup.Axis_Feed_Rate_Travel;
  Load_Timing_Controls();
  Load_Jog_Controls();
  Load_Goto_Controls();
  Load_Z_Levels();
  Draw_Knob(Knob.Knob_Position);
  CNCMode_Display();
  CNC_Display();
  CNC_Axis_Display();
}

}  // namespace norvik
