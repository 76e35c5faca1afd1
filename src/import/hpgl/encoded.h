// encoded.h: the moves of an encoded polyline (PE).
//
// Numbers are written low digit first in base 64 (or 32 behind "7"); the last digit comes from
// another range of characters, so that no separator is needed. The lowest bit is the sign.
#pragma once

#include <functional>
#include <string_view>

namespace norvik {

struct Encoded_Move {
  double X = 0, Y = 0;
  bool Absolute = false, Pen_Up = false;
};

// Hands on the moves and selected pens of the text between PE and its ";" in their order. False
// when the text ends within a number or a pair.
bool Decode_Polyline(std::string_view text, const std::function<void(const Encoded_Move&)>& move,
                     const std::function<void(int pen)>& select_pen);

}  // namespace norvik
