#include "parallel/read_back.h"

#include "core/error_log.h"
#include "core/messages.h"
#include "core/setup.h"
#include "parallel/pin_map.h"
#include "parallel/port_display.h"
#include "parallel/ports.h"

#include <map>
#include <string>

namespace norvik {

Read_Back_State Read_Back;

namespace {

struct Output_Port {
  std::uint8_t Used = 0, Direction = 0;  // bits of outputs, of direction pins
};

std::map<std::int32_t, Output_Port> Output_Ports() {
  std::map<std::int32_t, Output_Port> ports;
  for (int slot = 1; slot <= Output_Slot(5); ++slot) {
    const auto bit = Output_Bit(slot);
    if (!bit) continue;
    const auto mask = static_cast<std::uint8_t>(1u << *bit);
    Output_Port& port = ports[MachineSetup.Output_Port[slot]];
    port.Used |= mask;
    if (slot <= 3 * Axis_Count && slot % 3 == 2) port.Direction |= mask;
  }
  return ports;
}

bool Reads_Back(std::int32_t address, const Output_Port& port) {
  const std::uint8_t before = Written_Byte(address).value_or(PPGetPort(address));
  const auto answers = [&](std::uint8_t value) {
    return ((PPGetPort(address) ^ value) & port.Used) == 0;
  };
  if (port.Direction == 0) return !Written_Byte(address) || answers(before);
  // One pin alone: a driver may take two that change at once for a fault.
  const auto pin = static_cast<std::uint8_t>(port.Direction & -port.Direction);
  const auto turned = static_cast<std::uint8_t>(before ^ pin);
  if (!PPSetPort(address, turned, true)) return true;  // a failure of its own, which was said
  const bool turned_read = answers(turned);
  PPSetPort(address, before, true);
  return answers(before) && turned_read;
}

}  // namespace

std::string Words_About_Deaf_Ports() {
  if (Read_Back.Deaf_Ports.empty() || MachineSetup.Port_Shadow) return {};
  std::string ports;
  for (const std::int32_t port : Read_Back.Deaf_Ports)
    ports += (ports.empty() ? "" : ", ") + Port_Text(port);
  const std::string what = Read_Back.Deaf_Ports.size() == 1
                               ? "Port " + ports + " does not read back what is written to it"
                               : "Ports " + ports + " do not read back what is written to them";
  return what +
         ": an axis may run the wrong way, outputs may change by themselves. Set Port_Shadow in "
         "section Corrections of the machine file to True, then "
         "start Norvik again.";
}

void Look_For_Deaf_Ports() {
  Read_Back = {};
  for (const auto& [address, port] : Output_Ports()) {
    const bool reachable = address >= Lowest_Port && address <= 65535;
    if (!reachable || Reads_Back(address, port)) continue;
    Read_Back.Deaf_Ports.push_back(address);
  }
  const std::string words = Words_About_Deaf_Ports();
  if (words.empty()) return;
  ErrorLogWrite(words);
  Tell(words, 10);
}

}  // namespace norvik
