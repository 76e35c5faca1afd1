// The Goto box: any line under any choice, from any place, on a drive that makes every move at
// once. What must hold: the machine rests and is stopped afterwards, only finite moves were asked
// for, and the feeds of a move are no nonsense.
//
// First two bytes: choices and the place; the rest: the line.
#include "art_work.h"
#include "compiler/state/compiler_state.h"
#include "compiler/tables/program_wire.h"
#include "control/motion/machine_move.h"
#include "control/run/goto.h"
#include "control/state/cnc_controls_form.h"
#include "core/operation.h"
#include "drive/drive.h"
#include "platform/platform.h"

#include <cmath>
#include <string_view>

namespace {

using namespace norvik;

Move_End Make_At_Once(const Step_Request& move, Nullable, std::int32_t) {
  for (const double feed : {move.Start, move.Run, move.End}) Check(std::isfinite(feed));
  for (int axis = 1; axis <= 4; ++axis) {
    Check(move.Steps[axis] >= 0);
    const double way = move.Steps[axis] / static_cast<double>(MachineSetup.Axis_SPI[axis]);
    Machine.Position[axis] += move.Negative[axis] ? -way : way;
  }
  return Move_End::Done;
}

const Drive_Operations& Quick_Drive() {
  static const Drive_Operations drive = [] {
    Drive_Operations quick;
    quick.Name = "Quick";
    quick.Move = Make_At_Once;
    return quick;
  }();
  return drive;
}

void Set_Up(unsigned choice) {
  const auto bit = [choice](int n) { return (choice >> n & 1U) != 0; };
  MachineSetup = {};
  Restore_Factory_Setup();
  Application.DecimalSeparator = bit(0) ? ',' : '.';
  MachineSetup.Goto_From_Position = bit(1);
  MachineSetup.Axis_Ramping = bit(2);
  MachineSetup.GC_IJ_Incremental = bit(3);
  MachineSetup.UnitsofMeasurement = bit(4) ? 1 : 0;
  for (int axis = 1; axis <= 4; ++axis) {
    MachineSetup.Axis_SPI[axis] = 400;
    MachineSetup.Axis_Max_Feed_Rate[axis] = 1000;
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const std::string folder = Enter_Work_Folder();
  static std::int64_t clock = 0;
  if (size < 2 || size > 400) return 0;
  Platform.Monotonic_Clock = [] { return clock += 3'600'000'000'000; };  // no wait takes time
  Application = {};  // no error file: nothing is written
  Application.Table_Folder = folder;
  Machine = {};
  Compiler_Memory = {};
  Compile_Status = {};
  Program_Wire = {};
  Move_Trace.Path = "";
  Drive_Choice.Of_Setup = Quick_Drive;
  Set_Up(data[0]);
  for (int axis = 1; axis <= 4; ++axis) Machine.Position[axis] = data[1] / 16.0 * axis;
  CNC_Controls.Text_Goto.Text.assign(reinterpret_cast<const char*>(data) + 2, size - 2);
  Command_Goto_Click();
  Check(!Anything_Moves());
  Check(Machine.CNCMode == CNC_Stopped);
  for (int axis = 1; axis <= 4; ++axis) Check(std::isfinite(Machine.Position[axis]));
  return 0;
}
