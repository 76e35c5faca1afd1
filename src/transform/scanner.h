// scanner.h: the one scanner of the text transforms.
//
//   "n10 G01 X 1.5 y-2 [deep]"   ->   N "10", G "01", X "1.5", Y "-2", comment "[deep]"
//
// A line becomes one slot for each letter and a comment. This is not how the compiler reads a line
// (compiler/text): it knows no codes, keeps the last of several words with one letter, and takes
// everything from the first character that no word can hold to the end of the line as the comment.
// What gets lost that way is noted, so that an operator can be told before a text is replaced.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace norvik {

struct GCode_Word {
  char Letter = 'A';  // upper case
  std::string_view Text;
};

// The words of one line. The texts point into the line, or into the scanner that made them, and are
// good until the next line is scanned.
struct GCode_Words {
  // Empty for a letter without a number; of use only where `Has` says so.
  std::array<std::string_view, 26> Slots;
  std::uint32_t Seen = 0;              // bit 0 is A
  std::string_view Comment;            // its characters as they stand, opener included
  std::vector<GCode_Word> Taken_Over;  // words whose slot a later one of the line took
  bool Lost_Digits = false;            // digits without a letter
  bool Passed_Over = false;            // characters of : ; < = > ? @

  static constexpr std::uint32_t Bit(char letter) { return 1U << (letter - 'A'); }
  bool Has(char letter) const { return (Seen & Bit(letter)) != 0; }
  std::string_view Text(char letter) const { return Slots[static_cast<std::size_t>(letter - 'A')]; }
  void Set_Text(char letter, std::string_view text) {
    Slots[static_cast<std::size_t>(letter - 'A')] = text;
  }
};

class GCode_Scanner {
 public:
  // Letters of either case begin words. A number is any run of digits and + , - . / behind the
  // letter, blanks between them or not; a blank behind the number ends it.
  GCode_Words& Parse_GCode_Line(std::string_view line);

 private:
  // False when a character that is passed over stands in or before a word.
  bool Scan(std::string_view line);
  void Store(unsigned slot, std::string_view text);

  GCode_Words Words;
  std::string Cleaned;  // a line without the characters that are passed over
};

// The number in a word's text, with either decimal sign. `is_number` becomes false, and the result
// is 0, where the text is none, the empty text included, or lies beyond 1e15.
double Clean_Number(std::string_view text, bool& is_number);

// One of the four signs that begin a comment to the compiler: [ { ( '
bool Opens_Comment(char c);
// The place behind the comment that such a sign at `at` begins: behind its own closing sign, or any
// other where there is none of its own, or the end of the line. A ' has the rest of the line.
std::size_t End_Of_Comment(std::string_view line, std::size_t at);

// True when the text from a comment on holds something that the compiler reads as a word: behind
// the end of the comment, or behind a tab or another character that is no comment to the compiler.
bool Has_Words_Behind_Comment(std::string_view comment);

}  // namespace norvik
