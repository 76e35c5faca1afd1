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
    Install_Sdl_Platform();
    EXPECT_FALSE(Platform.Read_Joystick(0)) << "a joystick is connected to this machine";
    Device = SDL_JoystickAttachVirtual(SDL_JOYSTICK_TYPE_GAMECONTROLLER, 4, 12, 1);
    ASSERT_GE(Device, 0) << SDL_GetError();
    ASSERT_TRUE(Platform.Read_Joystick(Device));
    Stick = SDL_JoystickFromInstanceID(SDL_JoystickGetDeviceInstanceID(Device));
    ASSERT_NE(Stick, nullptr);
  }

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

}  // namespace
}  // namespace norvik
