#include "compiler/check/stops.h"

#include "compiler/check/words.h"
#include "core/geometry.h"
#include "core/setup.h"

#include <algorithm>

namespace norvik {

namespace {

bool Moves(const Wire& wire) {
  return wire.Motion == 1 && wire.Start != wire.End;
}

bool Stops(const Wire& wire) {
  return wire.Motion != 1 && (wire.Dwell != 0 || wire.Aux_Wait == std::int16_t{1});
}

// The feed that the joint of two moves is planned for.
double Joint_Feed(const Wire& wire, const Wire& next) {
  const double start = MachineSetup.Axis_Ramp_Start, widest = MachineSetup.Axis_CV_MotionAngle;
  if (!(widest > 0)) return start;
  const auto at = [](const Nullable& coordinate) { return coordinate.value_or(0); };
  const double angle =
      std::min(Corner_Angle(at(wire.Start[1]), at(wire.Start[2]), at(wire.Start[3]),
                            at(wire.End[1]), at(wire.End[2]), at(wire.End[3]), at(next.End[1]),
                            at(next.End[2]), at(next.End[3])),
               widest);
  return start + (wire.IPM_D - start) * (1 - angle / widest);
}

}  // namespace

void Check_Stops(const Record_List<Wire>& wires,
                 const std::function<void(std::int32_t line, std::string what)>& report) {
  if (MachineSetup.Slow_Before_Stops) return;
  const Corner_Angle_State kept = Corner_Angle_Memory;
  const Wire* before = nullptr;
  const Wire* stop = nullptr;
  for (const Wire& wire : wires) {
    if (Stops(wire) && before && !stop) stop = &wire;
    if (!Moves(wire)) continue;
    if (stop) {
      const double feed = Joint_Feed(*before, wire);
      if (feed > 1.01 * MachineSetup.Axis_Ramp_Start) {
        report(stop->Step, "the move before it may end at a feed of " + Finding_Number(feed) +
                               ", which stops at once");
      }
    }
    stop = nullptr;
    before = &wire;
  }
  Corner_Angle_Memory = kept;
}

}  // namespace norvik
