// The machine's own reader of the pin tables, and what it finds wrong with them.
#include "core/axes.h"
#include "core/setup.h"
#include "simulate/port_space.h"

#include <array>
#include <charconv>
#include <map>
#include <optional>

namespace norvik {

namespace {

constexpr std::int32_t Lowest_Address = 600, Dummy_Offset = 12;

// Bit texts as the machine file has them; a number above 7 is not wired.
std::optional<int> Number_In(const std::string& text) {
  const auto first = text.find_first_not_of(" \t");
  if (first == std::string::npos) return std::nullopt;
  const char* begin = text.data() + first;
  int number = 0;
  const auto [stop, error] = std::from_chars(begin, text.data() + text.size(), number);
  if (error != std::errc()) return std::nullopt;
  const auto rest = static_cast<std::size_t>(stop - text.data());
  if (text.find_first_not_of(" \t", rest) != std::string::npos) return std::nullopt;
  return number;
}

Wired_Pin Wire(std::int32_t port, const std::string& bit_text, bool invert) {
  const auto bit = Number_In(bit_text);
  const bool used = bit && *bit >= 0 && *bit <= 7 && port >= Lowest_Address && port <= 65535;
  return {port, used ? static_cast<std::uint8_t>(1 << *bit) : std::uint8_t{0}, invert};
}

std::string Output_Name(int slot) {
  static constexpr std::array<const char*, 3> roles{"step", "direction", "enable"};
  if (slot > 12) return "output " + std::to_string(slot - 12);
  const int axis = (slot + 2) / 3;
  return std::string(1, Axis_Letter(axis)) + " " + roles[static_cast<std::size_t>((slot - 1) % 3)];
}

std::string Input_Name(int slot) {
  if (slot == 0) return "E-stop input";
  if (slot == 5) return "auxiliary input";
  return std::string(1, Axis_Letter(slot)) + " switch";
}

struct Named_Pin {
  std::string Name;
  Wired_Pin Pin;
  bool Output = true;
};

std::vector<Named_Pin> Used_Pins(const Wired_Map& map) {
  std::vector<Named_Pin> pins;
  for (int slot = 1; slot <= 17; ++slot) {
    if (map.Outputs[slot].Mask) pins.push_back({Output_Name(slot), map.Outputs[slot], true});
  }
  for (int slot = 0; slot <= 5; ++slot) {
    if (map.Inputs[slot].Mask) pins.push_back({Input_Name(slot), map.Inputs[slot], false});
  }
  return pins;
}

void Check_Sharing(const std::vector<Named_Pin>& pins, std::vector<std::string>& texts) {
  std::map<std::pair<std::int32_t, std::uint8_t>, const Named_Pin*> first;
  for (const Named_Pin& pin : pins) {
    const auto [place, fresh] = first.try_emplace({pin.Pin.Port, pin.Pin.Mask}, &pin);
    if (fresh) continue;
    texts.push_back("Two functions share one bit of port " + std::to_string(pin.Pin.Port) + ": " +
                    place->second->Name + " and " + pin.Name);
  }
}

void Check_Dummy_Addresses(const std::vector<Named_Pin>& pins, std::vector<std::string>& texts) {
  for (const Named_Pin& writer : pins) {
    for (const Named_Pin& other : pins) {
      if (!writer.Output || other.Pin.Port != writer.Pin.Port + Dummy_Offset) continue;
      texts.push_back("Blocked writes of " + writer.Name + " would reach " + other.Name +
                      ": port " + std::to_string(other.Pin.Port) + " lies 12 above port " +
                      std::to_string(writer.Pin.Port));
      return;
    }
  }
}

void Check_Axes(const Wired_Map& map, std::vector<std::string>& texts) {
  for (int axis = 1; axis <= 4; ++axis) {
    const bool step = map.Outputs[3 * axis - 2].Mask != 0;
    const bool direction = map.Outputs[3 * axis - 1].Mask != 0;
    if (step == direction) continue;
    texts.push_back(std::string(1, Axis_Letter(axis)) +
                    (step ? " has a step pin but no direction pin: it can move one way only"
                          : " has a direction pin but no step pin: it cannot move"));
  }
}

bool Is_Status_Register(std::int32_t port) {
  return port == 0x379 || port == 0x279 || port == 0x3BD;
}

void Check_Places(std::vector<std::string>& texts) {
  const auto check = [&](const std::string& name, bool output, std::int32_t port,
                         const std::string& text) {
    const auto bit = Number_In(text);
    const std::string place = "The " + name + " ";
    if (!bit || (*bit > 7 && *bit != 99) || *bit < 0) {
      texts.push_back(place + "has the bit \"" + text + "\": 0 to 7, or 99 for not used");
    } else if (*bit <= 7 && output && Is_Status_Register(port)) {
      texts.push_back(place + "lies on port " + std::to_string(port) +
                      ", the status register of a parallel port, which can only be read");
    } else if (*bit <= 7 && port < Lowest_Address) {
      texts.push_back(place + "lies on port " + std::to_string(port) +
                      ", which is never accessed: ports begin at 600");
    }
  };
  for (int slot = 1; slot <= 17; ++slot) {
    check(Output_Name(slot), true, MachineSetup.Output_Port[slot],
          MachineSetup.Parallel_Output_Bit[slot]);
  }
  for (int slot = 0; slot <= 5; ++slot) {
    check(Input_Name(slot), false, MachineSetup.Input_Port[slot],
          MachineSetup.Parallel_Input_Bit[slot]);
  }
}

}  // namespace

Wired_Map Read_Wired_Map() {
  Wired_Map map;
  for (int slot = 1; slot <= 17; ++slot) {
    map.Outputs[slot] = Wire(MachineSetup.Output_Port[slot], MachineSetup.Parallel_Output_Bit[slot],
                             MachineSetup.Parallel_Output_Bit_Invert[slot]);
  }
  for (int slot = 0; slot <= 5; ++slot) {
    map.Inputs[slot] = Wire(MachineSetup.Input_Port[slot], MachineSetup.Parallel_Input_Bit[slot],
                            MachineSetup.Parallel_Input_Bit_Invert[slot]);
  }
  return map;
}

std::vector<std::string> Check_Wired_Map(const Wired_Map& map) {
  std::vector<std::string> texts;
  const std::vector<Named_Pin> pins = Used_Pins(map);
  Check_Places(texts);
  Check_Sharing(pins, texts);
  Check_Dummy_Addresses(pins, texts);
  Check_Axes(map, texts);
  if (map.Inputs[0].Mask == 0) texts.push_back("No E-stop input is wired");
  return texts;
}

}  // namespace norvik
