#include "serial/serial_frame.h"

#include "core/axes.h"

namespace norvik {

namespace {

// Position of the value of axis 1..4 in a block of values.
int Place(int first, int axis, int bytes) {
  return first + (axis - 1) * bytes;
}

Encoder_Config Encoder_Config_At(const Reply_Bytes& reply, int first) {
  Encoder_Config config;
  for (int axis = 1; axis <= Axis_Count; ++axis) {
    config.Axis_Byte[axis] = reply[Place(first, axis, 1)];
    config.Factor[axis] = Unsigned_At(reply, Place(first + 4, axis, 3), 3);
    config.Max_Error[axis] = Unsigned_At(reply, Place(first + 16, axis, 3), 3);
  }
  return config;
}

}  // namespace

Serial_Frame Command_Frame(Serial_Code code, int generation, const Payload& payload) {
  Serial_Frame frame;
  const auto add = [&frame](unsigned byte) {
    frame.Bytes[frame.Length++] = static_cast<std::uint8_t>(byte);
  };
  add(Frame_Start);
  add(static_cast<unsigned>(code));
  for (const std::uint8_t byte : payload.View()) add(byte);
  if (Row_Of(code).Pad && generation > 0) add(0);
  unsigned sum = 0;
  for (const std::uint8_t byte : frame.View()) sum += byte;
  add(sum & 0xFFU);
  add(sum >> 8U);
  return frame;
}

std::string Hex_Text(std::span<const std::uint8_t> bytes) {
  constexpr const char* digits = "0123456789ABCDEF";
  std::string text;
  text.reserve(bytes.size() * 3);
  for (const std::uint8_t byte : bytes) {
    if (!text.empty()) text += ' ';
    text += digits[byte >> 4U];
    text += digits[byte & 15U];
  }
  return text;
}

Reply_Fault Look_At_Reply(std::span<const std::uint8_t> reply, std::size_t reply_length) {
  constexpr std::size_t checksum_bytes = 2;
  if (reply.size() < reply_length || reply.size() > Longest_Reply || reply.size() < checksum_bytes)
    return Reply_Fault::Length;
  const std::size_t end = reply.size() - checksum_bytes;
  unsigned sum = 0;
  for (std::size_t i = 0; i < end; ++i) sum += reply[i];
  const bool right = reply[end] == (sum & 0xFFU) && reply[end + 1] == sum >> 8U;
  return right ? Reply_Fault::None : Reply_Fault::Checksum;
}

std::uint32_t Unsigned_At(const Reply_Bytes& reply, int first, int bytes) {
  std::uint32_t value = 0;
  for (int i = 0; i < bytes; ++i) value = (value << 8U) | reply[first + i];
  return value;
}

std::int32_t Signed_At(const Reply_Bytes& reply, int first) {
  const auto value = static_cast<std::int32_t>(Unsigned_At(reply, first, 3));
  return (value & 0x800000) != 0 ? value - 0x1000000 : value;
}

Status_Reply Status_Of(const Reply_Bytes& reply, int generation) {
  Status_Reply status;
  const bool second = generation > 0;
  for (int axis = 1; axis <= Axis_Count; ++axis) {
    status.Step_Count[axis] = Signed_At(reply, Place(3, axis, 3));
    if (second) status.EncoderCount[axis] = Signed_At(reply, Place(15, axis, 3));
  }
  const int flags = second ? 27 : 15;
  status.Limits = reply[flags];
  status.Inputs = reply[flags + 1];
  status.Outputs = reply[flags + 2];
  constexpr std::uint32_t unit = 10;  // Hz, of the second board
  status.Rate = Unsigned_At(reply, flags + 3, 2) * (second ? unit : 1);
  if (second) status.LastCommandIndex = Unsigned_At(reply, 34, 3);
  return status;
}

Payload Encoder_Payload(const Encoder_Config& config) {
  Payload payload;
  for (const std::uint8_t byte : config.Axis_Byte) payload.Add(byte, 1);
  for (const std::uint32_t factor : config.Factor) payload.Add(factor, 3);
  for (const std::uint32_t error : config.Max_Error) payload.Add(error, 3);
  return payload;
}

Encoder_Reply Encoder_Of(const Reply_Bytes& reply) {
  constexpr unsigned overall = 128;
  Encoder_Reply encoders;
  encoders.Config = Encoder_Config_At(reply, 3);
  const unsigned faults = reply[31];
  for (int axis = 1; axis <= Axis_Count; ++axis)
    encoders.Faults[axis] = (faults >> static_cast<unsigned>(axis - 1)) & 1U ? 1 : 0;
  encoders.Any_Fault = (faults & overall) != 0;
  return encoders;
}

Config_Reply Config_Of(const Reply_Bytes& reply) {
  const auto number = [&reply](int place) { return std::to_string(reply[place]); };
  Config_Reply config;
  config.Hardware = reply[3];
  config.Revision = number(4) + "." + number(5) + "." + number(6);
  const std::string year = reply[10] < 10 ? "0" + number(10) : number(10);
  config.Date = number(8) + "/" + number(7) + "/" + number(9) + year;
  config.BufferCapacity = static_cast<std::int32_t>(Unsigned_At(reply, 11, 2));
  config.Limits_Disabled = reply[13] != 0;
  config.Ramp_Rate = reply[14];
  config.CByte1 = reply[15];
  config.CByte2 = reply[16];
  config.Encoders = Encoder_Config_At(reply, 29);
  return config;
}

}  // namespace norvik
