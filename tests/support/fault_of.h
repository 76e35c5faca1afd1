// fault_of.h: the number of the fault that an action raises, 0 where it raises none.
#pragma once

#include "core/fault.h"

#include <functional>

namespace norvik {

inline Fault_Number Fault_Of(const std::function<void()>& body) {
  try {
    body();
  } catch (const Fault& fault) {
    return fault.Number;
  }
  return Fault_Number{0};
}

}  // namespace norvik
