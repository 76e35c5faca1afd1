// blocks.h: what a block did, against what its words ask for.
#pragma once

#include "compiler/check/words.h"
#include "compiler/state/tables.h"
#include "compiler/text/block.h"

#include <cstddef>
#include <cstdint>
#include <optional>

namespace norvik {

// One block of a checked program: the state before it, and what it left in `Compiler` and in the
// record table.
struct Block_Event {
  const Block& Read;
  bool Failed = false;
  const Compiler_State& Before;
  const Compiler_Memory_State& Memory_Before;
  std::size_t First_Row = 0;  // rows from here on are the block's

  std::size_t Row_Count() const { return Compile_Tables.Program_LineArc.Rows.size() - First_Row; }
  const LineArc& Row(std::size_t n) const {
    return Compile_Tables.Program_LineArc.Rows[First_Row + n];
  }
  bool Incremental() const { return Before.ModalGroups[modal_group::Distance] == 91; }
  // The distance mode that the block itself moved in.
  bool Moved_Incremental() const { return Compiler.ModalGroups[modal_group::Distance] == 91; }
  bool Has_Axis_Words() const;
  // True when the block moved: a line or an arc.
  bool Moved() const;
};

// What the check remembers from block to block.
struct Check_Memory {
  bool Feed_Seen = false;        // an F word, or the finding about it
  bool Cycle_Cancelled = false;  // G80 was the last motion code
  bool Spindle_On[2] = {};       // the clockwise and the counter-clockwise output
};

// The rules about motion, feed and outputs, and about the drill cycles.
void Check_Motion(const Block_Event& event, Check_Memory& memory, const Report_Finding& report);
void Check_Cycles(const Block_Event& event, const Report_Finding& report);

}  // namespace norvik
