// frame_words.h: frames of the boards as words, and words as frames.
//
//   MoveSteps counts=2000 x=10000 y=20000 start_rate=500 run_ramp=1950 down_ramp=50 reverse=y
//   Dwell milliseconds=250 index=12
//   ReadStatus x=2000 y=-1000 flags=moving rate=480        (a reply)
//
// In words to be encoded a field that is missing is 0, a divider is "none" (no steps) and the PWM
// bytes are 255 (unchanged). Sets of bits are names joined by "+", "-" for none. `answer` is the
// second byte of a reply where it is not the command's code.
#pragma once

#include "simulate/board/board_codes.h"

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace norvik {

enum class Frame_Side { Command, Reply };

// What became of a reading: the words of a fault say what is wrong with the text or the bytes.
struct Frame_Words {
  std::string Words, Fault;
};
struct Frame_Bytes {
  std::vector<std::uint8_t> Bytes;
  std::string Fault;
};

Frame_Words Words_Of_Frame(Board_Generation generation, Frame_Side side,
                           std::span<const std::uint8_t> frame);
// A reply as the answer to a command with this code, whose own second byte may be another.
Frame_Words Words_Of_Reply(Board_Generation generation, std::uint8_t command_code,
                           std::span<const std::uint8_t> frame);
Frame_Bytes Frame_Of_Words(Board_Generation generation, Frame_Side side, std::string_view words);

// Two digits a byte, small letters, nothing between them.
std::string Hex_Of(std::span<const std::uint8_t> bytes);
// Takes blanks, commas and colons between bytes; the fault names what is no hexadecimal digit.
Frame_Bytes Bytes_Of_Hex_Text(std::string_view text);

// One line of a file of frames: a frame in hexadecimal digits, or an exchange as a link logs it,
// its number, what was sent, "/" and what was received, "-" for nothing. `side` is that of a single
// frame.
Frame_Words Words_Of_Line(Board_Generation generation, Frame_Side side, std::string_view line);

}  // namespace norvik
