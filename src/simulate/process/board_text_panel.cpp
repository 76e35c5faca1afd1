#include "simulate/process/board_text_panel.h"

#include "core/axes.h"
#include "simulate/board/board.h"
#include "simulate/board/board_findings.h"

#include <algorithm>
#include <cmath>
#include <cstdarg>
#include <cstdio>

namespace norvik {

namespace {

constexpr const char* Output_Names[] = {"spindle", "reverse", "mist", "flood", "custom", "6", "7"};
constexpr std::size_t Findings_Shown = 5, Longest_Line = 80;

[[gnu::format(printf, 1, 2)]] std::string Line_Of(const char* format, ...) {
  char text[2 * Longest_Line];
  std::va_list values;
  va_start(values, format);
  std::vsnprintf(text, sizeof text, format, values);
  va_end(values);
  return std::string(text).substr(0, Longest_Line);
}

std::string Bar(std::int32_t used, std::int32_t capacity) {
  constexpr int width = 40;
  const int filled =
      std::clamp(capacity > 0 ? width * used / capacity : 0, used > 0 ? 1 : 0, width);
  return std::string(static_cast<std::size_t>(filled), '#') +
         std::string(static_cast<std::size_t>(width - filled), '.');
}

std::string Entry_Words(const Simulated_Board& board, const Board_Panel_State& panel) {
  if (!In_Motion(board)) return board.Enabled ? "at rest" : "motors off";
  const Board_Entry& entry = board.Running.Entry;
  const auto made = static_cast<long long>(Counts_Made(board));
  if (entry.Dwell) return Line_Of("dwell, %lld of %u ms", made, entry.Major);
  const double rate = Current_Rate(board);
  std::string words =
      Line_Of("move %u: %lld of %u counts, %.0f Hz", entry.Index, made, entry.Major, rate);
  if (panel.Steps_Per_Unit > 0)
    words += Line_Of(", %.2f units/min", rate * 60 / panel.Steps_Per_Unit);
  return words;
}

std::string Axis_Line(const Simulated_Board& board, int axis) {
  const unsigned latches = board.Limit_Latches;
  const auto words = [&](bool on, unsigned place) {
    const bool latched = (latches >> place & 1U) != 0;
    return std::string(on ? "ON" : "off") + (latched ? "*" : "");
  };
  const auto bit = static_cast<unsigned>(axis - 1);
  const bool encoders = board.Generation == Board_Generation::Pelmar_V5;
  return Line_Of(" %c %10lld %10lld %8.0f%s   %-5s %-5s %s", Axis_Letter(axis),
                 static_cast<long long>(Counter_Of(board, axis)),
                 encoders ? static_cast<long long>(Encoder_Of(board, axis)) : 0LL,
                 encoders ? Encoder_Error_Of(board, axis) : 0.0,
                 board.Axes[axis].Encoder_Fault ? "!" : " ",
                 words(Low_Switch_On(board, axis), bit).c_str(),
                 words(High_Switch_On(board, axis), bit + 4).c_str(),
                 Home_Input_On(board, axis) ? "home" : "");
}

std::string Outputs_Line(const Simulated_Board& board) {
  std::string names;
  for (unsigned n = 0; n < 7; ++n)
    if ((board.Outputs >> n & 1U) != 0) names += std::string(" ") + Output_Names[n];
  constexpr double full = 1023, percent = 100;
  return Line_Of("Outputs:%s   PWM %.0f %%   throttle %.0f %%   motors %s",
                 names.empty() ? " none" : names.c_str(), Pwm_Value(board) / full * percent,
                 board.Throttle * percent, board.Enabled ? "on" : "OFF");
}

Input_State Toggled(Input_State state) {
  return state == Input_State::On ? Input_State::Automatic : Input_State::On;
}

}  // namespace

std::string Board_Panel_Text(const Board_Line& line, const Board_Panel_State& panel) {
  const Simulated_Board& board = line.Board;
  const auto& [first, second, third] = board.Settings.Revision;
  const Frame_Receiver& receiver = board.Receiver;
  std::string text =
      "SIMULATED BOARD - no motion takes place; beyond the wire format it is invented\r\n";
  const auto add = [&text](const std::string& words) {
    text += words.substr(0, Longest_Line) + "\r\n";
  };
  if (!panel.Port.empty()) add("Port " + panel.Port);
  add(Line_Of("%s %d.%d.%d, %s%s: %lld frames, %lld bad", Name_Of(board.Generation).c_str(), first,
              second, third, line.Plugged ? "plugged in" : "UNPLUGGED",
              panel.Time_Stands ? ", TIME STANDS" : "", static_cast<long long>(board.Counts.Frames),
              static_cast<long long>(receiver.Bad_Checksums + receiver.Unknown_Codes +
                                     receiver.Dropped_Frames)));
  add(Line_Of("Queue [%s] %d of %d", Bar(Queue_Used(board), board.Settings.Capacity).c_str(),
              Queue_Used(board), board.Settings.Capacity));
  add("Now: " + Entry_Words(board, panel));
  add("axis  counter    encoder    apart    first second   (*: latched, !: fault)");
  for (int axis = 1; axis <= Axis_Count; ++axis) add(Axis_Line(board, axis));
  add(Outputs_Line(board));
  add(Line_Of("Aux input %s   watchdog errors %d", board.Aux == Input_State::On ? "ON" : "off",
              board.Watchdog_Errors));
  const std::vector<std::string> findings = Board_Findings_Text(board.Findings);
  const std::size_t shown = std::min(findings.size(), Findings_Shown);
  for (std::size_t i = findings.size() - shown; i < findings.size(); ++i)
    add("Noticed  " + findings[i]);
  add("1-4 limit   h home   a aux   d cable   e slip   p pause   q quit");
  return text;
}

void Take_Board_Key(Board_Line& line, Board_Panel_State& panel, char key) {
  Simulated_Board& board = line.Board;
  switch (key) {
    case '1':
    case '2':
    case '3':
    case '4':
      board.Axes[key - '0'].Low_Input = Toggled(board.Axes[key - '0'].Low_Input);
      return Plan_Again(board);
    case 'h':
      for (Board_Axis& axis : board.Axes) axis.Home_Input = Toggled(axis.Home_Input);
      return;
    case 'a':
      return Set_Board_Aux(board,
                           board.Aux == Input_State::On ? Input_State::Off : Input_State::On);
    case 'd':
      return line.Plugged ? Unplug(line) : Plug_In(line);
    case 'e': {
      constexpr double twentieth = 0.05;
      return Slip_From_Here(board, 1, board.Axes[1].Settings.Slip > 0 ? 0 : twentieth);
    }
    case 'p':
      panel.Time_Stands = !panel.Time_Stands;
      return;
    case 'q':
      panel.Quit = true;
      return;
    default:
      return;
  }
}

}  // namespace norvik
