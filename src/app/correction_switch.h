// correction_switch.h: the button of a finding that a correction answers.
#pragma once

#include <string_view>

namespace norvik {

// Switches a correction of section Corrections on, as its row recommends it, and stores it in the
// machine file; a list of findings of the program is made anew. Words in status panel 1 say what
// has to follow. Refused with words unless the machine stands; false then, and for another key.
bool Switch_Correction_On(std::string_view key);

}  // namespace norvik
