// axis_model.h: driver, motor, carriage and end stops of one axis.
//
// A step is a rising edge of the step pin; its direction is the level of the direction pin at that
// moment. The carriage follows the motor through the backlash:
//
//   Slack 0        the flank that pushes in the positive direction bears
//   Slack = play   the other flank bears; in between the carriage stands still
//
// The rotor's speed v follows the step rate r at the acceleration limit a; over one step interval
// dt the rotor turns v dt and so falls behind by 1 - v dt steps. Two steps of lag are half a pole
// pair of a hybrid stepping motor: it falls out of step and stands until the rate is below its
// pull-in rate.
#pragma once

#include <cstdint>

namespace norvik {

void Step_Pin_Changed(int axis, bool high, std::int64_t time);
void Direction_Pin_Changed(int axis, bool negative, std::int64_t time);
void Enable_Pin_Changed(int axis, bool enabled, std::int64_t time);

}  // namespace norvik
