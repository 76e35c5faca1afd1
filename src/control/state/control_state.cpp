#include "control/state/cnc_controls_form.h"
#include "control/state/controller_state.h"
#include "control/state/run_consent.h"
#include "control/state/run_plot_host.h"

namespace norvik {

Controller_State Controller;
CNC_Controls_Form CNC_Controls;
CNC_Controls_Host_Operations CNC_Controls_Host;
Run_Plot_Host_Operations Run_Plot_Host;
Run_Consent_Operations Run_Consent;

}  // namespace norvik
