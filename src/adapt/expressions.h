// expressions.h: numbers, parameters and expressions of RS274/NGC.
//
//   value       1.5   #7   #<depth>   [expression]   SIN[30]   ATAN[1]/[2]   -#7   ##3
//   expression  value, then any of the operators, brackets first, then by rank:
//               **  |  * / MOD  |  + -  |  EQ NE GT GE LT LE  |  AND OR XOR
//
// Operators of one rank go from left to right. Angles are in degrees; comparisons give 1 or 0.
#pragma once

#include "adapt/parameters.h"

#include <string>
#include <string_view>

namespace norvik::adapting {

// What a line cannot be read for, in words for the operator.
struct Unreadable {
  std::string Why;
};

// A place in a line of code (words.h).
struct Cursor {
  std::string_view Text;
  std::size_t At = 0;

  bool Ended() const { return At >= Text.size(); }
  char Now() const { return Ended() ? '\0' : Text[At]; }
  bool Skip(std::string_view word) {
    if (Text.substr(At, word.size()) != word) return false;
    At += word.size();
    return true;
  }
};

// Each reads from the cursor on and leaves it behind; raises Unreadable.
double Read_Value(Cursor& cursor, const Parameters& parameters);
double Read_Bracket(Cursor& cursor, const Parameters& parameters);
// Behind a "#": a number or a name, without its value.
Parameter_Name Read_Parameter_Name(Cursor& cursor, const Parameters& parameters);
// Behind a "<".
std::string Read_Name(Cursor& cursor);

}  // namespace norvik::adapting
