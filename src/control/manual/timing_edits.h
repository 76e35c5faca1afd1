// timing_edits.h: the time constant in the operator's hands: the group Timing of the panel, and
// Start of the window System_Timing.
//
// The work is done by parallel/timing.h and parallel/system_timing.h. What stands here refuses it
// while the machine moves and brings the panel up to date.
#pragma once

namespace norvik {

// Label_Time_Constant: asks for another value. A box holds up the thread, so that none opens while
// the machine moves.
void Panel_Time_Constant_Click();
// Command_TC_Adjust 0 raises by one, 1 lowers; also in a move, where it is tuned by hand.
void Panel_TC_Adjust_Click(int index);
void Panel_Autotune_Click();
// The stored state of autotune, when the panel is loaded.
void Load_Timing_Controls();
// Command_Get_Time_Constant: returns when the constant is found or given up. A press while a
// calibration runs cancels it.
void Panel_Get_Time_Constant_Click();

// Command_Start of System_Timing; a press while it runs does nothing.
void Timing_Test_Start_Click();

}  // namespace norvik
