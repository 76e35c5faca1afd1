// drive_status.h: switches, outputs, override and speed, as an operator sees them.
//
// Each drive keeps the record up to date in its own way: the parallel port by reading pins, a
// serial board by its status reply. Who shows or watches the machine reads it here and asks no
// drive.
#pragma once

#include "core/indexed.h"

#include <cstdint>
#include <optional>

namespace norvik {

struct Drive_Status_State {
  // --- Set by Drive().Read_Switches and by a running move ---------------------------------------
  Indexed<bool, 1, 4> Limit_State;   // home and limit switch of each axis is on
  Indexed<bool, 1, 4> Output_State;  // outputs 1..4 as read back: spindle CW, CCW, mist, flood
  // Units of the setup moved since the switch was last seen on.
  Indexed<float, 1, 6> Home_Distance;

  // --- Set by a move that a switch has ended ----------------------------------------------------
  // For each axis that the switch blocked: the side that is free, true: the negative one. Absent:
  // the last move was not ended by this axis.
  Indexed<std::optional<bool>, 1, 4> Free_Negative;

  // --- Set by Drive().Switch_Output and by the outputs of a move --------------------------------
  // What outputs 1..5 were last told; an output that is not wired stays off. Some ports do not read
  // back what was written.
  Indexed<bool, 1, 5> Output_Commanded;

  // Spindle speed that a drive with a speed output was last told, 0 to 1023.
  std::int32_t Spindle_Level = 0;

  // --- Set at the begin of a session ------------------------------------------------------------
  // A switch was on then: no direction is known to be safe, the limit guard blocks nothing.
  bool Home_Safety_Off = false;

  // --- Speed ------------------------------------------------------------------------------------
  float Actual_IPM = 0;  // measured, about once a second; 0 at rest
  // Speed override, 1 = 100 percent. The override follows its target in small steps.
  float Feed_Override = 1, Feed_Override_Target = 1;
};
extern Drive_Status_State Drive_Status;

}  // namespace norvik
