// jog_key.h: the window `JogKey`: jog by held keys or by the joystick.
//
// The keys are seen only while the window has the focus. A key that is held runs its axes for at
// most 100 units at the jog feed over `Jog_Divisor`; any key that comes up ends the jog.
//
//   KeyJog_KeyValue_<n>   7: Y+ X-    3: Y+    1: X+...   the roles by n stand in jog_key.cpp
//
//   flag        set by               read by                cleared by
//   ------------------------------------------------------------------------------------------
//   Key_Moving  key down             key down (key repeat)  key up, focus lost
#pragma once

#include "control/state/form_controls.h"
#include "core/indexed.h"
#include "parallel/step_engine.h"

#include <cstdint>
#include <functional>
#include <initializer_list>
#include <string>
#include <vector>

namespace norvik {

struct JogKey_Form_State {
  Indexed<bool, 0, 1> Option_JoyCtrl{{true, false}};  // keyboard, joystick
  Label_Control Label_FeedRate_Jogging, Label_JogToggle{"/1"};
  Indexed<Label_Control, 0, 14> Picture1;  // the key map, one picture for each table entry
  std::vector<std::string> List1;          // raw values of the joystick
  // The stick's spot in `Picture_Joy`, whose sides run 0..65535.
  struct {
    std::int32_t X = 32767, Y = 32767, Half_Width = 500;
  } Picture_Joy_Spot;
};
extern JogKey_Form_State JogKey_Form;

struct JogKey_Host_Operations {
  std::function<void()> Form_Changed = [] {};
  // True while the window is visible and has the focus: the only time in which it starts a jog.
  std::function<bool()> Has_Focus = [] { return true; };
};
extern JogKey_Host_Operations JogKey_Host;

struct JogKey_State {
  std::int16_t Active_Key = 0;   // the key that holds the window's jog; 0: none
  bool Key_Moving = false;       // a key is held
  bool Key_Watched = false;      // the platform knows whether the key is down
  std::int16_t Jog_Divisor = 1;  // 1, 2 or 10
  Indexed<bool, 1, 4> Move_Dir;  // of the last jog of this window; true: negative
};
extern JogKey_State JogKey;

void JogKey_Form_Load();
void JogKey_Form_Unload();

// Key codes as the key table holds them. `auto_repeat`: the desktop repeats a held key; such an
// event never starts a jog.
void Form_KeyDown(int key_code, bool auto_repeat = false);
void Form_KeyUp(int key_code);
void Form_KeyPress();

void Increment_Jog_Toggle();
void Display_Jog_Toggle();
void Display_Jog_Feed();
// Index 0 keyboard, 1 joystick; written as `KeyJog_Device`.
void Option_JoyCtrl_Click(int index);

// --- For the joystick and the jog guard ----------------------------------------------------------
struct Jog_Way {
  int Axis;
  bool Negative;
};
// Runs a jog of 100 units along the ways; refused like a jog of the panel.
void Start_Key_Jog(const std::vector<Jog_Way>& ways);
// Ends the jog of this window, with the pair of yields that catches a late event.
void End_Key_Jog();
// A new jog feed, as the operator asked for it, acts at once in a running jog without ramps.
void Change_Jog_Feed(float ipm);
// Changes the jog feed by so much, held to 1..2500.
void Step_Jog_Feed(int change);
// False when the platform knows that the key which holds the jog is up.
bool Jog_Key_Still_Down();
// The key's release will not come any more.
void Forget_Jog_Key();
// By what the feed of the running jog is divided.
std::int16_t Running_Jog_Divisor();

}  // namespace norvik
