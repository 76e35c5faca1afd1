// home.h: the fixed sequences: to the ReTool position and back, Home, Home with validation.
//
// All are plain calls of Machine_Move with the outputs unchanged. Targets are texts of the setup;
// an empty text means that the axis takes no part.
//
//   ReTool      Z up to the travel level | X, Y, A together | Z down
//   Home        the same three moves to `Axis_HomePos_<n>`
//
// Home with validation finds each axis's limit switch and puts the position counter right, in the
// order Z, X, Y, A:
//
//          back-off 0.05         seek, `Axis_HomeIPM_0`
//              |<------|   <------------------------------- start
//     ---------+-------#-----------------------------------------   # switch
//     path     |------>|  tap, `Axis_HomeIPM_1`
//     lies beyond      the limit guard ends seek and tap; then Position(n) := `Axis_HomeTarget_<n>`
//
// A sequence goes on to its next move only when the one before arrived; seeks and taps are meant to
// end at the switch. ESC, the E-stop, Stop and a closing program leave it, and no position is set.
#pragma once

namespace norvik {

void ReTool();
// Back to where the last ReTool started.
void ReTool_Return();
void Home_Move();

// Live and commanded position of an axis become `value`; the axis position memory is written.
void Set_Axis_Position(int axis, double value);

// --- Buttons -------------------------------------------------------------------------------------
void Command_Home_Click();
void Command_ReTool_Click();
// Index 0 goes to the ReTool position, 1 back.
void Command_AutoRetool_Click(int index);

}  // namespace norvik
