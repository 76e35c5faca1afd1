// losses.h: what a transform would lose or misread, for an operator who decides before it happens.
//
// A transform names the letters that it puts back; every other word is dropped. That is how the
// transforms work, and often harmless, but a program that loses its Q or L words may cut another
// part. So the words that go are counted while the new text is made, and told before it takes the
// place of the old one.
#pragma once

#include "transform/scanner.h"

#include <array>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace norvik {

// How often something was met, and on which line first.
struct Line_Tally {
  std::int32_t Count = 0;
  std::int32_t First_Line = 0;

  void Add(std::int32_t line, std::int32_t count = 1) {
    if (Count == 0) First_Line = line;
    Count += count;
  }
};

struct Transform_Losses {
  std::array<std::int32_t, 26> Dropped{};  // words by letter
  Line_Tally Dropped_Lines;                // lines that lose a word
  Line_Tally Taken_Over;                   // of the dropped words: those that a later one replaced
  Line_Tally Lost_Digits;                  // lines with digits behind no letter
  Line_Tally Passed_Over;                  // lines with a semicolon or a sign like it
  Line_Tally Behind_Comment;               // lines with words behind a comment or a tab
  Line_Tally No_Number;                    // values that are no numbers and count as 0
  Line_Tally Repeats;                      // lines with REPEAT or ENDREPEAT
  bool Already_There = false;              // the program looks as if it were converted already
  std::string_view Why_Already;            // what says so
  bool Both_Units = false, Both_Modes = false;
  bool No_Mode = false;  // incremental moves, and nothing in the new text that says so

  // `kept` has the bits of the letters that are put back.
  void Count_Line(std::int32_t line, std::string_view text, const GCode_Words& words,
                  std::uint32_t kept);
  bool Any() const;
};

// One sentence each, for the operator; empty when nothing is lost. The first one reads "This drops
// 14 words of 9 lines: L (5), Q (9), first at line 12".
std::vector<std::string> Texts_Of(const Transform_Losses& losses);

}  // namespace norvik
