#include "control/manual/jog_key.h"

#include "control/manual/jog.h"
#include "control/manual/joystick_jog.h"
#include "control/motion/motion.h"
#include "control/state/controller_state.h"
#include "core/application.h"
#include "core/fault.h"
#include "core/format.h"
#include "core/operation.h"
#include "core/rounding.h"
#include "core/setup.h"
#include "platform/platform.h"

#include <algorithm>

namespace norvik {

JogKey_Form_State JogKey_Form;
JogKey_Host_Operations JogKey_Host;
JogKey_State JogKey;

namespace {

constexpr double Key_Distance = 100;  // units
constexpr float Lowest_Feed = 1, Highest_Feed = 2500;

// Roles that are no direction.
constexpr int Feed_Down = 10, Feed_Up = 11, Divisor = 14;

// Directions of the key table's entries, in the order of the comparison: where two entries hold the
// same code, the first one here acts.
struct Key_Row {
  int Entry;
  std::vector<Jog_Way> Ways;
};
const std::vector<Key_Row>& Key_Rows() {
  static const std::vector<Key_Row> rows = {
      {0, {{1, true}}},              // X-
      {1, {{1, false}}},             // X+
      {2, {{2, true}}},              // Y-
      {3, {{2, false}}},             // Y+
      {5, {{3, false}}},             // Z up
      {4, {{3, true}}},              // Z down
      {13, {{4, false}}},            // A
      {12, {{4, true}}},             //
      {8, {{1, true}, {2, false}}},  // the diagonals
      {6, {{1, true}, {2, true}}},
      {9, {{1, false}, {2, true}}},
      {7, {{1, false}, {2, false}}},
  };
  return rows;
}

bool By_Keyboard() {
  return MachineSetup.KeyJog_Device == 0;
}

void Color_Pictures(int key_code, Control_Color color) {
  for (int n = 0; n <= 14; ++n)
    if (MachineSetup.KeyJog_KeyValue[n] == key_code) JogKey_Form.Picture1[n].Color = color;
  JogKey_Host.Form_Changed();
}

}  // namespace

void JogKey_Form_Load() {
  const bool joystick = MachineSetup.KeyJog_Device == 1;
  JogKey_Form.Option_JoyCtrl = {{!joystick, joystick}};
  Reset_Joystick();
  Display_Jog_Toggle();
  Display_Jog_Feed();
}

void JogKey_Form_Unload() {
  Release_Jog();
  Forget_Jog_Key();
}

void Start_Key_Jog(const std::vector<Jog_Way>& ways) {
  if (!Begin_Jog(Operation::Key_Jog)) return;
  const Motion_Scope jog(Operation::Key_Jog);
  Trap_Jog("JogKey_Error", [&] {
    Step_Request request = Jog_Request();
    for (const auto [axis, negative] : ways) {
      if (!Jogs_By_Itself(axis)) continue;
      const bool turned = axis == 3 && MachineSetup.Display_Z_Coordinate_Invert;
      Add_Jog_Axis(request, axis, negative != turned, Key_Distance);
    }
    const float feed = MachineSetup.Axis_Feed_Rate_Jogging / static_cast<float>(JogKey.Jog_Divisor);
    request.Start = MachineSetup.Axis_Ramp_Start;
    request.Run = request.End = feed;
    Controller.Live_Feed = feed;
    JogKey.Move_Dir = request.Negative;
    Run_Jog(request, true);
  });
}

void End_Key_Jog() {
  DoEvents();
  Release_Jog();
  DoEvents();
  Release_Jog();
}

void Form_KeyDown(int key_code, bool auto_repeat) {
  if (!By_Keyboard() || JogKey.Key_Moving || auto_repeat) return;
  JogKey.Key_Moving = true;
  JogKey.Active_Key = To_Int16(key_code);
  JogKey.Key_Watched = Platform.Key_Down(key_code);
  Color_Pictures(key_code, Control_Color::Green);
  const auto row = std::ranges::find_if(Key_Rows(), [&](const Key_Row& candidate) {
    return MachineSetup.KeyJog_KeyValue[candidate.Entry] == key_code;
  });
  if (row != Key_Rows().end()) Start_Key_Jog(row->Ways);
}

void Form_KeyUp(int) {
  if (!By_Keyboard()) return;
  End_Key_Jog();
  Forget_Jog_Key();
}

void Forget_Jog_Key() {
  Color_Pictures(JogKey.Active_Key, Control_Color::Normal);
  JogKey.Key_Moving = false;
  JogKey.Active_Key = 0;
}

void Form_KeyPress() {
  const auto holds = [](int entry) {
    return JogKey.Active_Key != 0 && JogKey.Active_Key == MachineSetup.KeyJog_KeyValue[entry];
  };
  if (holds(Divisor)) Increment_Jog_Toggle();
  Step_Jog_Feed(holds(Feed_Down) ? -1 : holds(Feed_Up) ? 1 : 0);
}

void Change_Jog_Feed(float ipm) {
  MachineSetup.Axis_Feed_Rate_Jogging = ipm;
  Display_Jog_Feed();
  if (Controller.Jog_Held) Controller.Live_Feed = ipm / static_cast<float>(Running_Jog_Divisor());
}

void Step_Jog_Feed(int change) {
  const float feed = MachineSetup.Axis_Feed_Rate_Jogging + static_cast<float>(change);
  Change_Jog_Feed(std::clamp(feed, Lowest_Feed, Highest_Feed));
}

void Display_Jog_Feed() {
  JogKey_Form.Label_FeedRate_Jogging.Caption =
      Format_Number(MachineSetup.Axis_Feed_Rate_Jogging, "00.00");
  JogKey_Host.Form_Changed();
}

void Increment_Jog_Toggle() {
  JogKey.Jog_Divisor = To_Int16(JogKey.Jog_Divisor == 1 ? 2 : JogKey.Jog_Divisor == 2 ? 10 : 1);
  Display_Jog_Toggle();
}

void Display_Jog_Toggle() {
  JogKey_Form.Label_JogToggle.Caption = "/" + std::to_string(JogKey.Jog_Divisor);
  JogKey_Host.Form_Changed();
}

void Option_JoyCtrl_Click(int index) {
  Release_Jog();
  Forget_Jog_Key();
  Reset_Joystick();
  JogKey_Form.Option_JoyCtrl = {{index == 0, index == 1}};
  MachineSetup.KeyJog_Device = To_Int16(index);
  WriteSetup("General", "KeyJog_Device", std::to_string(index));
  JogKey_Host.Form_Changed();
}

bool Jog_Key_Still_Down() {
  return JogKey.Active_Key == 0 || !JogKey.Key_Watched || Platform.Key_Down(JogKey.Active_Key);
}

std::int16_t Running_Jog_Divisor() {
  return Runs(Operation::Key_Jog) ? JogKey.Jog_Divisor : std::int16_t{1};
}

}  // namespace norvik
