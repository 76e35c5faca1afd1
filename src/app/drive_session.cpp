#include "app/drive_session.h"

#include "control/cnc_controller.h"
#include "control/safety.h"
#include "core/application.h"
#include "core/axis_memory.h"
#include "core/setup.h"
#include "drive/drive.h"
#include "drive/drive_status.h"
#include "drive/priority.h"

namespace norvik {

Drive_Session_State Drive_Session;

void Begin_Drive_Session() {
  if (Application.ShutdownFlag) return;
  Drive_Status = {};
  Forget_Operations();
  Drive_Session.Open = true;
  Drive().Begin_Session();
  Set_Application_Priority(MachineSetup.Application_Priority);
  Look_At_Home_Switches();
}

void End_Drive_Session() {
  if (!Drive_Session.Open) return;
  Drive().End_Session();
  Save_Axis_Positions();
  Drive_Session.Open = false;
}

}  // namespace norvik
