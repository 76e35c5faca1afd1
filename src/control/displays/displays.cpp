#include "control/displays/displays.h"

#include "control/state/cnc_controls_form.h"
#include "control/state/control_texts.h"
#include "control/state/controller_state.h"
#include "core/application.h"
#include "core/format.h"
#include "core/operation.h"
#include "core/setup.h"
#include "drive/drive.h"
#include "drive/drive_status.h"
#include "drive/move_plan.h"
#include "platform/platform.h"

#include <algorithm>
#include <cmath>

namespace norvik {

namespace {

struct Mode_Row {
  bool Play, Pause, Step, Stop;
};
constexpr Mode_Row Mode_Rows[] = {
    {true, true, true, false},   // stopped
    {true, true, true, true},    // paused
    {true, true, true, true},    // stepped
    {false, true, false, true},  // running
};

std::string Padded(std::int64_t value) {
  return (value < 10 ? "0" : "") + std::to_string(value);
}

// The total so far, with the part of the running pass that is not summed up yet.
double Run_Time_Now() {
  double seconds = Controller.Machine_Run_Time;
  if (Runs(Operation::Run_Loop))
    seconds += static_cast<double>(Platform.Monotonic_Clock() - Controller.Run_Clock) * 1e-9;
  return seconds;
}

Control_Color Red_When(bool on) {
  return on ? Control_Color::Red : Control_Color::Normal;
}

void Display_Feeds() {
  auto& form = CNC_Controls;
  form.Label_FeedRate_Cut.Caption = Format_Number(MachineSetup.Axis_Feed_Rate_Cut, "#0.00");
  form.Label_FeedRate_Travel.Caption = Format_Number(MachineSetup.Axis_Feed_Rate_Travel, "#0.00");
  form.Label_FeedRate_Jogging.Caption = Format_Number(MachineSetup.Axis_Feed_Rate_Jogging, "#0.00");
  form.Label_Actual_IPM.Caption = Format_Number(Drive_Status.Actual_IPM, "##.0");
  form.Label_Time_Constant.Caption = std::to_string(MachineSetup.Parallel_Time_Constant);
  form.Command_Get_Time_Constant.Caption = Runs(Operation::Calibration) ? "Cancel" : "Find";
}

void Display_Home_Safety() {
  CNC_Controls.Label_Home_Safety.Caption =
      Drive_Status.Home_Safety_Off ? control_text::Home_Safety_Off : std::string_view();
}

void Blink_Retool() {
  constexpr int period = 10;  // timer ticks
  Controller.Blink_Ticks = static_cast<std::int16_t>((Controller.Blink_Ticks + 1) % period);
  CNC_Controls.Command_AutoRetool[1].Color =
      Red_When(Controller.Retool_Active && Controller.Blink_Ticks < period / 2);
}

// About how long the running move still takes at the feed it was asked for.
double Move_Seconds_Left() {
  Indexed<double, 1, 4> steps;
  for (int axis = 1; axis <= 4; ++axis) {
    const double way = std::abs(Controller.Move_Target[axis] - Machine.Position[axis]);
    steps[axis] = way * MachineSetup.Axis_SPI[axis];
  }
  const int leading = Leading_Axis(steps);
  const double feed = double{Controller.Live_Feed} * Drive_Status.Feed_Override;
  const double steps_a_second = feed * MachineSetup.Axis_SPI[Timing_Axis(leading)] / 60;
  return steps_a_second > 0 ? steps[leading] / steps_a_second : 0;
}

// What a run does that the operator has asked to end, or waits for.
std::string Run_Activity() {
  const bool stops = Machine.CNCMode == CNC_Stopped, pauses = Machine.CNCMode == CNC_Paused;
  if (!stops && !pauses) return {};
  std::string text = stops ? "stopping" : "pausing";
  if (!Runs(Operation::Move)) return text;
  return text + ": ends with this move, " + Format_Number(Move_Seconds_Left(), "0.0") + " s";
}

}  // namespace

std::string Activity_Text() {
  if (!Anything_Moves()) return {};
  const Operation_Entry& entry = *Present_Operation();
  switch (entry.What) {
    case Operation::Run:
    case Operation::Step:
      return Run_Activity();
    case Operation::Jog:
    case Operation::Key_Jog:
      return "jog " + entry.Detail;
    case Operation::Home:
      return entry.Detail.empty() ? "homing" : "homing " + entry.Detail;
    case Operation::ReTool:
      return "ReTool: " + entry.Detail;
    case Operation::Goto:
      return "Goto";
    case Operation::Calibration:
      return "finding the time constant";
    default:
      return {};
  }
}

namespace {

void Fill_CNCMode() {
  const auto mode = std::clamp<int>(Machine.CNCMode, CNC_Stopped, CNC_Running);
  const Mode_Row& row = Mode_Rows[mode];
  CNC_Controls.Command_CNC_Play.Enabled = row.Play;
  CNC_Controls.Command_CNC_Pause.Enabled = row.Pause;
  CNC_Controls.Command_CNC_Step.Enabled = row.Step;
  CNC_Controls.Command_CNC_Stop.Enabled = row.Stop || Anything_Moves();
  CNC_Controls.Label_CNC_Status.Caption =
      Machine.EStop_Flag ? control_text::EStop_Pressed : control_text::CNC_Status[mode];
  CNC_Controls.Label_CNC_Activity.Caption = Activity_Text();
}

void Fill_CNC() {
  auto& form = CNC_Controls;
  form.Label_CNC_Step.Caption =
      "Step " + std::to_string(Machine.Run_Step) + " of " + std::to_string(Machine.EndingStep);
  // 0, as a compile leaves it, runs from the first step too.
  form.Text_StartingStep.Text = std::to_string(std::max(Machine.StartingStep, 1));
  form.Text_EndingStep.Text = std::to_string(Machine.EndingStep);
  form.Label_Run_Timer.Caption =
      std::string(control_text::Timer) + Convert_Process_Time(Run_Time_Now());
  form.Label_Tool.Caption = Controller.Tool ? Shortest_Text(*Controller.Tool) : std::string();
  form.Label_MaterialProcess_Time.Caption =
      Controller.Estimated_Process_Time
          ? std::string(control_text::Estimate) +
                Convert_Process_Time(*Controller.Estimated_Process_Time)
          : std::string();
  Display_Feeds();
  Display_Home_Safety();
}

void Fill_CNC_Axis() {
  for (int axis = 1; axis <= 4; ++axis) {
    CNC_Controls.Label_Axis_Pos[axis].Caption =
        Format_Number(Machine.Position[axis], MachineSetup.DRO_Format);
    const double to_go =
        Runs(Operation::Move) ? Controller.Move_Target[axis] - Machine.Position[axis] : 0;
    CNC_Controls.Label_Axis_DTG[axis].Caption = Format_Number(to_go, "00.000000");
  }
}

void Fill_Spindle_Slider() {
  auto& form = CNC_Controls;
  form.Slider_RPM.Visible = Drive().Sets_Spindle_Speed;
  form.Slider_RPM.Value = Drive_Status.Spindle_Level;
  const double rpm = double{1} * MachineSetup.Dravon_Spindle_RPM * Drive_Status.Spindle_Level /
                     std::max(form.Slider_RPM.Maximum, 1);
  form.Label_RPM.Caption = "Spindle speed " + Format_Number(rpm, "0") + " rpm";
}

void Fill_IO() {
  const bool spindle = Drive_Status.Output_State[1] || Drive_Status.Output_State[2];
  CNC_Controls.Label_Spindle_State.Caption =
      spindle ? control_text::Spindle_On : control_text::Spindle_Off;
  const bool tripped = Machine.EStop_Flag || Drive().EStop_Input_On();
  CNC_Controls.Label_EStop_State.Caption =
      tripped ? control_text::EStop_Tripped : control_text::EStop_Cleared;
  CNC_Controls.Label_EStop_State.Color = Red_When(tripped);
  // What they were last set to, not what is read back: a port that reads back nothing would untick
  // the boxes.
  for (int n = 1; n <= 5; ++n)
    CNC_Controls.Check_Outputs[n - 1].Value = Drive_Status.Output_Commanded[n];
  Fill_Spindle_Slider();
  for (int axis = 1; axis <= 4; ++axis)
    CNC_Controls.Command_Limit1[axis].Color = Red_When(Drive_Status.Limit_State[axis]);
  Latch_Limits();
}

void Show(void (*fill)()) {
  fill();
  CNC_Controls_Host.Form_Changed();
}

}  // namespace

void CNCMode_Display() {
  Show(Fill_CNCMode);
}

void CNC_Display() {
  Show(Fill_CNC);
}

void CNC_Axis_Display() {
  Show(Fill_CNC_Axis);
}

void Display_IO() {
  Show(Fill_IO);
}

std::string Convert_Process_Time(double seconds) {
  const auto whole = static_cast<std::int64_t>(std::clamp(seconds, 0.0, 1e15));
  return Padded(whole / 3600) + ":" + Padded(whole / 60 % 60) + ":" + Padded(whole % 60);
}

void Display_Panel() {
  Fill_CNCMode();
  Fill_CNC();
  Fill_CNC_Axis();
  Fill_IO();
  Blink_Retool();
  CNC_Controls_Host.Form_Changed();
}

void Latch_Limits() {
  for (int axis = 1; axis <= 4; ++axis)
    if (Drive_Status.Limit_State[axis])
      CNC_Controls.Command_Lim_Latch[axis].Color = Control_Color::Red;
}

void Command_Lim_Latch_Click(int axis) {
  CNC_Controls.Command_Lim_Latch[axis].Color = Control_Color::Normal;
  CNC_Controls_Host.Form_Changed();
}

}  // namespace norvik
