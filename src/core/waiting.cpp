#include "core/waiting.h"

#include "core/application.h"
#include "platform/platform.h"

#include <algorithm>

namespace norvik {

bool Yield_Until(const std::function<bool()>& done, std::int64_t longest_ns,
                 const std::function<void(std::int64_t left_ns)>& rest) {
  constexpr int standing_yields = 10'000;
  const std::int64_t start = Platform.Monotonic_Clock();
  const auto left = [&] { return longest_ns - (Platform.Monotonic_Clock() - start); };
  for (int standing = 0; !done();) {
    const std::int64_t before = left();
    if (before <= 0) return false;
    const bool stands = before == longest_ns && longest_ns != Without_Limit_ns;
    if (stands && ++standing > standing_yields) return false;
    DoEvents();
    if (rest) rest(left());
  }
  return true;
}

std::int64_t To_Nanoseconds(double seconds) {
  constexpr double longest = 1e9;
  return static_cast<std::int64_t>(std::min(seconds, longest) * 1e9);
}

void Wait(double seconds) {
  Yield_Until([] { return false; }, To_Nanoseconds(seconds));
}

bool CheckEsc() {
  if (!Platform.Key_Down(key::Escape)) return false;
  Application.EscFlag = true;
  return true;
}

}  // namespace norvik
