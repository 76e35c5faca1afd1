#include "app/drive_session.h"

#include "app/session_mark.h"
#include "control/motion/motion.h"
#include "control/safety/safety.h"
#include "core/application.h"
#include "core/axis_memory.h"
#include "core/setup.h"
#include "parallel/pin_map.h"
#include "parallel/step_engine.h"
#include "parallel/timing.h"

#include <utility>

namespace norvik {

Drive_Session_State Drive_Session;
Drive_Session_Host_Operations Drive_Session_Host;

void Begin_Drive_Session() {
  if (Application.ShutdownFlag) return;
  Forget_Driven_Machine();
  Forget_Operations();
  Drive_Session.Open = true;
  if (MachineSetup.Parallel_Port_Type != 2) Idle_All_Outputs();
  if (MachineSetup.Parallel_Port_Type == 1) All_Outputs_Off();
  Set_Application_Priority(MachineSetup.Application_Priority);
  Load_FeedRate_Autotune();
  Look_At_Home_Switches();
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
  All_Outputs_Off();
  const bool stored = Save_Axis_Positions();
  for (int axis = 1; axis <= Axis_Count; ++axis) Motor_Disable(axis);
  Mark_Session_End(stored);
  Drive_Session.Open = false;
}

}  // namespace norvik
