// setup_apply.h: what the set-up windows do when they are applied, and the diagnostics.
//
// The windows edit the records Port_Setup and Table_Setup_Keys. Applied, a record becomes the setup
// and the machine file, and the drive is brought to its idle levels. Refused with words in status
// panel 1 unless the machine stands.
#pragma once

namespace norvik {

// Outputs and motors go off, on the old pins and on the new ones: what runs must not be left on a
// pin that nothing switches any more, nor begin on one whose sense was turned around. The drive
// begins anew as with another machine, home switches included. The record then shows the setup as
// it was taken.
void Port_Setup_Apply_Click();

// Keys and joystick: saved, loaded again as every option is, pins to their idle levels.
void Table_Setup_Apply_Click();

// The numbers of the last move in a box; refused while the machine moves, since a box holds up the
// thread.
void Menu_Machine_Diagnostics();

}  // namespace norvik
