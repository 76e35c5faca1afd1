// port_space.h: 65536 byte registers, of which the pin map's few are wired.
//
// Inside the simulated machine: port_access.cpp decodes accesses and calls what the changed pin
// belongs to; axis_model.cpp and input_model.cpp answer by setting input bits here.
#pragma once

#include "core/indexed.h"
#include "simulate/simulated_machine.h"

#include <array>
#include <bit>
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

// Level of an input pin from here on. `restless`: the level depends on the time and is asked for at
// every read.
void Set_Input_Level(int input, bool high, bool restless);
// Read-back mode of the machine has changed.
void Refresh_Reads();

// ns of the virtual clock when it is installed, else of the platform's.
std::int64_t Machine_Time();

// --- Registers -----------------------------------------------------------------------------------

// One wired register. `Output` and `Input` are masks of its wired bits; the others keep what was
// written.
struct Port_Register {
  std::uint16_t Address = 0;
  std::uint8_t Latch = 0;
  std::uint8_t Output = 0, Input = 0;
  std::uint8_t Levels = 255;                 // of the input bits
  std::uint8_t Restless = 0;                 // input bits whose level depends on the time
  std::array<std::int8_t, 8> Output_Slot{};  // by bit, 0: none
  std::array<std::int8_t, 8> Input_Slot{};   // by bit, -1: none
};

// Index entries of an address that is no register.
inline constexpr std::uint8_t Unmapped_Port = 255, Dummy_Port = 254;

struct Port_Space_State {
  Port_Space_State() { Index.fill(Unmapped_Port); }
  Wired_Map Map;
  std::vector<Port_Register> Registers;
  std::array<std::uint8_t, 65536> Index;    // register, Dummy or Unmapped
  std::array<std::uint8_t, 65536> Value{};  // what a read answers
};
extern Port_Space_State Port_Space;

// The register at an address; null where nothing is wired.
inline Port_Register* Register_At(std::int32_t port) {
  const std::uint8_t index = Port_Space.Index[static_cast<std::uint16_t>(port)];
  return index >= Dummy_Port ? nullptr : &Port_Space.Registers[index];
}

// What the machine answers for output bits where it does not read back.
inline std::uint8_t Blind_Answer() {
  return Simulated_Machine.Output_Read_Back == Read_Back::Zero ? 0 : 255;
}

// What a read of the register answers now.
inline std::uint8_t Read_Value(const Port_Register& wired) {
  std::uint8_t latch = wired.Latch;
  if (Simulated_Machine.Output_Read_Back != Read_Back::Latch) latch = Blind_Answer();
  return static_cast<std::uint8_t>((latch & ~wired.Input) | (wired.Levels & wired.Input));
}

inline std::size_t Bit_Index(std::uint8_t mask) {
  return static_cast<std::size_t>(std::countr_zero(mask));
}

}  // namespace norvik
