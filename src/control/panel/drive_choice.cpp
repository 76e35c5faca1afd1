#include "control/panel/drive_choice.h"

#include "control/state/control_texts.h"
#include "core/setup.h"
#include "drive/drive.h"
#include "parallel/parallel_drive.h"
#include "parallel/pin_map.h"

namespace norvik {

namespace {

// Boards that cannot be driven yet. The port is left in order all the same: whoever chose a board
// may still have motors on it.
constexpr Drive_Operations First_Board = {
    .Name = "serial board",
    .Missing = control_text::No_Serial_Board,
    .Overrides_Feed = true,
    .End_Session = Leave_Parallel_Port,
    .All_Off = All_Outputs_Off,
};
constexpr Drive_Operations Second_Board = {
    .Name = "serial board",
    .Missing = control_text::No_Serial_Board,
    .Overrides_Feed = true,
    .Begin_Session = Idle_All_Outputs,
    .End_Session = Leave_Parallel_Port,
    .All_Off = All_Outputs_Off,
};
constexpr Drive_Operations Unknown = {
    .Missing = control_text::Unknown_Drive,
    .Begin_Session = Idle_All_Outputs,
    .End_Session = Leave_Parallel_Port,
    .All_Off = All_Outputs_Off,
};

const Drive_Operations& Drive_Of_Setup() {
  switch (MachineSetup.Parallel_Port_Type) {
    case 1:
      return Parallel_Drive;
    case 2:
      return First_Board;
    default:
      return MachineSetup.Parallel_Port_Type > 2 ? Second_Board : Unknown;
  }
}

}  // namespace

void Choose_Drive_By_Setup() {
  Drive_Choice.Of_Setup = Drive_Of_Setup;
}

}  // namespace norvik
