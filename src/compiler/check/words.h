// words.h: one line as its programmer reads it, against what the reader makes of it.
//
//   "N10G1 X1 (a) (b)"
//    ^                 N10  G1  X1, two comments, from left to right
//    the reader:       N = "10G1", X1, and B of the second comment
//
// The programmer's reading is the usual one: words from left to right, a letter and its number with
// or without blanks between, comments of all kinds and any number, ";" to the end of the line.
#pragma once

#include "compiler/check/findings.h"
#include "compiler/text/block.h"
#include "core/fault.h"

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace norvik {

struct Meant_Word {
  char Letter = 0;          // upper case
  std::string_view Number;  // its text; empty when there is none
  std::size_t Column = 0;   // of the letter, from 1
  std::size_t Gap = 0;      // blanks between letter and number
};
struct Meant_Comment {
  std::size_t Column = 0;   // of the opener, from 1
  std::string_view Inside;  // between opener and closer
  char Opener = 0;
  bool Closed = true;
};
struct Meant_Line {
  std::vector<Meant_Word> Words;
  std::vector<Meant_Comment> Comments;
  std::vector<Meant_Word> Unread;  // runs of other characters: in `Number`, with their column
  bool Whole = true;               // false: the line holds more than is read of it
};
// Reads no more than `Most_Meant_Words` words, comments and other runs of a line: no line of a real
// program has so many, and one of 50 MB must not take memory a hundred times its size.
inline constexpr std::size_t Most_Meant_Words = 1000;
Meant_Line Read_As_Meant(std::string_view text);

// The value that the programmer means, in the axis format; absent for what is no number.
std::optional<double> Meant_Value(const Meant_Word& word);

// What the reader made of a line.
struct Reader_Outcome {
  Block Read;
  bool Was_Read = false;         // false: the fault came while reading
  std::optional<Fault> Failure;  // of reading or executing
};

// A number in a finding: at most six decimals.
std::string Finding_Number(double value);

// Takes a finding of the line: kind, column, what happens, what to write (empty: the kind's own).
using Report_Finding =
    std::function<void(Check_Kind, std::size_t column, std::string what, std::string_view instead)>;

// All findings that the text of a line gives away; `meant` is the programmer's reading of it.
void Check_Words(std::string_view text, Meant_Line meant, const Reader_Outcome& outcome,
                 const Report_Finding& report);

}  // namespace norvik
