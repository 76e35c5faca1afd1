#include "core/event_sounds.h"

#include "core/fault.h"
#include "core/foreign_file.h"
#include "core/paths.h"
#include "core/setup.h"
#include "platform/platform.h"

namespace norvik {

void Play_Sound(const std::string& path) {
  if (path.empty() || path == Sound_Disabled) return;
  Trap("Play_Sound_Error", [&] {
    if (FileExists(path)) Look_At_Foreign_File(path, Largest_Sound_File);
    Platform.Play_Sound(path);
  });
}

void Play_Event_Sound(int slot) {
  Play_Sound(MachineSetup.Sound_Files[slot]);
}

}  // namespace norvik
