#include "control/manual/home.h"

#include "control/motion/machine_move.h"
#include "control/motion/motion.h"
#include "control/motion/waits.h"
#include "control/state/control_texts.h"
#include "control/state/controller_state.h"
#include "core/application.h"
#include "core/axes.h"
#include "core/axis_memory.h"
#include "core/event_sounds.h"
#include "core/fault.h"
#include "core/format.h"
#include "core/messages.h"
#include "core/numbers.h"
#include "core/operation.h"
#include "core/scope.h"
#include "core/setup.h"
#include "drive/drive.h"
#include "drive/drive_status.h"
#include "platform/platform.h"

#include <algorithm>
#include <array>
#include <optional>
#include <string>

namespace norvik {

namespace {

using Axis_Targets = Indexed<Nullable, 1, 4>;

struct Speeds {
  float Edge, Run;  // at both ends, cruising
};

// Speeds of a validated run. The edge speed and the back-off are the same in every unit.
constexpr float Edge_Speed = 0.1F;
constexpr float Backoff_Distance = 0.05F;
float Home_IPM(int index) {
  return std::max(MachineSetup.Axis_HomeIPM[index], 0.1F);
}

Speeds Travel_Speeds() {
  return {MachineSetup.Axis_Ramp_Start, MachineSetup.Axis_Feed_Rate_Travel};
}

Nullable Target_Of(const std::string& text) {
  if (text.empty()) return std::nullopt;
  return RegionalNumber(text);
}

Move_End Move_To(const Axis_Targets& target, Speeds speeds) {
  Move_Order order;
  order.Target = target;
  order.Start = order.End = speeds.Edge;
  order.Run = speeds.Run;
  return Machine_Move_To_End(order);
}

Axis_Targets Only(int axis, Nullable target) {
  Axis_Targets targets;
  targets[axis] = target;
  return targets;
}

// X, Y and A, without Z.
Axis_Targets Across(const Axis_Targets& position) {
  Axis_Targets targets = position;
  targets[3] = std::nullopt;
  return targets;
}

// A move that has to arrive for the sequence to go on.
bool Reach(const Axis_Targets& target, Speeds speeds) {
  const Move_End end = Move_To(target, speeds);
  if (end == Move_End::Limit) Controller.Stop_Text = Ended_By_Limit();
  return Arrived(end) && Look_At_Stops();
}

// Z up, X, Y and A across, Z down.
bool Move_By_Travel_Level(const Axis_Targets& position) {
  const Speeds speeds = Travel_Speeds();
  Tell_Detail("Z up");
  if (!Reach(Only(3, MachineSetup.Axis_Tool_Height[0]), speeds)) return false;
  Tell_Detail("X, Y and A across");
  if (!Reach(Across(position), speeds)) return false;
  Tell_Detail("Z down");
  return Reach(Only(3, position[3]), speeds);
}

Axis_Targets Targets_Of(const Indexed<std::string, 1, 4>& texts) {
  Axis_Targets targets;
  for (int axis = 1; axis <= 4; ++axis) targets[axis] = Target_Of(texts[axis]);
  return targets;
}

// --- Validation of one axis ----------------------------------------------------------------------

// A seek, back-off or tap: it may end at the switch. Absent when the sequence must be left.
std::optional<Move_End> Seek(int axis, double target, float run, const char* phase) {
  Tell_Detail(std::string(1, Axis_Letter(axis)) + ": " + phase);
  const Move_End end = Move_To(Only(axis, target), {Edge_Speed, run});
  if (!Arrived(end) && end != Move_End::Limit) return std::nullopt;
  constexpr double settle = 0.1;  // seconds
  if (!Look_At_Stops() || !Wait_Seconds(settle)) return std::nullopt;
  return end;
}

// A seek and a tap have to end at the switch; one that ran to its end set out from anywhere. It is
// said either way. False when the sequence must be left.
bool Met_Switch(int axis, Move_End end) {
  if (end == Move_End::Limit) return true;
  const std::string text =
      std::string("The ") + Axis_Letter(axis) + std::string(control_text::Switch_Not_Met);
  AddMessage(text);
  if (!MachineSetup.Home_Needs_Switch) return true;
  Controller.Stop_Text = text + std::string(control_text::No_Position_Set);
  return false;
}

// Far beyond the switch on the seek side, on the usual scales. The seek has just met the switch on
// its way to `path`, so with `Home_Tap_Target` that is where the tap goes, too.
double Tap_Target(int axis, double path, double sign) {
  if (MachineSetup.Home_Tap_Target) return path;
  return 2 * Backoff_Distance * MachineSetup.Axis_SPI[axis] * sign * -1;
}

bool Validate_Axis(int axis) {
  if (MachineSetup.Axis_HomePath[axis].empty() || MachineSetup.Axis_HomeTarget[axis].empty())
    return true;
  const double path = RegionalNumber(MachineSetup.Axis_HomePath[axis]);
  const double home = RegionalNumber(MachineSetup.Axis_HomeTarget[axis]);
  const auto seek = Seek(axis, path, Home_IPM(0), "seek");
  if (!seek || !Met_Switch(axis, *seek)) return false;

  const double sign = home >= path ? 1 : -1;
  const double backed_off = Machine.Position[axis] + Backoff_Distance * sign;
  Machine.Theoretical_Pos[axis] = Machine.Position[axis];
  if (!Seek(axis, backed_off, Home_IPM(0), "back-off")) return false;

  const auto tap = Seek(axis, Tap_Target(axis, path, sign), Home_IPM(1), "tap");
  if (!tap || !Met_Switch(axis, *tap)) return false;

  const double error = home - Machine.Position[axis];
  AddMessage(std::string("The ") + Axis_Letter(axis) + " Axis Position Error was " +
             Format_Number(error, "####0.0000000"));
  Set_Axis_Position(axis, home);
  constexpr double rest = 0.25;  // seconds
  return Wait_Seconds(rest);
}

// Then each has got its position from its switch.
bool All_Have_A_Home_Path() {
  return std::ranges::all_of(std::array{1, 2, 3}, [](int axis) {
    return !MachineSetup.Axis_HomePath[axis].empty() && !MachineSetup.Axis_HomeTarget[axis].empty();
  });
}

void Home_Validated() {
  if (Drive_Status.Home_Safety_Off || MachineSetup.LimitSwitchDisable != 0) {
    Platform.Message_Box(std::string(control_text::Homing_Aborted_Title),
                         std::string(control_text::Homing_Aborted), Box_Buttons::Ok);
    return;
  }
  const Speeds seek{Edge_Speed, Home_IPM(0)};
  const Axis_Targets home = Targets_Of(MachineSetup.Axis_HomePos);
  if (!Validate_Axis(3)) return;
  Tell_Detail("Z to its home position");
  if (!Reach(Only(3, home[3]), seek)) return;
  for (const int axis : {1, 2, 4})
    if (!Validate_Axis(axis)) return;
  Tell_Detail("X, Y and A to their home position");
  if (Reach(Across(home), seek) && All_Have_A_Home_Path()) Position_Memory.Doubt.clear();
}

void Home_Plain() {
  Controller.Live_Feed = MachineSetup.Axis_Feed_Rate_Travel;
  Move_By_Travel_Level(Targets_Of(MachineSetup.Axis_HomePos));
}

void Run_Retool_Moves(const Axis_Targets& position) {
  bool arrived = false;
  Trap("ReTool_Error", [&] { arrived = Move_By_Travel_Level(position); });
  if (arrived)
    SetStatus(1, "", -1);
  else
    Announce_End();
}

}  // namespace

void ReTool() {
  SetStatus(1, control_text::Moving_To_ReTool, 5);
  Resynchronise_Position();
  for (int axis = 1; axis <= 4; ++axis) Controller.Return_Pos[axis] = Machine.Position[axis];
  Axis_Targets position;
  if (Trap("ReTool_Error", [&] { position = Targets_Of(MachineSetup.Axis_ReToolPos); }))
    Run_Retool_Moves(position);
}

void ReTool_Return() {
  SetStatus(1, control_text::Moving_To_ReTool, 5);
  Resynchronise_Position();
  Axis_Targets position;
  for (int axis = 1; axis <= 4; ++axis) position[axis] = Controller.Return_Pos[axis];
  Run_Retool_Moves(position);
}

void Home_Move() {
  Application.EscFlag = false;
  const Value_In_Scope backlash(MachineSetup.Axis_Backlash_Enable, false);
  SetStatus(1, control_text::Moving_To_Home, 1000);
  Resynchronise_Position();
  AddMessage(control_text::Homing);
  Trap("Home_Move_Error",
       [] { MachineSetup.Validate_Home_Position ? Home_Validated() : Home_Plain(); });
  if (const std::string_view reason = End_Reason(); !reason.empty()) AddMessage(reason);
  AddMessage(control_text::Homing_Done);
  const bool in_vain = MachineSetup.Home_Needs_Switch && !Controller.Stop_Text.empty();
  SetStatus(1, in_vain ? std::string_view(Controller.Stop_Text) : control_text::Homing_Done_Panel,
            1000);
}

void Set_Axis_Position(int axis, double value) {
  Machine.Position[axis] = value;
  Machine.Theoretical_Pos[axis] = value;
  Drive().Set_Position();
  ResetRetoolDisplay();
  Keep_Given_Positions();
}

void Command_Home_Click() {
  if (!Begin_Operation(Operation::Home)) return;
  const Motion_Scope home(Operation::Home);
  ResetRetoolDisplay();
  Machine.Jog_Stop_Request = true;
  Home_Move();
}

void Command_ReTool_Click() {
  if (!Begin_Operation(Operation::ReTool)) return;
  const Motion_Scope retool(Operation::ReTool);
  Play_Event_Sound(sound::ReTooling);
  ResetRetoolDisplay();
  Machine.Jog_Stop_Request = true;
  ReTool();
}

void Command_AutoRetool_Click(int index) {
  if (!Begin_Operation(Operation::ReTool)) return;
  const Motion_Scope retool(Operation::ReTool);
  if (index == 0) {
    ReTool();
    Show_Retool_Way_Back();
  } else {
    ReTool_Return();
    ResetRetoolDisplay();
  }
}

}  // namespace norvik
