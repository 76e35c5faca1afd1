#include "control/manual/panel_edits.h"

#include "compiler/text/program_text.h"
#include "control/displays/displays.h"
#include "control/manual/home.h"
#include "control/manual/jog_key.h"
#include "control/manual/panel_jog.h"
#include "control/motion/motion.h"
#include "control/state/cnc_controls_form.h"
#include "control/state/control_texts.h"
#include "control/state/controller_state.h"
#include "core/application.h"
#include "core/axes.h"
#include "core/axis_memory.h"
#include "core/fault.h"
#include "core/format.h"
#include "core/messages.h"
#include "core/numbers.h"
#include "core/operation.h"
#include "core/rounding.h"
#include "core/setup.h"
#include "drive/drive.h"
#include "platform/platform.h"

#include <algorithm>
#include <optional>
#include <string>

namespace norvik {

namespace {

constexpr const char* Depth_Prompts[] = {
    "Change Z Axis Travel Depth", "Change Z Axis Normal Cut Depth", "Change Z Axis Deep Cut Depth"};

bool Stands_Still() {
  if (!Anything_Moves()) return true;
  Tell(control_text::Not_While_Moving, 5);
  return false;
}

// The number that the operator typed; absent: cancelled, left as it was, or no number.
std::optional<double> Ask(const std::string& title, const std::string& prompt,
                          const std::string& present) {
  const auto answer = Platform.Input_Box(title, prompt, present);
  if (!answer || answer->empty() || *answer == present) return std::nullopt;
  const std::optional<double> value = Try_Number(*answer);
  if (!value) Tell("\"" + *answer + "\" is no number: nothing changed.", 5);
  return value;
}

// Asks for a feed and stores it; `key` in section Axis. True when it changed.
bool Ask_Feed(const char* prompt, const char* key, float& feed) {
  if (!Stands_Still()) return false;
  const auto value = Ask("FEED RATE CHANGE", prompt, Format_Number(feed, "00.00"));
  if (!value) return false;
  if (!(*value > 0)) {
    Tell("A feed rate must be above 0: nothing changed.", 5);
    return false;
  }
  return Trap("FEED RATE CHANGE", [&] {
    feed = To_Single(*value);
    WriteSetup("Axis", key, RegionalFix(Shortest_Text(feed)));
  });
}

}  // namespace

void Label_Axis_Pos_DblClick(int axis) {
  if (!Stands_Still()) return;
  const std::string prompt = std::string("Change ") + Axis_Letter(axis) + " Axis Position";
  const auto value =
      Ask("Axis", prompt, Format_Number(Machine.Position[axis], MachineSetup.DRO_Format));
  if (!value) return;
  Machine.Position[axis] = *value;
  Drive().Set_Position();
  ResetRetoolDisplay();
  Keep_Given_Positions();
  CNC_Axis_Display();
}

void Command_Zero_Pos_Click(int axis) {
  if (!Stands_Still()) return;
  Set_Axis_Position(axis, 0);
  CNC_Axis_Display();
}

void Label_Tool_Height_Click(int index) {
  if (!Stands_Still()) return;
  const auto value = Ask("Axis Depth", Depth_Prompts[index],
                         Format_Axis_Number(MachineSetup.Axis_Tool_Height[index]));
  if (!value) return;
  Trap("Axis Depth", [&] {
    MachineSetup.Axis_Tool_Height[index] = To_Single(*value);
    Save_Cut_Depths();
  });
  Load_Z_Levels();
}

void Save_Cut_Depths() {
  Write_Setup_Together([] {
    for (int level = 0; level <= 2; ++level)
      WriteSetup("Tool", "Axis_Tool_Height(" + std::to_string(level) + ")",
                 RegionalFix(Shortest_Text(MachineSetup.Axis_Tool_Height[level])));
  });
}

void Load_Z_Levels() {
  for (int i = 0; i <= 2; ++i)
    CNC_Controls.Label_Tool_Height[i].Caption =
        Format_Axis_Number(MachineSetup.Axis_Tool_Height[i]);
  CNC_Controls_Host.Form_Changed();
}

void Label_FeedRate_Cut_Click() {
  if (!Ask_Feed("Enter Cutting feedrate", "Axis_Feed_Rate_Cut", MachineSetup.Axis_Feed_Rate_Cut))
    return;
  Controller.Live_Feed_Cut = MachineSetup.Axis_Feed_Rate_Cut;
  CNC_Display();
}

void Label_FeedRate_Travel_Click() {
  if (!Ask_Feed("Enter Travel feedrate", "Axis_Feed_Rate_Travel",
                MachineSetup.Axis_Feed_Rate_Travel))
    return;
  Controller.Live_Feed_Travel = MachineSetup.Axis_Feed_Rate_Travel;
  CNC_Display();
}

void Label_FeedRate_Jogging_Click() {
  if (!Ask_Feed("Enter Jogging feedrate", "Axis_Feed_Rate_Jogging",
                MachineSetup.Axis_Feed_Rate_Jogging))
    return;
  Change_Jog_Feed(MachineSetup.Axis_Feed_Rate_Jogging);
  Text_Jog_IPM_LostFocus();
  CNC_Display();
}

}  // namespace norvik
