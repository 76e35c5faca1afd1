#include "drive/priority.h"

#include "core/messages.h"
#include "platform/platform.h"

#include <set>
#include <string>

namespace norvik {

void Set_Application_Priority(int level) {
  static std::set<std::string> told;
  const std::string refusal = Platform.Set_Priority(level);
  if (refusal.empty() || !told.insert(refusal).second) return;
  Tell(refusal, 10);
}

}  // namespace norvik
