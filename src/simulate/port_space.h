// port_space.h: 65536 byte registers, of which the pin map's few are wired.
//
// Inside the simulated machine: port_space.cpp decodes accesses and calls what the changed pin
// belongs to; axis_model.cpp and input_model.cpp answer by setting input bits.
#pragma once

#include "core/indexed.h"

#include <cstdint>
#include <string>
#include <vector>

namespace norvik {

// The place of one function; `Mask` 0: not used.
struct Wired_Pin {
  std::int32_t Port = 0;
  std::uint8_t Mask = 0;
  bool Invert = false;
  bool operator==(const Wired_Pin&) const = default;
};

// The pin map as the machine is wired: output slots 1..17, input slots 0..5.
struct Wired_Map {
  Indexed<Wired_Pin, 1, 17> Outputs;
  Indexed<Wired_Pin, 0, 5> Inputs;
  bool operator==(const Wired_Map&) const = default;
};

// Reads the pin tables of `MachineSetup`.
Wired_Map Read_Wired_Map();
// What is wrong with a map, one text for each.
std::vector<std::string> Check_Wired_Map(const Wired_Map& map);

// Wires the registers; latches of addresses that stay wired keep their value.
void Wire_Ports(const Wired_Map& map);
const Wired_Map& Wiring();
// Level that was last written to the pin of an output slot; false when it is not wired.
bool Latched_High(int slot);

std::uint8_t Simulated_Port_Read(std::uint16_t address);
void Simulated_Port_Write(std::uint16_t address, std::uint8_t value);

// Level of an input pin from here on. `restless`: the level depends on the time and is asked for at
// every read.
void Set_Input_Level(int input, bool high, bool restless);
// Read-back mode of the machine has changed.
void Refresh_Reads();

// ns of the virtual clock when it is installed, else of the platform's.
std::int64_t Machine_Time();

}  // namespace norvik
