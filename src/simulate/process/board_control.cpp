#include "simulate/process/board_control.h"

#include "core/axes.h"
#include "core/json_text.h"
#include "core/paths.h"
#include "simulate/board/board.h"
#include "simulate/board/board_json.h"
#include "simulate/board/board_options.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstddef>
#include <optional>
#include <vector>

namespace norvik {

namespace {

std::string List_Json(const std::vector<std::string>& texts) {
  std::string list;
  for (const std::string& text : texts) list += (list.empty() ? "" : ",") + Json_Text(text);
  return "[" + list + "]";
}

// A line cut into its first word and the rest.
struct Command_Line {
  std::string_view Word, Rest;
};
Command_Line Cut(std::string_view text) {
  constexpr std::string_view blanks = " \t\r";
  const auto begin = std::min(text.find_first_not_of(blanks), text.size());
  text.remove_prefix(begin);
  const auto end = std::min(text.find_first_of(blanks), text.size());
  std::string_view rest = text.substr(end);
  rest.remove_prefix(std::min(rest.find_first_not_of(blanks), rest.size()));
  rest.remove_suffix(rest.size() - std::min(rest.find_last_not_of(blanks) + 1, rest.size()));
  return {text.substr(0, end), rest};
}

std::optional<double> Number_Of(std::string_view text) {
  double value = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  if (error != std::errc() || end != text.data() + text.size() || !std::isfinite(value)) return {};
  return value;
}

int Axis_Of(std::string_view text) {
  for (int axis = 1; axis <= Axis_Count; ++axis) {
    if (Upper(text) == std::string(1, Axis_Letter(axis))) return axis;
  }
  return 0;
}

std::string Fault_Command(Board_Line& line, std::string_view rest) {
  const auto [what, fault] = Cut(rest);
  if (what == "list") {
    return Control_Done("\"faults\":" + List_Json(Board_Faults_Text(line.Board)));
  }
  if (what == "clear") {
    Clear_Board_Faults(line.Board);
    return Control_Done();
  }
  if (what != "add") return Control_Error("fault add LINE, fault list, or fault clear");
  const std::string wrong = Add_Board_Fault(line.Board, fault);
  return wrong.empty() ? Control_Done() : Control_Error(wrong);
}

// "aux on", "home x off", "low a on", "limit x on": both switches of an axis.
std::string Input_Command(Board_Line& line, std::string_view rest) {
  const auto [kind, second] = Cut(rest);
  const auto [axis, third] = Cut(second);
  const bool aux = kind == "aux";
  const std::string_view word = aux ? axis : third;
  const int state = word == "on" ? 1 : word == "off" ? 2 : 0;
  constexpr std::string_view how =
      "input aux on|off, or input home|low|high|limit AXIS on|off|auto";
  if (word != "on" && word != "off" && word != "auto") return Control_Error(how);
  std::vector<std::string> names;
  if (aux) {
    names = {"aux"};
  } else if (kind == "limit") {
    names = {"low-" + std::string(axis), "high-" + std::string(axis)};
  } else {
    names = {std::string(kind) + "-" + std::string(axis)};
  }
  for (const std::string& name : names) {
    if (!Set_Board_Input(line.Board, name, state)) return Control_Error(how);
  }
  return Control_Done();
}

std::string Carriage_Command(Board_Line& line, std::string_view rest) {
  const auto [letter, number] = Cut(rest);
  const int axis = Axis_Of(letter);
  const auto steps = Number_Of(number);
  if (axis == 0 || !steps) return Control_Error("move-carriage AXIS STEPS");
  Place_Board_Carriage(line.Board, axis, *steps);
  return Control_Done();
}

std::string Memory_Command(Board_Line& line, std::string_view rest) {
  const auto [first, second] = Cut(rest);
  const auto address = Number_Of(first), value = Number_Of(second);
  constexpr double byte = 255;
  if (!address || !value || *address < 0 || *address > byte || *value < 0 || *value > byte) {
    return Control_Error("memory ADDRESS VALUE, both 0 to 255");
  }
  line.Board.Memory[static_cast<std::size_t>(*address)] = static_cast<std::uint8_t>(*value);
  return Control_Done();
}

std::string Unplug_Command(Board_Line& line, std::string_view rest) {
  constexpr double ns_of_millisecond = 1e6;
  const auto time = Number_Of(rest);
  if (!rest.empty() && (!time || *time < 0)) return Control_Error("unplug, or unplug MILLISECONDS");
  if (time) {
    Unplug(line, line.Board.Now + std::llround(*time * ns_of_millisecond));
  } else {
    Unplug(line);
  }
  return Control_Done();
}

std::string Time_Command(std::string_view word, std::string_view rest,
                         const Board_Control_Host& host) {
  constexpr double ns_of_microsecond = 1e3, longest = 1e15;
  const auto number = Number_Of(rest);
  if (word == "advance") {
    if (!number || *number < 0 || *number > longest) return Control_Error("advance MICROSECONDS");
    if (host.Advance(std::llround(*number * ns_of_microsecond))) return Control_Done();
    return Control_Error("time passes by itself: start the board with --time stepped");
  }
  if (!number || *number < 0.1 || *number > 1000) return Control_Error("scale 0.1 to 1000");
  if (host.Set_Scale(*number)) return Control_Done();
  return Control_Error("time does not pass by itself: start the board with --time real");
}

std::string Looking(const Board_Line& line, std::string_view word, std::string_view rest) {
  if (word == "state") return Control_Done("\"state\":" + Board_State_Json(line));
  if (word == "queue") {
    constexpr double most = 20;
    const double wanted = std::clamp(Number_Of(rest).value_or(most), 1.0, 10'000.0);
    return Control_Done("\"entries\":" +
                        Board_Queue_Json(line.Board, static_cast<std::size_t>(wanted)));
  }
  return Control_Done("\"outputs\":" + std::to_string(line.Board.Outputs) +
                      ",\"pwm\":" + std::to_string(Pwm_Value(line.Board)));
}

}  // namespace

std::string Control_Done(std::string_view members) {
  return "{\"ok\":true" + (members.empty() ? "" : "," + std::string(members)) + "}";
}

std::string Control_Error(std::string_view words) {
  return "{\"ok\":false,\"error\":" + Json_Text(words) + "}";
}

std::string Answer_Control_Line(Board_Line& line, std::string_view command,
                                const Board_Control_Host& host) {
  const auto [word, rest] = Cut(command);
  if (word == "state" || word == "queue" || word == "outputs") return Looking(line, word, rest);
  if (word == "advance" || word == "scale") return Time_Command(word, rest, host);
  if (word == "fault") return Fault_Command(line, rest);
  if (word == "input") return Input_Command(line, rest);
  if (word == "move-carriage") return Carriage_Command(line, rest);
  if (word == "memory") return Memory_Command(line, rest);
  if (word == "unplug") return Unplug_Command(line, rest);
  if (word == "expect-idle") {
    const auto seconds = Number_Of(rest);
    if (!seconds || *seconds < 0) return Control_Error("expect-idle SECONDS");
    host.Expect_Idle(*seconds);
    return {};
  }
  if (word == "option" || word == "preset") {
    std::string wrong;
    if (word == "option") {
      wrong = Set_Board_Option(line, rest);
    } else if (!Take_Board_Preset(line, rest)) {
      wrong = "presets are bench, router and plasma";
    }
    return wrong.empty() ? Control_Done() : Control_Error(wrong);
  }
  if (word == "save") {
    const std::string wrong = host.Save(std::string(rest), Board_State_Json(line) + "\n");
    return wrong.empty() ? Control_Done() : Control_Error(wrong);
  }
  if (word == "plug") {
    Plug_In(line);
  } else if (word == "restart") {
    Restart_Board(line.Board);
  } else if (word == "clear-findings") {
    line.Board.Findings = {};
  } else if (word == "mark") {
    host.Mark(std::string(rest));
  } else if (word == "watch") {
    host.Watch();
  } else if (word == "quit") {
    host.Quit();
  } else {
    return Control_Error(
        "There are: state, queue, outputs, advance, scale, "
        "fault, input, move-carriage, memory, "
        "unplug, plug, restart, option, preset, expect-idle, "
        "mark, save, clear-findings, watch, "
        "quit");
  }
  return Control_Done();
}

}  // namespace norvik
