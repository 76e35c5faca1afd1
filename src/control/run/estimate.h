// estimate.h: how long the compiled program will take, without moving.
//
// Walks the wires as the run loop does and adds up the half steps that the step engine would make:
// a half step at v IPM takes 60 / (Axis_SPI_1 x v) / 2 seconds, and the speed changes by
// `Axis_Ramp_Rate` / 100 IPM with each, from `IPM_S` over `IPM_R` to `IPM_E` (step_engine.h draws
// it). Dwells count; waits for the operator or an input do not. The cost of the loop itself is
// taken as zero, which is what a settled time constant makes of it.
#pragma once

#include "compiler/state/tables.h"

namespace norvik {

// Seconds of one wire that starts where `from` stands, and moves `from` to its end. Axes that the
// wire does not name stay.
double Find_Material_ProcessTime(const Wire& wire, Indexed<double, 1, 4>& from);

// Reads the wire file of the program and shows the sum in `Label_MaterialProcess_Time`. Refused
// with a status text while something moves, and when no whole compile of the open program stands. A
// file that cannot be read is logged as "Estimate_Process_Time_Error".
void Command_Estimate_Process_Time_Click();

}  // namespace norvik
