// serial_commands.h: the commands of the two controller boards, in one table.
//
//   Dravon (firmware 4)   ControllerGeneration 0
//   Pelmar (firmware 5)   ControllerGeneration 1: encoders, a deep queue, numbered moves
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

namespace norvik {

enum class Serial_Code : std::uint8_t {
  ReadFirmware = 8,
  ReadPresence = 9,
  MoveSteps = 10,
  ReadStatus = 11,
  StopMotion = 12,
  OutputOn = 13,
  OutputOff = 14,
  ReadBuffer = 15,
  AxisPrepare = 17,
  LoadStepCounters = 18,
  ReadMemory = 19,
  LimitsDisable = 21,
  LimitsEnable = 22,
  ResetController = 23,
  ClearFaults = 24,
  MotorEnableOn = 25,
  MotorEnableOff = 26,
  SetCByte1 = 28,
  SetCByte2 = 29,
  JogStop = 30,
  SetRampRate = 31,
  SetThrottle = 32,
  LoadEncoderCounters = 41,
  WriteEncoderConfig = 44,
  ReadEncoderConfig = 45,
  ReadConfig = 46,
};

struct Serial_Command {
  Serial_Code Code;
  std::string_view Name;
  std::array<std::uint8_t, 2> Payload;  // bytes by generation, without the pad
  std::array<std::uint8_t, 2> Reply;    // bytes of the whole reply by generation
  bool Pad = false;                     // Pelmar: one more byte 0 in front of the checksum
};

// All commands in the order of their codes.
std::span<const Serial_Command> Serial_Commands();
// The row of a code; null when no board knows it.
const Serial_Command* Find_Serial_Command(std::uint8_t code);
const Serial_Command& Row_Of(Serial_Code code);

}  // namespace norvik
