#include "control/motion/waits.h"

#include "control/motion/machine_move.h"
#include "control/motion/motion.h"
#include "control/state/control_texts.h"
#include "control/state/controller_state.h"
#include "core/application.h"
#include "core/waiting.h"
#include "drive/drive.h"
#include "drive/drive_host.h"
#include "platform/platform.h"

#include <algorithm>
#include <functional>

namespace norvik {

namespace {

constexpr std::int64_t Rest_ns = 1'000'000;
constexpr std::int64_t Forever_ns = std::int64_t{1} << 61;
// A wait for time on a clock that stands still ends after so many rounds.
constexpr int Standing_Rounds = 10'000;

// Waits until `done` or for `length_ns`; true unless interrupted.
bool Wait_Until(std::int64_t length_ns, const std::function<bool()>& done) {
  const std::int64_t start = Platform.Monotonic_Clock();
  int standing = 0;
  while (Look_At_Stops()) {
    if (done()) return true;
    const std::int64_t passed = Platform.Monotonic_Clock() - start;
    if (passed >= length_ns) return true;
    if (passed == 0 && length_ns < Forever_ns && ++standing > Standing_Rounds) return true;
    DoEvents();
    if (Interrupted() != Interruption::None) break;
    const std::int64_t rest = std::min(Rest_ns, start + length_ns - Platform.Monotonic_Clock());
    if (rest >= 1000) Platform.Delay_Microseconds(static_cast<std::int32_t>(rest / 1000));
  }
  return false;
}

}  // namespace

Interruption Interrupted() {
  if (Application.Closing_Program) return Interruption::Closing;
  if (Machine.EStop_Flag) return Interruption::EStop;
  if (Application.EscFlag) return Interruption::Esc;
  return Controller.Stop_Request ? Interruption::Stop : Interruption::None;
}

bool Look_At_Stops() {
  if (CheckEsc() || Drive_Host.Escape_Held()) Application.EscFlag = true;
  if (!Controller.Stop_Request && Drive().EStop_Input_On()) {
    Controller.Stop_Text = control_text::Ended_By_EStop_Input;
    CNC_Stop();
    Switch_Outputs_Off_By_EStop();
  }
  return Interrupted() == Interruption::None;
}

bool Wait_Seconds(double seconds) {
  constexpr double longest = 1e9;  // seconds; thirty years stand for "until interrupted"
  return Wait_Until(static_cast<std::int64_t>(std::min(seconds, longest) * 1e9),
                    [] { return false; });
}

bool Dwell_Wait(double seconds, std::int32_t step) {
  if (Drive().Queues_Moves) return Drive().Dwell(seconds, step) == Move_End::Done;
  return Wait_Seconds(seconds);
}

bool Wait_For_Aux_Input() {
  return Arrived(Wait_For_Moves()) &&
         Wait_Until(Forever_ns, [] { return !Drive().Aux_Input_High(); }) &&
         Wait_Until(Forever_ns, [] { return Drive().Aux_Input_High(); });
}

}  // namespace norvik
