// run_consent.h: whether the operator wants a program run as it was compiled.
//
// Asked by Play and Step before the first step of a run, never in mid-run. The spine fills it in;
// the default asks nobody.
#pragma once

#include <functional>

namespace norvik {

struct Run_Consent_Operations {
  // May show a box and yield. False: the run is not to begin.
  std::function<bool()> May_Begin = [] { return true; };
};
extern Run_Consent_Operations Run_Consent;

}  // namespace norvik
