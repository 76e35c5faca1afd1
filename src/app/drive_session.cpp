#include "app/drive_session.h"

#include "app/session_mark.h"
#include "control/motion/motion.h"
#include "control/safety/safety.h"
#include "core/application.h"
#include "core/axis_memory.h"
#include "core/setup.h"
#include "core/setup_tail.h"
#include "drive/drive.h"
#include "drive/drive_status.h"
#include "drive/priority.h"

#include <utility>

namespace norvik {

Drive_Session_State Drive_Session;
Drive_Session_Host_Operations Drive_Session_Host;

void Begin_Drive_Session() {
  if (Application.ShutdownFlag) return;
  Drive_Status = {};
  Forget_Operations();
  Drive_Session.Open = true;
  Drive().Begin_Session();
  Set_Application_Priority(MachineSetup.Application_Priority);
  Home_Safety_Check();
  if (Drive_Session.Watch == 0)
    Drive_Session.Watch = Platform.Start_Timer(Watch_Interval_ms, Watch_Machine);
  if (!Drive_Session_Host.Machine_Is_Real()) return;
  Mark_Session_Begin();
  Lost_Tail.Stands_Against = Words_About_Lost_Tail();
}

namespace {

// The factory values of lost settings move nothing before the operator has agreed to them.
void Ask_About_Lost_Tail() {
  if (Lost_Tail.Stands_Against.empty()) return;
  constexpr const char* question =
      "\n\nAre the values right for this machine, so that it may move?";
  const Box_Answer answer = Platform.Message_Box(
      "Machine file", Lost_Tail.Stands_Against + question, Box_Buttons::Yes_No);
  if (answer == Box_Answer::Yes) Lost_Tail.Stands_Against.clear();
}

}  // namespace

void Tell_Session_Start() {
  Ask_About_Lost_Tail();
  Tell_Home_Safety();
  Ask_About_Positions();
}

void End_Drive_Session() {
  if (!Drive_Session.Open) return;
  Platform.Stop_Timer(std::exchange(Drive_Session.Watch, 0));
  Drive().End_Session();
  const bool stored = Save_Axis_Positions();
  Mark_Session_End(stored);
  Drive_Session.Open = false;
}

}  // namespace norvik
