// spindle_slider.h: the slider `Slider_RPM`: the spindle's speed by hand, for drives that set it.
#pragma once

namespace norvik {

// The operator has moved it: the level goes to the drive with the next free place of its queue.
// Refused with words while the motors are disabled.
void Slider_RPM_Change();

}  // namespace norvik
