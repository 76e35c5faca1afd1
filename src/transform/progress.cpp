#include "transform/progress.h"

#include "core/application.h"
#include "core/messages.h"
#include "platform/platform.h"

namespace norvik {

namespace {
constexpr int Status_Seconds = 5;
}

Line_Progress::Line_Progress(std::string_view what, std::string_view before,
                             std::string_view behind, std::int32_t lines)
    : Before(before), Behind(behind), Lines(lines) {
  SetStatus(1, what, Status_Seconds);
}

bool Line_Progress::Yield(std::int32_t line) {
  const int percent = static_cast<int>(100.0 * line / Lines);
  if (percent != Shown_Percent) {
    Shown_Percent = percent;
    SetStatus(1, Before + std::to_string(percent) + Behind + ", press ESC to cancel",
              Status_Seconds);
  }
  DoEvents();
  if (!Application.EscFlag) return true;
  Application.EscFlag = false;
  return false;
}

}  // namespace norvik
