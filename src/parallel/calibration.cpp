#include "core/application.h"
#include "core/fault.h"
#include "core/messages.h"
#include "core/numbers.h"
#include "core/operation.h"
#include "core/rounding.h"
#include "core/setup.h"
#include "drive/drive_host.h"
#include "drive/drive_status.h"
#include "drive/stops.h"
#include "parallel/pin_map.h"
#include "parallel/step_engine.h"
#include "parallel/timing.h"
#include "platform/platform.h"

#include <algorithm>
#include <cmath>

namespace norvik {

namespace {

constexpr int Dummy_Axis = 2;  // Y
constexpr int Good_Readings = 10;
constexpr double Passes_Per_Rate = 230;
constexpr const char* Autotune_Key = "Check_FeedRate_Autotune";

double Panel_Feed() {
  return Drive_Host.Live_Feed().value_or(MachineSetup.Axis_Feed_Rate_Cut);
}

// What the limit guard of the step loop costs.
void Spend_Guard_Time() {
  if (MachineSetup.LimitSwitchDisable != 0) return;
  Read_Limits();
  volatile double sum = 0;
  for (int i = 0; i < 200; ++i) sum = sum + 0.0001;
}

void Set_Panel_Interval(std::optional<int>& set) {
  const int wanted = MachineSetup.Axis_Position_Update_Disable ? 0 : 250;
  if (set == wanted) return;
  Drive_Host.Set_Panel_Interval(wanted);
  set = wanted;
}

Calibration_End Run_Calibration(double feed) {
  const bool estop_before = Machine.EStop_Flag;
  const double passes = std::trunc(feed * MachineSetup.Axis_SPI[2] / 60) * Passes_Per_Rate;
  std::optional<int> interval;
  int good_left = Good_Readings;
  bool second = false;
  for (std::int64_t i = 1; static_cast<double>(i) <= passes; ++i, second = !second) {
    Spend_Guard_Time();
    Set_Panel_Interval(interval);
    // Whoever presses the E-stop wants everything to end, also what moves nothing.
    const bool pressed = Machine.EStop_Flag && !estop_before;
    if (Application.Closing_Program || pressed || Escape_Met()) return Calibration_End::Cancelled;
    Toggle_Step(Dummy_Axis, false, false, false);
    const double live = Panel_Feed();
    Delay_Half_Step(1, live * Drive_Status.Feed_Override);
    if (!second) continue;
    const auto ratio = Feed_Monitor(1, live);
    if (ratio && *ratio >= 0.99f && *ratio <= 1.01f) --good_left;
    if (good_left < 1) return Calibration_End::Found;
  }
  return Calibration_End::Not_Settled;
}

// A calibration holds the drive as a move does, so that no handler in a yield can start one.
Calibration_End Guarded_Calibration(double feed) {
  const Operation_Scope move(Operation::Move);
  // The passes toggle the memory of the Y pin while the pin itself rests.
  const std::int16_t step_bit = Pins.Step_Bit[Dummy_Axis];
  Calibration_End end = Calibration_End::Cancelled;
  Trap("Find_Time_Constant_Error", [&] { end = Run_Calibration(feed); });
  Pins.Step_Bit[Dummy_Axis] = step_bit;
  return end;
}

void Set_Time_Constant(double value) {
  MachineSetup.Parallel_Time_Constant =
      To_Int32(std::clamp(value, 0.0, static_cast<double>(Time_Constant_Max)));
}

}  // namespace

Calibration_End Find_Time_Constant() {
  if (Runs(Operation::Move)) return Calibration_End::Cancelled;
  const Operation_Scope calibration(Operation::Calibration);
  const double feed = Panel_Feed();
  Application.EscFlag = false;
  Begin_Watching_Stops();
  Timing.Settle_Count = 0;
  Timing.Feed_Ratio = 9999;
  const Calibration_End end = Guarded_Calibration(feed);
  if (end != Calibration_End::Cancelled) Drive_Host.Set_Live_Feed(feed);
  Drive_Host.Set_Panel_Interval(250);
  return end;
}

std::string Calibration_Text(Calibration_End end) {
  const std::string constant =
      std::to_string(MachineSetup.Parallel_Time_Constant) + " microseconds";
  switch (end) {
    case Calibration_End::Found:
      return "Time constant found: " + constant + ".";
    case Calibration_End::Not_Settled:
      return "The measured feed did not settle; the time constant is " + constant +
             ". End other programs or take another feed, then find it again.";
    case Calibration_End::Cancelled:
      break;
  }
  return "Cancelled; the time constant is " + constant + ".";
}

void Command_TC_Adjust(int index) {
  Set_Time_Constant(MachineSetup.Parallel_Time_Constant + (index == 0 ? 1.0 : -1.0));
}

void Label_Time_Constant_Click() {
  const auto text = Platform.Input_Box("Motor Time Constant", "Enter new time constant",
                                       std::to_string(MachineSetup.Parallel_Time_Constant));
  if (!text || text->empty()) return;
  const bool taken =
      Trap("Label_Time_Constant_Error", [&] { Set_Time_Constant(To_Double(*text)); });
  if (!taken) Tell("\"" + *text + "\" is no number: nothing changed.", 5);
}

void Check_FeedRate_Autotune_Click(bool checked) {
  Timing.FeedRate_Autotune = checked;
  WriteSetup("General", Autotune_Key, checked ? "1" : "0");
}

void Load_FeedRate_Autotune() {
  Timing.FeedRate_Autotune = ToBoolean(ReadSetup("General", Autotune_Key));
}

void Command_Get_Time_Constant_Click() {
  SetStatus(1, "Wait while Time Constant is found or press ESC to cancel", -1);
  const Calibration_End end = Find_Time_Constant();
  Tell(Calibration_Text(end), 10);
  Trap("Command_Get_Time_Constant_Error", Store_Time_Constant);
}

}  // namespace norvik
