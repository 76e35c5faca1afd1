// line_scan.h: the quick way through a line whose words stand apart.
//
//   "g1 X1.2345 Y-.5  e3"      a letter and a plain number each, blanks between
//
// In such a line cutting a word never touches another, no word reaches the formula for words that
// run together, and fewer than two characters are left only when nothing is left to read. So one
// scan that notes the first word of each letter gives what the cutting gives. Everything else
// (comments, REPEAT, tabs, letters without a number, long numbers) is not clean.
#pragma once

#include "compiler/state/compiler_state.h"
#include "compiler/text/plain_number.h"

#include <array>
#include <cstdint>
#include <string_view>

namespace norvik {

struct Scanned_Line {
  static constexpr int Most_Codes = 8;

  // M and G words in the order of the text.
  struct Code_Word {
    bool Is_M;
    Plain_Number Number;
  };
  std::array<Code_Word, Most_Codes> Codes;
  int Code_Count = 0;

  // The first word of each letter; only the entries with a bit in `Seen` are filled.
  std::array<Plain_Number, word::Count> Numbers;
  std::uint32_t Seen = 0;
};

// False when the line is not clean; `line` then holds nothing of use.
bool Scan_Clean_Line(std::string_view text, Scanned_Line& line);

}  // namespace norvik
