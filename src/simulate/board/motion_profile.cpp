#include "simulate/board/motion_profile.h"

#include <algorithm>
#include <cmath>

namespace norvik {

namespace {

using Segment = Motion_Profile::Segment;

double Time_In(const Segment& segment, double counts) {
  if (segment.Slope == 0) return counts / segment.Rate;
  return std::log1p(segment.Slope * counts / segment.Rate) / segment.Slope;
}

double Counts_In(const Segment& segment, double seconds) {
  if (segment.Slope == 0) return segment.Rate * seconds;
  return segment.Rate * std::expm1(segment.Slope * seconds) / segment.Slope;
}

// Adds a segment of that many counts behind the last one; the rate after it.
double Add_Segment(Motion_Profile& profile, double counts, double rate, double slope) {
  if (counts <= 0) return rate;
  const Segment segment{profile.End, profile.Duration, rate, slope};
  profile.Segments[profile.Count++] = segment;
  profile.End += counts;
  profile.Duration += Time_In(segment, counts);
  const double after = rate + slope * counts;
  profile.Top_Rate = std::max({profile.Top_Rate, rate, after});
  return after;
}

// Adds the fall from `rate` over that many counts, held at `lowest`.
void Add_Fall(Motion_Profile& profile, double counts, double rate, double ramp_rate,
              double lowest) {
  const double fall = std::clamp((rate - lowest) / ramp_rate, 0.0, std::max(counts, 0.0));
  const double after = Add_Segment(profile, fall, rate, -ramp_rate);
  Add_Segment(profile, counts - fall, std::max(after, lowest), 0);
}

const Segment& Segment_At(const Motion_Profile& profile, double seconds) {
  std::size_t place = profile.Count - 1;
  while (place > 0 && profile.Segments[place].Start > seconds) --place;
  return profile.Segments[place];
}

}  // namespace

Motion_Profile Plan_Profile(double major, double start_rate, double ramp_rate, double up,
                            double down) {
  Motion_Profile profile;
  up = std::clamp(up, 0.0, major);
  down = std::clamp(down, 0.0, major - up);
  const double begin = std::max(start_rate, Slowest_Rate);
  const double top = Add_Segment(profile, up, begin, ramp_rate);
  Add_Segment(profile, major - up - down, top, 0);
  Add_Fall(profile, down, top, ramp_rate, Slowest_Rate);
  profile.End = major;
  return profile;
}

double Count_At(const Motion_Profile& profile, double seconds) {
  if (seconds >= profile.Duration || profile.Count == 0) return profile.End;
  if (seconds <= 0) return 0;
  const Segment& segment = Segment_At(profile, seconds);
  return std::min(segment.From + Counts_In(segment, seconds - segment.Start), profile.End);
}

double Rate_At(const Motion_Profile& profile, double seconds) {
  if (profile.Count == 0) return 0;
  const Segment& segment = Segment_At(profile, std::min(seconds, profile.Duration));
  return segment.Rate + segment.Slope * (Count_At(profile, seconds) - segment.From);
}

double Time_Of_Count(const Motion_Profile& profile, double count) {
  if (count >= profile.End || profile.Count == 0) return profile.Duration;
  if (count <= 0) return 0;
  std::size_t place = profile.Count - 1;
  while (place > 0 && profile.Segments[place].From > count) --place;
  const Segment& segment = profile.Segments[place];
  return segment.Start + Time_In(segment, count - segment.From);
}

void End_Early(Motion_Profile& profile, double seconds, double rate, double ramp_rate) {
  if (profile.Count == 0 || seconds >= profile.Duration) return;
  const double from = Count_At(profile, seconds), now = Rate_At(profile, seconds);
  const double lowest = std::max(rate, Slowest_Rate);
  // Whole counts: the last one is made.
  constexpr double rounding = 1e-6;
  const double fall = std::max(now - lowest, 0.0) / ramp_rate;
  const double end = std::min(std::ceil(from + fall - rounding), profile.End);
  // One segment of what has been made is enough: nobody looks back.
  profile.Segments[0] = Segment_At(profile, seconds);
  profile.Count = 1;
  if (profile.Segments[0].Start >= seconds) profile.Count = 0;
  profile.End = from;
  profile.Duration = seconds;
  Add_Fall(profile, end - from, now, ramp_rate, lowest);
  profile.End = end;
}

}  // namespace norvik
