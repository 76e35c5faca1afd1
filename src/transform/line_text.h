// line_text.h: what the transforms do to the text of one line without taking its words apart.
#pragma once

#include "core/format.h"

#include <string>
#include <string_view>

namespace norvik {

// The line without a sequence number: an "N" of either case at its start, digits and the blanks
// around them go. A line that does not begin so stays as it is.
std::string_view Strip_Number(std::string_view line);

// The decimal format of a line: numbers by one pattern, behind the letters whose numbers are
// lengths or angles.
//
//   "g1 x1,5 F3.25 [x1]"  ->  "G1 X001.500 F3.25 [x1]"
class Word_Format {
 public:
  // `pattern` as for `Number_Pattern`; `decimal_sign` is what every comma and point becomes.
  Word_Format(std::string_view pattern, char decimal_sign);

  // Appends the line to `out`. Of several words with one letter the first is printed anew; one
  // without a number directly behind the letter stays. Outside comments letters become upper case.
  void Append_Line(std::string& out, std::string_view line);

 private:
  Number_Pattern Pattern;
  char Decimal_Sign;
  std::string Number;  // room for one printed number
  std::string Signed;  // the line with its decimal signs changed
};

}  // namespace norvik
