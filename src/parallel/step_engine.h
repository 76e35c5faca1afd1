// step_engine.h: one straight move, from step counts to step pulses.
//
// Fed by the run loop, jogs, homing and Goto with a step count and a direction for each axis and
// three speeds; feeds the pins through pin_map.h and the time through timing.h. The move blocks its
// caller. It yields to the event queue only in `Feed_Monitor`, about every quarter second; handlers
// that run there set flags, which the loop reads at its next half step.
//
// The pulse train is a digital differential analyser over half steps. The axis with the most steps
// (the major axis, `MaxSteps`) toggles its pin in each of the 2 x MaxSteps iterations, another axis
// on each StepSkip-th on the average, StepSkip = MaxSteps / its steps:
//
//   iteration   1  2  3  4  5  6  7  8       one iteration = one half step = one delay
//   X (4)      _|~~|__|~~|__|~~|__|~~|__     a rising edge is a step
//   Y (2)      ____|~~~~~|_____|~~~~~|__
//   Phase       f  t  f  t  f  t  f  t       true while the pins of the major axis are high
//
// The speed (IPM: units of the setup per minute along the X scale) rises and falls by RampInc in
// each iteration:
//
//   IPM_Rn        ______________
//                /              \            iteration < RampUp_Val: faster
//   IPM_St      /                \           iteration > RampDN_Val: slower
//   IPM_En                        \          both tests are independent; never above Rn_Limit
//               1    RampUp_Val  RampDN_Val  2 x MaxSteps
//
//   flag                       set by                         read by      cleared by
//   ------------------------------------------------------------------------------------------
//   Machine.Jog_Stop_Request   callers: true for a move;      step loop    a jog's release: false,
//     (false: jog released)    the loop when it has ended                  which ends the move
//   Machine.EStop_Flag         panel, in a yield              step loop    panel
//   Application.EscFlag        any ESC poll                   step loop    whoever consumes it
//   Pins.Axis_Stepping         set-up of a move               motor timer  end of the move
#pragma once

#include "core/indexed.h"
#include "drive/move.h"

#include <cstdint>
#include <optional>
#include <string>

namespace norvik {

// What the engine keeps between moves, and the numbers of the last move for the diagnostics.
struct Step_Engine_State {
  bool Stepping_Began = false;  // the last move came as far as its step loop

  // --- Kept between moves ----------------------------------------------------------------------
  Indexed<bool, 1, 4> Last_Dir;  // direction of the last move of each axis, for backlash
  Indexed<bool, 1, 4> Safe_Dir;  // the direction not travelled when the switch was last off
  // Toggles of the axis since its switch was last seen on; a switch never seen on was left long
  // ago.
  static constexpr std::int64_t Long_Ago = std::int64_t{1} << 40;
  Indexed<std::int64_t, 1, 4> Off_Toggles{{Long_Ago, Long_Ago, Long_Ago, Long_Ago}};
  // Toggles that a take-up cut short still owes against Last_Dir; absent: none was cut short.
  Indexed<std::optional<std::int64_t>, 1, 4> Take_Up_Left;
  // Value of `Parallel_Time_Constant` that the machine file holds; absent: not known.
  std::optional<std::int32_t> Stored_Time_Constant;
  std::string Stored_In;  // the machine file meant

  // --- Of the running or last move -------------------------------------------------------------
  Step_Request Request;
  std::int32_t MaxSteps = 0;
  int Timed_By = 1;  // the axis whose scale times the half steps
  Indexed<double, 1, 4> StepSkip;
  Indexed<std::int64_t, 1, 4> Accumulator;  // in 1 / MaxSteps of a toggle
  Indexed<bool, 1, 4> Moving;
  Indexed<bool, 1, 4> Axis_Enabled{{true, true, true, true}};  // false: blocked by the limit guard
  double IPM_St = 0, IPM_Rn = 0, IPM_En = 0;  // the speeds the move really runs with
  double Current_IPM = 0;                     // of the iteration
  double IPM_Low = 0;                         // floor of the ramp
  double Rn_Limit = 0;                        // cruise ceiling after the axis limits
  double RampInc = 0;                         // IPM an iteration
  float RampUp_Val = 0, RampDN_Val = 0;       // iterations
  std::int64_t Iteration = 0;
  bool Phase = false;
};
extern Step_Engine_State Step_Engine;

// Runs one move and returns when it has ended for whatever reason. Outputs change first, also when
// there are no steps. A failure is logged as "Step_Engine_Move_Error" and ends the move in order.
// The caller updates its commanded position; `Machine.Position` has been counted here. Raises
// nothing.
//
// An `EscFlag` that is already set when the move begins does not end it: callers that honour it
// look before they call, and those that begin something new clear it.
Move_End Step_Engine_Move(const Step_Request& request) noexcept;

// Another machine stands behind the port from now on, or the first one: forgets the directions that
// backlash and limit guard go by, unfinished take-ups, blocked axes, switches, motor marks and
// levels of the pins, as at the start of the program. The machine file is taken to hold the time
// constant that was loaded. Touches no pin. Only while nothing moves.
void Forget_Driven_Machine();

// The numbers of the last move, one to a line.
std::string Diagnostics_Text();

}  // namespace norvik
