// pin_map.h: which bit of which port is what, and the small operations on single bits.
//
// Every signal of the machine is one bit of one byte port: a triple (port address, bit 0..7,
// inverted) in `MachineSetup`. The tables are not tied to one connector, so extra I/O cards work.
//
//   output slot   1  2  3 | 4  5  6 | 7  8  9 | 10 11 12 | 13   14    15    16     17
//                 X step  |    Y    |    Z    |    A     | spindle    mist  flood  auxiliary
//                   dir   |         |         |          | CW   CCW   (outputs 1 to 5)
//                   enable|         |         |          |
//   input slot    0 E-stop   1..4 home and limit switch of X, Y, Z, A   5 auxiliary input
//
// A bit text other than a whole number 0..7 (99 by convention) means that the function is not used:
// its operations do nothing, its input reads false.
//
// The tables of `MachineSetup` are read at every access, so that a change acts at once; after a
// change of the tables `Idle_All_Outputs` brings the pins to their new idle levels.
//
// Every read-modify-write reads its whole port and changes one bit, so that functions sharing a
// register do not disturb one another.
#pragma once

#include "core/axes.h"
#include "core/indexed.h"

#include <cstdint>
#include <optional>
#include <string>

namespace norvik {

// Output slots of an axis 1..4 and of an output 1..5.
constexpr int Step_Slot(int axis) {
  return 3 * (axis - 1) + 1;
}
constexpr int Direction_Slot(int axis) {
  return 3 * (axis - 1) + 2;
}
constexpr int Enable_Slot(int axis) {
  return 3 * (axis - 1) + 3;
}
constexpr int Output_Slot(int n) {
  return 12 + n;
}
// Input slots.
inline constexpr int EStop_Input = 0, Auxiliary_Input = 5;
constexpr int Limit_Input(int axis) {
  return axis;
}

// Levels, switches and motors as the drive knows them.
struct Pin_State {
  // --- Set by Read_Limits ----------------------------------------------------------------------
  Indexed<bool, 1, 4> Limit_State;   // home and limit switch of each axis is on
  Indexed<bool, 1, 4> Output_State;  // outputs 1..4 as read back: spindle CW, CCW, mist, flood

  // --- Set by Output_On and Output_Off ---------------------------------------------------------
  // What outputs 1..5 were last told; an output without a pin stays off. Some ports do not read
  // back what was written.
  Indexed<bool, 1, 5> Output_Commanded;

  // --- Set by Read_Limits and by the steps -----------------------------------------------------
  // Units of the setup moved since the switch was last seen on.
  Indexed<float, 1, 6> Home_Distance;

  // --- Set by the control room -----------------------------------------------------------------
  // A switch was on at the start: no direction is known to be safe, the limit guard blocks nothing.
  bool Home_Safety_Off = false;

  // --- Step pins -------------------------------------------------------------------------------
  // The truth about the level of each step pin. Some ports do not read back what was written, and a
  // step edge taken from a stale bit would be a lost or a doubled step.
  Indexed<std::int16_t, 1, 6> Step_Bit;

  // --- Motors ----------------------------------------------------------------------------------
  Indexed<float, 1, 4> Motor_Enable_Timer;  // seconds left (enable option "timed")
  Indexed<bool, 1, 4> Axis_Stepping;        // set for the duration of a move
  Indexed<bool, 1, 4> Motor_Timed_Off;
  // Last Motor_Timer_Tick, ns of Platform.Monotonic_Clock; absent before the first.
  std::optional<std::int64_t> Motor_Tick_Time;
};
extern Pin_State Pins;

// The bit 0..7 in a text with blanks around it; absent for any other text.
std::optional<int> Bit_In(const std::string& text);
// Bit 0..7 of a slot; absent when the function is not used.
std::optional<int> Output_Bit(int slot);  // slot 1..17
std::optional<int> Input_Bit(int slot);   // slot 0..5

// What a slot is, in words: "X step", "output 5", "E-stop input", "Z switch".
std::string Output_Role(int slot);  // slot 1..17
std::string Input_Role(int slot);   // slot 0..5

// State of an input 0..5 after its invert flag: an input that is not inverted is active low.
bool Read_Input(int slot);
// Refreshes `Pins.Limit_State` and `Pins.Output_State`. The home distance of an axis whose switch
// is on becomes 0.
void Read_Limits();

// Axes 1..4. The direction pin is high for the negative direction, low when inverted.
void Set_Direction(int axis, bool negative);
// Enables are high for on, low when inverted.
void Motor_Enable(int axis);
void Motor_Disable(int axis);
// Outputs 1..5: high for on, low when inverted.
void Output_On(int n);
void Output_Off(int n);

// Every step pin to its idle level with the bit memory to match, then every enable off. At start
// and after every change of the tables.
void Idle_All_Outputs();
// The same, and outputs 1 to 5 off: for the end of the program.
void All_Outputs_Off();

// One half step of one axis: toggles the step pin by the bit memory. The rising edge is the step
// and counts in `Machine.Position` and `Home_Distance`, unless the axis is blocked (`enabled`
// false: the byte goes to the dummy address), the edge only takes up backlash, or the port did not
// take the write. Raises a division fault when the scale of the axis is 0.
void Toggle_Step(int axis, bool negative, bool enabled, bool is_backlash);

// Motor enable supervision, from the panel's timer: with option 0 motors of resting axes are off,
// with option 2 they go off `Parallel_MotorEnable_Time` seconds after the last step. An axis that
// is stepping is left alone.
void Motor_Timer_Tick();

}  // namespace norvik
