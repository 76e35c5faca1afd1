#include "compiler/compile.h"

#include "compiler/compensation.h"
#include "compiler/compile_host.h"
#include "compiler/compiler_state.h"
#include "compiler/feed_pass.h"
#include "compiler/line_pass.h"
#include "compiler/tables_io.h"
#include "compiler/wire_pass.h"
#include "core/application.h"
#include "core/error_log.h"
#include "core/fault.h"
#include "core/messages.h"
#include "core/paths.h"
#include "platform/platform.h"

#include <utility>

namespace norvik {

namespace {

struct Compile_Driver_State {
  bool Busy = false;  // a compile runs; what a yield starts must wait
};
Compile_Driver_State Driver;

// One compile at a time, with the busy pointer.
class Compile_Section {
 public:
  Compile_Section() {
    Driver.Busy = true;
    Platform.Set_Mouse_Pointer(Mouse_Pointer::Busy);
  }
  ~Compile_Section() {
    Driver.Busy = false;
    Platform.Set_Mouse_Pointer(Mouse_Pointer::Normal);
  }
  Compile_Section(const Compile_Section&) = delete;
  Compile_Section& operator=(const Compile_Section&) = delete;
};

bool Refused() {
  if (Compile_Busy()) Platform.Beep();
  return Compile_Busy();
}

void Set_Paths(std::string_view wire_name) {
  Compile_Tables.LineArc_Path = Join_Path(Application.Table_Folder, LineArc_Table_Name);
  Compile_Tables.Wire_Path = Join_Path(Application.Table_Folder, wire_name);
}

void Report_Unwritten(const Fault& fault) {
  ErrorLogWrite("Compile table not written: " + fault.Description);
  AddMessage("The compile could not write its tables: " + fault.Description);
}

bool Write_Records() {
  return Trap_With(Report_Unwritten, [] {
    Write_LineArc_Table(Compile_Tables.LineArc_Path, Compile_Tables.Program_LineArc);
  });
}

void Convert_To_Wires() {
  Compile_Tables.Program_Wire =
      NIST_ConvertLineArctoWire(std::exchange(Compile_Tables.Program_LineArc, {}));
}

void Begin_Program() {
  Compile_Status.CompileRunning = true;
  SetStatus(1, "GCode Compile: Compiling Data...", 5);
  DoEvents();
  Compile_Status.CompileDone = false;
  Compile_Status.CompileProgress = 0;
  Compile_Host.Show_Progress("GCode Compile Progress");
  Set_Paths(Wire_Table_Name);
}

void End_Program() {
  Set_Panel(1, "");
  Compile_Status.CompileRunning = false;
  Compile_Host.Play_Sound_Slot(6);
  Compile_Status.CompileDone = true;
}

}  // namespace

bool Compile_Busy() {
  return Driver.Busy || Line_Pass_Runs();
}

bool CompileProgram() {
  if (Refused()) return false;
  bool written = false;
  {
    const Compile_Section section;
    Begin_Program();
    Trap("CompileProgram", [&] {
      Run_Line_Pass(GCode_Program.Text, Compile_Operations());
      if (Compiler.UsesCompensation) AddRadiusCompensation(Compile_Tables.Program_LineArc);
      const bool records_written = Write_Records();
      Convert_To_Wires();
      const bool wires_written =
          NIST_Optimus_Rates(Compile_Tables.Program_Wire, Compile_Tables.Wire_Path);
      written = records_written && wires_written;
    });
  }
  End_Program();
  return written;
}

bool CompileBlock(std::string_view text) {
  if (Refused()) return false;
  const Compile_Section section;
  SetStatus(1, "GCode Compile: Compiling Block...", 5);
  DoEvents();
  Set_Paths(Block_Wire_Table_Name);
  bool written = false;
  Trap("CompileBlock", [&] {
    Run_Block_Pass(std::string(text), Compile_Operations());
    const bool records_written = Write_Records();
    Convert_To_Wires();
    written = records_written && Trap_With(Report_Unwritten, [] {
                Write_Wire_Table(Compile_Tables.Wire_Path, Compile_Tables.Program_Wire);
              });
  });
  Set_Panel(1, "");
  return written;
}

bool GCode_Compile_All() {
  const bool written = CompileProgram();
  Compile_Host.Refresh_Plot();
  Machine.StartingStep = 0;
  Compile_Status.CurrentStep = Machine.StartingStep;
  AddMessage("Compiling GCode");
  return written;
}

}  // namespace norvik
