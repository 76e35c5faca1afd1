#include "serial/serial_commands.h"

#include <algorithm>

namespace norvik {

namespace {

using enum Serial_Code;

constexpr std::array Table = {
    Serial_Command{ReadFirmware, "ReadFirmware", {0, 0}, {11, 11}},
    Serial_Command{ReadPresence, "ReadPresence", {0, 0}, {7, 7}},
    Serial_Command{MoveSteps, "MoveSteps", {32, 35}, {5, 6}},
    Serial_Command{ReadStatus, "ReadStatus", {0, 0}, {23, 38}},
    Serial_Command{StopMotion, "StopMotion", {0, 0}, {4, 4}},
    Serial_Command{OutputOn, "OutputOn", {1, 1}, {5, 5}},
    Serial_Command{OutputOff, "OutputOff", {1, 1}, {5, 5}},
    Serial_Command{ReadBuffer, "ReadBuffer", {0, 0}, {5, 6}},
    Serial_Command{AxisPrepare, "AxisPrepare", {1, 1}, {5, 5}},
    Serial_Command{LoadStepCounters, "LoadStepCounters", {12, 12}, {4, 4}, true},
    Serial_Command{ReadMemory, "ReadMemory", {2, 2}, {5, 5}},
    Serial_Command{LimitsDisable, "LimitsDisable", {0, 0}, {4, 4}},
    Serial_Command{LimitsEnable, "LimitsEnable", {0, 0}, {4, 4}},
    Serial_Command{ResetController, "ResetController", {0, 0}, {4, 4}},
    Serial_Command{ClearFaults, "ClearFaults", {0, 0}, {4, 4}},
    Serial_Command{MotorEnableOn, "MotorEnableOn", {0, 0}, {4, 4}},
    Serial_Command{MotorEnableOff, "MotorEnableOff", {0, 0}, {4, 4}},
    Serial_Command{SetCByte1, "SetCByte1", {1, 1}, {5, 5}},
    Serial_Command{SetCByte2, "SetCByte2", {1, 1}, {5, 5}},
    Serial_Command{JogStop, "JogStop", {2, 2}, {4, 4}},
    Serial_Command{SetRampRate, "SetRampRate", {1, 1}, {5, 5}},
    Serial_Command{SetThrottle, "SetThrottle", {2, 2}, {4, 4}},
    Serial_Command{LoadEncoderCounters, "LoadEncoderCounters", {12, 12}, {4, 4}, true},
    Serial_Command{WriteEncoderConfig, "WriteEncoderConfig", {28, 28}, {4, 4}, true},
    Serial_Command{ReadEncoderConfig, "ReadEncoderConfig", {0, 0}, {33, 33}},
    Serial_Command{ReadConfig, "ReadConfig", {0, 0}, {58, 58}},
};

// Row of each code, counted from 1; 0: none.
constexpr auto Rows = [] {
  std::array<std::uint8_t, 256> rows{};
  for (std::size_t i = 0; i < Table.size(); ++i)
    rows[static_cast<std::size_t>(Table[i].Code)] = static_cast<std::uint8_t>(i + 1);
  return rows;
}();

}  // namespace

std::span<const Serial_Command> Serial_Commands() {
  return Table;
}

const Serial_Command* Find_Serial_Command(std::uint8_t code) {
  return Rows[code] == 0 ? nullptr : &Table[Rows[code] - 1U];
}

const Serial_Command& Row_Of(Serial_Code code) {
  return *Find_Serial_Command(static_cast<std::uint8_t>(code));
}

}  // namespace norvik
