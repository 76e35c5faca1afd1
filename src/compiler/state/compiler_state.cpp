#include "compiler/state/compiler_state.h"

#include "compiler/state/compile_host.h"
#include "core/setup.h"

#include <utility>

namespace norvik {

Compiler_State Compiler;
Compiler_Memory_State Compiler_Memory;
Compile_Tables_State Compile_Tables;
Compile_Status_State Compile_Status;
Compile_Host_Operations Compile_Host;

void Begin_Compiler_State(std::shared_ptr<const void> texts) {
  Compiler = {};
  Compiler.TravelFeed = MachineSetup.Axis_Feed_Rate_Travel;
  Compiler.CutFeed = MachineSetup.Axis_Feed_Rate_Cut;
  Compiler.CurrentFeed = Compiler.TravelFeed;
  Compile_Tables.Program_LineArc.Rows.clear();
  Compile_Tables.Program_LineArc.Texts = std::move(texts);
}

std::string Place_In_Macro() {
  return "macro " + std::to_string(Compiler.Source_Macro.value_or(0)) + ", line " +
         std::to_string(Compiler.Source_Line);
}

}  // namespace norvik
