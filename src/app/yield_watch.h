// yield_watch.h: how long the windows were out of reach while the machine ran.
//
// A button acts in a yield. The longest time between two yields of a motion is therefore the
// longest time that Pause or Stop can wait to be heard; the about box shows it.
#pragma once

namespace norvik {

// Measures every yield from now on. Called once, when the back ends are in place.
void Watch_Yields();

// In milliseconds since the start of the program; 0 before the first motion.
double Longest_Yield_Gap_Ms();

}  // namespace norvik
