#include "simulate/board/running_entry.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace norvik {

namespace {

constexpr double Nanoseconds = 1e9;
constexpr std::int64_t Never = std::numeric_limits<std::int64_t>::max();

}  // namespace

double Entry_Seconds(const Simulated_Board& board) {
  const Running_Entry& run = board.Running;
  return run.Anchor_Seconds +
         static_cast<double>(board.Now - run.Anchor_Time) / Nanoseconds * board.Throttle;
}

std::int64_t Time_Of_Seconds(const Simulated_Board& board, double seconds) {
  const Running_Entry& run = board.Running;
  if (seconds <= run.Anchor_Seconds) return run.Anchor_Time;
  if (board.Throttle <= 0) return Never;
  const double wait = (seconds - run.Anchor_Seconds) / board.Throttle * Nanoseconds;
  constexpr double longest = 9e18;
  if (wait > longest - static_cast<double>(run.Anchor_Time)) return Never;
  return run.Anchor_Time + std::llround(wait);
}

bool In_Motion(const Simulated_Board& board) {
  return board.Running.Active;
}

std::int64_t Counts_Made(const Simulated_Board& board) {
  if (!board.Running.Active) return 0;
  constexpr double rounding = 1e-6;  // a count whose time has come is made
  const double count = Count_At(board.Running.Profile, Entry_Seconds(board));
  return std::min(static_cast<std::int64_t>(std::floor(count + rounding)),
                  std::int64_t{std::llround(board.Running.Profile.End)});
}

double Current_Rate(const Simulated_Board& board) {
  if (!board.Running.Active) return 0;
  return Rate_At(board.Running.Profile, Entry_Seconds(board)) * board.Throttle;
}

}  // namespace norvik
