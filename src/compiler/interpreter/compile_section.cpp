#include "compiler/interpreter/compile_section.h"

#include "compiler/interpreter/line_pass.h"
#include "platform/platform.h"

namespace norvik {

Compile_Section::Compile_Section(Operation what) : Entry(what) {
  Platform.Set_Mouse_Pointer(Mouse_Pointer::Busy);
}

Compile_Section::~Compile_Section() {
  Platform.Set_Mouse_Pointer(Mouse_Pointer::Normal);
}

bool Compile_Busy() {
  return Compiler_Works() || Line_Pass_Runs();
}

}  // namespace norvik
