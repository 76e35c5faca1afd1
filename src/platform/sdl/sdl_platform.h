// sdl_platform.h: joystick and wave sound.
#pragma once

#include <string>

namespace norvik {

// Fills `Read_Joystick` and `Play_Sound`. Without a joystick or a sound device both answer as if
// there were none; plugging one in later is noticed. After a loss the joystick is absent for half a
// second, also when another device has taken its place: whoever reads it learns of the loss. The
// library is started at the first use.
void Install_Sdl_Platform();

// What `Play_Sound` does: ends the last sound, then begins this one and does not wait for its end.
// Answers why nothing can be heard; empty: it plays.
std::string Start_Sound(const std::string& path);
// The last sound has not been handed to the device as a whole.
bool Sound_Plays();

}  // namespace norvik
