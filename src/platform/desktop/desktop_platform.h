// desktop_platform.h: the operations of `Platform` that a desktop with windows gives.
//
// Fills the event queue, timers, boxes, dialogs, keys, pointer, printer and clocks. Ports, delay,
// priority, joystick and sound come from the other back ends.
#pragma once

#include <functional>

namespace norvik {

// Needs the application object of the toolkit to exist. `before_box` runs before any message box or
// input box opens: a box takes the focus, so whatever was held by a key or a button must end.
void Install_Desktop_Platform(std::function<void()> before_box);

// True when the last press of ESC went to an open box or menu, or to a widget that takes it: one
// that has, or lies in one that has, the property `Takes_Escape`.
bool Escape_Went_To_A_Box();

}  // namespace norvik
