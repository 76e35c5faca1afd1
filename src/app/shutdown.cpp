#include "app/shutdown.h"

#include "app/drive_session.h"
#include "app/forms.h"
#include "app/import_menu.h"
#include "app/main_form.h"
#include "app/startup.h"
#include "compiler/compile/compile.h"
#include "compiler/state/compiler_state.h"
#include "core/application.h"
#include "core/operation.h"
#include "core/waiting.h"
#include "drive/drive.h"
#include "platform/platform.h"

namespace norvik {

namespace {

constexpr int Yields = 500'000;
constexpr std::int64_t Longest_Wait_ns = 200'000'000;

// True when nobody is left who would have to see the flags: no run, move or compile, and no input.
bool Nothing_Runs() {
  return !Anything_Moves() && Machine.CNCMode == CNC_Stopped && !Program_Is_Held() &&
         !Platform.Input_Pending();
}

// Yields so often that every loop and timer meets the flags. A yield of a desktop with windows may
// cost many microseconds, and half a million of them would look like a hanging program; so the
// count is cut short once the queue is empty and no loop is active, and after a fifth of a second:
// a loop in whose yield the end was asked for goes on only when this returns.
void Let_Loops_End() {
  constexpr int at_least = 100;
  const std::int64_t end = Platform.Monotonic_Clock() + Longest_Wait_ns;
  int count = 0;
  Yield_Until([&] {
    if (++count > Yields) return true;
    return count > at_least && (Nothing_Runs() || Platform.Monotonic_Clock() > end);
  });
}

void Stop_Timers() {
  for (Timer_Id* timer : {&Main_Window.Timer1, &Main_Window.Timer2}) {
    if (*timer != 0) Platform.Stop_Timer(*timer);
    *timer = 0;
  }
}

void Unload_Windows() {
  for (const Form_Id form :
       {Form_Id::CNC_Controls, Form_Id::GCode, Form_Id::Plot, Form_Id::JogKey, Form_Id::Port_IO}) {
    Main_Host.Unload_Form(form);
  }
  Main_Host.Unload_Other_Windows();
}

}  // namespace

void bye() {
  if (Application.ShutdownFlag) return;
  // Without a session, as in a second instance, nothing was taken in hand and nothing is written.
  const bool has_session = Drive_Session.Open;
  if (has_session) Drive().All_Off();
  Application.ShutdownFlag = true;
  Application.Closing_Program = true;
  if (Runs(Operation::Import)) Application.EscFlag = true;
  Let_Loops_End();
  End_Drive_Session();
  DoEvents();
  if (has_session) Save_Default_Form_View();
  Unload_Windows();
  Let_Loops_End();
  Stop_Timers();
  Platform.End_Process();
}

bool Unload_Main() {
  bye();
  return false;
}

}  // namespace norvik
