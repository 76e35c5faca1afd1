// input_model.h: contacts, from the carriage or a hand to the level at the input pin.
//
// Pull-up and a contact to ground: a closed contact is low. A normally open contact closes when it
// is pressed, a normally closed one opens.
#pragma once

#include <cstdint>

namespace norvik {

// The level that the pin has now.
bool Input_High(int input, std::int64_t time);
// The carriage has moved: presses or releases the switch of the axis.
void Carriage_Moved(int axis, std::int64_t time);
// Works the level out anew after a change of settings, force, fault or button.
void Refresh_Input(int input, std::int64_t time);

}  // namespace norvik
