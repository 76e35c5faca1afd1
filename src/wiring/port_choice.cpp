#include "wiring/port_choice.h"

#include "core/axis_memory.h"
#include "core/error_log.h"
#include "core/fault.h"
#include "core/messages.h"
#include "core/paths.h"
#include "core/setup.h"
#include "parallel/last_writes.h"
#include "parallel/port_ranges.h"
#include "parallel/ports.h"
#include "platform/linux/fatal_signals.h"
#include "platform/linux/linux_platform.h"
#include "platform/linux/port_cards.h"
#include "simulate/simulated_machine.h"

namespace norvik {

namespace {

struct Port_Choice_State {
  bool Simulated = false;
  std::string Refusal;
};
Port_Choice_State Port_Choice;

std::string Told(const std::string& text) {
  SetStatus(3, text, -1);
  return text;
}

std::string Use_Direct_Port(const Port_Right& right) {
  const Port_Right alone = Lock_Direct_Port();
  if (!alone.Granted) throw Fault(Fault_Number::Permission_Denied, alone.Words);
  Install_Direct_Ports(&MachineSetup.Parallel_IODLL, {Is_Machine_Port, Words_About_Refused_Port});
  Install_Fatal_Signals([]() noexcept { Make_Last_Writes(Write_Port_In_Handler, Written_Byte); });
  Port_Choice.Simulated = false;
  if (right.Granted) return Told("Port: real, motors will move");
  Port_Choice.Refusal = right.Words;
  ErrorLogWrite(right.Words);
  AddMessage(right.Words);
  return Told("Port: real, but access is refused: motors will not move");
}

}  // namespace

void Use_Simulated_Machine() {
  Load_Simulated_Machine();
  Install_Simulated_Machine();
  Axis_Memory_Host.Positions_Given = Align_With_Application;
  Port_Choice.Simulated = true;
}

void Find_Cards() {
  Port_Ranges.Cards = Ranges_In(ReadPointer("Platform", "Card_Ports"));
  for (const Card_Range& card : Port_Cards()) Port_Ranges.Cards.push_back({card.First, card.Last});
}

std::string Choose_Port() {
  Find_Cards();
  Port_Choice.Refusal.clear();
  const std::string wanted = Upper(Trim(ReadPointer("Platform", "Port_Access")));
  const Port_Right right = Direct_Port_Right(MachineSetup.Parallel_IODLL);
  if (wanted == "DIRECT") return Use_Direct_Port(right);
  if (wanted == "SIMULATED" || !right.Granted) {
    Use_Simulated_Machine();
    return Told("Port: simulated machine");
  }
  return Use_Direct_Port(right);
}

bool Port_Is_Simulated() {
  return Port_Choice.Simulated;
}
std::string Port_Refusal() {
  return Port_Choice.Refusal;
}

}  // namespace norvik
