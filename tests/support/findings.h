// findings.h: how often the simulated machine has found something.
#pragma once

#include "simulate/findings.h"

#include <cstdint>

namespace norvik {

// Cases of a kind so far, for one axis or, with 0, for all.
inline std::int64_t Finding_Count(Finding_Kind kind, int axis = 0) {
  std::int64_t count = 0;
  for (const Finding& finding : Findings.List) {
    if (finding.Kind == kind && (axis == 0 || finding.Axis == axis)) count += finding.Count;
  }
  return count;
}

}  // namespace norvik
