#include "core/event_sounds.h"

#include "core/setup.h"
#include "platform/platform.h"

namespace norvik {

void Play_Sound(const std::string& path) {
  if (!path.empty() && path != Sound_Disabled) Platform.Play_Sound(path);
}

void Play_Event_Sound(int slot) {
  Play_Sound(MachineSetup.Sound_Files[slot]);
}

}  // namespace norvik
