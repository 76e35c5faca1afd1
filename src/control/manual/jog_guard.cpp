#include "control/manual/jog_guard.h"

#include "control/manual/jog.h"
#include "control/manual/jog_key.h"
#include "control/manual/joystick_jog.h"
#include "control/state/cnc_controls_form.h"
#include "control/state/control_texts.h"
#include "control/state/controller_state.h"
#include "core/messages.h"
#include "core/operation.h"
#include "platform/platform.h"

#include <utility>

namespace norvik {

namespace {

// Releases a held jog, then calls the operation.
template <class Answer, class... Arguments>
void Release_Before(std::function<Answer(Arguments...)>& operation) {
  operation = [inner = std::move(operation)](Arguments... arguments) -> Answer {
    Jog_Guard_Window_Lost();
    return inner(arguments...);
  };
}

// The same, and answers nothing in its place while an operation moves the machine or waits.
template <class Answer, class... Arguments>
void Refuse_While_Moving(std::function<Answer(Arguments...)>& operation) {
  Release_Before(operation);
  operation = [inner = std::move(operation)](Arguments... arguments) -> Answer {
    if (!Anything_Moves()) return inner(arguments...);
    Jog_Guard_Window_Lost();
    Tell(control_text::Not_While_Moving, 5);
    return {};
  };
}

}  // namespace

void Jog_Guard_Window_Lost() {
  Release_Jog();
  Forget_Jog_Key();
  Reset_Joystick();
}

void Jog_Guard_Watch_Dialogs() {
  Release_Before(Platform.Message_Box);
  Refuse_While_Moving(Platform.Input_Box);
  Refuse_While_Moving(Platform.Open_File_Dialog);
  Refuse_While_Moving(Platform.Save_File_Dialog);
  Refuse_While_Moving(Platform.Print_Lines);
}

void Jog_Guard_Tick() {
  if (!Controller.Jog_Held) return;
  const bool held =
      Runs(Operation::Key_Jog) ? Jog_Key_Still_Down() : CNC_Controls_Host.Mouse_Button_Down();
  if (!held) Jog_Guard_Window_Lost();
}

}  // namespace norvik
