// panel_jog.h: the jog buttons of the panel.
//
// A held button has no target, only a direction, so a jog goes straight to the drive, past
// Machine_Move: 1000 units that end when the button is released, or one `CNC_Jog_Increment` with
// `Check_SingleStep` on.
//
//            held button                    single step
//
//   speed     _________|  Axis_Feed_Rate_     _________    |
//            /         |  Jogging            /         .   |
//           /       release                 /           .  |
//         Axis_Ramp_Start           Axis_Ramp_Start on both ends
//
// On the parallel port the press handler runs for as long as the jog does; the release arrives in a
// yield of the step loop and sets `Machine.Jog_Stop_Request` false, and the loop ends at its next
// full step. Losing what holds the jog (focus, pointer, key, joystick) counts as a release:
// jog_guard.h.
#pragma once

namespace norvik {

// Axis 1..4; index 0 negative, 1 positive. Refused with a status text while the E-stop is set or
// anything else moves.
void Jog_MouseDown(int axis, int index);
// Ends the running jog if it is a held one.
void Jog_MouseUp(int axis, int index);
// The diagonals: index as cnc_controls_form.h draws them.
void Jog_XY_MouseDown(int index);
void Jog_XY_MouseUp(int index);

// --- Edits ---------------------------------------------------------------------------------------
void Load_Jog_Controls();
void Check_SingleStep_Click();
// The text of the combo becomes `CNC_Jog_Increment`; leaving the combo formats it.
void Combo_SStep_Distance_Change();
void Combo_SStep_Distance_Click();
void Combo_SStep_Distance_LostFocus();
// Enter takes the jog feed, not below `Axis_Ramp_Start`; leaving shows the one that counts.
void Text_Jog_IPM_KeyUp(int key_code);
void Text_Jog_IPM_LostFocus();

}  // namespace norvik
