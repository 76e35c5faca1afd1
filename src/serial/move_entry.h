// move_entry.h: what a motion command of a board holds, and how it follows from steps and speeds.
//
// The board counts the longest axis of a move, `SASF` times finer, and lets every axis step at each
// divider / 10000 of these counts. It begins at the start rate, gains the ramp rate (hertz in each
// count) until the count is above MajorSteps - RunRamp, and loses it over the last DownRamp counts.
// Rates and counts of the frame include the smoothing factor.
#pragma once

#include "core/indexed.h"
#include "serial/serial_frame.h"

#include <array>
#include <cstdint>
#include <optional>

namespace norvik {

inline constexpr std::uint32_t No_Divider = 0xFFFFFFFF;  // the axis does not step
inline constexpr int Slowest_Board_Rate = 77;            // Hz, smoothing factor included
inline constexpr std::int32_t Unchanged_PWM = 32767;

struct Move_Entry {
  std::uint32_t MajorSteps = 0;
  Indexed<std::uint32_t, 1, 4> Divider{{No_Divider, No_Divider, No_Divider, No_Divider}};
  std::uint32_t StartRate = Slowest_Board_Rate;
  std::uint32_t RunRamp = 0;   // MajorSteps less the way up
  std::uint32_t DownRamp = 0;  // the way down
  std::uint8_t Directions = 0;
  std::uint8_t High_Mask = 0, Low_Mask = 0;  // two bits a channel: 2 on, 1 off, 0 as it is
  std::int32_t PWM = Unchanged_PWM;          // 0 to 1023
  std::uint32_t Index = 0;                   // of the command, 24 bits; for Pelmar
};

Serial_Frame Move_Frame(const Move_Entry& entry, int generation);
// The same code, always with the index.
Serial_Frame Dwell_Frame(const Move_Entry& entry, int generation);

// What a move takes from the setup and the session.
struct Entry_Rules {
  double ReferenceSPI = 0;  // steps per unit that rates are reckoned by
  int SASF = 1;             // 1..20
  int Generation = 0;
  int Ramp_Rate = 1;  // hertz in each count, above 0
  // Steps per unit of each axis where speeds are those along the path; absent: speeds are those of
  // the axis with the most steps, by `ReferenceSPI`.
  std::optional<Indexed<double, 1, 4>> Path_Scales = std::nullopt;
};

// Speeds of a move in units per minute (IPM). `Plan_Entry` gives back what the board's rates come
// to.
struct Entry_Speeds {
  double Start = 0, Run = 0, End = 0;
};

// Steps of each axis, not negative. Fills what follows from steps and speeds; directions, masks,
// PWM and index stay as they are.
void Plan_Entry(const Entry_Rules& rules, const Indexed<std::int32_t, 1, 4>& steps,
                Entry_Speeds& speeds, Move_Entry& entry);
// The entry of a dwell; held to 0 to 3600 seconds.
void Plan_Dwell(double seconds, Move_Entry& entry);

// How long the board works at it, in seconds.
double Entry_Seconds(const Move_Entry& entry, int ramp_rate);
// Steps more than asked for that a board may make of the axis, because dividers are whole numbers.
std::int32_t Excess_Steps(const Move_Entry& entry, int axis, std::int32_t steps);

// Rate of the frame for a speed: held to 65535, then to the slowest, then to the board's fastest.
std::uint32_t Board_Rate(const Entry_Rules& rules, double ipm);
// The smoothing factor in force: 1..20.
int Effective_SASF(int stored);

// Masks of the five output commands of a program: 0 off, 1 as it is, 2 on.
struct Output_Masks {
  std::uint8_t High = 0, Low = 0;
};
Output_Masks Masks_Of(const Indexed<std::int16_t, 0, 4>& commands);

// 0..1023 as two bytes of the frame; `Unchanged_PWM` as 255, 255.
std::array<std::uint8_t, 2> PWM_Bytes(std::int32_t pwm);

}  // namespace norvik
