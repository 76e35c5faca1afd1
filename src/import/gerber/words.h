// words.h: an artwork file as words, and the numbers in a word.
//
// A word ends at "*". Line ends are dropped wherever they stand, so that a coordinate may be split
// over two lines; "%" marks where parameter blocks begin and end:
//
//   %FSLAX23Y23*%        parameter words FSLAX23Y23
//   %AMOC8*5,1,8,0,0,1,22.5*%
//   X100Y200D01*         data word
#pragma once

#include "import/pipeline/pipeline.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace norvik {

// --- Numbers -----------------------------------------------------------------------------------

// How coordinates are written (parameter FS). i and d are the digits before and behind the point.
struct Gerber_Number_Format {
  bool Omit_Leading = false, Omit_Trailing = false;
};

bool Gerber_Contains(std::string_view key, std::string_view text);

// The sign, digits and points behind the first `letter`; empty when the letter is missing or no
// number follows it.
std::string_view Gerber_Number_Text(char letter, std::string_view text);

// The number behind the first `letter`; absent when there is none. Raises a type or overflow fault
// for what a single cannot hold.
std::optional<double> Gerber_Find_Val(char letter, std::string_view text);

// The number that begins behind the `index`-th comma (0: at the start of the text); absent when
// there is none. Faults as above.
std::optional<double> Gerber_Find_CSV_Val(int index, std::string_view text);

// The value of a coordinate's digits by a two-digit format: the first digit i counts places before
// the point, the last digit d places behind it.
//
//   leading zeros omitted    i zeros are put in front; the last d characters are the decimals
//   trailing zeros omitted   i zeros are put behind; the first i characters are the whole part
//   neither                  the first i and the last d characters
//   no format                thousandths
//
// A coordinate with a point of its own is taken as it stands. Faults as above.
double Gerber_XY_Format(std::string_view text, std::string_view format,
                        const Gerber_Number_Format& zeros);

// With leading zeros omitted: true when even the zeros in front do not make d decimals, so that the
// digits count more than the format says.
bool Gerber_Is_Short(std::string_view text, std::string_view format,
                     const Gerber_Number_Format& zeros);

// --- Words -------------------------------------------------------------------------------------

class Gerber_Words {
 public:
  // Parts_Blocks: the first "%" opens a parameter block, the next closes it and ends the word.
  // Empties: each "%" only empties the word.
  enum class Percent { Empties, Parts_Blocks };

  // Raises a file fault. Of a word longer than `limit` only so much is kept.
  Gerber_Words(const std::string& path, Percent percent, std::size_t limit)
      : Source(path), Rule(percent), Limit(limit) {}

  // The next word without blanks at its ends. False at the end of the file and on ESC; what stands
  // behind the last "*" is no word. Yields to the event queue every 1000 characters.
  bool Next(std::string& word);
  bool In_Block() const { return Word_In_Block; }
  bool Was_Cut() const { return Cut; }
  // Something stood behind the last "*": the file ends in the middle of a word.
  bool Ended_In_Word() const { return Left_Over; }
  // Of the word under way, from 1 on.
  std::int64_t Number() const { return Count; }

 private:
  Text_Source Source;
  Percent Rule;
  std::size_t Limit;
  Yield_Counter Yields{1000};
  bool Block = false, Word_In_Block = false, Cut = false, Left_Over = false;
  std::int64_t Count = 0;
};

}  // namespace norvik
