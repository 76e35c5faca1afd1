// sdl_platform.h: joystick and wave sound.
#pragma once

namespace norvik {

// Fills `Read_Joystick` and `Play_Sound`. Without a joystick or a sound device both answer as if
// there were none; plugging one in later is noticed. After a loss the joystick is absent for half a
// second, also when another device has taken its place: whoever reads it learns of the loss. The
// library is started at the first use.
void Install_Sdl_Platform();

}  // namespace norvik
