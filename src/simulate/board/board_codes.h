// board_codes.h: the commands that the simulated controller boards know, and how long their frames
// are.
//
// The boards read frames by code of their own: what a host builds and a board understands are two
// readings of one wire format, and each finds the faults of the other.
//
//   1        start, 27
//   2        command code; in a reply the code again, or what the command answers
//   3..n-2   payload, numbers high byte first where nothing else is told
//   n-1, n   sum of all bytes before, low byte first
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace norvik {

enum class Board_Generation : std::uint8_t { Dravon_V4 = 0, Pelmar_V5 = 1 };

// "Dravon" or "Pelmar".
std::string Name_Of(Board_Generation generation);
// By its name in any case; absent for another text.
std::optional<Board_Generation> Generation_Named(std::string_view name);

namespace board_code {
inline constexpr std::uint8_t Read_Firmware = 8, Read_Presence = 9, Move_Steps = 10,
                              Read_Status = 11, Stop_Motion = 12, Output_On = 13, Output_Off = 14,
                              Read_Buffer = 15, Axis_Prepare = 17, Load_Step_Counters = 18,
                              Read_Memory = 19, Limits_Disable = 21, Limits_Enable = 22,
                              Reset_Controller = 23, Clear_Faults = 24, Motor_Enable_On = 25,
                              Motor_Enable_Off = 26, Set_CByte1 = 28, Set_CByte2 = 29,
                              Jog_Stop = 30, Set_Ramp_Rate = 31, Set_Throttle = 32,
                              Load_Encoder_Counters = 41, Write_Encoder_Config = 44,
                              Read_Encoder_Config = 45, Read_Config = 46;
}

struct Board_Command {
  static constexpr std::uint8_t Unknown = 255;

  std::uint8_t Code = 0;
  const char* Name = "";
  // By generation; bytes between code and checksum, `Unknown` when the board has no such command.
  // A dwell of the first board is longer than its moves (Frame_Receiver).
  std::uint8_t Payload[2] = {0, 0};
  std::uint8_t Reply[2] = {4, 4};  // bytes of the whole reply

  std::size_t Payload_Of(Board_Generation generation) const {
    return Payload[static_cast<std::size_t>(generation)];
  }
  std::size_t Reply_Of(Board_Generation generation) const {
    return Reply[static_cast<std::size_t>(generation)];
  }
  bool Known_To(Board_Generation generation) const { return Payload_Of(generation) != Unknown; }
};

// All commands in the order of their codes.
std::span<const Board_Command> Board_Commands();
// Null when no board has the code.
const Board_Command* Board_Command_Of(std::uint8_t code);
// By the name in any case; null when there is none.
const Board_Command* Board_Command_Named(std::string_view name);

// --- Parts of frames -------------------------------------------------------------------------

inline constexpr std::uint8_t Board_Frame_Start = 27;
inline constexpr std::size_t Dwell_Payload = 35;  // on both boards
inline constexpr std::uint32_t No_Steps_Divider = 0xFFFFFFFF;
inline constexpr std::uint16_t Dwell_Rate = 1000;  // Hz: a count of a dwell is a millisecond

// Sum of all bytes.
inline std::uint32_t Sum_Of(std::span<const std::uint8_t> bytes) {
  std::uint32_t sum = 0;
  for (const std::uint8_t byte : bytes) sum += byte;
  return sum;
}
// True when the last two bytes are the sum of those before.
inline bool Checksum_Is_Right(std::span<const std::uint8_t> frame) {
  if (frame.size() < 4) return false;
  const std::uint32_t sum = Sum_Of(frame.first(frame.size() - 2));
  return frame[frame.size() - 2] == (sum & 0xFF) && frame[frame.size() - 1] == (sum >> 8 & 0xFF);
}
inline std::uint32_t Big_Endian_16(const std::uint8_t* bytes) {
  return static_cast<std::uint32_t>(bytes[0]) << 8 | bytes[1];
}
inline std::uint32_t Big_Endian_24(const std::uint8_t* bytes) {
  return static_cast<std::uint32_t>(bytes[0]) << 16 | Big_Endian_16(bytes + 1);
}
inline std::uint32_t Big_Endian_32(const std::uint8_t* bytes) {
  return static_cast<std::uint32_t>(bytes[0]) << 24 | Big_Endian_24(bytes + 1);
}
// Of 24 bits, two's complement.
inline std::int32_t Sign_Extended_24(std::uint32_t value) {
  const auto whole = static_cast<std::int32_t>(value & 0xFFFFFF);
  return whole >= 0x800000 ? whole - 0x1000000 : whole;
}
// The low 24 bits.
inline void Put_24(std::uint8_t* bytes, std::int64_t value) {
  bytes[0] = static_cast<std::uint8_t>(value >> 16 & 0xFF);
  bytes[1] = static_cast<std::uint8_t>(value >> 8 & 0xFF);
  bytes[2] = static_cast<std::uint8_t>(value & 0xFF);
}

}  // namespace norvik
