// machine_move.h: from targets to step counts; the one door through which programs and sequences
// enter the drive.
//
//   target - Theoretical_Pos --> steps and direction of each axis --> Drive().Move --> Position
//
// A move is measured from `Theoretical_Pos`, the position by commanded steps, and adds to it what
// the whole steps really come to, so that rounding never adds up. A move that ended early made
// other steps than those asked for: `Theoretical_Pos` then takes the live position.
//
// Lengths in units of the setup, speeds in units per minute, axes 1..4.
#pragma once

#include "core/indexed.h"
#include "core/nullable.h"
#include "drive/move.h"

#include <cstdint>
#include <optional>
#include <string>

namespace norvik {

inline constexpr double Unchanged_S_Word = 32767;

struct Move_Order {
  Indexed<Nullable, 1, 4> Target;                    // absent: the axis stays
  float Start = 0, Run = 0, End = 0;                 // speeds
  Indexed<std::int16_t, 0, 4> Out{{1, 1, 1, 1, 1}};  // outputs 1..5: 0 off, 1 unchanged, 2 on
  Nullable S_Word = Unchanged_S_Word;
  std::int32_t Step = 0;  // program step, for a serial board
  bool Is_Arc = false;    // a chord of an arc, for a serial board
};

// Runs one move and returns when it has ended. Refused while the E-stop flag is set. A target or
// scale that gives no step count is logged as "Machine_Move_Error" and moves nothing. Raises
// nothing.
Move_End Machine_Move(const Move_Order& order) noexcept;

// The same, and the machine stands when it returns: for sequences that need a move's end. On a
// drive with a queue the move may have been ended by a switch after it was taken over.
Move_End Machine_Move_To_End(const Move_Order& order) noexcept;
// Until the drive has done all that it has taken over; keeps the reason of another end.
Move_End Wait_For_Moves();

// Raises a fault when the axis has no scale to go that distance by: not finite, not above 0, or
// less than a step in 1000 units. Its part of the move would otherwise be left out in silence.
void Require_Scale(int axis, double distance);

// The drive's own move, for Machine_Move and for the jogs, which have steps instead of a target.
// Keeps the reason of an end that only the drive knows in `Controller.Stop_Text`. Says once for
// each axis and setup that it has no step pin.
Move_End Drive_Move(const Step_Request& request, Nullable s_word, std::int32_t step);

// Every step asked for was made.
constexpr bool Arrived(Move_End end) {
  return end == Move_End::Done || end == Move_End::No_Steps;
}

// What a limit switch that has just ended a move means, with the sides that are free, as the jog
// buttons name them.
std::string Ended_By_Limit();

// `Theoretical_Pos` of the four axes takes the live position.
void Resynchronise_Position();

// Every move is appended to a trace, one line: X, Y, Z, A, start, run and end speed, five outputs.
// A trace that cannot be written is reported once and stops nothing.
struct Move_Trace_State {
  // Absent: "TestFile.csv" in the folder of the tables. Empty: no trace.
  std::optional<std::string> Path;
  std::string Failed_Path;  // reported already
};
extern Move_Trace_State Move_Trace;

}  // namespace norvik
