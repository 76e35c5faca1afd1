#include "app/setup_apply.h"

#include "app/drive_session.h"
#include "control/manual/jog_key.h"
#include "control/manual/table_setup_keys.h"
#include "control/motion/motion.h"
#include "control/safety/safety.h"
#include "control/state/cnc_controls_form.h"
#include "control/state/control_texts.h"
#include "core/messages.h"
#include "core/operation.h"
#include "core/setup.h"
#include "drive/drive.h"
#include "parallel/port_setup.h"
#include "platform/platform.h"
#include "serial/serial_page.h"

namespace norvik {

namespace {

void Told_Saved(bool saved, const char* text) {
  constexpr const char* lost =
      "Not saved: the machine file cannot be written. The change holds until Norvik ends.";
  if (saved)
    SetStatus(1, text, 5);
  else
    Tell(lost, 10);
}

}  // namespace

void Port_Setup_Apply_Click() {
  if (!Stopped_For("Can't change the port setup")) return;
  Platform.Set_Mouse_Pointer(Mouse_Pointer::Busy);
  End_Drive_Session();  // as long as the pins mean what they have been
  Serial_Page.Label_Hint.clear();
  if (Port_Setup.Option_Port_Type > 1) Take_Serial_Page();
  const bool saved = Save_Parallel_Info();
  Begin_Drive_Session();
  for (auto& output : CNC_Controls.Check_Outputs) output.Value = false;
  const std::string hint = Port_Setup.Label_Hint;
  Port_Setup_Form_Load();
  Serial_Page_Form_Load();
  Port_Setup.Label_Hint = hint.empty() ? Serial_Page.Label_Hint : hint;
  CNC_Controls_Host.Form_Changed();
  Platform.Set_Mouse_Pointer(Mouse_Pointer::Normal);
  Told_Saved(saved, "The port setup is saved. Outputs and motors are off.");
  Tell_Session_Start();
}

void Table_Setup_Apply_Click() {
  if (!Stopped_For("Can't change the jog keys")) return;
  Platform.Set_Mouse_Pointer(Mouse_Pointer::Busy);
  DoEvents();
  Save_Jog_Tables();
  const bool saved = SaveMachineSetup();
  // A file that cannot be written may not be readable either; what is in memory is then all there
  // is.
  if (saved) LoadMachineSetup();
  // The yields let a press through that began something.
  if (!Anything_Moves()) Drive().Idle();
  Display_Jog_Tables();
  JogKey_Host.Form_Changed();
  Platform.Set_Mouse_Pointer(Mouse_Pointer::Normal);
  Told_Saved(saved, "The jog keys are saved. Motors are off.");
  DoEvents();
}

void Menu_Machine_Diagnostics() {
  if (Anything_Moves()) {
    Tell(control_text::Not_While_Moving, 5);
    return;
  }
  Platform.Message_Box("Diagnostics", Drive().Diagnostics(), Box_Buttons::Ok);
}

}  // namespace norvik
