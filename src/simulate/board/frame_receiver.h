// frame_receiver.h: finds the frames in the bytes that come to a board.
//
// There is no stuffing: 27 may stand in a payload. Code and generation give the length of a frame;
// a dwell of the first board has the code of a move and three more bytes. It is told by its four
// dividers without steps, its rate of 1000 Hz and its counts; where those fit a move without steps
// as well, the length is the one that the checksum fits.
#pragma once

#include "simulate/board/board_codes.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>

namespace norvik {

struct Frame_Receiver {
  static constexpr std::size_t Longest_Frame = 48;
  static constexpr std::int64_t Longest_Gap = 20'000'000;  // ns within a frame

  Board_Generation Generation = Board_Generation::Dravon_V4;
  std::array<std::uint8_t, Longest_Frame> Bytes{};
  std::size_t Count = 0;       // of the frame that is being received
  std::size_t Expected = 0;    // bytes of the whole frame
  std::int64_t Last_Byte = 0;  // ns

  // Since the start.
  std::int64_t Discarded_Bytes = 0, Dropped_Frames = 0, Bad_Checksums = 0, Unknown_Codes = 0;
};

enum class Received {
  Nothing,       // goes on
  Frame,         // `Received_Frame` is whole and its checksum right
  Bad_Checksum,  // whole, but wrong: `Received_Frame` holds it
  Unknown_Code,  // the two bytes are thrown away
  Dropped,       // a gap within a frame: what was received of it is thrown away, the byte was taken
};

// Takes the next byte, received at `time` ns.
Received Take_Byte(Frame_Receiver& receiver, std::uint8_t byte, std::int64_t time);
// After `Frame` or `Bad_Checksum`, until the next byte.
std::span<const std::uint8_t> Received_Frame(const Frame_Receiver& receiver);
// True for a move frame that is a dwell: whole, or without its last three bytes.
bool Has_Form_Of_Dwell(std::span<const std::uint8_t> frame);

}  // namespace norvik
