// motion_profile.h: how far a motion entry of a board has come at a time, in closed form.
//
// The rate of an entry is a function of its counts, not of time: it begins at the start rate, rises
// by the ramp rate (hertz for each count) over the counts of the up ramp, holds, and falls by the
// ramp rate over those of the down ramp, never below 77 Hz. Counts and rates are those of the
// frame, smoothing factor included.
//
//   rate            n counts after time t         time of n counts
//   f + r n         f (exp(r t) - 1) / r          ln(1 + r n / f) / r
//   f               f t                           n / f
#pragma once

#include <array>
#include <cstddef>

namespace norvik {

inline constexpr double Slowest_Rate = 77;  // Hz

struct Motion_Profile {
  struct Segment {
    double From = 0;   // counts at its begin
    double Start = 0;  // seconds from the begin of the entry
    double Rate = 0;   // Hz at its begin
    double Slope = 0;  // Hz for each count
  };
  // Up ramp, cruise, down ramp, and the slowest rate; a jog that is stopped adds two.
  std::array<Segment, 6> Segments{};
  std::size_t Count = 0;
  double End = 0;       // counts
  double Duration = 0;  // seconds
  double Top_Rate = 0;  // Hz
};

// `major` counts, of which `up` and `down` are ramps. Ramps that are longer than the entry are cut.
Motion_Profile Plan_Profile(double major, double start_rate, double ramp_rate, double up,
                            double down);

// Counts from the begin, 0 to `End`.
double Count_At(const Motion_Profile& profile, double seconds);
double Rate_At(const Motion_Profile& profile, double seconds);
// Seconds from the begin until that many counts are made.
double Time_Of_Count(const Motion_Profile& profile, double count);
// From `seconds` on the rate falls by the ramp rate to `rate`, where the entry ends, or at its old
// end when that comes first.
void End_Early(Motion_Profile& profile, double seconds, double rate, double ramp_rate);

}  // namespace norvik
