// monitor.h: the running picture of a board, from its status replies.
//
// `DravonPoll` is called by the stream, by the watch over the machine and by the port window. It
// updates `Machine.Position`, `Drive_Status` and the record below.
#pragma once

#include "core/indexed.h"
#include "serial/serial_frame.h"

#include <cstdint>
#include <string>

namespace norvik {

struct Dravon_State {
  // --- From each good status reply --------------------------------------------------------------
  Indexed<bool, 1, 4> LimitLow, LimitHigh, HomeInput;  // latches of the two switches; home input
  bool AuxInput = false, Aux_Flag = false, InMotion = false;
  Indexed<bool, 1, 7> Outputs;
  Indexed<std::int32_t, 1, 4> Step_Count, EncoderCount;
  Indexed<double, 1, 4> EncoderPosition;  // units
  Indexed<double, 1, 4> FollowingError;   // steps
  double CurrentHz = 0, CurrentIPM = 0;   // 0 at rest
  std::uint32_t LastCommandIndex = 0;     // that the board has finished; Pelmar
  float AxisIPM = 0, AxisStepRate = 0;

  // --- From the encoder reply of a Pelmar -------------------------------------------------------
  Indexed<std::int16_t, 1, 4> EncoderFaults;  // 0 or 1
  bool EncoderFaultAny = false;

  // --- State ------------------------------------------------------------------------------------
  bool ControllerPresent = false;  // the last status read succeeded
  bool DravonBusy = false;         // an exchange of several frames is in progress
  bool Pelmar_NEQ = false;         // the board's configuration is not that of the setup
  Indexed<double, 1, 4> SPI;       // working copies of the axes' scales
  double ReferenceSPI = 0;         // for rates
  int SASF = 1;                    // 1..20
  std::int64_t Polled_At = 0;      // ns; the last status read, good or not
};
extern Dravon_State Dravon;

// The axis is at one of its switches, or was.
bool At_Limit(int axis);
// "X, Z": the axes with a latch, or with an encoder fault; empty: none.
std::string Limit_Axes();
std::string Fault_Axes();
// -1 for an axis whose direction is turned round for the board: its counter runs the other way.
int Board_Sign(int axis);

// The scales of the setup, for the positions and rates of everything that follows.
void Copy_Steps_Per_Unit();
// Reads and takes the status without a yield, and without a recovery when there is no answer.
bool Read_Status_Now();
// The status read. False: no answer, or it was not the time for one.
bool DravonPoll();
// The same, at most every so many milliseconds, and not while no board answers.
void Poll_Now_And_Then(int interval_ms);
// Pelmar: compares the board's configuration with the setup; a difference is said once.
void Compare_Configuration();
// The encoder bytes of the setup.
Encoder_Config Encoders_Of_Setup();

}  // namespace norvik
