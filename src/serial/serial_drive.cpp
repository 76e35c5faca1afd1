#include "serial/serial_drive.h"

#include "core/application.h"
#include "core/axes.h"
#include "core/format.h"
#include "core/setup.h"
#include "drive/drive_status.h"
#include "serial/commands.h"
#include "serial/monitor.h"
#include "serial/serial_link.h"
#include "serial/serial_session.h"
#include "serial/serial_setup.h"
#include "serial/stream.h"

#include <algorithm>

namespace norvik {

namespace {

constexpr int Watch_Interval_ms = 80;

void Switch_Output(int n, bool on) {
  if (!Dravon.ControllerPresent || !(on ? OutputOn(n) : OutputOff(n))) return;
  Dravon_Stream.Switched_By_Hand = true;
  Drive_Status.Output_Commanded[n] = on;
}

void All_Off() {
  Serial_Stop();
  for (int n = 1; n <= 5; ++n)
    if (Drive_Status.Output_Commanded[n]) Switch_Output(n, false);
}

void Set_Position() {
  Indexed<double, 1, 4> positions;
  for (int axis = 1; axis <= Axis_Count; ++axis) positions[axis] = Machine.Position[axis];
  if (Dravon.ControllerPresent) DravonLoadPosition(positions);
}

void Refresh_Parameters() {
  Begin_Stream();
  Copy_Steps_Per_Unit();
}

// The knob sends its value again and again.
void Set_Override(std::int32_t of_1024) {
  auto& sent = Dravon_Stream.Sent_Override;
  if (of_1024 == sent || !Dravon.ControllerPresent || Dravon.DravonBusy) return;
  if (SetThrottle(of_1024)) sent = of_1024;
}

void Send_Wanted_Level() {
  auto& wanted = Dravon_Stream.Wanted_Level;
  if (!wanted || Dravon.DravonBusy || Serial_Link.TxBusy) return;
  const std::int32_t level = *wanted;
  wanted.reset();
  if (!Serial_Missing().empty() || Machine.EStop_Flag) return;
  DravonSetPWM(level);
}

void Set_Spindle_Level(std::int32_t of_1023) {
  Dravon_Stream.Wanted_Level = of_1023;
  Send_Wanted_Level();
}

void Tick() {
  Serial_Tick();
  Send_Wanted_Level();
}

bool Aux_Input_High() {
  Poll_Now_And_Then(1);
  return Dravon.AuxInput;
}

std::string Health() {
  if (const std::string_view why = Serial_Missing(); !why.empty()) return std::string(why);
  return std::string(Serial_Link.ControllerGeneration > 0 ? "Pelmar" : "Dravon") + " at " +
         Serial_Link.Device + ": " + Link_Health_Text() + "; " + Queue_Text();
}

std::string Diagnostics() {
  std::string text = "Link: " + Link_Health_Text() + "\r\nQueue: " + Queue_Text() + " of " +
                     std::to_string(Serial_Session.BufferCapacity) +
                     "\r\nRate: " + Format_Number(Dravon.CurrentHz, "###,##0") + " Hz";
  for (int axis = 1; axis <= Axis_Count; ++axis) {
    text += std::string("\r\n") + Axis_Letter(axis) + ": " +
            std::to_string(Dravon.Step_Count[axis]) + " steps";
    if (Serial_Link.ControllerGeneration > 0)
      text += ", encoder " + std::to_string(Dravon.EncoderCount[axis]) + ", following error " +
              Format_Number(Dravon.FollowingError[axis], "0.0") + " steps";
  }
  return text;
}

}  // namespace

const Drive_Operations Serial_Drive = {
    .Name = "serial board",
    .Missing = Serial_Missing,
    .Overrides_Feed = true,
    .Sets_Spindle_Speed = true,
    .Queues_Moves = true,
    .Begin_Session = Serial_Begin_Session,
    .End_Session = Serial_End_Session,
    .All_Off = All_Off,
    .Refresh_Parameters = Refresh_Parameters,
    .Tick = Tick,
    .Move = Serial_Move,
    .Dwell = Serial_Dwell,
    .Is_Moving = [] { return Dravon_Stream.Unsettled || Dravon.InMotion; },
    .Moves_Queued = [] { return static_cast<std::int32_t>(Dravon_Stream.Queue.size()); },
    .Wait_Empty = Serial_Wait_Empty,
    .Why_Failed = [] { return Dravon_Stream.Failure; },
    .Hold = [](bool held) { Dravon_Stream.Held = held; },
    .Stop = Serial_Stop,
    .EStop = Serial_EStop,
    .Release_Jog = Serial_Release_Jog,
    .Set_Position = Set_Position,
    .Read_Switches = [] { Poll_Now_And_Then(Watch_Interval_ms); },
    .In_Fault = [] { return Dravon.EncoderFaultAny; },
    .Aux_Input_High = Aux_Input_High,
    .Switch_Output = Switch_Output,
    .Set_Spindle_Level = Set_Spindle_Level,
    .Set_Override = Set_Override,
    .Health = Health,
    .Diagnostics = Diagnostics,
    .Check_Setup = Check_Serial_Setup,
    .Move_Seconds = Serial_Move_Seconds,
    .Alarm = Serial_Alarm,
};

double Serial_Move_Seconds(const Step_Request& request) {
  const Entry_Rules rules{
      .ReferenceSPI = std::min(MachineSetup.Axis_SPI[1], MachineSetup.Axis_SPI[2]),
      .SASF = Effective_SASF(MachineSetup.Dravon_SASF),
      .Generation = Generation_Of_Setup(),
      .Ramp_Rate = MachineSetup.Axis_Ramp_Rate,
      .Path_Scales = Path_Scales_Of_Setup()};
  Entry_Speeds speeds{request.Start, request.Run, request.End};
  Move_Entry entry;
  Plan_Entry(rules, request.Steps, speeds, entry);
  return Entry_Seconds(entry, rules.Ramp_Rate);
}

}  // namespace norvik
