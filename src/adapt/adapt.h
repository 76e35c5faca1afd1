// adapt.h: a program of another controller into one that the compiler reads as its author meant.
//
//   const Adapted result = Adapt(*GCode_Program.Text, Adapt_Options_Of_Setup());
//
//   g20 g1x1y2f30 (a) ;b      ->   G20                 (only once: the machine's unit)
//                                  G1 X1.000 Y2.000 F30.000 (a; b)
//
// The language read is that of the public description of RS274/NGC and of what senders and CAM
// programs write. The language written has one motion word a line, words apart, absolute
// coordinates in the machine's unit and work piece zero, arcs of X and Y by their centres, and
// nothing that this machine would have to guess.
//
//   words -> flow -> block -> order of execution -> coordinates -> lines, arcs, cycles -> writer
//
// What cannot be expressed is never left out in silence: it is a numbered finding, stands as a
// comment "(not adapted 3: ...)" at its place, and where the tool would have moved, the program
// halts there (M0). The operator decides.
#pragma once

#include "compiler/text/program_text.h"

#include <array>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace norvik {

// X, Y, Z in units of the machine, A in degrees.
using Adapt_Axes = std::array<double, 4>;

struct Adapt_Options {
  // --- The machine; from the setup ---
  bool Millimetres = false;
  bool Centres_From_Start = false;  // how the machine counts I and J
  int Whole_Digits = 3, Least_Decimals = 3, Decimals = 3;
  std::optional<std::int16_t> Output_High, Output_Low;  // M codes of the auxiliary output
  std::array<double, 201> Tool_Diameters{}, Tool_Lengths{};

  // --- What the program does not say ---
  std::optional<bool> Program_In_Millimetres;      // absent: as it states; else as the machine
  std::optional<bool> Program_Centres_From_Start;  // absent: by what fits the arcs
  // Zeros of the work offsets 1 to 9 (G54 to G59.3), counted from that of G54, and the zero of the
  // machine's coordinates (G53). Absent: not known.
  std::array<std::optional<Adapt_Axes>, 10> Work_Offsets{};
  std::optional<Adapt_Axes> Machine_Zero;
  std::optional<Adapt_Axes> Home, Second_Home;  // where G28 and G30 go to
  bool Leave_Out_Deleted = false;               // lines behind a slash
  double Dwell_Factor = 1;                      // seconds for each P of G4

  // --- How it is written ---
  std::optional<double> Chord_Tolerance;  // of arcs written as lines; absent: a thousandth of a
                                          // millimetre, half the last digit where that is more
  bool Simplify = false;
  std::optional<double> Tolerance;      // of Simplify; absent: one of the last digit
  std::int32_t Most_Lines = 5'000'000;  // run, loops unrolled
};
Adapt_Options Adapt_Options_Of_Setup();

enum class Adapt_Grade : std::uint8_t {
  Refused,  // not expressed; the operator decides
  Wrong,    // expressed as it stands, but the program itself is doubtful there
  Note,     // expressed, or without meaning here
};
std::string_view Name_Of(Adapt_Grade grade);

struct Adapt_Finding {
  std::int32_t Number = 0;  // as in "(not adapted 3: ...)"
  std::int32_t Line = 0;    // of the old program; 0: the program as a whole
  Adapt_Grade Grade = Adapt_Grade::Note;
  std::string What;
  std::string Instead;  // what to do; may be empty
  std::string Text;     // of the line, at most 80 characters
};

struct Adapted {
  std::string Text;                     // lines ended by CR LF
  std::vector<std::int32_t> Old_Lines;  // for each new line, from index 0, the old one
  std::vector<Adapt_Finding> Findings;  // in the order in which they came
  std::int32_t More_Findings = 0;       // that are not kept for their number
  std::int32_t Refused = 0;             // of all findings, also of those not kept
  std::int32_t Lines_Run = 0;           // old lines, as often as they ran
  bool In_Millimetres = false;          // what the program was read as at its start
};

// Never raises a fault for what stands in the program.
Adapted Adapt(const GCode_Text& program, const Adapt_Options& options);

}  // namespace norvik
