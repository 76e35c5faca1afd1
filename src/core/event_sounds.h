// event_sounds.h: a sound for each event of the machine.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace norvik {

// Slots of `MachineSetup.Sound_Files`.
namespace sound {
inline constexpr int Play = 0, Step = 1, Pause = 2, ReTooling = 3, Stopped = 4, E_Stop = 5,
                     Compile_Finished = 6, Motion_Finished = 7, Future = 8;
}
// The value that means silence.
inline constexpr std::string_view Sound_Disabled = "Disabled";

// Plays a sound file without waiting for its end; nothing when the path is "Disabled" or empty. A
// missing or unplayable file stays silent.
void Play_Sound(const std::string& path);
// The same for a slot of the setup.
void Play_Event_Sound(int slot);

// Longer files are not played: reading them would hold up whatever runs.
inline constexpr std::uintmax_t Largest_Sound = 16U << 20;  // bytes
// Why a file cannot be heard, in a few words: "missing", "no wave file", "longer than 16 MB";
// empty: nothing speaks against it.
std::string Sound_File_Fault(const std::string& path);

}  // namespace norvik
