#include "tools/sound_list.h"

#include "core/application.h"
#include "core/event_sounds.h"
#include "core/fault.h"
#include "core/messages.h"
#include "core/paths.h"
#include "core/remembered_files.h"
#include "core/setup.h"
#include "platform/platform.h"
#include "tools/standstill.h"

#include <array>
#include <filesystem>

namespace norvik {

Event_Sounds_Record Event_Sounds;
Event_Sounds_Host_Operations Event_Sounds_Host;

namespace {

constexpr std::array<std::string_view, Sound_Slots> Labels{
    "CNC Play           = ", "CNC Step           = ", "CNC Pause          = ",
    "CNC ReTooling      = ", "CNC Stopped        = ", "E-Stop Pressed     = ",
    "Compile Finished   = ", "Motion Finished    = ", "Future             = "};

bool Is_Silent(const std::string& path) {
  return path.empty() || path == Sound_Disabled;
}

// Into the setup and its file; empty counts as disabled.
void Store(int slot, const std::string& path) {
  MachineSetup.Sound_Files[slot] = path;
  WriteSetup("Sounds", "Sound_Files_" + std::to_string(slot), path);
}

}  // namespace

std::string_view Sound_Label(int slot) {
  return Labels.at(static_cast<std::size_t>(slot));
}

std::string Sound_Mark(int slot) {
  const std::string& path = MachineSetup.Sound_Files[slot];
  return Is_Silent(path) ? std::string() : Sound_File_Fault(path);
}

void Display_Sounds() {
  Event_Sounds.List_Sounds.clear();
  for (int slot = 0; slot < Sound_Slots; ++slot) {
    const std::string& path = MachineSetup.Sound_Files[slot];
    std::string line(Sound_Label(slot));
    line += path.empty() ? std::string(Sound_Disabled) : path;
    if (const std::string mark = Sound_Mark(slot); !mark.empty()) line += "   [" + mark + "]";
    Event_Sounds.List_Sounds.push_back(std::move(line));
  }
  Event_Sounds_Host.Form_Changed();
}

void Event_Sounds_Command_Play_Click() {
  Play_Event_Sound(Event_Sounds.Selected);
}

void Event_Sounds_Command_Delete_Click() {
  Store(Event_Sounds.Selected, std::string(Sound_Disabled));
  Display_Sounds();
}

void List_Sounds_DblClick(int slot) {
  if (!Stands_Still()) return;
  const auto path =
      Platform.Open_File_Dialog({"Sound", "Sound Files (*.wav)|*.wav|All Files(*.*)|*.*|",
                                 Last_File(File_Kind::Sound).Directory, "", "wav"});
  if (!path) return;
  Store(slot, *path);
  RememberFile(File_Kind::Sound, *path);
  Display_Sounds();
}

void List_Sounds_MouseDown(int slot, bool right_button) {
  if (right_button) Play_Event_Sound(slot);
}

bool Take_Own_Sounds() {
  const bool written = Trap_With(
      [](const Fault& fault) {
        Log_Fault("Event Sounds", fault);
        Platform.Message_Box("Event Sounds", fault.Description, Box_Buttons::Ok);
      },
      [] {
        const std::string folder = Join_Path(Application.AppDirectory, "Sounds");
        std::error_code ignored;
        std::filesystem::create_directories(folder, ignored);  // the write says why it cannot
        for (const Own_Sound& sound : Own_Sounds()) {
          Replace_File(Join_Path(folder, sound.Name),
                       {reinterpret_cast<const char*>(sound.Bytes.data()), sound.Bytes.size()});
        }
        Write_Setup_Together([&] {
          int slot = 0;
          for (const Own_Sound& sound : Own_Sounds()) Store(slot++, Join_Path(folder, sound.Name));
        });
      });
  Display_Sounds();
  return written;
}

}  // namespace norvik
