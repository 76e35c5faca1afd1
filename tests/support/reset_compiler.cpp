#include "compiler/interpreter/line_pass.h"
#include "compiler/state/compile_host.h"
#include "compiler/state/compile_losses.h"
#include "compiler/state/compiler_state.h"
#include "compiler/state/wire_table.h"
#include "compiler/tables/program_wire.h"
#include "compiler/text/compile_sources.h"
#include "compiler/text/program_text.h"
#include "compiler/wires/feed_pass.h"
#include "support/reset.h"

namespace norvik {

void Reset_Compiler() {
  Reset_Core();
  Compiler = {};
  Compiler_Memory = {};
  Line_Pass_Limits = {};
  Compile_Tables = {};
  Compile_Status = {};
  Compile_Losses = {};
  Compile_Host = {};
  GCode_Program = {};
  Present_Compile = {};
  Program_Wire = {};
  Program_Wire_Host = {};
  Wire_Pass = {};
  Feed_Pass_Memory = {};
}

}  // namespace norvik
