#include "app/guide/speed_trial.h"

#include "drive/move_plan.h"

#include <algorithm>

namespace norvik {

Speed_Trial Begin_Speed_Trial(int axis, double first) {
  Speed_Trial trial;
  trial.Axis = axis;
  trial.Present = first;
  return trial;
}

void Went_Well(Speed_Trial& trial) {
  constexpr double faster = 1.2;
  trial.Last_Good = trial.Present;
  trial.Over = trial.Present >= Fastest_IPM;
  trial.Present = std::min(trial.Present * faster, Fastest_IPM);
}

void Went_Wrong(Speed_Trial& trial) {
  trial.Over = true;
}

std::optional<double> Kept_Speed(const Speed_Trial& trial) {
  if (trial.Last_Good <= 0) return std::nullopt;
  return trial.Last_Good * 2 / 3;
}

}  // namespace norvik
