// State of the compiler, and of the room below it, as at the start of a program.
#pragma once

#include "compiler/state/compile_host.h"
#include "compiler/state/compiler_state.h"
#include "compiler/tables/program_wire.h"
#include "compiler/text/program_text.h"
#include "compiler/wires/feed_pass.h"
#include "compiler/wires/wire_pass.h"
#include "support/reset_core.h"

namespace norvik {

inline void Reset_Compiler() {
  Reset_Core();
  Compiler = {};
  Compiler_Memory = {};
  Compile_Tables = {};
  Compile_Status = {};
  Compile_Host = {};
  GCode_Program = {};
  Program_Wire = {};
  Wire_Pass = {};
  Feed_Pass_Memory = {};
}

}  // namespace norvik
