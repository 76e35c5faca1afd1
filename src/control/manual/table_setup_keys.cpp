#include "control/manual/table_setup_keys.h"

#include "control/manual/jog_key.h"
#include "control/manual/joystick_jog.h"
#include "core/fault.h"
#include "core/numbers.h"
#include "core/rounding.h"
#include "core/setup.h"
#include "platform/platform.h"

#include <string>
#include <utility>
#include <vector>

namespace norvik {

Table_Setup_Keys_Form_State Table_Setup_Keys;
JogKey_Test_Form_State JogKey_Test;

namespace {

constexpr int Default_Keys[] = {100, 102, 98,  104, 107, 109, 97, 105,
                                103, 99,  188, 190, 106, 111, 191};
constexpr const char* Default_Joystick[] = {"Left Stick", "2",  "1",  "3",          "4",
                                            "9",          "10", "12", "Right Stick"};

}  // namespace

void Display_Jog_Tables() {
  for (int n = 0; n <= 14; ++n)
    Table_Setup_Keys.Text_KeyJog_Code[n].Text = std::to_string(MachineSetup.KeyJog_KeyValue[n]);
  for (int n = 0; n <= 8; ++n)
    Table_Setup_Keys.Text_JoyJog_Code[n].Text = MachineSetup.JoyJog_KeyValue[n];
}

void Save_Jog_Tables() {
  Table_Setup_Keys.Label_Hint.clear();
  for (int n = 0; n <= 14; ++n) {
    const std::string& text = Table_Setup_Keys.Text_KeyJog_Code[n].Text;
    const bool taken = Trap("KeyJog_KeyValue_" + std::to_string(n),
                            [&] { MachineSetup.KeyJog_KeyValue[n] = To_Int16(To_Double(text)); });
    if (!taken)
      Table_Setup_Keys.Label_Hint = "\"" + text +
                                    "\" is no key code: press Read and then the key. The one "
                                    "before stays.";
  }
  for (int n = 0; n <= 8; ++n)
    MachineSetup.JoyJog_KeyValue[n] = Table_Setup_Keys.Text_JoyJog_Code[n].Text;
}

void Command_JogKey(int entry) {
  JogKey_Test = {};
  JogKey_Test.Table_Entry = entry;
}

void Command_Find_Key() {
  JogKey_Test = {};
}

void JogKey_Test_KeyDown(int key_code) {
  const std::string code = std::to_string(key_code);
  JogKey_Test.Label_Current_Key_Value.Caption = code;
  JogKey_Test.Last_Key = key_code;
  if (JogKey_Test.Table_Entry)
    Table_Setup_Keys.Text_KeyJog_Code[*JogKey_Test.Table_Entry].Text = code;
}

void JogKey_Test_KeyUp() {
  JogKey_Test.Label_Current_Key_Value.Caption = "None";
}

void Command_KeyJog_RestoreDefaults() {
  for (int n = 0; n <= 14; ++n)
    Table_Setup_Keys.Text_KeyJog_Code[n].Text = std::to_string(Default_Keys[n]);
}

void Command_JoyJog_RestoreDefaults() {
  for (int n = 0; n <= 8; ++n) Table_Setup_Keys.Text_JoyJog_Code[n].Text = Default_Joystick[n];
}

void Timer_Joy() {
  const auto state = Platform.Read_Joystick(0);
  if (!state) return;
  std::vector<std::string> lines = Joystick_Lines(*state);
  const auto stick = [&lines](const char* name, std::int32_t x, std::int32_t y) {
    lines.push_back(std::string(name) + " Stick  =" + std::to_string(x) + ", " + std::to_string(y));
  };
  stick("Left", state->Axis_X, state->Axis_Y);
  stick("Right", state->Axis_Z, state->Axis_R);
  Table_Setup_Keys.List_Joy = std::move(lines);
}

}  // namespace norvik
