#include "platform/sdl/sdl_platform.h"

#include "platform/platform.h"

#include <algorithm>
#include <filesystem>
#include <memory>
#include <string>

#include <SDL.h>

namespace norvik {

namespace {

// Longer than the slowest reader of the joystick waits between two readings, so that each of them
// sees a loss.
constexpr std::int64_t Loss_Lasts_ns = 500'000'000;

struct Sdl_State {
  bool Joystick_Started = false;
  SDL_Joystick* Joystick = nullptr;
  int Joystick_Device = -1;
  std::optional<std::int64_t> Lost_At;  // monotonic clock; absent: nothing lost of late
  bool Audio_Started = false;
  SDL_AudioDeviceID Audio = 0;
};

Sdl_State Sdl;

// -32768..32767 of the library to 0..65535 of the setup.
std::int32_t Game_Port_Axis(SDL_Joystick* joystick, int axis) {
  if (axis >= SDL_JoystickNumAxes(joystick)) return 32767;
  return std::clamp(SDL_JoystickGetAxis(joystick, axis) + 32767, 0, 65535);
}

std::optional<std::int32_t> Hat_Direction(SDL_Joystick* joystick) {
  if (SDL_JoystickNumHats(joystick) < 1) return std::nullopt;
  switch (SDL_JoystickGetHat(joystick, 0)) {
    case SDL_HAT_UP:
      return 0;
    case SDL_HAT_RIGHTUP:
      return 4500;
    case SDL_HAT_RIGHT:
      return 9000;
    case SDL_HAT_RIGHTDOWN:
      return 13500;
    case SDL_HAT_DOWN:
      return 18000;
    case SDL_HAT_LEFTDOWN:
      return 22500;
    case SDL_HAT_LEFT:
      return 27000;
    case SDL_HAT_LEFTUP:
      return 31500;
    default:
      return std::nullopt;
  }
}

void Close_Joystick() {
  if (Sdl.Joystick != nullptr) SDL_JoystickClose(Sdl.Joystick);
  Sdl.Joystick = nullptr;
}

std::optional<Joystick_State> Read_Sdl_Joystick(int device) {
  if (!Sdl.Joystick_Started) {
    // The library has no window of its own; without this it would hear nothing.
    SDL_SetHint(SDL_HINT_JOYSTICK_ALLOW_BACKGROUND_EVENTS, "1");
    SDL_SetHint(SDL_HINT_NO_SIGNAL_HANDLERS, "1");
    if (SDL_Init(SDL_INIT_JOYSTICK) != 0) return std::nullopt;
    Sdl.Joystick_Started = true;
  }
  SDL_JoystickUpdate();
  if (Sdl.Joystick != nullptr && SDL_JoystickGetAttached(Sdl.Joystick) == SDL_FALSE) {
    Close_Joystick();
    Sdl.Lost_At = Platform.Monotonic_Clock();
  }
  // The next device takes the lost one's place. What it shows must not pass for the old stick's.
  if (Sdl.Lost_At) {
    if (Platform.Monotonic_Clock() - *Sdl.Lost_At < Loss_Lasts_ns) return std::nullopt;
    Sdl.Lost_At.reset();
  }
  if (Sdl.Joystick != nullptr && Sdl.Joystick_Device != device) Close_Joystick();
  if (Sdl.Joystick == nullptr) {
    if (device >= SDL_NumJoysticks()) return std::nullopt;
    Sdl.Joystick = SDL_JoystickOpen(device);
    Sdl.Joystick_Device = device;
    if (Sdl.Joystick == nullptr) return std::nullopt;
  }
  Joystick_State state;
  std::int32_t* const axes[] = {&state.Axis_X, &state.Axis_Y, &state.Axis_Z,
                                &state.Axis_R, &state.Axis_U, &state.Axis_V};
  for (int axis = 0; axis < 6; ++axis) *axes[axis] = Game_Port_Axis(Sdl.Joystick, axis);
  const int buttons = std::min(SDL_JoystickNumButtons(Sdl.Joystick), 32);
  for (int button = 0; button < buttons; ++button) {
    if (SDL_JoystickGetButton(Sdl.Joystick, button) != 0) state.Buttons |= 1U << button;
  }
  state.Pov_Hundredths = Hat_Direction(Sdl.Joystick);
  return state;
}

void Close_Audio() {
  if (Sdl.Audio != 0) SDL_CloseAudioDevice(Sdl.Audio);
  Sdl.Audio = 0;
}

// Larger files are not read: that would hold up whatever runs.
bool Is_Small_Enough(const std::string& path) {
  constexpr std::uintmax_t largest = 16U << 20;
  std::error_code unknown;
  const auto size = std::filesystem::file_size(path, unknown);
  return !unknown && size <= largest;
}

}  // namespace

std::string Start_Sound(const std::string& path) {
  Close_Audio();
  if (!Is_Small_Enough(path)) return "there is no such file, or it is longer than 16 MB";
  if (!Sdl.Audio_Started) {
    SDL_SetHint(SDL_HINT_NO_SIGNAL_HANDLERS, "1");
    if (SDL_InitSubSystem(SDL_INIT_AUDIO) != 0)
      return std::string("no sound device can be had: ") + SDL_GetError();
    Sdl.Audio_Started = true;
  }
  SDL_AudioSpec format;
  Uint8* samples = nullptr;
  Uint32 length = 0;
  if (SDL_LoadWAV(path.c_str(), &format, &samples, &length) == nullptr)
    return std::string("it is no wave file that can be played: ") + SDL_GetError();
  const std::unique_ptr<Uint8, decltype(&SDL_FreeWAV)> held(samples, &SDL_FreeWAV);
  Sdl.Audio = SDL_OpenAudioDevice(nullptr, 0, &format, nullptr, 0);
  if (Sdl.Audio == 0 || SDL_QueueAudio(Sdl.Audio, samples, length) != 0)
    return std::string("the sound device cannot be used: ") + SDL_GetError();
  SDL_PauseAudioDevice(Sdl.Audio, 0);
  return {};
}

bool Sound_Plays() {
  return Sdl.Audio != 0 && SDL_GetQueuedAudioSize(Sdl.Audio) > 0;
}

void Install_Sdl_Platform() {
  Platform.Read_Joystick = Read_Sdl_Joystick;
  Platform.Play_Sound = [](const std::string& path) { Start_Sound(path); };
}

}  // namespace norvik
