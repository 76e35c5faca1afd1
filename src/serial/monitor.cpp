#include "serial/monitor.h"

#include "core/application.h"
#include "core/axes.h"
#include "core/error_log.h"
#include "core/messages.h"
#include "core/operation.h"
#include "core/setup.h"
#include "drive/drive_status.h"
#include "platform/platform.h"
#include "serial/commands.h"
#include "serial/serial_link.h"
#include "serial/stream.h"

#include <algorithm>
#include <cmath>

namespace norvik {

Dravon_State Dravon;

namespace {

bool Bit(std::uint8_t byte, unsigned value) {
  return (byte & value) != 0;
}

void Take_Flags(const Status_Reply& status) {
  constexpr unsigned home_bits[] = {4, 8, 16, 64};
  for (int axis = 1; axis <= Axis_Count; ++axis) {
    const unsigned bit = 1U << static_cast<unsigned>(axis - 1);
    Dravon.LimitLow[axis] = Bit(status.Limits, bit);
    Dravon.LimitHigh[axis] = Bit(status.Limits, bit << 4U);
    Dravon.HomeInput[axis] = Bit(status.Inputs, home_bits[axis - 1]);
    Drive_Status.Limit_State[axis] = At_Limit(axis);
  }
  Dravon.Aux_Flag = Bit(status.Inputs, 1);
  Dravon.InMotion = Bit(status.Inputs, 2);
  Dravon.AuxInput = Bit(status.Inputs, 32);
  for (int n = 1; n <= 7; ++n)
    Dravon.Outputs[n] = Bit(status.Outputs, 1U << static_cast<unsigned>(n - 1));
  for (int n = 1; n <= 5; ++n) Drive_Status.Output_Commanded[n] = Dravon.Outputs[n];
  for (int n = 1; n <= 4; ++n) Drive_Status.Output_State[n] = Dravon.Outputs[n];
}

void Take_Speed(const Status_Reply& status) {
  Dravon.CurrentHz = Dravon.InMotion ? double{1} * status.Rate / Dravon.SASF : 0;
  Dravon.CurrentIPM = Dravon.ReferenceSPI > 0 ? 60 * Dravon.CurrentHz / Dravon.ReferenceSPI : 0;
  Dravon.AxisIPM = static_cast<float>(Dravon.CurrentIPM);
  Dravon.AxisStepRate = static_cast<float>(Dravon.CurrentIPM / 60 * Dravon.SPI[1]);
  Drive_Status.Actual_IPM = Dravon.AxisIPM;
}

void Take_Counters(const Status_Reply& status) {
  Dravon.Step_Count = status.Step_Count;
  Dravon.EncoderCount = status.EncoderCount;
  for (int axis = 1; axis <= Axis_Count; ++axis) {
    const double spi = Dravon.SPI[axis];
    if (!(spi > 0)) continue;
    const double sign = Board_Sign(axis);
    const double encoder = sign * MachineSetup.Dravon_Enc_CFactor[axis];
    Dravon.EncoderPosition[axis] = status.EncoderCount[axis] * encoder / spi;
    Dravon.FollowingError[axis] =
        sign * status.Step_Count[axis] - spi * Dravon.EncoderPosition[axis];
    double steps = sign * status.Step_Count[axis];
    if (MachineSetup.Axis_Backlash_Enable) steps -= double{Dravon_Stream.BacklashSteps[axis]};
    Machine.Position[axis] = steps / spi;
  }
  Dravon.LastCommandIndex = status.LastCommandIndex;
}

void Take_Status(const Status_Reply& status) {
  Take_Flags(status);
  Take_Speed(status);
  Take_Counters(status);
}

// The port is opened again. True when a board answers there.
bool Reconnect() {
  Dravon.DravonBusy = false;
  const bool opened = OpenSerial(Serial_Link.Device, Serial_Link.SerialBaud);
  Serial_Link.TxBusy = false;
  return opened && ReadPresence() != "NA";
}

void Meet_Failure() {
  Serial_Link.LinkGood = false;
  SetStatus(3, "Dravon Failure", -1);
  Add_New_Message("Dravon Failure!");
  const bool runs = Anything_Moves() || Dravon_Stream.Unsettled;
  if (Reconnect() || !runs) return;
  Application.EscFlag = true;
  Link_Has_Died("The board does not answer at " + Serial_Link.Device + " (" +
                (Serial_Link.Problem.empty() ? Serial_Link.Last_Error : Serial_Link.Problem) +
                ").");
}

void Read_Encoder_Faults() {
  const auto encoders = ReadEncoderConfig();
  if (!encoders) return;
  Dravon.EncoderFaults = encoders->Faults;
  Dravon.EncoderFaultAny = encoders->Any_Fault;
}

template <class Flags>
std::string Axes_With(const Flags& flag) {
  std::string axes;
  for (int axis = 1; axis <= Axis_Count; ++axis)
    if (flag(axis)) axes += (axes.empty() ? "" : ", ") + std::string(1, Axis_Letter(axis));
  return axes;
}

bool Differs_From_Setup(const Config_Reply& config) {
  return config.Ramp_Rate != MachineSetup.Axis_Ramp_Rate ||
         config.Limits_Disabled != (MachineSetup.LimitSwitchDisable == 1) ||
         config.CByte1 != MachineSetup.Dravon_CByte[1] ||
         config.CByte2 != MachineSetup.Dravon_CByte[2] || config.Encoders != Encoders_Of_Setup();
}

}  // namespace

bool At_Limit(int axis) {
  return Dravon.LimitLow[axis] || Dravon.LimitHigh[axis];
}

std::string Limit_Axes() {
  return Axes_With(At_Limit);
}

std::string Fault_Axes() {
  return Axes_With([](int axis) { return Dravon.EncoderFaults[axis] != 0; });
}

int Board_Sign(int axis) {
  return MachineSetup.Axis_Polarity[axis] ? -1 : 1;
}

void Copy_Steps_Per_Unit() {
  for (int axis = 1; axis <= Axis_Count; ++axis) Dravon.SPI[axis] = MachineSetup.Axis_SPI[axis];
}

bool Read_Status_Now() {
  Copy_Steps_Per_Unit();
  Dravon.ReferenceSPI = Dravon.SPI[1];
  const auto status = ReadStatus();
  Dravon.Polled_At = Platform.Monotonic_Clock();
  Dravon.ControllerPresent = status.has_value();
  if (!status) return false;
  Serial_Link.LinkGood = true;
  if (Messages.Panel[3] != "Dravon OK") SetStatus(3, "Dravon OK", -1);
  Take_Status(*status);
  return true;
}

bool DravonPoll() {
  DoEvents();
  if (Compiler_Works() || Dravon.DravonBusy || Serial_Link.TxBusy || !Serial_Is_Open())
    return false;
  Dravon.DravonBusy = true;
  const bool answered = Read_Status_Now();
  if (!answered) Meet_Failure();
  Dravon.DravonBusy = false;
  if (!answered) return false;
  if (Serial_Link.ControllerGeneration > 0) Read_Encoder_Faults();
  Stream_Saw_Counters();
  return true;
}

void Poll_Now_And_Then(int interval_ms) {
  constexpr std::int64_t ms = 1'000'000;
  const std::int64_t since = Platform.Monotonic_Clock() - Dravon.Polled_At;
  if (Dravon.ControllerPresent && since >= interval_ms * ms) DravonPoll();
}

Encoder_Config Encoders_Of_Setup() {
  constexpr unsigned enabled = 128, stops = 64, modes = 3;
  Encoder_Config config;
  for (int axis = 1; axis <= Axis_Count; ++axis) {
    unsigned byte = static_cast<unsigned>(MachineSetup.Dravon_Enc_Mode[axis]) & modes;
    if (MachineSetup.Dravon_Enc_Enable[axis] != 0) byte |= enabled;
    if (MachineSetup.Dravon_Enc_StopOnFault[axis] != 0) byte |= stops;
    config.Axis_Byte[axis] = static_cast<std::uint8_t>(byte);
    const double factor = std::round(double{MachineSetup.Dravon_Enc_CFactor[axis]} * 1'000);
    config.Factor[axis] = static_cast<std::uint32_t>(std::clamp<double>(factor, 0, Full_24_Bits));
    config.Max_Error[axis] =
        static_cast<std::uint32_t>(std::max<int>(MachineSetup.Dravon_Enc_MaxError[axis], 0));
  }
  return config;
}

void Compare_Configuration() {
  if (Serial_Link.ControllerGeneration == 0 || Dravon.DravonBusy) return;
  const auto config = ReadConfig();
  if (!config) return;
  if (config->BufferCapacity > 0) {
    Serial_Session.BufferCapacity = config->BufferCapacity;
    if (!Dravon_Stream.Unsettled) Dravon_Stream.Last_Free = config->BufferCapacity;
  }
  const bool differs = Differs_From_Setup(*config);
  if (differs && !Dravon.Pelmar_NEQ) {
    constexpr const char* text = "Pelmar Config and Norvik not EQ, update Pelmar";
    AddMessage(text);
    SetStatus(1, text, 10);
    ErrorLogWrite(text);
  }
  Dravon.Pelmar_NEQ = differs;
}

}  // namespace norvik
