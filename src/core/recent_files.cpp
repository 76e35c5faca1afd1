#include "core/recent_files.h"

#include "core/fault.h"
#include "core/paths.h"
#include "core/setup.h"

#include <algorithm>

namespace norvik {

Recent_State Recent;
Recent_Host_Operations Recent_Host;

namespace {

constexpr std::string_view Section = "FileList";
constexpr int Shown = 10;

std::string Slot_Key(int slot) {
  return "RecentFile_" + std::to_string(slot);
}

}  // namespace

void Read_Recent_Files() {
  auto& files = Recent.RecentFiles;
  for (int slot = files.first; slot <= files.last; ++slot) {
    files[slot] = ReadPointer(Section, Slot_Key(slot));
  }
  Recent_Host.List_Changed();
}

void Add_Recent_File(const std::string& path) {
  Trap("Add Recent File Error", [&] {
    auto& slots = Recent.RecentFiles.Items;
    std::fill(std::remove(slots.begin(), slots.end(), path), slots.end(), std::string());
    std::rotate(slots.begin(), slots.end() - 1, slots.end());
    slots.front() = path;
    Write_Pointer_Together([] {
      for (int slot = Recent.RecentFiles.first; slot <= Recent.RecentFiles.last; ++slot) {
        WritePointer(Section, Slot_Key(slot), Recent.RecentFiles[slot]);
      }
    });
    Recent_Host.List_Changed();
  });
}

std::vector<std::string> Recent_Menu_Texts() {
  std::vector<std::string> texts;
  for (int slot = 1; slot <= Shown; ++slot) texts.push_back(PathFileName(Recent.RecentFiles[slot]));
  return texts;
}

}  // namespace norvik
