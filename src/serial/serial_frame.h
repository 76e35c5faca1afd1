// serial_frame.h: the bytes of commands and replies. Pure functions: no state, no port, no
// allocation.
//
//   1        start, 27
//   2        command code; in a reply a status or an echo
//   3..n-2   payload, multi-byte numbers with the high byte first
//   n-1, n   sum of all bytes before, low byte, high byte
//
// Positions in a reply are counted from 1, as in the table above.
#pragma once

#include "core/indexed.h"
#include "serial/serial_commands.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string>

namespace norvik {

inline constexpr std::uint8_t Frame_Start = 27;
inline constexpr std::uint32_t Full_24_Bits = 0xFFFFFF;

struct Serial_Frame {
  static constexpr std::size_t Longest = 48;
  std::array<std::uint8_t, Longest> Bytes{};
  std::size_t Length = 0;

  std::span<const std::uint8_t> View() const { return {Bytes.data(), Length}; }
};

// Bytes of a payload in the order in which they are added.
class Payload {
 public:
  // The low `bytes` bytes of a number, the highest first; negative numbers as two's complement.
  Payload& Add(std::int64_t value, int bytes) {
    for (int i = bytes - 1; i >= 0; --i)
      Bytes[Length++] = static_cast<std::uint8_t>(static_cast<std::uint64_t>(value) >> (8 * i));
    return *this;
  }
  // The lowest first.
  Payload& Add_Low_First(std::uint32_t value, int bytes) {
    for (int i = 0; i < bytes; ++i) Bytes[Length++] = static_cast<std::uint8_t>(value >> (8 * i));
    return *this;
  }
  std::span<const std::uint8_t> View() const { return {Bytes.data(), Length}; }

 private:
  std::array<std::uint8_t, Serial_Frame::Longest> Bytes{};
  std::size_t Length = 0;
};

// The frame of a command, with the pad of its row.
Serial_Frame Command_Frame(Serial_Code code, int generation, const Payload& payload = {});

// "1B 0C 27 00"
std::string Hex_Text(std::span<const std::uint8_t> bytes);

// --- Replies -------------------------------------------------------------------------------------

enum class Reply_Fault { None, Length, Checksum };
// A reply has at least `reply_length` bytes and at most 99; its checksum stands at its real end.
inline constexpr std::size_t Longest_Reply = 99;
Reply_Fault Look_At_Reply(std::span<const std::uint8_t> reply, std::size_t reply_length);

using Reply_Bytes = Indexed<std::uint8_t, 1, 100>;

std::uint32_t Unsigned_At(const Reply_Bytes& reply, int first, int bytes);
// 24 bits with sign.
std::int32_t Signed_At(const Reply_Bytes& reply, int first);

struct Status_Reply {
  Indexed<std::int32_t, 1, 4> Step_Count, EncoderCount;
  std::uint8_t Limits = 0;   // 1, 2, 4, 8: first switch of X, Y, Z, A; 16 to 128: the second one
  std::uint8_t Inputs = 0;   // 1 aux flag, 2 in motion, 4, 8, 16, 64 home inputs, 32 aux input
  std::uint8_t Outputs = 0;  // 1 to 64: outputs 1 to 7
  std::uint32_t Rate = 0;    // Hz, smoothing factor included
  std::uint32_t LastCommandIndex = 0;
};
Status_Reply Status_Of(const Reply_Bytes& reply, int generation);

struct Encoder_Config {
  Indexed<std::uint8_t, 1, 4> Axis_Byte;   // mode + 128 enabled + 64 stop on fault
  Indexed<std::uint32_t, 1, 4> Factor;     // thousandths
  Indexed<std::uint32_t, 1, 4> Max_Error;  // steps
  bool operator==(const Encoder_Config&) const = default;
};
Payload Encoder_Payload(const Encoder_Config& config);

struct Encoder_Reply {
  Encoder_Config Config;
  Indexed<std::int16_t, 1, 4> Faults;  // 0 or 1
  bool Any_Fault = false;
};
Encoder_Reply Encoder_Of(const Reply_Bytes& reply);

struct Config_Reply {
  std::uint8_t Hardware = 0;
  std::string Revision, Date;  // "5.1.2", "7/3/2014"
  std::int32_t BufferCapacity = 0;
  bool Limits_Disabled = false;
  std::uint8_t Ramp_Rate = 0, CByte1 = 0, CByte2 = 0;
  Encoder_Config Encoders;
};
Config_Reply Config_Of(const Reply_Bytes& reply);

}  // namespace norvik
