// word_rebuild.h: the one loop that takes lines apart and puts their words back.
//
// A transform is a record with
//
//   Order                  the letters that are put back, in that order
//   Begin_Line(words)      looks at the line and may change the text of a word; false: refuse
//   Value(letter, value)   what becomes of the number behind one of X, Y, Z, I, J, K, R
//
// All other letters keep their text.
#pragma once

#include "compiler/text/program_text.h"
#include "core/application.h"
#include "core/format.h"
#include "core/setup.h"
#include "transform/losses.h"
#include "transform/progress.h"
#include "transform/scanner.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <string>
#include <string_view>

namespace norvik {

enum class Emptied_Lines : std::uint8_t { Stay, Vanish };

class Word_Rebuild {
 public:
  // Results are appended to `text`, what is lost to `losses`.
  Word_Rebuild(std::string& text, Transform_Losses& losses)
      : Text(text), Losses(losses), Pattern("############" + MachineSetup.Axis_Format) {}

  enum class End : std::uint8_t { Whole, Escaped, Refused };
  template <class Rules>
  End Run(const GCode_Text& program, Rules rules, Emptied_Lines emptied, Line_Progress& progress);

  // What the G words of the program were.
  struct Modes {
    bool Inch = false, Millimetre = false, Absolute = false, Incremental = false;
    bool Kept = false;  // a G90 or G91 was the last G of its line, so that one stands in the result
  };
  const Modes& Seen_Modes() const { return Seen; }

 private:
  static constexpr std::string_view Number_Letters = "XYZIJKR";
  static constexpr bool Is_Number(char letter) {
    return Number_Letters.find(letter) != std::string_view::npos;
  }
  void Note_Modes(const GCode_Words& words);
  void Make_Room(std::size_t line_length);
  double Checked_Number(std::string_view text, std::int32_t line);
  char* Print(char* out, double value) {
    return Write_Number(out, value, Pattern, Application.DecimalSeparator);
  }

  std::string& Text;
  Transform_Losses& Losses;
  Number_Pattern Pattern;
  GCode_Scanner Scanner;
  std::string Line_Buffer;
  Modes Seen;
};

// --- Inside --------------------------------------------------------------------------------------

template <class Rules>
Word_Rebuild::End Word_Rebuild::Run(const GCode_Text& program, Rules rules, Emptied_Lines emptied,
                                    Line_Progress& progress) {
  std::uint32_t kept = 0;
  for (const char letter : Rules::Order) kept |= GCode_Words::Bit(letter);
  const std::int32_t count = program.Line_Count();
  for (std::int32_t number = 1; number <= count; ++number) {
    const std::string_view line = program.Line(number);
    GCode_Words& words = Scanner.Parse_GCode_Line(line);
    if (words.Has('G')) Note_Modes(words);
    Losses.Count_Line(number, line, words, kept);
    if (!rules.Begin_Line(words)) return End::Refused;

    Make_Room(line.size());
    char* out = Line_Buffer.data();
    for (const char letter : Rules::Order) {
      if (!words.Has(letter)) continue;
      *out++ = letter;
      if (Is_Number(letter)) {
        const double value = rules.Value(letter, Checked_Number(words.Text(letter), number));
        out = Print(out, value);
      } else {
        out = std::ranges::copy(words.Text(letter), out).out;
      }
      *out++ = ' ';
    }
    out = std::ranges::copy(words.Comment, out).out;
    if (out != Line_Buffer.data() || emptied == Emptied_Lines::Stay) {
      *out++ = '\r';
      *out++ = '\n';
      Text.append(Line_Buffer.data(), out);
    }
    if (!progress.Goes_On(number)) return End::Escaped;
  }
  return End::Whole;
}

}  // namespace norvik
