// drive.h: the drive behind the one operation that moves the machine.
//
// `Parallel_Port_Type` of the machine file chooses: 1 the parallel port, 2 and above a serial
// board. Run loop, sequences and jogs call the drive through this record, so that they are the same
// on each.
#pragma once

#include "core/nullable.h"
#include "parallel/step_engine.h"

#include <cstdint>
#include <string_view>

namespace norvik {

struct Drive_Operations {
  // Words for the operator when this drive cannot move anything; empty: it can.
  std::string_view Missing;
  // Runs one move; `s_word` and `step` are of interest to a serial board only. Returns when the
  // move is done or has been taken over, keeps `Machine.Position`, raises nothing.
  Move_End (*Move)(const Step_Request&, Nullable s_word, std::int32_t step);
  // Sends changed parameters to the drive, before a run.
  void (*Refresh_Parameters)();
  // Reads the switches into `Pins.Limit_State`.
  void (*Read_Switches)();
  // State of the E-stop input and of the auxiliary input.
  bool (*EStop_Input_On)();
  bool (*Aux_Input_High)();
  // Output 1..5 on or off.
  void (*Switch_Output)(int n, bool on);
};

// The drive of the loaded machine file.
const Drive_Operations& Drive();

}  // namespace norvik
