// compile_losses.h: what a compile left out of its tables.
//
// The compiler refuses no program. What it could not take over is listed here, so that whoever is
// about to run the tables can be asked first: blocks that could not be read, macros that did not
// run, and the end of a program that is too long for a table.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <tuple>
#include <vector>

namespace norvik {

enum class Loss_Kind : std::uint8_t {
  Line,     // the block, or a part of it, is not executed
  Macro,    // a macro that the line calls does not run
  Records,  // the table of records is full: the line and all behind it are left out
  Wires,    // the executing table is full: the rest of the line and all behind it are left out
};

struct Compile_Loss {
  Loss_Kind Kind = Loss_Kind::Line;
  std::optional<std::int16_t>
      Macro;              // the macro whose file the line stands in; absent: the program
  std::int32_t Line = 0;  // of that file, from 1, a step of the program; 0 in a block compile
  std::string Text;       // the line, a very long one shortened
  std::string Why;        // in the operator's words
  bool operator==(const Compile_Loss&) const = default;
};

// Of the compile that runs or ran last; emptied when a compile begins. A check leaves it alone.
// A line that a repeat or a macro runs again counts once for each kind.
struct Compile_Losses_State {
  static constexpr std::size_t Most_Listed = 1000;

  std::vector<Compile_Loss> List;  // in the order of the compile, at most `Most_Listed`
  std::int64_t Lines = 0;          // lines lost, whether listed or not
  std::int64_t Macros = 0;         // lines whose macro did not run
  bool Records_Cut = false, Wires_Cut = false;

  bool Any() const { return Lines > 0 || Macros > 0 || Records_Cut || Wires_Cut; }

  std::set<std::tuple<Loss_Kind, std::optional<std::int16_t>, std::int32_t>> Seen;
};
extern Compile_Losses_State Compile_Losses;

// Adds a loss of the line being compiled; `text` is that line.
void Note_Loss(Loss_Kind kind, std::string_view text, std::string why);
// The same for another line of the program.
void Note_Loss_At(std::int32_t line, Loss_Kind kind, std::string_view text, std::string why);

// "2 lines lost, 1 macro missing, wires cut"; empty when nothing was lost.
std::string Summary_Of(const Compile_Losses_State& losses);

}  // namespace norvik
