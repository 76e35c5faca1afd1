#include "core/event_sounds.h"

#include "core/paths.h"
#include "core/setup.h"
#include "platform/platform.h"

#include <filesystem>
#include <fstream>

namespace norvik {

void Play_Sound(const std::string& path) {
  if (!path.empty() && path != Sound_Disabled) Platform.Play_Sound(path);
}

void Play_Event_Sound(int slot) {
  Play_Sound(MachineSetup.Sound_Files[slot]);
}

std::string Sound_File_Fault(const std::string& path) {
  if (!FileExists(path)) return "missing";
  std::error_code unknown;
  const auto size = std::filesystem::file_size(path, unknown);
  if (!unknown && size > Largest_Sound) return "longer than 16 MB";
  char head[12] = {};
  std::ifstream(path, std::ios::binary).read(head, sizeof head);
  const std::string_view marks(head, sizeof head);
  return marks.starts_with("RIFF") && marks.ends_with("WAVE") ? "" : "no wave file";
}

}  // namespace norvik
