// writer.h: lines as the compiler reads them without loss.
//
//   N10 G1 X1.000 Y2.000 F30.000 (near the edge)
//   M3 S1000.000
//
// Words stand apart; a line has at most one comment, at its end, without characters that would open
// or close another. Numbers have the decimals of the machine's numeral format, rounded as the
// reader rounds, so that what is read is what stands there.
#pragma once

#include "adapt/adapt.h"

#include <cmath>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace norvik::adapting {

// Numbers as the machine's numeral format writes them.
class Numerals {
 public:
  explicit Numerals(const Adapt_Options& options);

  double Unit() const { return 1 / Scale; }  // one of the last digit
  double Rounded(double value) const { return static_cast<double>(Whole(value)) / Scale; }
  // In units of the last digit; ties away from zero, also those that binary numbers miss.
  std::int64_t Whole(double value) const;
  int Decimals() const { return Places; }
  // True for a number that is too large to be written.
  bool Too_Large(double value) const { return !(value < Largest && value > -Largest); }

  // Writes at most 40 characters and returns one past the last; short: without zeros that only
  // fill.
  char* Write(char* out, std::int64_t whole, bool is_short = false) const;

 private:
  static constexpr double Largest = 1e9;
  int Whole_Digits, Least, Places;
  double Scale;
};

class Writer {
 public:
  Writer(Adapted& result, const Adapt_Options& options);

  const Numerals& Numbers() const { return Format; }

  // --- One line of the old program ---
  void Begin(std::int32_t old_line) {
    Old_Line = old_line;
    Sequence = {};
    Wrote = false;
  }
  // A number in front of the first new line.
  void Number_Lines(std::string_view digits) { Sequence = digits; }
  // Stands behind the first new line of the old one, or on a line of its own.
  void Comment(std::string_view text);
  // The old line is done: a comment that waits is written.
  void Finish();
  bool Comment_Waits() const { return Has_Comment; }
  std::int32_t Old_Line_Now() const { return Old_Line; }
  void Set_Old_Line(std::int32_t line) { Old_Line = line; }
  // In front of what is written next.
  void Blank_Line() { ++Blanks; }

  // --- One new line ---
  void Code(char letter, int number);
  void Word(char letter, double value);
  void Short_Word(char letter, double value);        // feeds, speeds and times
  void Word_Whole(char letter, std::int64_t whole);  // in units of the last digit
  bool Line_Is_Open() const { return Open; }
  void End_Line();
  // A line that is written as it stands, without its end.
  void Copied_Line(const char* begin, const char* end);

  void Macro_Call(int number);  // of this machine, on a line of its own
  std::size_t Line_Count() const { return Result.Old_Lines.size(); }

  // --- Rounding ---
  void Count_Rounding(double value, std::int64_t whole) {
    const double lost = std::abs(value - static_cast<double>(whole) * Format.Unit());
    if (lost <= Format.Unit() * 1e-3) return;
    ++Rounded_Count;
    if (lost > Rounded_Most) Rounded_Most = lost;
  }
  std::int64_t Rounded_Count = 0;
  double Rounded_Most = 0;  // units of the machine

 private:
  void Start_Word(char letter);
  void Put(char letter, double value, bool is_short);
  void Start_Line();
  void Write_Blanks();
  void Write_Comment();
  void Close();

  Adapted& Result;
  std::string& Text;
  Numerals Format;
  std::int32_t Old_Line = 0;
  std::string_view Sequence;
  std::string Waiting;  // comment, cleaned
  int Blanks = 0;
  bool Has_Comment = false, Open = false, Wrote = false;
};

}  // namespace norvik::adapting
