#include "simulate/board/board_options.h"

#include "core/axes.h"
#include "core/paths.h"
#include "simulate/board/board_axes.h"
#include "simulate/board/board_motion.h"

#include <array>
#include <charconv>
#include <cmath>
#include <functional>
#include <optional>
#include <type_traits>

namespace norvik {

namespace {

constexpr double Ns_Of_Millisecond = 1e6;

using Taker = std::function<bool(Board_Line&, int axis, std::string_view value)>;

struct Row {
  Board_Option Option;
  Taker Take;
};

std::optional<double> Number_In(std::string_view text, double low, double high) {
  double value = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  if (error != std::errc() || end != text.data() + text.size()) return {};
  if (!(value >= low && value <= high)) return {};
  return value;
}

template <class Choice>
Taker Choose(Choice Board_Settings::*field, std::string_view first, Choice one,
             std::string_view second, Choice two) {
  return [=](Board_Line& line, int, std::string_view value) {
    if (value != first && value != second) return false;
    line.Board.Settings.*field = value == first ? one : two;
    return true;
  };
}

Taker Switch(bool Board_Settings::*field, std::string_view on = "on",
             std::string_view off = "off") {
  return Choose(field, on, true, off, false);
}

// Of the mechanics of an axis; the empty text is absent where the field may be.
template <class Field>
Taker Mechanics(Field Board_Axis_Settings::*field, double low, double high) {
  return [=](Board_Line& line, int axis, std::string_view value) {
    const auto number = Number_In(value, low, high);
    if constexpr (std::is_same_v<Field, std::optional<double>>) {
      if (!number && !value.empty()) return false;
      line.Board.Axes[axis].Settings.*field = number;
    } else {
      if (!number) return false;
      line.Board.Axes[axis].Settings.*field = static_cast<Field>(*number);
    }
    Follow_Switches(line.Board.Axes[axis]);
    Plan_Again(line.Board);
    return true;
  };
}

bool Take_Latency(Board_Line& line, int, std::string_view value) {
  const auto number = Number_In(value, 0, 255);
  if (!number) return false;
  line.Usb_Latency = std::llround(*number * Ns_Of_Millisecond);
  return true;
}

bool Take_Pace(Board_Line& line, int, std::string_view value) {
  if (value != "on" && value != "off") return false;
  line.Byte_Time = value == "on" ? Board_Line::Byte_Time_At_115200 : 0;
  return true;
}

bool Take_Capacity(Board_Line& line, int, std::string_view value) {
  const auto number = Number_In(value, 1, static_cast<double>(line.Board.Queue.size()));
  if (!number) return false;
  line.Board.Settings.Capacity = static_cast<std::int32_t>(*number);
  return true;
}

bool Take_Restart_Time(Board_Line& line, int, std::string_view value) {
  const auto number = Number_In(value, 0, 60'000);
  if (!number) return false;
  line.Board.Settings.Restart_Time = std::llround(*number * Ns_Of_Millisecond);
  return true;
}

bool Take_Unprepared(Board_Line& line, int, std::string_view value) {
  auto& field = line.Board.Settings.Unprepared;
  if (value == "warn") {
    field = Unprepared_Steps::Warn;
  } else if (value == "ignore_axis") {
    field = Unprepared_Steps::Ignore_Axis;
  } else if (value == "refuse") {
    field = Unprepared_Steps::Refuse;
  } else {
    return false;
  }
  return true;
}

std::vector<Row> All_Rows() {
  using S = Board_Settings;
  using A = Board_Axis_Settings;
  constexpr double far = 1e9;
  return {
      {{"pace", false, "on or off", "bytes take their time at 115200 baud"}, Take_Pace},
      {{"usb_latency", false, "milliseconds", "an adapter holds replies back so long"},
       Take_Latency},
      {{"capacity", false, "entries", "of the queue, besides the running one"}, Take_Capacity},
      {{"running_counts", false, "on or off", "the running entry takes a place of the queue"},
       Switch(&S::Running_Counts)},
      {{"nak", false, "on or off", "a bad frame is answered with 21 instead of silence"},
       Switch(&S::Answer_Bad_Frames)},
      {{"load_moving", false, "on or off", "counters may be loaded while axes move"},
       Switch(&S::Load_While_Moving)},
      {{"limit", false, "stop_all or stop_axis", "what a limit switch stops"},
       Switch(&S::Limit_Stops_All, "stop_all", "stop_axis")},
      {{"count", false, "truncated or exact", "steps as the dividers give them, or as meant"},
       Switch(&S::Exact_Count, "exact", "truncated")},
      {{"mask_semantics", false, "spec or raw",
        "output masks: 2 on, 1 off, 0 as it is; or 2 on, 1 as it is, 0 off"},
       Choose(&S::Masks, "spec", Mask_Semantics::Spec, "raw", Mask_Semantics::Raw)},
      {{"unprepared", false, "warn, ignore_axis or refuse", "steps of an axis without AxisPrepare"},
       Take_Unprepared},
      {{"restart_time", false, "milliseconds", "of silence after a restart"}, Take_Restart_Time},
      {{"low_switch", true, "steps or empty", "the first limit switch is on here and below"},
       Mechanics(&A::Low_Switch, -far, far)},
      {{"high_switch", true, "steps or empty", "the second limit switch is on here and above"},
       Mechanics(&A::High_Switch, -far, far)},
      {{"hysteresis", true, "steps", "until a limit switch is off again"},
       Mechanics(&A::Hysteresis, 0, far)},
      {{"home_from", true, "steps or empty", "the home input is on from here"},
       Mechanics(&A::Home_From, -far, far)},
      {{"home_to", true, "steps or empty", "... to here"}, Mechanics(&A::Home_To, -far, far)},
      {{"low_stop", true, "steps or empty", "hard stop of the carriage"},
       Mechanics(&A::Low_Stop, -far, far)},
      {{"high_stop", true, "steps or empty", "hard stop at the other end"},
       Mechanics(&A::High_Stop, -far, far)},
      {{"max_rate", true, "steps a second", "faster is noticed; 0: never"},
       Mechanics(&A::Max_Rate, 0, far)},
      {{"max_jump", true, "steps a second", "a larger jump of the rate is noticed; 0: never"},
       Mechanics(&A::Max_Jump, 0, far)},
      {{"encoder_ratio", true, "counts a step, or empty",
        "of the encoder; empty: as the board is configured"},
       Mechanics(&A::Encoder_Ratio, -far, far)},
      {{"lag", true, "steps", "the carriage is behind so far while it moves"},
       Mechanics(&A::Lag, 0, far)},
      {{"noise", true, "counts", "of the encoder, to both sides"}, Mechanics(&A::Noise, 0, 1e6)},
  };
}

const std::vector<Row>& Rows() {
  static const std::vector<Row> rows = All_Rows();
  return rows;
}

int Axis_Of_Letter(std::string_view text) {
  for (int axis = 1; axis <= Axis_Count; ++axis) {
    if (Upper(text) == std::string(1, Axis_Letter(axis))) return axis;
  }
  return 0;
}

std::string All_Names() {
  std::string names;
  for (const Row& row : Rows()) {
    names += " ";
    if (row.Option.Of_Axis) names += "x.";
    names += row.Option.Name;
  }
  return names;
}

struct Preset {
  std::string_view Name;
  // By axis: half open travel in steps; no travel: no ends.
  std::array<double, Axis_Count> Low, High;
  double Max_Rate, Max_Jump;
};
constexpr Preset Presets[] = {
    {"bench", {}, {}, 0, 0},
    {"router", {0, 0, -8'000, 0}, {60'000, 40'000, 8'000, 0}, 20'000, 2'000},
    {"plasma", {0, 0, -5'000, 0}, {150'000, 120'000, 5'000, 150'000}, 40'000, 4'000},
};

}  // namespace

const std::vector<Board_Option>& Board_Options() {
  static const std::vector<Board_Option> options = [] {
    std::vector<Board_Option> all;
    for (const Row& row : Rows()) all.push_back(row.Option);
    return all;
  }();
  return options;
}

std::string Set_Board_Option(Board_Line& line, std::string_view text) {
  const auto mark = text.find('=');
  if (mark == std::string_view::npos) {
    return "An option is written name=value. There are:" + All_Names();
  }
  std::string_view name = text.substr(0, mark);
  int axis = 0;
  if (const auto point = name.find('.'); point != std::string_view::npos) {
    axis = Axis_Of_Letter(name.substr(0, point));
    name = axis == 0 ? std::string_view() : name.substr(point + 1);
  }
  for (const Row& row : Rows()) {
    if (row.Option.Name != name || row.Option.Of_Axis != (axis > 0)) continue;
    if (row.Take(line, axis, text.substr(mark + 1))) return {};
    return "\"" + std::string(text) + "\": the value is " + std::string(row.Option.Values) + ".";
  }
  return "There is no option \"" + std::string(text.substr(0, mark)) +
         "\". There are:" + All_Names();
}

bool Take_Board_Preset(Board_Line& line, std::string_view name) {
  for (const Preset& preset : Presets) {
    if (preset.Name != name) continue;
    for (int axis = 1; axis <= Axis_Count; ++axis) {
      const auto place = static_cast<std::size_t>(axis - 1);
      Board_Axis_Settings& settings = line.Board.Axes[axis].Settings;
      settings = {};
      settings.Max_Rate = preset.Max_Rate;
      settings.Max_Jump = preset.Max_Jump;
      const double low = preset.Low[place], high = preset.High[place];
      if (low >= high) continue;
      // Switches a hundredth of the travel beyond it, hard stops another
      // hundredth on.
      const double margin = (high - low) / 100;
      settings.Low_Switch = low - margin;
      settings.High_Switch = high + margin;
      settings.Low_Stop = low - 2 * margin;
      settings.High_Stop = high + 2 * margin;
      settings.Home_To = settings.Low_Switch;
    }
    return true;
  }
  return false;
}

}  // namespace norvik
