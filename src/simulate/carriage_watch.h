// carriage_watch.h: what is looked at only where something may change.
//
// Each axis has a quiet range of carriage steps: as long as the carriage stays in it no switch
// changes, no stop is met, the tool enters no material, the gantry cannot be further askew than
// allowed and the trail needs no point. So a step costs two comparisons; all of the above is done
// where the range is left, which also gives the next one.
//
//     borders   switch zones, hard stops, top of the material (Z)      found anew when passed
//     room      a thousandth of the travel; a slave pair: half of what is left to the skew limit
#pragma once

#include <cstdint>

namespace norvik {

// A step or the weight has moved the carriage out of its quiet range.
void Carriage_Left_Quiet_Range(int axis, std::int64_t time);
// The quiet range from settings, switches and the carriage's place.
void Set_Quiet_Range(int axis);
// The next step of X or Y looks at the spindle again.
void Watch_Spindle();
// The axis that A is slaved to by the setup, 1..3; 0: none.
int Slave_Master();
// The pair of A and its master stands straight as it is.
void Straighten_Gantry();

// The weight on an axis that nothing holds: brings its carriage to where it is at this time. To be
// called before the axis's enable, the motors' power or its carriage's place changes, ...
void Let_Sink(int axis, std::int64_t time);
// ... and this one afterwards: what holds the axis now has caught it.
void Note_Hold(int axis, std::int64_t time);
// Whether its place depends on the time.
bool Is_Sinking(int axis);

}  // namespace norvik
