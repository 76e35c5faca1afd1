#include "serial/serial_session.h"

#include "core/application.h"
#include "core/axes.h"
#include "core/axis_memory.h"
#include "core/error_log.h"
#include "core/messages.h"
#include "core/numbers.h"
#include "core/operation.h"
#include "core/scope.h"
#include "core/setup.h"
#include "core/waiting.h"
#include "drive/drive_status.h"
#include "platform/platform.h"
#include "serial/commands.h"
#include "serial/monitor.h"
#include "serial/serial_link.h"
#include "serial/serial_setup.h"
#include "serial/stream.h"
#include "serial/stream_trace.h"

#include <algorithm>
#include <cstdint>
#include <vector>

namespace norvik {

Serial_Session_Host_Operations Serial_Session_Host;

namespace {

struct Connection_State {
  bool Session = false;
  bool Connecting = false;
  bool Met_Before = false;       // the board has the program's positions
  std::int64_t Tried_At = 0;     // ns
  std::int64_t Compared_At = 0;  // ns
  std::string Why_Not;           // nothing can be moved; empty: it can
  std::string Alarm;
};
Connection_State Connection;

constexpr std::int64_t Second = 1'000'000'000;

std::string Board_Name(int generation) {
  return generation > 0 ? "Pelmar (v5)" : "Dravon (v4)";
}

bool Refuse(const std::string& why) {
  Connection.Why_Not = why;
  Dravon.ControllerPresent = false;
  SetStatus(3, "Dravon Failure", -1);
  return false;
}

// A board of the other generation would read other bytes from our frames.
std::string Wrong_Board(const Firmware_Reply& firmware) {
  const int generation = Generation_Of_Setup();
  const char other = generation > 0 ? '4' : '5';
  if (!firmware.Revision.starts_with(std::string(1, other) + ".")) return {};
  return "The board at " + Serial_Link.Device + " has firmware " + firmware.Revision +
         " and is a " + Board_Name(1 - generation) + ", but the setup says " +
         Board_Name(generation) + ": choose the other one in the port window.";
}

// A small pause between two settings.
void Settle() {
  constexpr double seconds = 0.025;
  Wait(seconds);
}

bool Send_Limits() {
  return MachineSetup.LimitSwitchDisable == 1 ? LimitsDisable() : LimitsEnable();
}

bool Send_Settings() {
  Settle();
  bool good = Dravon.InMotion || SetCByte1(MachineSetup.Dravon_CByte[1]);
  Settle();
  good = SetCByte2(MachineSetup.Dravon_CByte[2]) && good;
  Settle();
  return SetRampRate(MachineSetup.Axis_Ramp_Rate) && good;
}

bool Send_Encoders() {
  if (Generation_Of_Setup() == 0 || Dravon.InMotion) return true;
  if (!WriteEncoderConfig(Encoders_Of_Setup())) return false;
  const auto read = ReadEncoderConfig();
  if (!read) return false;
  SetStatus(1, "Pelmar configuration was set", 5);
  return true;
}

Indexed<double, 1, 4> Program_Positions() {
  Indexed<double, 1, 4> positions;
  for (int axis = 1; axis <= Axis_Count; ++axis) positions[axis] = Machine.Position[axis];
  return positions;
}

// The board was away and may have gone on, or have forgotten everything.
bool Meet_Again() {
  if (Dravon_Stream.Unsettled && !StopMotion()) return Refuse("The board did not take a stop.");
  if (!Read_Status_Now()) return Refuse("The board does not tell where it stands.");
  const bool died = Dravon_Stream.Link_Died;
  if (!died) Stream_Saw_Counters();
  Take_Over_Place();
  for (int axis = 1; axis <= Axis_Count; ++axis)
    Machine.Theoretical_Pos[axis] = Machine.Position[axis];
  Dravon_Stream.Link_Died = false;
  if (died)
    AddMessage(
        "The board answers again. The positions shown were read back from it: compare them "
        "with the machine or home the axes before the next run.");
  return true;
}

bool Meet_First() {
  const auto positions = Program_Positions();
  if (!Read_Status_Now() || !DravonLoadPosition(positions))
    return Refuse("The board at " + Serial_Link.Device + " did not take the positions over (" +
                  Serial_Link.Last_Error + ").");
  Connection.Met_Before = true;
  return true;
}

bool Connect() {
  const int number = std::clamp<int>(MachineSetup.Dravon_CommPort, 1, Serial_Port_Count);
  const std::string device = Device_Of_Port(number);
  Serial_Link.ControllerGeneration = static_cast<std::int16_t>(Generation_Of_Setup());
  Dravon.SASF = Effective_SASF(MachineSetup.Dravon_SASF);
  Dravon_Stream.Sent_Override.reset();
  if (device.empty())
    return Refuse("Serial port " + std::to_string(number) +
                  " does not exist: plug the board's cable in, or choose another port in the port "
                  "window.");
  if (!OpenSerial(device, Serial_Link.SerialBaud))
    return Refuse(Serial_Link.Problem.empty() ? device + " cannot be opened."
                                              : Serial_Link.Problem);
  if (ReadPresence() == "NA")
    return Refuse("No board answers at " + device +
                  ". Look whether it has power, and which port it is plugged into.");
  if (const std::string wrong = Wrong_Board(ReadFirmware()); !wrong.empty()) return Refuse(wrong);
  if (Connection.Met_Before && !Meet_Again()) return false;
  if (!DravonConfigure())
    return Refuse("The board at " + device + " did not take the settings over (" +
                  Serial_Link.Last_Error + ").");
  if (!Connection.Met_Before && !Meet_First()) return false;
  Connection.Why_Not.clear();
  return true;
}

void Watch_Far_End() {
  const bool silent = Platform.Monotonic_Clock() - Serial_Link.Last_Good > Second;
  if (!Dravon_Stream.Unsettled || !silent) return Connection.Alarm.clear();
  if (!Connection.Alarm.empty()) return;
  Connection.Alarm =
      "The board has not answered for a second while it moves: stops can't be delivered. Use the "
      "machine's own E-stop.";
  ErrorLogWrite(Connection.Alarm);
  AddMessage(Connection.Alarm);
  SetStatus(1, Connection.Alarm, 10);
}

}  // namespace

std::string Serial_Device_Key(int number) {
  return "Serial_Device_" + std::to_string(number);
}

std::string Device_Of_Port(int number) {
  const std::string named = ReadPointer("Platform", Serial_Device_Key(number));
  const std::vector<Serial_Port_Info> ports = Platform.Serial_Ports();
  const auto place = static_cast<std::size_t>(number - 1);
  const std::string listed = place < ports.size() ? ports[place].Device : std::string();
  return Serial_Session_Host.Choose_Device(Generation_Of_Setup(), named, listed);
}

double Queue_Seconds_Of_Settings() {
  constexpr double otherwise = 5, longest = 3'600;
  const auto seconds = Try_Number(ReadPointer("Platform", "Serial_Queue_Seconds"));
  return seconds ? std::clamp(*seconds, 0.0, longest) : otherwise;
}

bool Serial_Connect() {
  if (Connection.Connecting) return false;
  Connection.Connecting = true;
  Connection.Tried_At = Platform.Monotonic_Clock();
  const bool connected = Connect();
  Connection.Connecting = false;
  return connected;
}

void Serial_Begin_Session() {
  Connection = {};
  Connection.Session = true;
  Dravon = {};
  Dravon_Stream = {};
  Stream_Limit.Seconds = Queue_Seconds_Of_Settings();
  Choose_Dravon_Trace();
  if (!Serial_Connect()) {
    ErrorLogWrite(Connection.Why_Not);
    AddMessage(Connection.Why_Not);
    SetStatus(1, Connection.Why_Not, 10);
  }
}

void Serial_End_Session() {
  if (!Connection.Session) return;
  Serial_Stop();
  if (Dravon.ControllerPresent)
    for (int n = 1; n <= 5; ++n)
      if (Drive_Status.Output_Commanded[n]) OutputOff(n);
  CloseSerial();
  Connection.Session = false;
  Dravon.ControllerPresent = false;
}

void Serial_Tick() {
  if (!Connection.Session || Connection.Connecting) return;
  const std::int64_t now = Platform.Monotonic_Clock();
  Watch_Far_End();
  if (Dravon.DravonBusy || Serial_Link.TxBusy) return;
  const bool lost = !Dravon.ControllerPresent || Dravon_Stream.Link_Died;
  if (lost && !Anything_Moves()) {
    if (now - Connection.Tried_At >= Second) Serial_Connect();
    return;
  }
  if (Dravon_Stream.Unsettled && !Anything_Moves()) Settle_At_Rest();
  if (lost || Dravon_Stream.Unsettled || now - Connection.Compared_At < Second) return;
  Connection.Compared_At = now;
  Compare_Configuration();
}

std::string_view Serial_Missing() {
  if (!Connection.Why_Not.empty()) return Connection.Why_Not;
  if (Dravon_Stream.Link_Died) return Dravon_Stream.Failure;
  if (!Dravon.ControllerPresent)
    return "The board does not answer. Look at its cable and its power; the link comes back by "
           "itself.";
  if (Dravon.Pelmar_NEQ)
    return "Pelmar Config and Norvik not EQ, update Pelmar: press Apply in the port window.";
  return {};
}

std::string_view Serial_Alarm() {
  if (!Connection.Alarm.empty()) return Connection.Alarm;
  if (Dravon.Pelmar_NEQ) return "Pelmar NEQ";
  return Dravon.EncoderFaultAny ? "Dravon Fault" : "";
}

bool DravonConfigure() {
  constexpr double longest = 10, round = 0.01;  // seconds
  for (double waited = 0; (Dravon.DravonBusy || Serial_Link.TxBusy) && waited < longest;
       waited += round)
    Wait(round);
  Serial_Link.ControllerGeneration = static_cast<std::int16_t>(Generation_Of_Setup());
  Dravon.SASF = Effective_SASF(MachineSetup.Dravon_SASF);
  bool good = Send_Limits();
  constexpr int yields = 6;
  for (int i = 0; i < yields; ++i) DoEvents();
  good = Send_Settings() && good;
  constexpr std::int32_t first_board = 39, second_board = 3'250;
  Serial_Session.BufferCapacity = Generation_Of_Setup() > 0 ? second_board : first_board;
  return Send_Encoders() && good;
}

void Serial_Setup_Loaded() {
  if (!Connection.Session || !Dravon.ControllerPresent || Anything_Moves()) return;
  if (!DravonConfigure())
    Tell("The board did not take the settings over. Press Apply in the port window.", 10);
}

bool DravonReset() {
  constexpr double restart = 2;  // seconds
  if (Anything_Moves() || Connection.Connecting || !ResetController()) return false;
  const Value_In_Scope connecting(Connection.Connecting, true);
  Dravon.ControllerPresent = false;
  Wait(restart);
  Reset_Serial_Counters();
  if (!OpenSerial(Serial_Link.Device, Serial_Link.SerialBaud)) return false;
  const bool good = Send_Limits() && Send_Settings();
  Position_Memory.Doubt =
      "The board was restarted, and its counters began at 0. Compare the positions shown with the "
      "machine, or home the axes.";
  return Read_Status_Now() && good && (Take_Over_Place(), true);
}

}  // namespace norvik
