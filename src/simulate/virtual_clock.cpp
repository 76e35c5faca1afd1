#include "simulate/virtual_clock.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <functional>
#include <thread>
#include <utility>

namespace norvik {

Virtual_Clock_State Virtual_Clock;

namespace {

constexpr std::int64_t Millisecond = 1'000'000, Longest_Jump = Millisecond;
constexpr std::int64_t Pace_Interval = 5 * Millisecond;  // of virtual time at factor 1
constexpr double Day_Seconds = 86'400;

// Lets the real clock catch up where the operator wants to see the machine move.
void Pace() {
  Virtual_Clock_State& clock = Virtual_Clock;
  const std::int64_t real = clock.Below.Monotonic_Clock();
  if (clock.Speed_Factor != clock.Pace_Factor) {
    clock.Pace_Factor = clock.Speed_Factor;
    clock.Pace_Start = clock.Now;
    clock.Pace_Real_Start = real;
  }
  const double factor = std::max(clock.Speed_Factor, 1e-3);
  clock.Pace_Due = clock.Now + static_cast<std::int64_t>(Pace_Interval * factor);
  const auto passed = static_cast<double>(clock.Now - clock.Pace_Start) / factor;
  const std::int64_t early = clock.Pace_Real_Start + std::llround(passed) - real;
  if (early > 0) std::this_thread::sleep_for(std::chrono::nanoseconds(early));
}

void Delay(std::int32_t microseconds) {
  Virtual_Clock.Delayed = true;
  Advance_Virtual_Clock(std::int64_t{microseconds} * 1'000);
}

void Delay_In_Period(std::int32_t microseconds, std::int64_t period_ns) {
  Virtual_Clock_State& clock = Virtual_Clock;
  const std::int64_t asked = std::int64_t{microseconds} * 1'000;
  const std::int64_t end = clock.Keeper.Deadline(clock.Now, asked, period_ns);
  clock.Delayed = true;
  Advance_Virtual_Clock(end - clock.Now);
  clock.Keeper.Ended(end);
}

// Someone waits by yielding.
void Jump() {
  const std::int64_t now = Virtual_Clock.Now;
  Advance_Virtual_Clock(std::clamp(Virtual_Clock.Timers.Next_Due(), now, now + Longest_Jump) - now);
}

void Yield() {
  if (!Virtual_Clock.Delayed) Jump();
  Virtual_Clock.Delayed = false;
  Virtual_Clock.Timers.Run_Due(Virtual_Clock.Now);
  Virtual_Clock.Below.Do_Events();
}

Timer_Id Start_Timer(int interval_ms, std::function<void()> handler) {
  // Apart from the ids of the environment below, whose timers may be stopped through here.
  return -Virtual_Clock.Timers.Start(interval_ms, Virtual_Clock.Now, std::move(handler));
}

void Stop_Timer(Timer_Id id) {
  if (id > 0) return Virtual_Clock.Below.Stop_Timer(id);
  Virtual_Clock.Timers.Stop(-id);
}

double Day_Clock() {
  return std::fmod(Virtual_Clock.Day_Start + static_cast<double>(Virtual_Clock.Now) / 1e9,
                   Day_Seconds);
}

}  // namespace

void Install_Virtual_Clock() {
  if (Virtual_Clock.Installed) return;
  Virtual_Clock = {};
  Virtual_Clock.Installed = true;
  Virtual_Clock.Below = Platform;
  Virtual_Clock.Day_Start = Platform.Day_Clock();
  Platform.Monotonic_Clock = [] { return Virtual_Clock.Now; };
  Platform.Day_Clock = Day_Clock;
  Platform.Delay_Microseconds = Delay;
  Platform.Delay_In_Period = Delay_In_Period;
  Virtual_Clock.Rest_Below = std::exchange(Resting, {Delay});
  Platform.Do_Events = Yield;
  Platform.Start_Timer = Start_Timer;
  Platform.Stop_Timer = Stop_Timer;
}

void Remove_Virtual_Clock() {
  if (!Virtual_Clock.Installed) return;
  const Platform_Operations below = std::move(Virtual_Clock.Below);
  Platform.Monotonic_Clock = below.Monotonic_Clock;
  Platform.Day_Clock = below.Day_Clock;
  Platform.Delay_Microseconds = below.Delay_Microseconds;
  Platform.Delay_In_Period = below.Delay_In_Period;
  Resting = std::move(Virtual_Clock.Rest_Below);
  Platform.Do_Events = below.Do_Events;
  Platform.Start_Timer = below.Start_Timer;
  Platform.Stop_Timer = below.Stop_Timer;
  Virtual_Clock = {};
}

// The operations are replaced once and ask each time whether the clock is a virtual one. A change
// of the factor arrives in a yield, within a call of one of them, and must not put another in its
// place.
void Offer_Time_Factors() {
  Virtual_Clock = {};
  Virtual_Clock.Below = Platform;
  Virtual_Clock.Rest_Below = Resting;
  Platform.Monotonic_Clock = [] {
    Virtual_Clock_State& clock = Virtual_Clock;
    return clock.Installed ? clock.Now : clock.Below.Monotonic_Clock() + clock.Ahead;
  };
  Platform.Day_Clock = [] {
    return Virtual_Clock.Installed ? Day_Clock() : Virtual_Clock.Below.Day_Clock();
  };
  Platform.Delay_Microseconds = [](std::int32_t microseconds) {
    if (Virtual_Clock.Installed) return Delay(microseconds);
    Virtual_Clock.Below.Delay_Microseconds(microseconds);
  };
  Platform.Delay_In_Period = [](std::int32_t microseconds, std::int64_t period_ns) {
    if (Virtual_Clock.Installed) return Delay_In_Period(microseconds, period_ns);
    if (Virtual_Clock.Below.Delay_In_Period)
      return Virtual_Clock.Below.Delay_In_Period(microseconds, period_ns);
    Virtual_Clock.Below.Delay_Microseconds(microseconds);
  };
  Resting.Sleep_Microseconds = [](std::int32_t microseconds) {
    if (Virtual_Clock.Installed) return Delay(microseconds);
    if (Virtual_Clock.Rest_Below.Sleep_Microseconds)
      return Virtual_Clock.Rest_Below.Sleep_Microseconds(microseconds);
    Virtual_Clock.Below.Delay_Microseconds(microseconds);
  };
  Platform.Do_Events = [] {
    if (Virtual_Clock.Installed) return Yield();
    Virtual_Clock.Below.Do_Events();
  };
}

void Set_Time_Factor(double factor) {
  Virtual_Clock_State& clock = Virtual_Clock;
  const std::int64_t now = Platform.Monotonic_Clock();
  if (factor == 1) {
    clock.Ahead = now - clock.Below.Monotonic_Clock();
    clock.Installed = false;
    return;
  }
  if (!clock.Installed) clock.Day_Start = clock.Below.Day_Clock() - static_cast<double>(now) / 1e9;
  clock.Now = now;
  clock.Installed = true;
  clock.Speed_Factor = factor;
  clock.Pace_Factor = 0;  // held to the real clock from here
  clock.Pace_Due = now;
}

void Advance_Virtual_Clock(std::int64_t ns) {
  Virtual_Clock.Now += ns;
  if (Virtual_Clock.Speed_Factor > 0 && Virtual_Clock.Now >= Virtual_Clock.Pace_Due) Pace();
}

}  // namespace norvik
