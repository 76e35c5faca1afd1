// norvik-sound FILE.wav: plays a sound to its end. What stands against it goes to standard error,
// with exit status 1.
#include "platform/sdl/sdl_platform.h"

#include <cstdio>

#include <unistd.h>

int main(int argument_count, char** arguments) {
  constexpr unsigned look_us = 10'000, in_the_device_us = 300'000;
  if (argument_count != 2) {
    std::fputs("Usage: norvik-sound FILE.wav\n", stderr);
    return 2;
  }
  const std::string why_not = norvik::Start_Sound(arguments[1]);
  if (!why_not.empty()) {
    std::fprintf(stderr, "norvik-sound: %s\n", why_not.c_str());
    return 1;
  }
  while (norvik::Sound_Plays()) ::usleep(look_us);
  ::usleep(in_the_device_us);
  return 0;
}
