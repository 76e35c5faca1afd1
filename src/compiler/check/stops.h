// stops.h: moves that are still at speed when the machine stops for a dwell, a pause or an
// input.
//
//   o------ move 1 ------>o------ move 2 ------>o
//                         ^ G4, M0 or M66 here
//
// The feed pass plans the joint of the two moves by their angle alone, whatever stands between
// them: a straight joint is passed at full feed, and so the stop in it comes without a ramp.
#pragma once

#include "compiler/state/tables.h"

#include <cstdint>
#include <functional>
#include <string>

namespace norvik {

// Calls `report` with the line of each stop whose move before it ends faster than the start of the
// ramp; never with the correction `Slow_Before_Stops`.
void Check_Stops(const Record_List<Wire>& wires,
                 const std::function<void(std::int32_t line, std::string what)>& report);

}  // namespace norvik
