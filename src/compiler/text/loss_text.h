// loss_text.h: what a compile left out, in the operator's words.
#pragma once

#include <string>

namespace norvik {

struct Compile_Loss;

// With the line of the text, empty ones counted:
// "line 12: lost: G4 needs a P word: the dwell in seconds (G4 X1)"
std::string Text_Of(const Compile_Loss& loss);

}  // namespace norvik
