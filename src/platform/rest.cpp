#include "platform/rest.h"

#include "platform/platform.h"

namespace norvik {

Rest_Operations Resting;

void Rest_Microseconds(std::int32_t microseconds) {
  if (Resting.Sleep_Microseconds) return Resting.Sleep_Microseconds(microseconds);
  Platform.Delay_Microseconds(microseconds);
}

}  // namespace norvik
