#include "core/application.h"
#include "core/axis_memory.h"
#include "core/error_log.h"
#include "core/geometry.h"
#include "core/messages.h"
#include "core/operation.h"
#include "core/recent_files.h"
#include "core/remembered_files.h"
#include "core/setup.h"
#include "core/setup_tail.h"
#include "core/trace_file.h"
#include "core/window_memory.h"
#include "support/reset.h"

namespace norvik {

void Reset_Core() {
  Application = {};
  Machine = {};
  Tools = {};
  MachineSetup = {};
  Setup_Store = {};
  Setup_Host = {};
  Log_Limits = {};
  Trace_Watch = {};
  Lost_Tail = {};
  Messages = {};
  Messages_Host = {};
  Operations = {};
  Operation_Host = {};
  Recent = {};
  Recent_Host = {};
  Remembered = {};
  Window_Area = {};
  Axis_Memory_Host = {};
  Position_Memory = {};
  Corner_Angle_Memory = {};
}

}  // namespace norvik
