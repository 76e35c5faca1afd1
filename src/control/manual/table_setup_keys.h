// table_setup_keys.h: the page of `Table_Setup` that assigns keys and joystick buttons, and the
// window `JogKey_Test` that shows the code of any key.
//
// The page edits texts; they become the tables of `MachineSetup` when the options are applied.
#pragma once

#include "control/manual/jog_key.h"
#include "control/state/form_controls.h"
#include "core/indexed.h"

#include <optional>
#include <string>
#include <vector>

namespace norvik {

struct Table_Setup_Keys_Form_State {
  Indexed<Text_Control, 0, 14> Text_KeyJog_Code;
  Indexed<Text_Control, 0, 8> Text_JoyJog_Code;
  std::string Label_Hint;             // what was refused last, and what to write instead
  std::vector<std::string> List_Joy;  // raw values of the joystick while the page is open
};
extern Table_Setup_Keys_Form_State Table_Setup_Keys;

struct JogKey_Test_Form_State {
  Label_Control Label_Current_Key_Value{"None"};
  std::optional<int> Last_Key;  // pressed since the window opened
  std::optional<int>
      Table_Entry;  // that the next key is read for; absent: the codes are only shown
};
extern JogKey_Test_Form_State JogKey_Test;

// The tables of the setup into the texts, and back. A text that is no key code is logged, named in
// the hint and leaves its entry.
void Display_Jog_Tables();
void Save_Jog_Tables();

// Opens `JogKey_Test` to read one key for an entry, or only to show codes.
void Command_JogKey(int entry);
void Command_Find_Key();
void JogKey_Test_KeyDown(int key_code);
void JogKey_Test_KeyUp();

void Command_KeyJog_RestoreDefaults();
void Command_JoyJog_RestoreDefaults();

void Timer_Joy();

}  // namespace norvik
