// axis_memory.h: the axis positions from one run of the program to the next.
//
// Section `Axis Position` of the machine file. The machine position is written as
// `Axis_Mach_Pos_<n>` and read as `Axis_Mach_Pos<n>`, so that it comes back as 0 while the current
// position survives.
#pragma once

#include <functional>
#include <string>

namespace norvik {

struct Axis_Memory_Host_Operations {
  // The positions stand in the machine file now; does nothing by default.
  std::function<void()> Positions_Stored = [] {};
  // Positions were given and not reached by steps; does nothing by default.
  std::function<void()> Positions_Given = [] {};
};
extern Axis_Memory_Host_Operations Axis_Memory_Host;

// Whether the positions are those of the machine.
struct Position_Memory_State {
  // Why they may not be, and what to do, in the operator's words; empty: nothing speaks against
  // them. Homing and the operator's word clear it.
  std::string Doubt;
};
extern Position_Memory_State Position_Memory;

// Writes `Position` and `Absolute_Pos` of axes 1 to 4, the four together. False when they do not
// stand in the file: it cannot be written, or this call leaves it alone.
bool Save_Axis_Positions();
// After the operator or homing has given an axis its position: saves it and tells
// `Axis_Memory_Host`.
void Keep_Given_Positions();
// Reads them. Missing values are 0; text that is no number is logged and counts as 0.
// `Theoretical_Pos` starts where the machine stands.
void Load_Axis_Positions();

}  // namespace norvik
