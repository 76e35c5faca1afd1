#include "parallel/system_timing.h"

#include "core/application.h"
#include "core/fault.h"
#include "core/format.h"
#include "core/numbers.h"
#include "core/operation.h"
#include "core/setup.h"
#include "parallel/drive_host.h"
#include "parallel/timing.h"

#include <algorithm>

namespace norvik {

System_Timing_Form_State System_Timing;

namespace {

constexpr double Slowest_Test = 0.1, Fastest_Test = 100'000;  // IPM

double Test_Feed() {
  double feed = MachineSetup.Axis_Feed_Rate_Cut;
  Trap("System_Timing_Error", [&] { feed = To_Double(System_Timing.Text_FeedRate); });
  feed = std::clamp(feed, Slowest_Test, Fastest_Test);
  System_Timing.Text_FeedRate = Format_Number(feed, "00.00");
  return feed;
}

}  // namespace

void System_Timing_Form_Load() {
  System_Timing = {};
  System_Timing.Old_Time_Constant = MachineSetup.Parallel_Time_Constant;
  const double feed = Drive_Host.Live_Feed().value_or(MachineSetup.Axis_Feed_Rate_Cut);
  System_Timing.Text_FeedRate = Format_Number(feed, "00.00");
  System_Timing_Timer1();
}

void System_Timing_Start_Click() {
  if (Runs(Operation::Calibration)) return;
  System_Timing.Old_Time_Constant = MachineSetup.Parallel_Time_Constant;
  System_Timing.Command_Start = "Start";
  System_Timing.Command_Cancel = "Cancel";
  System_Timing.Label_Result = "Wait while Time Constant is found or press ESC to cancel";
  const auto panel_feed = Drive_Host.Live_Feed();
  Drive_Host.Set_Live_Feed(Test_Feed());
  const Calibration_End end = Find_Time_Constant();
  if (panel_feed) Drive_Host.Set_Live_Feed(*panel_feed);
  if (end == Calibration_End::Cancelled) {
    MachineSetup.Parallel_Time_Constant = System_Timing.Old_Time_Constant;
  } else {
    System_Timing.Command_Start = "Done";
    System_Timing.Command_Cancel = "OK";
  }
  System_Timing.Label_Result = Calibration_Text(end);
  System_Timing_Timer1();
}

void System_Timing_Cancel_Click() {
  if (Runs(Operation::Calibration)) {
    Application.EscFlag = true;
    return;
  }
  if (System_Timing.Command_Cancel == "OK") Save_Timing();
  System_Timing.Visible = false;
}

void System_Timing_Timer1() {
  System_Timing.Text_TimeConstant = std::to_string(MachineSetup.Parallel_Time_Constant);
  System_Timing.Label_Actual_FeedRate = Format_Number(Timing.Actual_IPM, "###.00");
  System_Timing.Label_FeedRate_Error =
      Format_Number(1 - static_cast<double>(Timing.Feed_Ratio), "#####.000");
}

void Save_Timing() {
  Trap("Save_Timing_Error", Store_Time_Constant);
}

}  // namespace norvik
