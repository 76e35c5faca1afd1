// joystick_jog.h: the joystick of the window `JogKey`.
//
// The stick of entry 0 moves X and Y, four buttons move Z and A, a second stick turns the override
// knob. Positions run 0..65535. Each axis of the stick keeps the span that it has been seen in, and
// from it what counts as a deflection:
//
//      start here ->|                         |<- start here: beyond centre +- 2 x spread
//   ----------------+------|---centre---|-----+-----------------
//                          |<- spread ->|      held until back inside centre +- spread
//
//   spread = an eighth of the larger of the span seen and half the full range
//   centre = where the stick rested when it was first seen, the middle when that was far off
//
// A jog starts only after the stick has once been seen at rest while the window has the focus: one
// that is held over while the window opens, or that answers again after it was lost, moves nothing,
// and no stick moves anything from behind another window.
#pragma once

#include "control/manual/jog_key.h"
#include "platform/platform.h"

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace norvik {

// What one axis of the stick has shown.
struct Stick_Axis {
  std::int32_t Smallest = 0, Largest = 0;
  std::int32_t Centre = 32767;
  std::int32_t Spread() const;
};

struct Joystick_Jog_State {
  std::optional<std::array<Stick_Axis, 2>> Stick;  // absent: no reading yet
  bool Armed = false;                              // was seen at rest under the focus
  bool Joy_Change = false;                         // the wanted directions have changed
  bool Jogging = false;                            // a jog of the joystick runs
  std::uint32_t Wanted = 0;                        // bits: X-, X+, Y-, Y+, Z up, Z down, A, A
  std::uint32_t Buttons = 0;                       // of the tick before
  std::int16_t Knob_Value = 50;                    // 0..100
};
extern Joystick_Jog_State Joystick_Jog;

// The raw values of a reading, one to a line: sixteen buttons, six axes.
std::vector<std::string> Joystick_Lines(const Joystick_State& state);

// Everything seen so far is forgotten.
void Reset_Joystick();

// `Timer1` of the window, every 10 ms: readings, feed and divisor buttons, override, start of a
// jog.
void JogKey_Timer1();
// `Timer2` of the window, every 250 ms: ends a jog whose directions are given up.
void JogKey_Timer2();

}  // namespace norvik
