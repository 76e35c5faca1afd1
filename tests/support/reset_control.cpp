#include "control/manual/jog_key.h"
#include "control/manual/joystick_jog.h"
#include "control/manual/knob.h"
#include "control/manual/table_setup_keys.h"
#include "control/motion/machine_move.h"
#include "control/state/cnc_controls_form.h"
#include "control/state/controller_state.h"
#include "control/state/run_consent.h"
#include "control/state/run_plot_host.h"
#include "support/reset.h"

namespace norvik {

void Reset_Control() {
  Reset_Compiler();
  Reset_Parallel();
  Reset_Serial();
  Controller = {};
  CNC_Controls = {};
  CNC_Controls_Host = {};
  Run_Plot_Host = {};
  Run_Consent = {};
  Move_Trace = {};
  Knob = {};
  JogKey = {};
  JogKey_Form = {};
  JogKey_Host = {};
  JogKey_Test = {};
  Joystick_Jog = {};
  Table_Setup_Keys = {};
}

}  // namespace norvik
