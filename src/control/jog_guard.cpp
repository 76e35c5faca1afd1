#include "control/jog_guard.h"

#include "control/cnc_controls_form.h"
#include "control/controller_state.h"
#include "control/jog_key.h"
#include "control/panel_jog.h"
#include "platform/platform.h"

#include <utility>

namespace norvik {

namespace {

// Calls the operation after a held jog was released.
template <class Answer, class... Arguments>
void Release_Before(std::function<Answer(Arguments...)>& operation) {
  operation = [inner = std::move(operation)](Arguments... arguments) -> Answer {
    Jog_Guard_Window_Lost();
    return inner(arguments...);
  };
}

}  // namespace

void Jog_Guard_Window_Lost() {
  Release_Jog();
  Forget_Jog_Key();
}

void Jog_Guard_Watch_Dialogs() {
  Release_Before(Platform.Message_Box);
  Release_Before(Platform.Input_Box);
  Release_Before(Platform.Open_File_Dialog);
  Release_Before(Platform.Save_File_Dialog);
}

void Jog_Guard_Tick() {
  if (!Controller.Jog_Held) return;
  const bool held = JogKey.Key_Busy ? Jog_Key_Still_Down() : CNC_Controls_Host.Mouse_Button_Down();
  if (!held) Jog_Guard_Window_Lost();
}

}  // namespace norvik
