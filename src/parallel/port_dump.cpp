#include "parallel/port_dump.h"

#include "core/axes.h"
#include "core/setup.h"
#include "parallel/pin_map.h"

#include <algorithm>
#include <cctype>

namespace norvik {

namespace {

// A name as the format takes it: letters, digits and "_", no digit first.
std::string Plain_Name(const std::string& words, const std::string& otherwise) {
  std::string name;
  for (const char letter : words) {
    const bool plain = std::isalnum(static_cast<unsigned char>(letter)) != 0;
    name += plain ? letter : '_';
  }
  if (name.find_first_not_of('_') == std::string::npos) return otherwise;
  if (std::isdigit(static_cast<unsigned char>(name.front())) != 0) name.insert(0, "_");
  return name;
}

std::string Slot_Name(int slot) {
  static constexpr const char* roles[] = {"_step", "_direction", "_enable"};
  if (slot <= 3 * Axis_Count)
    return Axis_Letter((slot - 1) / 3 + 1) + std::string(roles[(slot - 1) % 3]);
  const int n = slot - Output_Slot(0);
  return Plain_Name(MachineSetup.Output_Names[n], "output_" + std::to_string(n));
}

}  // namespace

Port_Dump::Port_Dump(std::int64_t start) : Start(start) {
  for (int slot = 1; slot <= Output_Slot(5); ++slot) {
    const auto bit = Output_Bit(slot);
    const std::int32_t port = MachineSetup.Output_Port[slot];
    if (!bit || port < Lowest_Port) continue;
    std::string name = Slot_Name(slot);
    const auto same = [&](const Wire& wire) { return wire.Name == name; };
    if (std::any_of(Wires.begin(), Wires.end(), same)) name += "_" + std::to_string(slot);
    const auto code = static_cast<char>('a' + static_cast<char>(Wires.size()));
    Wires.push_back({name, port, static_cast<std::uint8_t>(1 << *bit), code, std::nullopt});
  }
}

std::string Port_Dump::Header() const {
  std::string text = "$version Norvik $end\n$timescale 1 ns $end\n$scope module norvik $end\n";
  for (const Wire& wire : Wires) {
    text += std::string("$var wire 1 ") + wire.Code + " " + wire.Name + " $end\n";
  }
  text += "$upscope $end\n$enddefinitions $end\n#0\n$dumpvars\n";
  for (const Wire& wire : Wires) text += std::string("x") + wire.Code + "\n";
  return text + "$end\n";
}

void Port_Dump::Append_Write(const Port_Write_Record& record, std::string& text) {
  for (Wire& wire : Wires) {
    const bool high = (record.Value & wire.Mask) != 0;
    if (wire.Port != record.Port || wire.High == high) continue;
    const std::int64_t time = record.Time - Start;
    if (Marked != time) text += "#" + std::to_string(time) + "\n";
    Marked = time;
    wire.High = high;
    text += high ? '1' : '0';
    text += wire.Code;
    text += '\n';
  }
}

void Port_Dump::Append(const std::vector<Port_Write_Record>& block, std::string& text) {
  for (const Port_Write_Record& record : block) {
    if (record.Real) Append_Write(record, text);
  }
}

}  // namespace norvik
