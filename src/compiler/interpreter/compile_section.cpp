#include "compiler/interpreter/compile_section.h"

#include "compiler/interpreter/line_pass.h"
#include "platform/platform.h"

namespace norvik {

namespace {

struct Compile_Driver_State {
  bool Busy = false;  // a compile runs; what a yield starts must wait
};
Compile_Driver_State Driver;

}  // namespace

Compile_Section::Compile_Section() {
  Driver.Busy = true;
  Platform.Set_Mouse_Pointer(Mouse_Pointer::Busy);
}

Compile_Section::~Compile_Section() {
  Driver.Busy = false;
  Platform.Set_Mouse_Pointer(Mouse_Pointer::Normal);
}

bool Compile_Busy() {
  return Driver.Busy || Line_Pass_Runs();
}

}  // namespace norvik
