#include "simulate/board/frame_receiver.h"

#include <algorithm>

namespace norvik {

namespace {

constexpr std::size_t Around_Payload = 4;  // start, code and checksum

void Begin_Hunt(Frame_Receiver& receiver) {
  receiver.Count = 0;
  receiver.Expected = 0;
}

Received Take_Code(Frame_Receiver& receiver, std::uint8_t byte) {
  if (byte == Board_Frame_Start) {  // no command has this code: a frame begins here at the earliest
    receiver.Count = 1;
    ++receiver.Discarded_Bytes;
    return Received::Nothing;
  }
  const Board_Command* command = Board_Command_Of(byte);
  if (command == nullptr || !command->Known_To(receiver.Generation)) {
    receiver.Discarded_Bytes += 2;
    ++receiver.Unknown_Codes;
    Begin_Hunt(receiver);
    return Received::Unknown_Code;
  }
  receiver.Expected = command->Payload_Of(receiver.Generation) + Around_Payload;
  return Received::Nothing;
}

// The end of a move of the first board may be that of a dwell but for three bytes.
bool Goes_On_As_Dwell(const Frame_Receiver& receiver) {
  constexpr std::size_t dwell = Dwell_Payload + Around_Payload;
  if (receiver.Bytes[1] != board_code::Move_Steps || receiver.Expected >= dwell) return false;
  const std::span<const std::uint8_t> frame(receiver.Bytes.data(), receiver.Count);
  if (!Has_Form_Of_Dwell(frame)) return false;
  const bool has_counts = Big_Endian_24(&receiver.Bytes[2]) > 0;
  return has_counts || !Checksum_Is_Right(frame);
}

Received Close_Frame(Frame_Receiver& receiver) {
  if (Goes_On_As_Dwell(receiver)) {
    receiver.Expected = Dwell_Payload + Around_Payload;
    return Received::Nothing;
  }
  receiver.Expected = 0;  // the next byte begins anew
  if (Checksum_Is_Right(Received_Frame(receiver))) return Received::Frame;
  ++receiver.Bad_Checksums;
  receiver.Discarded_Bytes += static_cast<std::int64_t>(receiver.Count);
  return Received::Bad_Checksum;
}

}  // namespace

Received Take_Byte(Frame_Receiver& receiver, std::uint8_t byte, std::int64_t time) {
  Received result = Received::Nothing;
  const bool within = receiver.Count == 1 || receiver.Expected > 0;
  if (!within) {
    Begin_Hunt(receiver);
  } else if (time - receiver.Last_Byte > Frame_Receiver::Longest_Gap) {
    ++receiver.Dropped_Frames;
    receiver.Discarded_Bytes += static_cast<std::int64_t>(receiver.Count);
    Begin_Hunt(receiver);
    result = Received::Dropped;
  }
  receiver.Last_Byte = time;
  if (receiver.Count == 0 && byte != Board_Frame_Start) {
    ++receiver.Discarded_Bytes;
    return result;
  }
  if (receiver.Count == 1) {
    receiver.Bytes[receiver.Count++] = byte;
    return Take_Code(receiver, byte);
  }
  receiver.Bytes[receiver.Count++] = byte;
  return receiver.Count == receiver.Expected ? Close_Frame(receiver) : result;
}

std::span<const std::uint8_t> Received_Frame(const Frame_Receiver& receiver) {
  return {receiver.Bytes.data(), receiver.Count};
}

bool Has_Form_Of_Dwell(std::span<const std::uint8_t> frame) {
  constexpr std::size_t dividers = 5, rate = 21, end = 23;
  if (frame.size() < end || frame[1] != board_code::Move_Steps) return false;
  const auto divider_bytes = frame.subspan(dividers, rate - dividers);
  return std::all_of(divider_bytes.begin(), divider_bytes.end(),
                     [](std::uint8_t byte) { return byte == 0xFF; }) &&
         Big_Endian_16(&frame[rate]) == Dwell_Rate;
}

}  // namespace norvik
