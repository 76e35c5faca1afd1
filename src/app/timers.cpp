#include "app/timers.h"

#include "app/gcode_form.h"
#include "app/main_form.h"
#include "app/startup.h"
#include "compiler/compile/compile.h"
#include "compiler/interpreter/compile_section.h"
#include "control/run/cnc_controller.h"
#include "core/application.h"
#include "core/messages.h"
#include "core/operation.h"
#include "core/setup.h"
#include "core/waiting.h"
#include "parallel/pin_map.h"
#include "plot/nist_plot.h"

#include <utility>

namespace norvik {

namespace {

void Bring_Forward(Form_Id form) {
  Main_Host.Show_Form(form);
  Main_Host.Focus_Form(form);
}

void Look_At_Function_Keys() {
  if (Platform.Key_Down(key::F4)) {
    Bring_Forward(Form_Id::Plot);
    Plot_Redraw(false);
  }
  if (Platform.Key_Down(key::F5)) {
    Bring_Forward(Form_Id::GCode);
    Gcode_Host.GCode_HighlightAll();
  }
  if (Platform.Key_Down(key::F6)) Bring_Forward(Form_Id::CNC_Controls);
}

}  // namespace

void Main_Timer1() {
  if (Application.ShutdownFlag) {
    Platform.Stop_Timer(std::exchange(Main_Window.Timer1, 0));
    return;
  }
  CheckEsc();
  if (Application.EscFlag) CNC_Controls_Esc();
  Look_At_Function_Keys();
  if (MachineSetup.Parallel_Port_Type == 1) Motor_Timer_Tick();
}

void Main_Timer2() {
  if (Application.ShutdownFlag) {
    Platform.Stop_Timer(std::exchange(Main_Window.Timer2, 0));
    return;
  }
  Age_Status_Panels();
  // Reads settings and looks at macro files: not while pulses wait for it.
  if (!Anything_Moves() && !Compile_Busy()) Show_Table_Notice();
}

}  // namespace norvik
