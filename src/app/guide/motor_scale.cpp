#include "app/guide/motor_scale.h"

#include "core/fault.h"

#include <string>

namespace norvik {

namespace {

void Require_Above_Zero(double value, const char* what) {
  if (!(value > 0))
    throw Fault{Fault_Number::Invalid_Call, std::string(what) + " must be a number above 0."};
}

}  // namespace

double Steps_Per_Unit(const Motor_Parts& parts) {
  Require_Above_Zero(parts.Steps, "Steps of the motor in one turn");
  Require_Above_Zero(parts.Microsteps, "Microsteps of the driver");
  Require_Above_Zero(parts.Gear, "Turns of the motor for one turn of the screw");
  Require_Above_Zero(parts.Turn_Travel, "Travel of one turn");
  return parts.Steps * parts.Microsteps * parts.Gear / parts.Turn_Travel;
}

double Belt_Travel(double teeth, double belt_pitch) {
  Require_Above_Zero(teeth, "Teeth of the pulley");
  Require_Above_Zero(belt_pitch, "Pitch of the belt");
  return teeth * belt_pitch;
}

double Corrected_Scale(double scale, double asked, double measured) {
  Require_Above_Zero(asked, "The distance that was asked for");
  Require_Above_Zero(measured, "The distance that was measured");
  constexpr double most = 4.0 / 3;
  if (measured > asked * most || measured * most < asked)
    throw Fault{
        Fault_Number::Invalid_Call,
        "The two distances differ by more than a third. Look at microsteps and pitch first: a "
        "correction is for what a screw or belt is off by."};
  return scale * asked / measured;
}

}  // namespace norvik
