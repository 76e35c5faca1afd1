#include "wiring/port_choice.h"

#include "core/axis_memory.h"
#include "core/error_log.h"
#include "core/fault.h"
#include "core/messages.h"
#include "core/paths.h"
#include "core/setup.h"
#include "drive/drive.h"
#include "parallel/last_writes.h"
#include "parallel/port_ranges.h"
#include "parallel/ports.h"
#include "platform/linux/fatal_signals.h"
#include "platform/linux/linux_platform.h"
#include "platform/linux/port_cards.h"
#include "serial/serial_session.h"
#include "serial/stream.h"
#include "simulate/board_port.h"
#include "simulate/simulated_machine.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>

namespace norvik {

namespace {

struct Port_Choice_State {
  bool Simulated = false;
  std::string Refusal;
};
Port_Choice_State Port_Choice;

// What a board is sent when a signal ends the process.
struct Last_Frames_State {
  std::array<std::uint8_t, 512> Bytes{};
  std::size_t Count = 0;
};
Last_Frames_State Last_Frames;

void Stop_Boards_In_Handler() noexcept {
  Write_Serial_Ports_In_Handler(Last_Frames.Bytes.data(), Last_Frames.Count);
}

void Prepare_Last_Frames() {
  const std::vector<std::uint8_t> frames = Last_Frames_For_Board();
  Last_Frames.Count = std::min(frames.size(), Last_Frames.Bytes.size());
  std::copy_n(frames.begin(), Last_Frames.Count, Last_Frames.Bytes.begin());
}

std::string Told(const std::string& text) {
  SetStatus(3, text, -1);
  return text;
}

std::string Simulated_Board_Of(int generation) {
  return std::string(generation > 0 ? Simulated_Pelmar_Device : Simulated_Dravon_Device);
}

// While the banner says that nothing moves, nothing does.
std::string Only_Simulated_Board(int generation, const std::string& named, const std::string&) {
  if (named.starts_with("simulated:")) return named;
  if (!named.empty())
    Add_New_Message("The machine is simulated: " + named +
                    " is not opened. Start Norvik with the serial board chosen to drive it.");
  return Simulated_Board_Of(generation);
}

// The board that is there; a simulated one where the computer has no such port.
std::string Board_That_Exists(int generation, const std::string& named, const std::string& listed) {
  if (!named.empty()) return named;
  return listed.empty() ? Simulated_Board_Of(generation) : listed;
}

// Where a real board is asked for: a simulated one only by its name.
std::string Named_Or_Real_Board(int, const std::string& named, const std::string& listed) {
  if (!named.empty()) return named;
  return listed.starts_with("simulated:") ? std::string() : listed;
}

// In a session with a real port nothing is simulated: its panel and its banner are not there.
std::string Only_Real_Board(int generation, const std::string& named, const std::string& listed) {
  if (!named.starts_with("simulated:")) return Named_Or_Real_Board(generation, named, listed);
  Add_New_Message("Norvik drives a real port: start it anew to use " + named + ".");
  return {};
}

// A serial setup: the parallel port stays as it is. Absent: the board is simulated.
std::optional<std::string> Use_Serial_Board(const std::string& wanted) {
  if (wanted == "SIMULATED") return std::nullopt;
  Serial_Session_Host.Choose_Device = wanted == "DIRECT" ? Named_Or_Real_Board : Board_That_Exists;
  const std::string device = Device_Of_Port(MachineSetup.Dravon_CommPort);
  if (device.starts_with("simulated:")) return std::nullopt;
  Port_Choice.Simulated = false;
  Prepare_Last_Frames();
  Install_Fatal_Signals(Stop_Boards_In_Handler);
  return Told("Port: serial board, motors will move");
}

std::string Use_Direct_Port(const Port_Right& right) {
  const Port_Right alone = Lock_Direct_Port();
  if (!alone.Granted) throw Fault(Fault_Number::Permission_Denied, alone.Words);
  Install_Direct_Ports(&MachineSetup.Parallel_IODLL, {Is_Machine_Port, Words_About_Refused_Port});
  Prepare_Last_Frames();  // a board may be chosen later
  Install_Fatal_Signals([]() noexcept {
    Make_Last_Writes(Write_Port_In_Handler, Written_Byte);
    Stop_Boards_In_Handler();
  });
  Serial_Session_Host.Choose_Device = Only_Real_Board;
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
  Serial_Session_Host.Choose_Device = Only_Simulated_Board;
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
  if (Drive().Board) {
    if (auto words = Use_Serial_Board(wanted)) return *words;
    Use_Simulated_Machine();
    return Told("Port: simulated machine");
  }
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
