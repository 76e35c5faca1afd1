// cursor.h: where the machine is, shown on the plot and on the strip.
//
// Called from the run display and from the panel's display timer, as often as they like: both
// pictures keep their own pace.
#pragma once

#include <cstdint>

namespace norvik {

struct Cursor_State {
  std::int64_t Cross_Drawn = 0, Spindle_Drawn = 0;  // nanoseconds of the monotonic clock; 0: never
  bool Blink = false;
};
extern Cursor_State Cursor;

// The cross at a position of the machine, in units of the setup: four times a second it takes the
// position and changes its colour. `Hide_Axis_Cursor` hides it.
void Draw_Spindle_Position(double x, double y, double z);

// The spindle on the strip at the machine's Z, turning while the cutter is below a cutting level.
void Draw_Spindle();

}  // namespace norvik
