// interpreter.h: what a block does.
//
// The interpreter acts on a block in one fixed order, whatever the order in the text:
//
//   F, T words -> outputs -> modes -> arcs, cycles, lines -> modal motion -> flow
//     -> user outputs -> control record, when the block has an M word
//
// An act changes the state in `Compiler`, or appends a record to `Program_LineArc`, or both:
//
//   "G1 X2 M3"     line record with "spindle on", then a control record with "unchanged"
//   "M3"           control record with "spindle on"
//   "X2"           the motion that is in force
//   "G17 X2"       no motion: a G word other than G90 and G91 ends modal motion for its block
//
// Numbers are taken in units of the setup; G20 and G21 do nothing.
#pragma once

#include "compiler/text/block.h"
#include "core/nullable.h"

#include <cstdint>
#include <optional>
#include <string_view>

namespace norvik {

// Acts on a block. Faults: whatever a code or word asks that cannot be (a tool above 200, a dwell
// without P, an arc without an end); what was done before the fault stays done.
void ExecuteBlock(Block& block);

// Reads the line and acts on it. Any fault ends the block: it is logged as
// "NIST_Block_Interpretor_Error: " with the text; what was done so far stays.
void ReadBlock(std::string_view text);

// The target of a line; an absent axis stays where it is.
struct Axis_Words {
  Nullable X, Y, Z, A, B, C;
};
enum class Z_Word { By_Mode, Absolute };

// Appends a line record from the current position to the target and moves there. In G91 the words
// count from the current position where that is known; Z does not when it is given as absolute.
void MoveLine(const Axis_Words& words, Z_Word z = Z_Word::By_Mode);

// Appends a control record with the state as it stands; outputs, pause and wait are then used up.
void WriteControlRecord(Block& block);

// The M codes of the setup for the auxiliary output; absent: none.
struct User_Output_Codes {
  std::optional<std::int16_t> High, Low;
};
// Taken from the setup at the start of a compile. An entry that is no M code is logged and left
// out.
void Take_User_Output_Codes();
const User_Output_Codes& Current_User_Output_Codes();

}  // namespace norvik
