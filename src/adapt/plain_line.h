// plain_line.h: the quick way through a line of straight motion, which nearly all lines are.
//
//   [N10] [G0 | G1] X1.5 Y2 Z-3 F100       in this order or another, with or without blanks
#pragma once

#include "adapt/context.h"

#include <string_view>

namespace norvik::adapting {

// True when the line was such a one and is written; false: nothing was done.
bool Take_Plain_Line(Context& context, std::string_view text);

}  // namespace norvik::adapting
