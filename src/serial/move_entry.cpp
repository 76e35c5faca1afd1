#include "serial/move_entry.h"

#include "core/axes.h"
#include "core/rounding.h"

#include <algorithm>
#include <cmath>

namespace norvik {

namespace {

constexpr std::uint64_t Divider_Unit = 10'000;  // of a count

Payload Entry_Payload(const Move_Entry& entry) {
  Payload payload;
  payload.Add(entry.MajorSteps, 3);
  for (const std::uint32_t divider : entry.Divider) payload.Add(divider, 4);
  payload.Add(entry.StartRate, 2).Add(entry.RunRamp, 3).Add(entry.DownRamp, 3);
  payload.Add(entry.Directions, 1).Add(entry.High_Mask, 1).Add(entry.Low_Mask, 1);
  for (const std::uint8_t byte : PWM_Bytes(entry.PWM)) payload.Add(byte, 1);
  return payload;
}

std::uint32_t Divider_Of(std::uint64_t longest, std::uint64_t steps, std::uint64_t sasf) {
  if (steps < 1) return No_Divider;
  const std::uint64_t divider = sasf * Divider_Unit * longest / steps;
  return static_cast<std::uint32_t>(std::min<std::uint64_t>(divider, No_Divider));
}

// What speeds along the path are multiplied with to be those of the axis with the most steps. The
// path is that of the linear axes, and that of A where only A turns.
double Speed_Factor(const Entry_Rules& rules, const Indexed<std::int32_t, 1, 4>& steps) {
  if (!rules.Path_Scales || !(rules.ReferenceSPI > 0)) return 1;
  const auto way = [&](int axis) {
    const double scale = (*rules.Path_Scales)[axis];
    return scale > 0 ? steps[axis] / scale : 0.0;
  };
  const double linear = std::hypot(way(1), way(2), way(3));
  const double path = linear > 0 ? linear : way(4);
  return path > 0 ? std::ranges::max(steps) / rules.ReferenceSPI / path : 1;
}

struct Ramp_Lengths {
  std::uint32_t Up = 0, Down = 0;
};

Ramp_Lengths Fit_Ramps(double up, double down, double major) {
  if (up + down > major) {
    const double part = major / (up + down);
    up *= part;
    down *= part;
  }
  return {static_cast<std::uint32_t>(up), static_cast<std::uint32_t>(down)};
}

}  // namespace

Serial_Frame Move_Frame(const Move_Entry& entry, int generation) {
  Payload payload = Entry_Payload(entry);
  if (generation > 0) payload.Add(entry.Index, 3);
  return Command_Frame(Serial_Code::MoveSteps, generation, payload);
}

Serial_Frame Dwell_Frame(const Move_Entry& entry, int generation) {
  Payload payload = Entry_Payload(entry);
  payload.Add(entry.Index, 3);
  return Command_Frame(Serial_Code::MoveSteps, generation, payload);
}

int Effective_SASF(int stored) {
  constexpr int largest = 20;
  return std::clamp(stored, 1, largest);
}

std::uint32_t Board_Rate(const Entry_Rules& rules, double ipm) {
  constexpr double two_bytes = 65'535;
  const double fastest = rules.Generation > 0 ? 5'000'000 : 20'001;
  double rate = std::floor(ipm * rules.ReferenceSPI / 60) * rules.SASF;
  if (!(rate <= two_bytes)) rate = two_bytes;
  rate = std::max(rate, double{Slowest_Board_Rate});
  rate = std::min(rate, fastest);
  return static_cast<std::uint32_t>(rate);
}

void Plan_Entry(const Entry_Rules& rules, const Indexed<std::int32_t, 1, 4>& steps,
                Entry_Speeds& speeds, Move_Entry& entry) {
  const auto sasf = static_cast<std::uint64_t>(rules.SASF);
  const auto longest = static_cast<std::uint64_t>(std::ranges::max(steps));
  entry.MajorSteps =
      static_cast<std::uint32_t>(std::min<std::uint64_t>(longest * sasf, Full_24_Bits));
  for (int axis = 1; axis <= Axis_Count; ++axis)
    entry.Divider[axis] = Divider_Of(longest, static_cast<std::uint64_t>(steps[axis]), sasf);

  const double factor = Speed_Factor(rules, steps);
  const std::uint32_t start = Board_Rate(rules, std::min(speeds.Start, speeds.Run) * factor);
  const std::uint32_t run = Board_Rate(rules, speeds.Run * factor);
  const std::uint32_t end = Board_Rate(rules, std::min(speeds.End, speeds.Run) * factor);
  const double ramp = std::max(rules.Ramp_Rate, 1);
  const auto [up, down] =
      Fit_Ramps((double{1} * run - start) / ramp, (double{1} * run - end) / ramp, entry.MajorSteps);
  entry.StartRate = start;
  entry.RunRamp = entry.MajorSteps - up;
  entry.DownRamp = down;

  const auto back = [&](std::uint32_t rate) {
    return rules.ReferenceSPI > 0 ? 60.0 * rate / rules.SASF / rules.ReferenceSPI / factor : 0.0;
  };
  speeds = {back(start), back(run), back(end)};
}

void Plan_Dwell(double seconds, Move_Entry& entry) {
  constexpr double longest = 3'600'000;  // milliseconds
  constexpr std::uint32_t rate = 1'000;  // of the board, so that a count is a millisecond
  const double ms = std::isfinite(seconds) ? Round_Half_Even(seconds * 1'000) : longest;
  entry.MajorSteps = static_cast<std::uint32_t>(std::clamp(ms, 0.0, longest));
  entry.Divider = Move_Entry().Divider;
  entry.StartRate = rate;
  entry.RunRamp = entry.MajorSteps;
  entry.DownRamp = 0;
}

double Entry_Seconds(const Move_Entry& entry, int ramp_rate) {
  const double major = entry.MajorSteps;
  const double up = std::clamp(major - entry.RunRamp, 0.0, major);
  const double down = std::clamp<double>(entry.DownRamp, 0.0, major - up);
  const double start = std::max<double>(entry.StartRate, Slowest_Board_Rate);
  const double ramp = std::max(ramp_rate, 1);
  const double top = start + ramp * up;
  const double last = std::max<double>(top - ramp * down, Slowest_Board_Rate);
  const double falling = (top - last) / ramp;  // counts; what is left runs at the slowest rate
  return std::log(top / start) / ramp + (major - up - down) / top + std::log(top / last) / ramp +
         (down - falling) / last;
}

std::int32_t Excess_Steps(const Move_Entry& entry, int axis, std::int32_t steps) {
  const std::uint32_t divider = entry.Divider[axis];
  if (divider == No_Divider || divider == 0) return 0;
  const std::uint64_t made = entry.MajorSteps * Divider_Unit / divider;
  return std::max(0, static_cast<std::int32_t>(made) - steps);
}

Output_Masks Masks_Of(const Indexed<std::int16_t, 0, 4>& commands) {
  unsigned masks = 0;
  for (int channel = 0; channel <= 4; ++channel) {
    const unsigned code = commands[channel] == 2 ? 2 : (commands[channel] == 0 ? 1 : 0);
    masks |= code << static_cast<unsigned>(2 * channel);
  }
  return {static_cast<std::uint8_t>(masks & 0xFFU), static_cast<std::uint8_t>(masks >> 8U)};
}

std::array<std::uint8_t, 2> PWM_Bytes(std::int32_t pwm) {
  if (pwm == Unchanged_PWM) return {255, 255};
  const std::int32_t scaled = std::clamp(pwm, 0, 1023) * 64;
  const std::int32_t high = std::min(scaled / 256, 255);
  const std::int32_t low = std::min((scaled - 256 * high) / 64, 255);
  return {static_cast<std::uint8_t>(high), static_cast<std::uint8_t>(low)};
}

}  // namespace norvik
