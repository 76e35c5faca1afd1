#include "simulate/board/board_axes.h"

#include "simulate/board/board_findings.h"
#include "simulate/board/running_entry.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace norvik {

namespace {

constexpr std::int64_t Divider_Unit = 10'000;  // a divider of so much is a step a count
constexpr std::int64_t Counter_Top = 0x7FFFFF;
constexpr double Thousandth = 1e-3;

// Steps of the whole entry as they were meant: the divider was cut after its point, so that a whole
// quotient is exact and any other lies a half above it on average.
std::int64_t Meant_Steps(const Board_Entry& entry, std::uint32_t divider) {
  const std::int64_t product = entry.Major * Divider_Unit;
  if (product % divider == 0) return product / divider;
  return std::llround(static_cast<double>(product) / (divider + 0.5));
}

double Held_Between_Stops(const Board_Axis_Settings& settings, double place) {
  constexpr double endless = std::numeric_limits<double>::infinity();
  const double low = settings.Low_Stop.value_or(-endless);
  return std::clamp(place, low, std::max(settings.High_Stop.value_or(endless), low));
}

double Wanted_After(const Simulated_Board& board, int axis, std::int64_t counts) {
  const Board_Axis& a = board.Axes[axis];
  const auto steps = static_cast<double>(Steps_Made(board, axis, counts));
  return a.Carriage + Direction_Of(board, axis) * steps * (1 - a.Settings.Slip);
}

bool Switch_Is_On(Input_State input, bool reached) {
  return input == Input_State::Automatic ? reached : input == Input_State::On;
}

bool Meets_Switch(const Simulated_Board& board, int axis, std::int64_t counts) {
  const Board_Axis& a = board.Axes[axis];
  const double place = Carriage_After(board, axis, counts);
  if (Direction_Of(board, axis) < 0) {
    return Switch_Is_On(a.Low_Input, a.Settings.Low_Switch && place <= *a.Settings.Low_Switch);
  }
  return Switch_Is_On(a.High_Input, a.Settings.High_Switch && place >= *a.Settings.High_Switch);
}

bool Encoder_Is_Watched(const Simulated_Board& board, int axis) {
  constexpr std::uint8_t enabled = 128;
  const Board_Axis& a = board.Axes[axis];
  return board.Generation == Board_Generation::Pelmar_V5 && (a.Encoder_Byte & enabled) != 0 &&
         !a.Encoder_Fault;
}

bool Encoder_Is_Lost(const Simulated_Board& board, int axis, std::int64_t counts) {
  return std::abs(Encoder_Error_After(board, axis, counts, true)) >
         static_cast<double>(board.Axes[axis].Encoder_Error);
}

// The first count in [from, to] at which `holds`, which does at `to`.
template <class Condition>
std::int64_t First_Count(std::int64_t from, std::int64_t to, Condition holds) {
  while (from < to) {
    const std::int64_t middle = from + (to - from) / 2;
    if (holds(middle)) {
      to = middle;
    } else {
      from = middle + 1;
    }
  }
  return to;
}

}  // namespace

std::int64_t Steps_Made(const Simulated_Board& board, int axis, std::int64_t counts) {
  const Running_Entry& run = board.Running;
  if (!run.Active || !Has_Steps(run.Entry, axis) || (run.Halted & Axis_Bit(axis)) != 0) return 0;
  const std::uint32_t divider = run.Entry.Dividers[static_cast<std::size_t>(axis - 1)];
  if (divider == 0) return 0;
  if (!board.Settings.Exact_Count) return counts * Divider_Unit / divider;
  return counts * Meant_Steps(run.Entry, divider) / static_cast<std::int64_t>(run.Entry.Major);
}

int Direction_Of(const Simulated_Board& board, int axis) {
  return (board.Running.Entry.Directions & Axis_Bit(axis)) != 0 ? -1 : 1;
}

std::int64_t Counter_After(const Simulated_Board& board, int axis, std::int64_t counts) {
  return board.Axes[axis].Counter + Direction_Of(board, axis) * Steps_Made(board, axis, counts);
}

double Carriage_After(const Simulated_Board& board, int axis, std::int64_t counts) {
  return Held_Between_Stops(board.Axes[axis].Settings, Wanted_After(board, axis, counts));
}

double Encoder_Ratio(const Board_Axis& axis) {
  if (axis.Settings.Encoder_Ratio) return *axis.Settings.Encoder_Ratio;
  return axis.Encoder_Factor == 0 ? 0 : 1 / (axis.Encoder_Factor * Thousandth);
}

double Encoder_After(const Simulated_Board& board, int axis, std::int64_t counts, bool lag) {
  const Board_Axis& a = board.Axes[axis];
  double place = Carriage_After(board, axis, counts);
  if (lag) place -= Direction_Of(board, axis) * a.Settings.Lag;
  return a.Encoder_Origin + place * Encoder_Ratio(a);
}

double Encoder_Error_After(const Simulated_Board& board, int axis, std::int64_t counts, bool lag) {
  return static_cast<double>(Counter_After(board, axis, counts)) -
         Encoder_After(board, axis, counts, lag) * board.Axes[axis].Encoder_Factor * Thousandth;
}

void Set_Encoder_Count(Board_Axis& axis, double count) {
  axis.Encoder_Origin = count - axis.Carriage * Encoder_Ratio(axis);
}

void Follow_Switches(Board_Axis& axis) {
  const Board_Axis_Settings& settings = axis.Settings;
  const auto reached = [&](const std::optional<double>& place, double way, bool was_on) {
    if (!place) return false;
    const double beyond = (axis.Carriage - *place) * way;
    return beyond >= (was_on ? -settings.Hysteresis : 0);
  };
  axis.Low_On = reached(settings.Low_Switch, -1, axis.Low_On);
  axis.High_On = reached(settings.High_Switch, 1, axis.High_On);
}

void Rebase_Axis(Simulated_Board& board, int axis, std::int64_t counts) {
  Board_Axis& a = board.Axes[axis];
  if (Steps_Made(board, axis, counts) == 0) return;
  const double carriage = Carriage_After(board, axis, counts);
  const double lost = std::abs(Wanted_After(board, axis, counts) - carriage);
  a.Counter = Counter_After(board, axis, counts);
  a.Carriage = carriage;
  Follow_Switches(a);
  if (lost > 0) {
    auto& finding =
        Count_Board_Finding(board.Findings, Board_Finding_Kind::Hard_Stop, axis, board.Now);
    if (finding.Text.empty()) {
      finding.Text = "ran into the hard stop; " + std::to_string(std::llround(lost)) +
                     " steps were made without the carriage";
    }
  }
  if (a.Counter > Counter_Top || a.Counter < -Counter_Top - 1) {
    auto& finding =
        Count_Board_Finding(board.Findings, Board_Finding_Kind::Counter_Wrap, axis, board.Now);
    if (finding.Text.empty()) {
      finding.Text = "the counter has passed 24 bits: what the board reports has jumped";
    }
  }
}

void Plan_Event(Simulated_Board& board) {
  Running_Entry& run = board.Running;
  run.Event_Count.reset();
  if (!run.Active || run.Profile.Count == 0) return;
  const std::int64_t from = Counts_Made(board);
  std::int64_t to = std::llround(run.Profile.End);
  for (int axis = 1; axis <= Axis_Count; ++axis) {
    if (!Has_Steps(run.Entry, axis) || (run.Halted & Axis_Bit(axis)) != 0) continue;
    const auto meets = [&](std::int64_t counts) { return Meets_Switch(board, axis, counts); };
    if (board.Limits_On && meets(to)) {
      to = First_Count(from, to, meets);
      run.Event_Count = to;
      run.Event_Axis = axis;
      run.Event_Kind = Direction_Of(board, axis) < 0 ? Running_Entry::Event::Low_Switch
                                                     : Running_Entry::Event::High_Switch;
    }
    const auto lost = [&](std::int64_t counts) { return Encoder_Is_Lost(board, axis, counts); };
    if (Encoder_Is_Watched(board, axis) && (lost(to) || lost(from))) {
      to = lost(from) ? from : First_Count(from, to, lost);
      run.Event_Count = to;
      run.Event_Axis = axis;
      run.Event_Kind = Running_Entry::Event::Encoder;
    }
  }
}

bool Moves_Into_Switch(const Simulated_Board& board, const Board_Entry& entry) {
  if (!board.Limits_On) return false;
  for (int axis = 1; axis <= Axis_Count; ++axis) {
    if (!Has_Steps(entry, axis)) continue;
    const bool negative = (entry.Directions & Axis_Bit(axis)) != 0;
    if (negative ? Low_Switch_On(board, axis) : High_Switch_On(board, axis)) return true;
  }
  return false;
}

// --- Looking -----------------------------------------------------------------------------------

std::int64_t Counter_Of(const Simulated_Board& board, int axis) {
  return Counter_After(board, axis, Counts_Made(board));
}
double Carriage_Of(const Simulated_Board& board, int axis) {
  return Carriage_After(board, axis, Counts_Made(board));
}
std::int64_t Encoder_Of(const Simulated_Board& board, int axis) {
  const Board_Axis& a = board.Axes[axis];
  const bool moves = board.Running.Active && Has_Steps(board.Running.Entry, axis);
  auto count =
      std::llround(std::floor(Encoder_After(board, axis, Counts_Made(board), moves) + Thousandth));
  if (a.Settings.Noise > 0) {
    // The same at the same time, and otherwise without a pattern.
    auto mix = static_cast<std::uint64_t>(board.Now) * 0x9E3779B97F4A7C15ULL;
    mix ^= mix >> 29;
    const auto width = static_cast<std::uint64_t>(a.Settings.Noise) * 2 + 1;
    count += static_cast<std::int64_t>(mix % width) - a.Settings.Noise;
  }
  return count;
}
double Encoder_Error_Of(const Simulated_Board& board, int axis) {
  const bool moves = board.Running.Active && Has_Steps(board.Running.Entry, axis);
  return Encoder_Error_After(board, axis, Counts_Made(board), moves);
}

bool Low_Switch_On(const Simulated_Board& board, int axis) {
  const Board_Axis& a = board.Axes[axis];
  const double place = Carriage_Of(board, axis);
  const bool reached = a.Settings.Low_Switch &&
                       place <= *a.Settings.Low_Switch + (a.Low_On ? a.Settings.Hysteresis : 0);
  return Switch_Is_On(a.Low_Input, reached);
}
bool High_Switch_On(const Simulated_Board& board, int axis) {
  const Board_Axis& a = board.Axes[axis];
  const double place = Carriage_Of(board, axis);
  const bool reached = a.Settings.High_Switch &&
                       place >= *a.Settings.High_Switch - (a.High_On ? a.Settings.Hysteresis : 0);
  return Switch_Is_On(a.High_Input, reached);
}
bool Home_Input_On(const Simulated_Board& board, int axis) {
  const Board_Axis& a = board.Axes[axis];
  const double place = Carriage_Of(board, axis);
  const bool reached = (a.Settings.Home_From || a.Settings.Home_To) &&
                       place >= a.Settings.Home_From.value_or(place) &&
                       place <= a.Settings.Home_To.value_or(place);
  return Switch_Is_On(a.Home_Input, reached);
}

}  // namespace norvik
