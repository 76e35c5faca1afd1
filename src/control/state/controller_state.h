// controller_state.h: what the run loop and the panel know between two events.
//
// One thread: a handler that runs in a yield of a move sets flags here, the routine that yielded
// reads them when it comes back. Which operation runs stands in the ledger (core/operation.h).
//
//   flag               set by                        read by             cleared by
//   ------------------------------------------------------------------------------------------
//   Stop_Request       CNC_Stop, a drive that        waits, Home,        start of the next
//                      stopped                       Execute_Step,       operation, the E-stop
//                                                    ReTool              button
//   Retool_Request     CNC_Retool                    NIST_CNC_Controller the same
//   From_Rest          buttons Play and Step         Execute_Step        first wire with steps
//   Jog_Held           press of a jog without end    release, jog guard  end of the jog
//
// Lengths in units of the setup, speeds in units per minute, times in seconds. Axes 1..4.
#pragma once

#include "compiler/text/program_text.h"
#include "core/indexed.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>

namespace norvik {

struct Controller_State {
  // --- Marks of the running operation -----------------------------------------------------------
  bool Jog_Held = false;

  // --- Requests to the running operation --------------------------------------------------------
  bool Stop_Request = false;
  bool Retool_Request = false;
  bool From_Rest = false;
  // Why the last operation ended before its time, in the operator's words; empty: it did not.
  std::string Stop_Text;

  // --- Run time ---------------------------------------------------------------------------------
  double Machine_Run_Time = 0;      // of the running or last run; pauses do not count
  std::int64_t Run_Clock = 0;       // last reading of the monotonic clock, nanoseconds
  bool Run_Started = false;         // the pass before started the run
  std::int32_t Steps_Executed = 0;  // of the running or last run
  std::int32_t Step_Done = 0;       // the step executed last
  // With `Run_In_Table_Order`: the row of the table to go on with; absent: no run has begun.
  std::optional<std::size_t> Run_Row;
  // The operator knows that the run goes on although this text is newer than its table.
  std::shared_ptr<const GCode_Text> Agreed_Text;

  // --- Repeat of a step range -------------------------------------------------------------------
  std::int16_t Repeat_Count = 0;
  std::optional<std::int32_t> Repeat_Step;

  // --- Motion -----------------------------------------------------------------------------------
  float Live_Feed = 0;                            // the panel's live feed value
  float Live_Feed_Cut = 0, Live_Feed_Travel = 0;  // as the last stop left them
  Indexed<double, 1, 6> Step_Position;            // of the step display
  Indexed<std::int32_t, 1, 6> Step_Counter;       // signed commanded steps
  Indexed<bool, 1, 6> Last_Move_Dir;              // true: negative
  Indexed<bool, 1, 4> Jog_Dir;                    // of the last jog; true: negative
  Indexed<double, 1, 4> Move_Target;              // where the running move ends
  Indexed<double, 1, 4> Return_Pos;               // where the last ReTool started
  bool Retool_Active = false;                     // the AutoRetool button blinks

  // --- For the display --------------------------------------------------------------------------
  std::optional<double> Tool;                    // of the last wire that named one
  std::optional<double> Estimated_Process_Time;  // seconds
  Indexed<bool, 1, 4> No_Step_Pin_Told;          // the operator knows of this axis
  std::int16_t Blink_Ticks = 0;                  // of the panel's timer
};
extern Controller_State Controller;

}  // namespace norvik
