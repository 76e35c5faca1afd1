// timing.h: the delay of a half step, the measured speed and the calibration between them.
//
// The step engine makes time by waiting. The half step of a speed v in IPM at s steps per unit
// takes
//
//   H = 1000000 x 1 / (s x v / 60) / 2   microseconds,
//
// of which the loop's own work has to be taken off: `MachineSetup.Parallel_Time_Constant`, in whole
// microseconds. `Feed_Monitor` counts full steps, compares the speed once a second with the one
// commanded, and moves the constant when autotune is on or a calibration runs. It also holds the
// only yields of a move, about every quarter second.
//
// Intervals are measured on the monotonic clock, so that neither midnight nor a clock that is set
// hangs or shortens them.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace norvik {

inline constexpr std::int32_t Time_Constant_Max = 500;  // microseconds

struct Timing_State {
  // --- Set by the panel ------------------------------------------------------------------------
  bool FeedRate_Autotune = false;  // Check_FeedRate_Autotune

  // --- Speed override, 1 = 100 percent. The override follows its target half step by half step.
  float Feed_Override = 1, Feed_Override_Target = 1;

  // --- Measured --------------------------------------------------------------------------------
  float Actual_IPM = 0;            // once a second
  float Feed_Ratio = 0;            // Actual_IPM / commanded speed, cut to thousandths
  std::int32_t Monitor_Count = 0;  // full steps since the last measurement
  std::int16_t Settle_Count = 0;   // measurements since the move began
  // Start of the running measurement and time of the last yield, ns; absent before the first.
  std::optional<std::int64_t> Measure_Time, Yield_Time;
};
extern Timing_State Timing;

// Waits for one half step at `ipm` (held to 0.001..2000) on the scale of `axis`: the whole
// microseconds of H - Parallel_Time_Constant, held to 1..2000000. Brings the time constant into
// 0..Time_Constant_Max and moves the override by 0.0005 towards its target. Raises a division fault
// when the scale is 0.
void Delay_Half_Step(int axis, double ipm);

// Once per full step. Answers `Feed_Ratio` when a new one was computed, otherwise absent. May
// yield: positions, flags and setup may have changed afterwards.
std::optional<float> Feed_Monitor(int axis, double ipm);

// What a calibration came to.
enum class Calibration_End { Found, Not_Settled, Cancelled };
// Runs the Y axis as a dummy (not enabled, no pin moves) at the live feed until ten readings were
// good, the time is over, or ESC or the E-stop was pressed. Leaves the result in
// `Parallel_Time_Constant`; the caller stores it.
Calibration_End Find_Time_Constant();
// What it came to, in words, with the constant as it is now.
std::string Calibration_Text(Calibration_End end);

// Writes the time constant to section "General" of the machine file.
void Store_Time_Constant();

// Applies `MachineSetup.Application_Priority`: 0 normal, 1 high, 2 real time. A refused right is
// said once for each level in the message list and status panel 1.
void Set_Application_Priority(int level);

// --- Controls of the panel -----------------------------------------------------------------------
// Command_TC_Adjust: index 0 raises the time constant by one, 1 lowers it, within its bounds.
void Command_TC_Adjust(int index);
// Label_Time_Constant: asks for a new value.
void Label_Time_Constant_Click();
// Check_FeedRate_Autotune: keeps the state and stores it in "General".
void Check_FeedRate_Autotune_Click(bool checked);
// The stored state, at load of the panel.
void Load_FeedRate_Autotune();
// Command_Get_Time_Constant: calibration between its texts in status panel 1, then the store.
void Command_Get_Time_Constant_Click();

}  // namespace norvik
