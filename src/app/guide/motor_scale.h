// motor_scale.h: steps per unit of an axis, from its parts and from what a measured move came to.
//
//   steps per unit = motor steps x microsteps x gear / travel of one turn
//
// The travel of one turn is the pitch of a screw (its lead where it has several starts), or the
// teeth of a pulley times the pitch of its belt.
#pragma once

namespace norvik {

struct Motor_Parts {
  double Steps = 200;      // full steps of the motor in one turn
  double Microsteps = 1;   // of the driver in one full step
  double Gear = 1;         // turns of the motor for one turn of screw or pulley
  double Turn_Travel = 0;  // units that one turn of the screw or pulley moves the axis by
};

// Raises a fault, worded for the operator, when one of the parts is not above 0.
double Steps_Per_Unit(const Motor_Parts& parts);

// Millimetres or inches that a belt moves in one turn of its pulley.
double Belt_Travel(double teeth, double belt_pitch);

// The scale that makes a move of `asked` units come to `asked`, when it came to `measured`. Raises
// a fault, worded for the operator, when one of the two is not above 0, or when they differ by more
// than a third: then the parts are wrong, and a correction would only hide it.
double Corrected_Scale(double scale, double asked, double measured);

}  // namespace norvik
