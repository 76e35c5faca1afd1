#include "wiring/port_choice.h"

#include "core/axis_memory.h"
#include "core/error_log.h"
#include "core/fault.h"
#include "core/messages.h"
#include "core/paths.h"
#include "core/setup.h"
#include "platform/linux/linux_platform.h"
#include "simulate/simulated_machine.h"

namespace norvik {

namespace {

struct Port_Choice_State {
  bool Simulated = false;
};
Port_Choice_State Port_Choice;

std::string Told(const std::string& text) {
  SetStatus(3, text, -1);
  return text;
}

std::string Use_Direct_Port() {
  const Port_Right alone = Lock_Direct_Port();
  if (!alone.Granted) throw Fault(Fault_Number::Permission_Denied, alone.Words);
  Install_Direct_Ports(&MachineSetup.Parallel_IODLL);
  Port_Choice.Simulated = false;
  return Told("Port: real, motors will move");
}

}  // namespace

void Use_Simulated_Machine() {
  Load_Simulated_Machine();
  Install_Simulated_Machine();
  Axis_Memory_Host.Positions_Given = Align_With_Application;
  Port_Choice.Simulated = true;
}

std::string Choose_Port() {
  const std::string wanted = Upper(Trim(ReadPointer("Platform", "Port_Access")));
  const Port_Right right = Direct_Port_Right(MachineSetup.Parallel_IODLL);
  if (wanted == "DIRECT") {
    if (!right.Granted) ErrorLogWrite(right.Words);
    return Use_Direct_Port();
  }
  if (wanted == "SIMULATED" || !right.Granted) {
    Use_Simulated_Machine();
    return Told("Port: simulated machine");
  }
  return Use_Direct_Port();
}

bool Port_Is_Simulated() {
  return Port_Choice.Simulated;
}

}  // namespace norvik
