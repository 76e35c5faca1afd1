// jog_guard.h: everything that ends a held jog besides its own release.
//
// A held jog runs until its release arrives; a release that never arrives would drive the axis to
// its end. So each of these counts as the release:
//
//   the window loses the focus, is hidden, minimised or closed    Jog_Guard_Window_Lost
//   a message box, input box or file dialog opens                 Jog_Guard_Watch_Dialogs
//   no mouse button is down any more, the key is up               Jog_Guard_Tick
//   the joystick does not answer                                  joystick_jog.h
//
// A single step ends by itself and is not touched. The joystick has to be seen at rest again before
// it moves anything.
#pragma once

namespace norvik {

// From the window that holds the jog, whichever of the above befell it.
void Jog_Guard_Window_Lost();

// Wraps the dialogs of `Platform`, printing with them, so that each ends a held jog before it
// opens. A dialog that the operator opens in a yield of a move would hold up the pulses in
// mid-move, and one in a dwell or between two moves whatever the operation does next, with settings
// that it has changed for itself. It is refused with a status text and answers as cancelled. A
// paused or stopped machine refuses none. Message boxes are shown whatever they cost. Once, after
// the back ends are in place.
void Jog_Guard_Watch_Dialogs();

// From the panel's timer and the jog window's: a release that the system never delivered.
void Jog_Guard_Tick();

}  // namespace norvik
