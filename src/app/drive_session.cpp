#include "app/drive_session.h"

#include "app/session_mark.h"
#include "control/motion/motion.h"
#include "control/safety/safety.h"
#include "core/application.h"
#include "core/axis_memory.h"
#include "core/setup.h"
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
  if (Drive_Session_Host.Machine_Is_Real()) Mark_Session_Begin();
}

void Tell_Session_Start() {
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
