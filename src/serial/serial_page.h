// serial_page.h: the serial page of the port dialog: set-up of the board, its encoders, its health.
//
// The set-up half is typed and nothing of it acts before it is saved. The other half is what the
// board tells; `DRAVON_Timer1_Tick` brings it up to date while the page is shown.
#pragma once

#include "core/indexed.h"

#include <string>

namespace norvik {

struct Serial_Page_Form {
  // --- Set-up, as typed -------------------------------------------------------------------------
  std::string Combo_Dravon_SerialPort;  // 1 to 15
  std::string Text_Dravon_SASF, Text_Dravon_Spindle_RPM, Combo_DravonArcMinimumLength;
  std::string Text_Dravon_MCode_High, Text_Dravon_MCode_Low;  // empty: none
  Indexed<std::string, 1, 4> Text_Dravon_CByte;
  bool Check_Dravon_PWM_Inv = false, Check_LimitSwitchDisable = false;

  // --- Encoders, as typed; Pelmar ---------------------------------------------------------------
  Indexed<bool, 1, 4> Check_Dravon_Enc_Enable, Check_Dravon_Enc_StopOnFault;
  Indexed<std::string, 1, 4> Combo_Dravon_Enc_Mode;  // "1X"; a number where the list has no word
  Indexed<std::string, 1, 4> Combo_Dravon_Enc_Error, Text_Dravon_Enc_CFactor;
  std::string Label_Hint;  // what was refused last, and what to write instead

  // --- What the board tells ---------------------------------------------------------------------
  std::string Label_ComOK = "NA";  // "Present", "Failure"
  std::string Label_DravonErrorMsg;
  std::string Label_Firmware_Revision = "NA", Label_Firmware_Date = "NA";
  Indexed<std::string, 0, 3> Label_Dravon_Errors;  // frames, errors, of these checksum, length
  std::string Label_Dravon_Buffer = "NA", Label_SASF, Label_DravonCurrentHZ;
  std::string Label_Motion, Label_CMD_Index;
  std::string Label_Dravon_CByte1, Label_Dravon_CByte2, Label_WatchDog_Errors;
  Indexed<std::string, 1, 4> Label_Dravon_Step_Count, Label_Dravon_Enc_Count, Label_Enc_Error;
  Indexed<bool, 1, 4> Limit_Low, Limit_High;  // Command_LimitX_0 and _1, ...
  Indexed<bool, 1, 4> Command_Enc_Fault_Flag;
  Indexed<bool, 0, 6> Command_Dravon_Aux_Output;  // outputs 1 to 7
  bool Aux_Input = false, Aux_Flag = false;       // Command_Dravon_Aux_Input_0 and _1
  bool Updating = false;                          // a tick runs
};
extern Serial_Page_Form Serial_Page;

inline constexpr const char* Offered_Arc_Lengths[] = {"0.00001", "0.0001", "0.001",
                                                      "0.01",    "0.05",   "0.1"};
// Modes 1, 2 and 3.
inline constexpr const char* Offered_Encoder_Modes[] = {"1X", "2X", "4X"};
inline constexpr const char* Offered_Encoder_Errors[] = {"20", "50", "75", "100", "200", "255"};

// Shows the setup.
void Serial_Page_Form_Load();
// Takes what is typed into `MachineSetup`. A field that cannot be read keeps its stored value and
// is named in the hint. Nothing is written to a file.
void Take_Serial_Page();

// Asks the board for all that the page shows. While the machine moves it shows what is known: the
// line belongs to the moves. Yields.
void DRAVON_Timer1_Tick();

// All refused with words while the machine moves, but for the counters.
void Command_Dravon_ResetErrors_Click();
// Restarts the board; its counters begin at 0 and the positions are in doubt.
void Command_DravonReset_Click();
// Clears the encoder faults and the latches of switches that are off.
void Command_Enc_Fault_Flag_Click();
// Saves the page and sends the encoders' set-up to the board.
void Command_Set_Encoder_Click();
// Output 1 to 7 changes over.
void Command_Dravon_Aux_Output_Click(int output);

}  // namespace norvik
