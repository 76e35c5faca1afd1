// compiler_state.h: what the compiler knows between two blocks.
//
//   GCodeLines --line pass--> Program_LineArc --wire pass--> Program_Wire --feed pass--> speeds
//
// The line pass changes `Compiler` block by block. The wire pass reads parts of it as they stand at
// the end of the program, not as they stood at the record: plane and distance mode (`ModalGroups` 2
// and 3), `PauseNext`, `CompModeNow` and the last S word. `Outputs`, `CurrentPosition` and
// `TargetPosition` are shared by both passes in turn.
//
// Three lifetimes, three records:
//   Compiler         one compile; reset at its start
//   Compiler_Memory  the process; what deliberately survives a reset
//   Compile_Tables   from one compile to the next; the tables that the passes hand over
//
// Units: lengths in units of the setup, feeds in units per minute, dwells in seconds. Axis tables
// are indexed from 1: X, Y, Z, A and two that are carried and unused.
#pragma once

#include "compiler/state/tables.h"
#include "core/indexed.h"
#include "core/nullable.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace norvik {

// The words of a block that carry a real value, in the order in which the reader looks for them.
namespace word {
enum Name : int { A, B, C, X, Y, Z, I, J, K, D, F, H, L, P, Q, R, S, T };
inline constexpr int Count = T + 1;
inline constexpr char Letters[] = "ABCXYZIJKDFHLPQRST";
}  // namespace word

// One value for each word; absent: not seen.
using Word_Values = Indexed<Nullable, 0, word::Count - 1>;

// Modal groups by the numbering of RS274/NGC.
namespace modal_group {
inline constexpr int Motion = 1, Plane = 2, Distance = 3, Feed_Mode = 5, Units = 6,
                     Compensation = 7, Tool_Length = 8, Cycle_Return = 10, Coordinates = 12,
                     Path_Mode = 13;
}
using Modal_Group_Table = Indexed<std::optional<std::int16_t>, 1, 16>;

constexpr Modal_Group_Table Modal_Groups_At_Start() {
  Modal_Group_Table table;
  table[modal_group::Plane] = 17;
  table[modal_group::Distance] = 90;
  table[modal_group::Feed_Mode] = 94;
  table[modal_group::Units] = 20;
  table[modal_group::Compensation] = 40;
  table[modal_group::Tool_Length] = 49;
  table[modal_group::Cycle_Return] = 98;
  table[modal_group::Coordinates] = 54;
  table[modal_group::Path_Mode] = 61;
  return table;
}

constexpr Modal_Group_Table Modal_M_Codes_At_Start() {
  Modal_Group_Table table;
  table[7] = 5;
  table[8] = 9;
  table[9] = 48;
  return table;
}

struct Compiler_State {
  // --- Where the tool is ------------------------------------------------------------------------
  // Absent: the axis has not been given yet in this compile.
  Indexed<Nullable, 1, 6> CurrentPosition, TargetPosition;

  // --- Modes ------------------------------------------------------------------------------------
  Modal_Group_Table ModalGroups = Modal_Groups_At_Start();
  Modal_Group_Table ModalMCodes = Modal_M_Codes_At_Start();  // not consulted
  std::int16_t CompModeNow = 0;                              // 0 none, 1 left, 2 right
  bool UsesCompensation = false;                             // G41 or G42 occurred
  float TravelFeed = 0, CutFeed = 0;                         // for G0 and for cutting moves
  float CurrentFeed = 0;                                     // of the next record
  bool FeedMoveNow = false;                                  // true cutting, false travel
  Nullable ToolNow = 1.0;
  double ToolDiameter = 0, ToolLength = 0;  // of the tool last called by T

  // --- What the next record takes with it -------------------------------------------------------
  Indexed<std::int16_t, 0, 8> Outputs{{1, 1, 1, 1, 1, 1, 1, 1, 1}};  // 0..4 in use
  float PauseNext = 0;                    // 0 none, -1 halt for the operator, above 0 a dwell
  std::optional<std::int16_t> WaitInput;  // 1: the next control record waits for the input

  // --- Sticky words -----------------------------------------------------------------------------
  // Last value of each word. The entries of I, J and K stay unused: theirs are in Compiler_Memory.
  Word_Values Last;

  // --- Cycle memories that a reset clears -------------------------------------------------------
  Nullable CycleX, CycleY, CycleL, CycleR;
  Nullable CycleStartZ;

  // --- The line being compiled ------------------------------------------------------------------
  std::int32_t CurrentLineNumber = 0;  // of the program or macro; 0 in a block compile
  std::string_view CurrentLineText;
  std::string_view BlockText;  // the line as the reader got it, of the program or a macro
  // Where that line stands: in the file of a macro, or (absent) in the program; lines from 1.
  std::optional<std::int16_t> Source_Macro;
  std::int32_t Source_Line = 0;
};
extern Compiler_State Compiler;

// "macro 3, line 7" while a line of a macro is compiled. A machine file from elsewhere may name any
// file as a macro, so the error log gets the place of a line that cannot be read, not its text.
std::string Place_In_Macro();

// Survives the reset of a compile: a program may start on the centre words, the motion codes and
// two of the cycle memories that the last one left.
struct Compiler_Memory_State {
  Nullable LastI, LastJ, LastK;
  std::int16_t LastLinearCode = 0;  // 1 or 45; 0 before any linear motion
  std::int16_t LastArcCode = 0;     // 2 or 3; 0 before any arc
  Nullable CycleZ, CycleQ;
};
extern Compiler_Memory_State Compiler_Memory;

// The sticky value of a word, wherever it lives.
inline Nullable& Last_Word(word::Name name) {
  switch (name) {
    case word::I:
      return Compiler_Memory.LastI;
    case word::J:
      return Compiler_Memory.LastJ;
    case word::K:
      return Compiler_Memory.LastK;
    default:
      return Compiler.Last[name];
  }
}

// The records as the line pass leaves them, and the files of both tables. The wires go to the
// executing table (program_wire.h).
struct Compile_Tables_State {
  std::string LineArc_Path, Wire_Path;
  Table<LineArc> Program_LineArc;
};
extern Compile_Tables_State Compile_Tables;

// What other rooms ask about the compile. Whether one runs stands in the ledger (core/operation.h).
//
// | flag           | set by             | read by                     | cleared by         |
// |----------------|--------------------|-----------------------------|--------------------|
// | CompileDone    | end of the compile | window of the progress bar, | start of a compile |
// |                |                    | estimate                    |                    |
// | Cut_Short      | a pass that ESC or | end of the compile          | start of a compile |
// |                | a fault ended      |                             |                    |
struct Compile_Status_State {
  bool CompileDone = false;
  bool Cut_Short = false;
  float CompileProgress = 0;     // percent
  std::int32_t CurrentStep = 0;  // step pointer of the G-code window
};
extern Compile_Status_State Compile_Status;

// Brings `Compiler` to its start state with the feeds of the setup, empties the record table and
// lets it keep the texts that the coming records point into.
void Begin_Compiler_State(std::shared_ptr<const void> texts);

}  // namespace norvik
