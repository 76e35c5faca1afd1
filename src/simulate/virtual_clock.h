// virtual_clock.h: time that passes only when someone waits for it.
//
// Installed over the time operations of `Platform`, it lets a two-hour job run in seconds with the
// same pulses in the same order and at the same times:
//
//   delays        move the clock by what was asked for, no instruction takes time
//   port accesses of the simulated machine move it by their settable cost
//   Do_Events     runs the timers that are due, then the handlers of the environment below. Two
//                 yields without a delay in between mean that someone waits by yielding: the clock
//                 then jumps to the next timer, by one millisecond at most.
//
// The day clock starts at the real time and goes on with virtual time, midnight included.
#pragma once

#include "platform/period.h"
#include "platform/platform.h"
#include "platform/rest.h"
#include "platform/timer_queue.h"

#include <cstdint>

namespace norvik {

struct Virtual_Clock_State {
  bool Installed = false;
  std::int64_t Now = 0;  // ns; the monotonic clock

  // 0: as fast as it goes. Otherwise virtual seconds in a real second: 1 is real time for the eye,
  // 10 is ten times as fast. Held to the real clock in steps of a few milliseconds.
  double Speed_Factor = 0;

  // --- Inner ------------------------------------------------------------------------------------
  Timer_Queue Timers;
  bool Delayed = false;  // a delay has passed since the last yield
  Period_Keeper Keeper;
  double Day_Start = 0;                                            // day clock at Now = 0, seconds
  std::int64_t Pace_Due = 0, Pace_Start = 0, Pace_Real_Start = 0;  // ns
  double Pace_Factor = 0;
  Platform_Operations Below;  // what was installed before
  Rest_Operations Rest_Below;
  std::int64_t Ahead = 0;  // of the real clock while time factors are offered, ns
};
extern Virtual_Clock_State Virtual_Clock;

// Takes over clocks, delays, timers and the yield of `Platform`; everything else stays. Timers
// started before stay with the environment below.
void Install_Virtual_Clock();
// Puts back what was installed before.
void Remove_Virtual_Clock();

// For an operator who watches: from here on `Set_Time_Factor` lets time run faster. Once, before
// anything moves; changes nothing by itself. Timers stay with the environment below, in real time.
void Offer_Time_Factors();
// Virtual seconds in a real second; 1: the real clock again. At any moment, within a move too: the
// clock goes on from where it is and never goes back.
void Set_Time_Factor(double factor);

// Moves the clock. Runs no timer.
void Advance_Virtual_Clock(std::int64_t ns);

}  // namespace norvik
