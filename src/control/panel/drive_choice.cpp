#include "control/panel/drive_choice.h"

#include "control/state/control_texts.h"
#include "core/setup.h"
#include "drive/drive.h"
#include "parallel/parallel_drive.h"
#include "parallel/pin_map.h"
#include "serial/serial_drive.h"

namespace norvik {

namespace {

Drive_Operations First() {
  Drive_Operations board = Serial_Drive;
  board.Name = "Serial Port (Dravon v4.xx)";
  board.Board = 0;
  return board;
}
// Beside the second board the parallel port is brought to rest: motors may still hang on it.
Drive_Operations Second() {
  Drive_Operations board = Serial_Drive;
  board.Name = "Serial Port (Pelmar v5.xx)";
  board.Board = 1;
  board.Begin_Session = [] {
    Idle_All_Outputs();
    Serial_Drive.Begin_Session();
  };
  return board;
}
constexpr Drive_Operations Unknown = {
    .Missing = [] { return control_text::Unknown_Drive; },
    .Begin_Session = Idle_All_Outputs,
    .End_Session = Leave_Parallel_Port,
    .All_Off = All_Outputs_Off,
};

const Drive_Operations& Drive_Of_Setup() {
  static const Drive_Operations first_board = First(), second_board = Second();
  switch (MachineSetup.Parallel_Port_Type) {
    case 1:
      return Parallel_Drive;
    case 2:
      return first_board;
    default:
      return MachineSetup.Parallel_Port_Type > 2 ? second_board : Unknown;
  }
}

}  // namespace

void Choose_Drive_By_Setup() {
  Drive_Choice.Of_Setup = Drive_Of_Setup;
}

}  // namespace norvik
