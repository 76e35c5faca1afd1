#include "parallel/timing.h"

#include "core/application.h"
#include "core/fault.h"
#include "core/messages.h"
#include "core/operation.h"
#include "core/rounding.h"
#include "core/setup.h"
#include "parallel/step_engine.h"
#include "platform/platform.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <set>

namespace norvik {

Timing_State Timing;

namespace {

constexpr double Slowest_IPM = 0.001, Fastest_IPM = 2000;
constexpr double Shortest_Delay = 1, Longest_Delay = 2'000'000;  // microseconds
constexpr double Override_Step = 0.0005;
constexpr std::int64_t Measure_Interval = 1'000'000'000, Yield_Interval = 250'000'000;  // ns

// Microseconds of a half step.
double Half_Period(int axis, double ipm) {
  const double scale = MachineSetup.Axis_SPI[axis];
  const double rate = scale * std::clamp(ipm, Slowest_IPM, Fastest_IPM) / 60;
  if (rate == 0) {
    throw Fault(Fault_Number::Division_By_Zero,
                "Axis_SPI_" + std::to_string(axis) + " is 0: set the steps per unit of the axis");
  }
  return 1'000'000 * (1 / rate) / 2;
}

void Slew_Override() {
  float& now = Timing.Feed_Override;
  const float target = Timing.Feed_Override_Target;
  if (target > now) now = static_cast<float>(now + Override_Step);
  if (target < now) now = static_cast<float>(now - Override_Step);
}

// True when more than `interval` has passed since `base`, which is then set to now. A clock that
// went back restarts the interval; before the first call it counts as over.
bool Interval_Over(std::optional<std::int64_t>& base, std::int64_t now, std::int64_t interval) {
  if (base && now < *base) base = now;
  if (base && now - *base <= interval) return false;
  base = now;
  return true;
}

float Measured_IPM(int axis) {
  const double ipm = Timing.Monitor_Count / static_cast<double>(MachineSetup.Axis_SPI[axis]) * 60;
  const double largest = std::numeric_limits<float>::max();
  return std::isnan(ipm) ? 0.0f : static_cast<float>(std::clamp(ipm, -largest, largest));
}

// The actual speed over the commanded one in thousandths, cut; absent without a commanded speed.
std::optional<float> New_Ratio(double ipm) {
  const double commanded = ipm * Timing.Feed_Override;
  if (commanded == 0) return std::nullopt;
  const double ratio = std::trunc(1000 * Timing.Actual_IPM / commanded) / 1000;
  const double largest = std::numeric_limits<float>::max();
  return static_cast<float>(std::clamp(ratio, -largest, largest));
}

// Too fast means that the delay was too short: less is to be taken off.
void Tune_Time_Constant(double ratio) {
  std::int32_t& constant = MachineSetup.Parallel_Time_Constant;
  if (ratio == 0) return;
  if (ratio > 1.0001) constant -= 1;
  if (ratio > 1.02) constant -= 4;
  if (ratio < 0.9999) constant += 1;
  if (ratio < 0.98) constant += 4;
}

std::optional<float> Measure(int axis, double ipm) {
  Timing.Actual_IPM = Measured_IPM(axis);
  Timing.Monitor_Count = 0;
  std::optional<float> ratio;
  if (Timing.Settle_Count > 2 && (Timing.FeedRate_Autotune || Runs(Operation::Calibration))) {
    ratio = New_Ratio(ipm);
    if (ratio) {
      Timing.Feed_Ratio = *ratio;
      Tune_Time_Constant(*ratio);
    }
  }
  if (Timing.Settle_Count < std::numeric_limits<std::int16_t>::max()) ++Timing.Settle_Count;
  return ratio;
}

// The one door of a move to the event queue.
void Yield_When_Due(std::int64_t now) {
  if (!Interval_Over(Timing.Yield_Time, now, Yield_Interval)) return;
  if (!MachineSetup.Axis_Position_Update_Disable) DoEvents();
  if (Platform.Input_Pending()) DoEvents();
}

}  // namespace

void Delay_Half_Step(int axis, double ipm) {
  std::int32_t& constant = MachineSetup.Parallel_Time_Constant;
  constant = std::clamp(constant, 0, Time_Constant_Max);
  const double half = Half_Period(axis, ipm);
  const double wait = std::clamp(std::trunc(half - constant), Shortest_Delay, Longest_Delay);
  const std::int32_t microseconds = To_Int32(wait);
  if (Platform.Delay_In_Period) {
    const double period = std::clamp(half, Shortest_Delay, 2 * Longest_Delay);
    Platform.Delay_In_Period(microseconds, std::llround(period * 1000));
  } else {
    Platform.Delay_Microseconds(microseconds);
  }
  Slew_Override();
}

std::optional<float> Feed_Monitor(int axis, double ipm) {
  std::int32_t& constant = MachineSetup.Parallel_Time_Constant;
  constant = std::max(constant, 0);
  ++Timing.Monitor_Count;
  const std::int64_t now = Platform.Monotonic_Clock();
  std::optional<float> ratio;
  if (Interval_Over(Timing.Measure_Time, now, Measure_Interval)) ratio = Measure(axis, ipm);
  Yield_When_Due(now);
  return ratio;
}

void Store_Time_Constant() {
  const std::int32_t constant = MachineSetup.Parallel_Time_Constant;
  Step_Engine_State& e = Step_Engine;
  if (e.Stored_Time_Constant == constant && e.Stored_In == Application.MachineFile) return;
  WriteSetup("General", "Parallel_Time_Constant", std::to_string(constant));
  e.Stored_Time_Constant = constant;
  e.Stored_In = Application.MachineFile;
}

void Set_Application_Priority(int level) {
  static std::set<std::string> told;
  const std::string refusal = Platform.Set_Priority(level);
  if (refusal.empty() || !told.insert(refusal).second) return;
  SetStatus(1, refusal, 10);
  AddMessage(refusal);
}

}  // namespace norvik
