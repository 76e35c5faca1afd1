#include "core/axes.h"
#include "core/fault.h"
#include "core/format.h"
#include "core/messages.h"
#include "core/operation.h"
#include "core/scope.h"
#include "core/setup.h"
#include "drive/drive.h"
#include "serial/commands.h"
#include "serial/monitor.h"
#include "serial/move_entry.h"
#include "serial/serial_link.h"
#include "serial/serial_page.h"

namespace norvik {

namespace {

std::string Count_Text(double value) {
  return Format_Number(value, "0");
}

std::string Memory_Text(std::uint16_t address) {
  constexpr int none = 999;
  return std::to_string(ReadMemory(address).value_or(none));
}

void Show_Errors() {
  Serial_Page.Label_Dravon_Errors = {
      {Count_Text(Serial_Link.CommsCount), Count_Text(Serial_Link.ErrorCount),
       Count_Text(Serial_Link.ChecksumErrorCount), Count_Text(Serial_Link.LengthErrorCount)}};
}

// What the last replies have brought; sends nothing.
void Show_Known() {
  Serial_Page_Form& page = Serial_Page;
  const bool encoders = Serial_Link.ControllerGeneration > 0;
  for (int axis = 1; axis <= Axis_Count; ++axis) {
    page.Limit_Low[axis] = Dravon.LimitLow[axis];
    page.Limit_High[axis] = Dravon.LimitHigh[axis];
    page.Label_Dravon_Step_Count[axis] = std::to_string(Dravon.Step_Count[axis]);
    page.Label_Dravon_Enc_Count[axis] = encoders ? std::to_string(Dravon.EncoderCount[axis]) : "-";
    page.Label_Enc_Error[axis] = encoders ? Format_Number(Dravon.FollowingError[axis], "0.0") : "-";
    page.Command_Enc_Fault_Flag[axis] = Dravon.EncoderFaults[axis] != 0;
  }
  for (int output = 1; output <= 7; ++output)
    page.Command_Dravon_Aux_Output[output - 1] = Dravon.Outputs[output];
  page.Aux_Input = Dravon.AuxInput;
  page.Aux_Flag = Dravon.Aux_Flag;
  page.Label_SASF = std::to_string(Effective_SASF(Dravon.SASF));
  page.Label_DravonCurrentHZ = Format_Number(Dravon.CurrentHz, "###,###");
  page.Label_Motion = Dravon.InMotion ? "True" : "False";
  page.Label_CMD_Index = std::to_string(Dravon.LastCommandIndex);
  page.Label_DravonErrorMsg = Serial_Link.LastTxError;
}

void Look_For_Presence() {
  if (ReadPresence() != "NA") {
    Serial_Page.Label_ComOK = "Present";
    Dravon.ControllerPresent = true;
    return;
  }
  Serial_Page.Label_ComOK = "Failure";
  SetStatus(1, "Dravon Communication Failure", 5);
  Serial_Link.LinkGood = false;
  Dravon.ControllerPresent = false;
}

void Ask_For_All() {
  Serial_Page_Form& page = Serial_Page;
  Look_For_Presence();
  const auto free = ReadBuffer();
  page.Label_Dravon_Buffer = free ? std::to_string(*free) : "NA";
  DravonPoll();
  page.Label_Dravon_CByte1 = Memory_Text(board_memory::CByte1);
  page.Label_Dravon_CByte2 = Memory_Text(board_memory::CByte2);
  page.Label_WatchDog_Errors = Memory_Text(board_memory::Watchdog_Errors);
  const Firmware_Reply firmware = ReadFirmware();
  page.Label_Firmware_Revision = firmware.Revision;
  page.Label_Firmware_Date = firmware.Date;
}

void Show_Absent() {
  Serial_Page_Form& page = Serial_Page;
  page.Label_ComOK = "Failure";
  page.Label_Dravon_Buffer = page.Label_Firmware_Revision = page.Label_Firmware_Date = "NA";
  page.Label_DravonErrorMsg = "Comm Error!!!";
}

void Update_Page() {
  if (!Drive().Board) return;
  // The line belongs to the moves.
  const bool quiet = !Anything_Moves() && !Dravon.DravonBusy && !Serial_Link.TxBusy;
  if (quiet && Dravon.ControllerPresent) DravonPoll();
  if (quiet && Dravon.ControllerPresent && !Anything_Moves()) Ask_For_All();
  Show_Known();
  if (!Dravon.ControllerPresent) Show_Absent();
  Show_Errors();
}

}  // namespace

void DRAVON_Timer1_Tick() {
  if (Serial_Page.Updating) return;
  const Value_In_Scope updating(Serial_Page.Updating, true);
  Trap("Port Setup Dravon Display Timer Subroutine Error", Update_Page);
}

}  // namespace norvik
