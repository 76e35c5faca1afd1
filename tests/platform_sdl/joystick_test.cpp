// The joystick back end against a virtual joystick of the library: what a jog depends on is that
// places, buttons and a lost device arrive as the setup counts them.
#include "platform/platform.h"
#include "platform/sdl/sdl_platform.h"

#include <SDL.h>
#include <gtest/gtest.h>

namespace norvik {
namespace {

class Joystick_Back_End_Test : public ::testing::Test {
 protected:
  void SetUp() override {
    Platform.Monotonic_Clock = [] { return Now; };
    Now += 1'000'000'000;  // what an earlier test lost is long ago
    Install_Sdl_Platform();
    EXPECT_FALSE(Platform.Read_Joystick(0)) << "a joystick is connected to this machine";
    Device = SDL_JoystickAttachVirtual(SDL_JOYSTICK_TYPE_GAMECONTROLLER, 4, 12, 1);
    ASSERT_GE(Device, 0) << SDL_GetError();
    ASSERT_TRUE(Platform.Read_Joystick(Device));
    Stick = SDL_JoystickFromInstanceID(SDL_JoystickGetDeviceInstanceID(Device));
    ASSERT_NE(Stick, nullptr);
  }

  static inline std::int64_t Now = 0;
  int Device = -1;
  SDL_Joystick* Stick = nullptr;
};

TEST_F(Joystick_Back_End_Test, Places_Buttons_And_Loss_Arrive) {
  SDL_JoystickSetVirtualAxis(Stick, 0, -32768);
  SDL_JoystickSetVirtualAxis(Stick, 1, 32767);
  SDL_JoystickSetVirtualAxis(Stick, 2, 0);
  SDL_JoystickSetVirtualButton(Stick, 0, 1);
  SDL_JoystickSetVirtualButton(Stick, 11, 1);
  SDL_JoystickSetVirtualHat(Stick, 0, SDL_HAT_RIGHTDOWN);
  const auto state = Platform.Read_Joystick(Device);
  ASSERT_TRUE(state);
  EXPECT_EQ(state->Axis_X, 0);
  EXPECT_EQ(state->Axis_Y, 65534);
  EXPECT_EQ(state->Axis_Z, 32767) << "the middle";
  EXPECT_EQ(state->Axis_U, 32767) << "an axis that the device does not have rests";
  EXPECT_EQ(state->Buttons, (1U << 0) | (1U << 11));
  EXPECT_EQ(state->Pov_Hundredths, 13500);

  SDL_JoystickDetachVirtual(Device);
  EXPECT_FALSE(Platform.Read_Joystick(Device)) << "a lost joystick must end a jog";
}

TEST_F(Joystick_Back_End_Test, A_Loss_Is_Seen_Although_Another_Stick_Takes_The_Place) {
  const int other = SDL_JoystickAttachVirtual(SDL_JOYSTICK_TYPE_GAMECONTROLLER, 2, 4, 0);
  ASSERT_EQ(other, Device + 1) << SDL_GetError();
  SDL_JoystickDetachVirtual(Device);
  ASSERT_EQ(SDL_NumJoysticks(), 1);
  // Two readers, 10 and 250 ms: neither may miss it.
  EXPECT_FALSE(Platform.Read_Joystick(Device));
  Now += 250'000'000;
  EXPECT_FALSE(Platform.Read_Joystick(Device));
  Now += 250'000'000;
  const auto state = Platform.Read_Joystick(Device);
  ASSERT_TRUE(state) << "the other stick serves from now on";
  EXPECT_FALSE(state->Pov_Hundredths);

  SDL_JoystickDetachVirtual(Device);
  EXPECT_FALSE(Platform.Read_Joystick(Device));
}

}  // namespace
}  // namespace norvik
