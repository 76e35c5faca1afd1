#include "platform/platform.h"

namespace norvik {

Platform_Operations Platform;

}  // namespace norvik
