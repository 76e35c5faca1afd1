#include "serial/serial_page.h"

#include "core/application.h"
#include "core/axes.h"
#include "core/fault.h"
#include "core/messages.h"
#include "core/operation.h"
#include "core/paths.h"
#include "core/setup.h"
#include "core/setup_keys.h"
#include "serial/commands.h"
#include "serial/monitor.h"
#include "serial/serial_link.h"
#include "serial/serial_session.h"

#include <iterator>

namespace norvik {

Serial_Page_Form Serial_Page;

namespace {

std::string Stored(const std::string& name) {
  const auto key = Find_Setup_Key(name);
  return key ? Setup_Text(*key->Row, key->Index) : std::string();
}

std::string Of_Axis(const char* family, int axis) {
  return std::string("Dravon Setup.") + family + std::to_string(axis);
}

// Raises what a wrong text is called; the old value is kept.
void Change(const std::string& name, const std::string& text) {
  if (const auto key = Find_Setup_Key(name)) Change_Setup_Key(*key, text);
}

void Take(const char* title, const std::string& name, const std::string& text) {
  if (text == Stored(name)) return;
  const auto hint = [title](const std::string& why) {
    if (Serial_Page.Label_Hint.empty())
      Serial_Page.Label_Hint = std::string(title) + ": " + why + " The value before stays.";
  };
  if (Trim(text).empty()) return hint("nothing is written there.");
  Trap_With([&](const Fault& wrong) { hint(wrong.Description); },
            [&] { Change(name, Trim(text)); });
}

std::string Mode_Words(const std::string& stored) {
  for (std::size_t i = 0; i < std::size(Offered_Encoder_Modes); ++i)
    if (stored == std::to_string(i + 1)) return Offered_Encoder_Modes[i];
  return stored;
}

std::string Mode_Value(const std::string& words) {
  for (std::size_t i = 0; i < std::size(Offered_Encoder_Modes); ++i)
    if (Upper(Trim(words)) == Offered_Encoder_Modes[i]) return std::to_string(i + 1);
  return words;
}

constexpr const char* No_Answer = "The board did not answer. Look at the link, then try again.";

bool Refused(const char* what) {
  const bool moves = Anything_Moves();
  if (!moves && Serial_Is_Open() && Dravon.ControllerPresent) return false;
  Tell(std::string(what) +
           (moves ? " while the machine moves: stop it first."
                  : " as long as no board answers. Choose drive and port, then press Apply."),
       5);
  return true;
}

}  // namespace

void Serial_Page_Form_Load() {
  Serial_Page_Form& page = Serial_Page;
  page.Combo_Dravon_SerialPort = Stored("Parallel Setup.Dravon_CommPort");
  page.Text_Dravon_SASF = Stored("Parallel Setup.Dravon_SASF");
  page.Text_Dravon_Spindle_RPM = Stored("Dravon Setup.Dravon_Spindle_RPM");
  page.Combo_DravonArcMinimumLength = Stored("Dravon Setup.DravonArcMinimumLength");
  page.Text_Dravon_MCode_High = MachineSetup.Dravon_MCode_High[0];
  page.Text_Dravon_MCode_Low = MachineSetup.Dravon_MCode_Low[0];
  page.Check_Dravon_PWM_Inv = MachineSetup.Dravon_PWM_Inv;
  page.Check_LimitSwitchDisable = MachineSetup.LimitSwitchDisable == 1;
  for (int axis = 1; axis <= Axis_Count; ++axis) {
    page.Text_Dravon_CByte[axis] = Stored(Of_Axis("Dravon_CByte", axis));
    page.Check_Dravon_Enc_Enable[axis] = MachineSetup.Dravon_Enc_Enable[axis] != 0;
    page.Check_Dravon_Enc_StopOnFault[axis] = MachineSetup.Dravon_Enc_StopOnFault[axis] != 0;
    page.Combo_Dravon_Enc_Mode[axis] = Mode_Words(Stored(Of_Axis("Dravon_Enc_Mode_", axis)));
    page.Combo_Dravon_Enc_Error[axis] = Stored(Of_Axis("Dravon_Enc_MaxError", axis));
    page.Text_Dravon_Enc_CFactor[axis] = Stored(Of_Axis("Dravon_Enc_CFactor", axis));
  }
}

void Take_Serial_Page() {
  Serial_Page_Form& page = Serial_Page;
  page.Label_Hint.clear();
  Take("Serial port", "Parallel Setup.Dravon_CommPort", page.Combo_Dravon_SerialPort);
  Take("Smoothing", "Parallel Setup.Dravon_SASF", page.Text_Dravon_SASF);
  Take("Spindle speed", "Dravon Setup.Dravon_Spindle_RPM", page.Text_Dravon_Spindle_RPM);
  Take("Shortest arc", "Dravon Setup.DravonArcMinimumLength", page.Combo_DravonArcMinimumLength);
  MachineSetup.Dravon_MCode_High[0] = Trim(page.Text_Dravon_MCode_High);
  MachineSetup.Dravon_MCode_Low[0] = Trim(page.Text_Dravon_MCode_Low);
  MachineSetup.Dravon_PWM_Inv = page.Check_Dravon_PWM_Inv;
  MachineSetup.LimitSwitchDisable = page.Check_LimitSwitchDisable ? 1 : 0;
  for (int axis = 1; axis <= Axis_Count; ++axis) {
    const std::string letter = std::string(" of ") + Axis_Letter(axis);
    Take(("Control byte " + std::to_string(axis)).c_str(), Of_Axis("Dravon_CByte", axis),
         page.Text_Dravon_CByte[axis]);
    MachineSetup.Dravon_Enc_Enable[axis] = page.Check_Dravon_Enc_Enable[axis] ? 1 : 0;
    MachineSetup.Dravon_Enc_StopOnFault[axis] = page.Check_Dravon_Enc_StopOnFault[axis] ? 1 : 0;
    Take(("Encoder mode" + letter).c_str(), Of_Axis("Dravon_Enc_Mode_", axis),
         Mode_Value(page.Combo_Dravon_Enc_Mode[axis]));
    Take(("Largest deviation" + letter).c_str(), Of_Axis("Dravon_Enc_MaxError", axis),
         page.Combo_Dravon_Enc_Error[axis]);
    Take(("Encoder factor" + letter).c_str(), Of_Axis("Dravon_Enc_CFactor", axis),
         page.Text_Dravon_Enc_CFactor[axis]);
  }
}

void Command_Dravon_ResetErrors_Click() {
  Reset_Serial_Counters();
  DRAVON_Timer1_Tick();
}

void Command_DravonReset_Click() {
  if (Refused("Can't restart the board")) return;
  Tell(DravonReset() ? "The board was restarted. Its counters began at 0: home the axes or set the "
                       "positions."
                     : No_Answer,
       10);
  DRAVON_Timer1_Tick();
}

void Command_Enc_Fault_Flag_Click() {
  if (Refused("Can't clear the faults")) return;
  const bool cleared = ClearFaults();
  DravonPoll();
  const std::string left = Fault_Axes();
  if (!cleared)
    Tell(No_Answer, 10);
  else if (!left.empty())
    Tell("The encoder of " + left + " still differs too far: find the cause, or home.", 10);
  else
    Tell("Faults are cleared. Home, or compare the positions with the machine.", 5);
  DRAVON_Timer1_Tick();
}

void Command_Set_Encoder_Click() {
  if (Refused("Can't change the encoders")) return;
  Take_Serial_Page();
  const bool saved = SaveMachineSetup();
  Serial_Page_Form_Load();
  if (!DravonConfigure())
    Tell(No_Answer, 10);
  else if (!saved)
    Tell("Not saved: the machine file cannot be written. The change holds until Norvik ends.", 10);
  else
    Tell("The encoders are set up.", 5);
  DRAVON_Timer1_Tick();
}

void Command_Dravon_Aux_Output_Click(int output) {
  if (Refused("Can't switch an output here")) return;
  const bool on = !Dravon.Outputs[output];
  if (on && Machine.EStop_Flag)
    return Tell("The motors are disabled: no output is switched on.", 5);
  if (!(on ? OutputOn(output) : OutputOff(output))) Tell(No_Answer, 10);
  DRAVON_Timer1_Tick();
}

}  // namespace norvik
