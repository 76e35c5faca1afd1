#include "simulate/axis_model.h"

#include "simulate/carriage_watch.h"
#include "simulate/findings.h"
#include "simulate/input_model.h"
#include "simulate/simulated_machine.h"
#include "simulate/trail.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>

namespace norvik {

namespace {

constexpr double Lag_Limit = 2;  // steps
// Without a pull-in rate a stalled motor catches on after a pause of so many ns.
constexpr std::int64_t Rest_Interval = 10'000'000;

std::string Number(double value) {
  std::array<char, 32> text;
  std::snprintf(text.data(), text.size(), "%.1f", value);
  return text.data();
}

std::string Microseconds(std::int64_t ns) {
  return Number(static_cast<double>(ns) / 1e3) + " us";
}

// A driver limit of `least` ns was missed. True when that loses the step.
bool Note_Timing(Finding_Kind kind, int axis, std::int64_t time, const char* words,
                 std::int64_t passed, std::int64_t least) {
  if (Count_Finding(kind, axis, time)) {
    Word_Finding(words + Microseconds(passed) + " (at least " + Microseconds(least) + ")");
  }
  return Simulated_Machine.Axes[axis].Settings.Strict;
}

void Note(Finding_Kind kind, int axis, std::int64_t time, const char* words) {
  if (Count_Finding(kind, axis, time)) Word_Finding(words);
}

// --- Driver --------------------------------------------------------------------------------------

// Whether the driver passes the step on; what is wrong with its timing is noted.
bool Driver_Takes(int axis, std::int64_t time) {
  const Simulated_Axis& a = Simulated_Machine.Axes[axis];
  const Simulated_Axis_Settings& s = a.Settings;
  if (!a.Enabled) {
    Note(Finding_Kind::Step_While_Disabled, axis, time, "a step while the axis is disabled");
    return false;
  }
  if (Power_Is_Cut()) {
    Note(Finding_Kind::Step_Without_Power, axis, time, "a step after the E-stop cut the power");
    return false;
  }
  bool taken = true;
  const auto check = [&](Finding_Kind kind, const char* words, std::int64_t since,
                         std::int64_t least) {
    if (least <= 0 || time - since >= least) return;
    if (Note_Timing(kind, axis, time, words, time - since, least)) taken = false;
  };
  check(Finding_Kind::Direction_Before_Step, "direction changed before a step by ",
        a.Direction_Time, s.Direction_Setup);
  check(Finding_Kind::Short_Pulse, "step pin low for ", a.Fall_Time, s.Shortest_Pulse);
  check(Finding_Kind::Step_While_Disabled, "a step after the enable by ", a.Enable_Time,
        s.Enable_Time);
  return taken;
}

// --- Motor ---------------------------------------------------------------------------------------

void Begin_Stall(int axis, std::int64_t time, Finding_Kind kind, const std::string& words) {
  Simulated_Axis& a = Simulated_Machine.Axes[axis];
  if (!a.Stalled) {
    if (Count_Finding(kind, axis, time)) Word_Finding(words);
    Note_Trail_Mark(Mark_Kind::Stall, axis);
  }
  a.Stalled = true;
  a.Rotor_Rate = a.Lag = 0;
}

// Falls behind by what the rotor does not turn in this interval.
void Accelerate(Simulated_Axis& a, double rate, double seconds) {
  const Simulated_Axis_Settings& s = a.Settings;
  if (a.Rotor_Negative != a.Negative) a.Rotor_Rate = a.Lag = 0;
  const double begin = std::max(a.Rotor_Rate, s.Pull_In_Rate);
  const double change = s.Acceleration * seconds;
  a.Rotor_Rate = std::clamp(rate, begin - change, begin + change);
  a.Lag = std::max(a.Lag + 1 - a.Rotor_Rate * seconds, 0.0);
}

// Whether the motor turns with this step.
bool Motor_Follows(int axis, std::int64_t time) {
  Simulated_Axis& a = Simulated_Machine.Axes[axis];
  const Simulated_Axis_Settings& s = a.Settings;
  if (s.Top_Rate <= 0 && s.Acceleration <= 0) return true;
  const double seconds = static_cast<double>(std::max<std::int64_t>(a.Interval, 1)) / 1e9;
  const double rate = 1 / seconds;
  const bool calm = s.Pull_In_Rate > 0 ? rate <= s.Pull_In_Rate : a.Interval >= Rest_Interval;
  if (calm || a.Interval == 0) {
    a.Stalled = false;
    a.Rotor_Rate = a.Interval == 0 ? 0 : rate;
    a.Lag = 0;
  } else if (s.Top_Rate > 0 && rate > s.Top_Rate) {
    Begin_Stall(axis, time, Finding_Kind::Too_Fast,
                Number(rate) + " steps/s is too fast for the motor (" + Number(s.Top_Rate) +
                    "): steps are lost");
  } else if (s.Acceleration > 0 && !a.Stalled) {
    Accelerate(a, rate, seconds);
    if (a.Lag > Lag_Limit) {
      Begin_Stall(axis, time, Finding_Kind::Stall,
                  "the motor could not follow to " + Number(rate) + " steps/s at " +
                      Number(s.Acceleration) + " steps/s2: steps are lost");
    }
  }
  a.Rotor_Negative = a.Negative;
  return !a.Stalled;
}

// --- Carriage ------------------------------------------------------------------------------------

// Carriage position after one motor step.
struct Step_Result {
  double Carriage, Slack;
};
Step_Result After_Step(const Simulated_Axis& a, bool negative) {
  const double play = a.Settings.Backlash * a.Scale;
  const double idle = std::min(negative ? play - a.Slack : a.Slack, 1.0);
  const double moved = 1 - std::max(idle, 0.0);
  const double sign = negative ? -1 : 1;
  return {a.Carriage + sign * moved, a.Slack - sign * (1 - moved)};
}

bool Beyond_Stop(const Simulated_Axis& a, double carriage, bool negative) {
  if (!a.Settings.Limited) return false;
  const double position = a.Start + carriage / a.Scale;
  return negative ? position < a.Settings.Travel_Low - a.Settings.Overtravel
                  : position > a.Settings.Travel_High + a.Settings.Overtravel;
}

void Move_Carriage(int axis, std::int64_t time) {
  Simulated_Axis& a = Simulated_Machine.Axes[axis];
  const Step_Result next = After_Step(a, a.Negative);
  const bool quiet = next.Carriage > a.Quiet_From && next.Carriage < a.Quiet_To;
  if (!quiet && Beyond_Stop(a, next.Carriage, a.Negative)) {
    Note(Finding_Kind::Hard_Stop, axis, time, "ran into the end stop: steps are lost");
    Note_Trail_Mark(Mark_Kind::Hard_Stop, axis);
    ++a.Lost;
    return;
  }
  a.Motor += a.Negative ? -1 : 1;
  a.Carriage = next.Carriage;
  a.Slack = next.Slack;
  if (!quiet) Carriage_Left_Quiet_Range(axis, time);
}

void Take_Step(int axis, std::int64_t time) {
  Simulated_Axis& a = Simulated_Machine.Axes[axis];
  if (!Driver_Takes(axis, time)) {
    ++a.Lost;
    return;
  }
  a.Commanded += a.Negative ? -1 : 1;
  if (!Motor_Follows(axis, time)) {
    ++a.Lost;
    return;
  }
  Move_Carriage(axis, time);
}

}  // namespace

void Step_Pin_Changed(int axis, bool high, std::int64_t time) {
  Simulated_Axis& a = Simulated_Machine.Axes[axis];
  a.Step_High = high;
  if (!high) {
    const std::int64_t least = a.Settings.Shortest_Pulse;
    if (least > 0 && time - a.Rise_Time < least) {
      Note_Timing(Finding_Kind::Short_Pulse, axis, time, "step pin high for ", time - a.Rise_Time,
                  least);
    }
    a.Fall_Time = time;
    return;
  }
  a.Interval = a.Edges == 0 ? 0 : time - a.Rise_Time;
  ++a.Edges;
  Take_Step(axis, time);
  a.Rise_Time = time;
}

void Direction_Pin_Changed(int axis, bool negative, std::int64_t time) {
  Simulated_Axis& a = Simulated_Machine.Axes[axis];
  a.Negative = negative;
  a.Direction_Time = time;
  const std::int64_t least = a.Settings.Direction_Hold;
  if (least <= 0 || a.Edges == 0 || time - a.Rise_Time >= least) return;
  Note_Timing(Finding_Kind::Direction_After_Step, axis, time, "direction changed after a step by ",
              time - a.Rise_Time, least);
}

void Enable_Pin_Changed(int axis, bool enabled, std::int64_t time) {
  Simulated_Axis& a = Simulated_Machine.Axes[axis];
  Let_Sink(axis, time);
  a.Enabled = enabled;
  if (enabled) a.Enable_Time = time;
  Note_Hold(axis, time);
  if (a.Settings.Sink_Rate != 0) Refresh_Input(axis, time);
}

}  // namespace norvik
