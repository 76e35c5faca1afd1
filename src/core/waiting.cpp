#include "core/waiting.h"

#include "core/application.h"
#include "platform/platform.h"

namespace norvik {

void Wait(double seconds) {
  constexpr int standing_yields = 10'000;
  const std::int64_t start = Platform.Monotonic_Clock();
  const auto length = static_cast<std::int64_t>(seconds * 1e9);
  int yields = 0;
  for (std::int64_t now = start; now - start < length; now = Platform.Monotonic_Clock()) {
    if (now == start && ++yields > standing_yields) return;
    DoEvents();
  }
}

bool CheckEsc() {
  if (!Platform.Key_Down(key::Escape)) return false;
  Application.EscFlag = true;
  return true;
}

}  // namespace norvik
