// modes.h: what stays in force from one line to the next.
#pragma once

#include "adapt/adapt.h"

#include <array>
#include <map>
#include <optional>

namespace norvik::adapting {

inline constexpr double Millimetres_In_Inch = 25.4;

// G code of the motion in force, in tenths.
inline constexpr int No_Motion = 800;

struct Modes {
  std::optional<int> Motion;  // absent: none was written yet
  int Plane = 17;
  bool Incremental = false;
  bool Centres_From_Start = true;
  int Feed_Mode = 94;
  bool Millimetres = false;
  int Compensation = 40;
  bool Returns_To_R = false;  // G99
  int System = 54;            // 54 to 62: G54 to G59, G59.1 to G59.3
  bool Plane_Written = false, Distance_Written = false, Units_Written = false, Units_Wait = false,
       Compensation_Written = false;
  double Feed = 0;  // F as written, of G93 and G95
  std::optional<double> Speed;
  int Spindle = 5;  // M3, M4 or M5
  bool Coolant = false;
  std::optional<double> Waiting_Tool;  // a T word that takes effect with M6
  std::optional<double> Tool;          // in the spindle
};

struct Cycle_Words {
  std::optional<double> Z, R, P, Q;
  double Start_Z = 0;  // height before the first cycle of the row
};

}  // namespace norvik::adapting
