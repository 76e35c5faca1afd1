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
#include "platform/rest.h"

#include <algorithm>
#include <functional>

namespace norvik {

namespace {

// A millisecond or what is left; none where the yield brought an end.
void Rest_Between_Looks(std::int64_t left_ns) {
  constexpr std::int64_t longest_ns = 1'000'000;
  if (Interrupted() != Interruption::None) return;
  const std::int64_t rest = std::min(longest_ns, left_ns);
  if (rest >= 1000) Rest_Microseconds(static_cast<std::int32_t>(rest / 1000));
}

// Waits until `done` or for `length_ns`; true unless interrupted.
bool Wait_Until(std::int64_t length_ns, const std::function<bool()>& done) {
  Yield_Until([&] { return !Look_At_Stops() || done(); }, length_ns, Rest_Between_Looks);
  return Interrupted() == Interruption::None;
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
  return Wait_Until(To_Nanoseconds(seconds), [] { return false; });
}

bool Dwell_Wait(double seconds, std::int32_t step) {
  if (Drive().Queues_Moves) return Drive().Dwell(seconds, step) == Move_End::Done;
  return Wait_Seconds(seconds);
}

bool Wait_For_Aux_Input() {
  return Arrived(Wait_For_Moves()) &&
         Wait_Until(Without_Limit_ns, [] { return !Drive().Aux_Input_High(); }) &&
         Wait_Until(Without_Limit_ns, [] { return Drive().Aux_Input_High(); });
}

}  // namespace norvik
