#include "parallel/parallel_drive.h"

#include "core/application.h"
#include "core/operation.h"
#include "core/setup.h"
#include "drive/drive_status.h"
#include "parallel/pin_map.h"
#include "parallel/port_check.h"
#include "parallel/port_display.h"
#include "parallel/ports.h"
#include "parallel/read_back.h"
#include "parallel/step_engine.h"
#include "parallel/timing.h"

#include <algorithm>

namespace norvik {

namespace {

void Begin_Session() {
  Forget_Driven_Machine();
  Forget_Written_Bytes();
  Idle_All_Outputs();
  All_Outputs_Off();
  Look_For_Deaf_Ports();
  Load_FeedRate_Autotune();
}

// A switch that is wired to a port that nothing answers on.
bool Unread(int axis) {
  const std::int32_t port = MachineSetup.Input_Port[Limit_Input(axis)];
  return Input_Bit(Limit_Input(axis)) && (port < Lowest_Port || port > 65535);
}

bool Starts_On_A_Switch() {
  for (int axis = 1; axis <= Axis_Count; ++axis)
    if (Unread(axis)) return false;
  return std::ranges::any_of(Drive_Status.Limit_State, [](bool on) { return on; });
}

std::int64_t Failures() {
  return Port_Failures.Reads.Count + Port_Failures.Writes.Count;
}

std::string Health() {
  const std::int64_t failures = Failures();
  if (failures == 0 && !Read_Back.Deaf_Ports.empty())
    return Port_Text(Read_Back.Deaf_Ports.front()) + " does not read back what is written" +
           (MachineSetup.Port_Shadow ? ", the written byte is remembered" : "");
  if (failures == 0) return "every access to the port worked";
  return std::to_string(failures) + " accesses to the port failed: " +
         (Port_Failures.Writes.Count > 0 ? Port_Failures.Writes.Said : Port_Failures.Reads.Said);
}

}  // namespace

const Drive_Operations Parallel_Drive = {
    .Name = "LPT parallel port",
    .Times_Half_Steps = true,
    .Begin_Session = Begin_Session,
    .End_Session = Leave_Parallel_Port,
    .All_Off = All_Outputs_Off,
    .Idle = Idle_All_Outputs,
    .Tick = Motor_Timer_Tick,
    .Move = [](const Step_Request& request, Nullable,
               std::int32_t) { return Step_Engine_Move(request); },
    .Is_Moving = [] { return Runs(Operation::Move); },
    .Release_Jog = [] { Machine.Jog_Stop_Request = false; },
    .Read_Switches = Read_Limits,
    .Starts_On_A_Switch = Starts_On_A_Switch,
    .Has_Switch = [](int axis) { return Input_Bit(Limit_Input(axis)).has_value(); },
    .EStop_Input_On = EStop_Input_On,
    .Aux_Input_High = [] { return Read_Input(Auxiliary_Input); },
    .Switch_Output = [](int n, bool on) { on ? Output_On(n) : Output_Off(n); },
    .Can_Step = [](int axis) { return Output_Bit(Step_Slot(axis)).has_value(); },
    .Health = Health,
    .Failures = Failures,
    .Diagnostics = Diagnostics_Text,
    .Check_Setup = Check_Port_Setup,
};

void Leave_Parallel_Port() {
  All_Outputs_Off();
  for (int axis = 1; axis <= Axis_Count; ++axis) Motor_Disable(axis);
}

}  // namespace norvik
