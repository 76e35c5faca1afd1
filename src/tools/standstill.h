// standstill.h: boxes and dialogs hold up the thread, and with it the pulses of a move.
#pragma once

#include "core/messages.h"
#include "core/operation.h"

namespace norvik {

// True when a box may be opened. False, with the reason in panel 1, while the machine moves.
inline bool Stands_Still() {
  if (!Anything_Moves()) return true;
  SetStatus(1, Why_Not_Begin(Operation::Open), 5);
  return false;
}

}  // namespace norvik
