// sound_list.h: the window `Event_Sounds`: a sound file for each event of the machine.
//
// The window edits `MachineSetup.Sound_Files` and the machine file at once.
#pragma once

#include <cstddef>
#include <functional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace norvik {

inline constexpr int Sound_Slots = 9;

struct Event_Sounds_Record {
  std::vector<std::string> List_Sounds;  // one line for each slot from 0
  int Selected = 0;
};
extern Event_Sounds_Record Event_Sounds;

struct Event_Sounds_Host_Operations {
  std::function<void()> Form_Changed = [] {};
};
extern Event_Sounds_Host_Operations Event_Sounds_Host;

// "CNC Play           = " and so on.
std::string_view Sound_Label(int slot);
// What is wrong with the file of a slot: "missing", "no wave file", "longer than 16 MB"; empty:
// nothing, or silence is wanted.
std::string Sound_Mark(int slot);
// Label, file and mark of each slot.
void Display_Sounds();

void Event_Sounds_Command_Play_Click();
// Silence for the selected slot.
void Event_Sounds_Command_Delete_Click();
void List_Sounds_DblClick(int slot);
// The right button plays the sound of the line.
void List_Sounds_MouseDown(int slot, bool right_button);
// Puts the nine sounds that come with Norvik into `Sounds` of the working folder and takes them for
// all slots. False, with the reason told, when they cannot be written.
bool Take_Own_Sounds();

// The nine sounds as wave files, by slot.
struct Own_Sound {
  std::string_view Name;  // of the file
  std::span<const unsigned char> Bytes;
};
std::span<const Own_Sound> Own_Sounds();

}  // namespace norvik
