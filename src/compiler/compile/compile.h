// compile.h: the compile as a whole.
//
//   line pass -> compensation (only after G41 or G42) -> Program_LineArc on disk
//     -> wire pass -> feed pass -> Program_Wire on disk
//
// The tables stay in memory between the passes, and each file is written once. A file is replaced
// only when the new one is complete: a full disk or a missing right is reported and leaves the
// tables of the last compile. ESC cuts a pass short; the passes behind it run over what there is,
// so the files fit together.
//
// The compiler knows no error in G-code as such: an unknown letter is left unread, an unknown code
// does nothing, a block that cannot be read is logged and left out. `Compile_Losses`
// (compile_losses.h) lists what was left out; `check` (program_check.h) tells also what is read
// otherwise than it was meant.
#pragma once

#include "core/indexed.h"
#include "core/nullable.h"

#include <string>
#include <string_view>

namespace norvik {

inline constexpr std::string_view LineArc_Table_Name = "NORVIK_Program_LineArc_Data.csv",
                                  Wire_Table_Name = "NORVIK_Program_Wire_Data.csv",
                                  Block_Wire_Table_Name = "NORVIK_Block_Wire_Data.txt";

// Compiles `GCode_Program` with all passes and installs the wires as the executing table, cut short
// or not. True when both tables stand complete on disk. Beeps and does nothing while another
// compile runs.
bool CompileProgram();

// Axes X, Y, Z, A and two unused; absent: unknown, so that words with G91 count from 0.
using Start_Position = Indexed<Nullable, 1, 6>;

// Compiles one line for a Goto, from a position: no compensation, no feed pass, wires of step 0
// into the block file. True when that stands on disk; the wires are then the executing table.
bool CompileBlock(std::string_view text, const Start_Position& from = {});

// The command of the G-code window: the compile, the step pointers to the start.
// True when the program was compiled to its end: `CompileProgram` did it and neither ESC nor a
// fault cut a pass short. Beeps and does nothing while another compile runs.
bool GCode_Compile_All();

}  // namespace norvik
