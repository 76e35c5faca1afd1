// codes.h: the one table of G and M codes.
//
// Read by the interpreter (what to do, in which order), by the `check` command (what is ignored and
// what to write instead) and by the highlighter (what is known). The rows stand in the order in
// which the interpreter acts on a block, whatever the order in the text; behind them come the codes
// that programs written for other machines hold and that have no effect here.
//
// Modal groups follow RS274/NGC: codes of one group exclude each other and stay in force.
#pragma once

#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

namespace norvik {

// When the interpreter acts on a code.
enum class Code_Step : std::uint8_t {
  Outputs,  // tool change, spindle, coolant
  Modes,    // dwell, plane, compensation, distance mode
  Motion,   // arcs, cycles, lines; then modal motion
  Flow,     // stops and ends, waiting for the input
  None,     // no effect
};

// What the interpreter does for a code (interpreter.cpp).
enum class Code_Action : std::uint8_t {
  Nothing,  // the code has no effect
  Retool,
  Spindle_Clockwise,
  Spindle_Counter_Clockwise,
  Spindle_Off,
  Mist_On,
  Flood_On,
  Coolant_Off,
  Dwell,
  Set_Mode,
  Set_Compensation,
  Arc,
  Cancel_Cycle,
  Drill_Cycle,
  Line_Travel,
  Line_Cutting,
  Line_Cutting_At_Travel_Feed,
  Halt,
  End_Program,
  Wait_For_Input,
};

// What a code without effect leaves undone.
enum class Code_Loss : std::uint8_t {
  Nothing,   // acted on
  Harmless,  // asks for what this machine does anyway
  Ignored,   // something is left undone that does not change the way of the tool
  Missing,   // the job runs otherwise than written
};

struct Code {
  char Letter;  // 'G' or 'M'
  std::int16_t Number;
  std::int8_t Group;  // modal group, 0: acts in its own block only
  Code_Step Step;
  Code_Loss Loss;
  std::string_view Title;
  std::string_view Instead;  // what to write, for codes that are ignored
  Code_Action Action;
};

// All rows; the first `Acting_Code_Count` are acted on.
std::span<const Code> Code_Table();
inline constexpr int Acting_Code_Count = 31;

// Place of a code in the table; No_Code when it has no row.
inline constexpr std::int8_t No_Code = -1;
std::int8_t Find_Code(char letter, std::int16_t number);

// The codes of a block that are acted on, as places in the table: walking them from the lowest is
// the order of execution.
class Code_Set {
 public:
  void Add(std::int8_t place) {
    if (place >= 0) Bits |= std::uint64_t{1} << place;
  }
  void Remove(std::int8_t place) { Bits &= ~(std::uint64_t{1} << place); }
  bool Empty() const { return Bits == 0; }
  // The lowest place from `from` up to and without `end`; No_Code when there is none.
  int Next(int from, int end) const {
    const std::uint64_t rest = Bits >> from << from;
    const int place = std::countr_zero(rest);
    return place < end ? place : No_Code;
  }
  bool operator==(const Code_Set&) const = default;

 private:
  std::uint64_t Bits = 0;
};

// Places of the acting codes by number, for the reader; No_Code for all others.
struct Code_Places {
  std::array<std::int8_t, 101> G;
  std::array<std::int8_t, 1001> M;
};
extern const Code_Places Acting_Codes;
inline std::int8_t G_Code_Place(std::int16_t number) {
  return Acting_Codes.G[static_cast<std::size_t>(number)];
}
inline std::int8_t M_Code_Place(std::int16_t number) {
  return Acting_Codes.M[static_cast<std::size_t>(number)];
}

// Where the places of a step begin; a step ends where the next begins.
int First_Place(Code_Step step);

}  // namespace norvik
