#include "simulate/board/board_faults.h"

#include "core/axes.h"
#include "core/paths.h"
#include "simulate/board/board_axes.h"
#include "simulate/board/board_hands.h"
#include "simulate/board/board_motion.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <limits>
#include <string>
#include <utility>

namespace norvik {

namespace {

constexpr std::int64_t Never = std::numeric_limits<std::int64_t>::max();
constexpr double Ns_Of_Millisecond = 1e6, Ns_Of_Second = 1e9;

// --- Reading a line ----------------------------------------------------------------------------

std::optional<double> Number_Of(std::string_view text) {
  double value = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  if (error != std::errc() || end != text.data() + text.size() || !std::isfinite(value)) return {};
  return value;
}

// The text in front of the first mark, and what stands behind it.
std::pair<std::string_view, std::string_view> Split(std::string_view text, char mark) {
  const auto place = text.find(mark);
  if (place == std::string_view::npos) return {text, {}};
  return {text.substr(0, place), text.substr(place + 1)};
}

// 1..4; 0: no axis.
int Axis_Named(std::string_view name) {
  for (int axis = 1; axis <= Axis_Count; ++axis) {
    if (Upper(name) == std::string(1, Axis_Letter(axis))) return axis;
  }
  return 0;
}

// Two numbers "A:B"; the second may be missing when `second` gives it.
bool Read_Two(std::string_view text, double& first, double& second,
              std::optional<double> otherwise) {
  const auto [left, right] = Split(text, ':');
  const auto one = Number_Of(left);
  const auto two = right.empty() ? otherwise : Number_Of(right);
  if (!one || !two) return false;
  first = *one;
  second = *two;
  return true;
}

bool Read_Axis_Number(std::string_view text, double& axis, double& number) {
  const auto [left, right] = Split(text, ':');
  const auto value = Number_Of(right);
  axis = Axis_Named(left);
  if (axis == 0 || !value) return false;
  number = *value;
  return true;
}

std::optional<std::vector<std::uint8_t>> Bytes_Of_Hex(std::string_view text) {
  std::vector<std::uint8_t> bytes;
  constexpr int base = 16;
  for (std::size_t i = 0; i + 1 < text.size(); i += 2) {
    std::uint8_t byte = 0;
    const auto* begin = text.data() + i;
    if (std::from_chars(begin, begin + 2, byte, base).ptr != begin + 2) return {};
    bytes.push_back(byte);
  }
  if (text.empty() || text.size() % 2 != 0) return {};
  return bytes;
}

struct Trigger_Word {
  std::string_view Name;
  Fault_Trigger Trigger;
};
constexpr Trigger_Word Triggers[] = {
    {"frame", Fault_Trigger::Frame}, {"code", Fault_Trigger::Code},
    {"time", Fault_Trigger::Time},   {"chance", Fault_Trigger::Chance},
    {"depth", Fault_Trigger::Depth}, {"axis", Fault_Trigger::Axis},
    {"now", Fault_Trigger::Now},
};

enum class Form { None, One, Two, Axis, Word };
struct Action_Word {
  std::string_view Name;
  Fault_Action Action;
  Form Numbers;
  std::string_view Example;
};
constexpr Action_Word Actions[] = {
    {"lose", Fault_Action::Lose, Form::Two, "lose=3:2"},
    {"flip", Fault_Action::Flip, Form::Two, "flip=7:3"},
    {"no-reply", Fault_Action::No_Reply, Form::None, "no-reply"},
    {"cut", Fault_Action::Cut, Form::One, "cut=4"},
    {"checksum", Fault_Action::Checksum, Form::Word, "checksum=low"},
    {"delay", Fault_Action::Delay, Form::One, "delay=300"},
    {"twice", Fault_Action::Twice, Form::None, "twice"},
    {"noise", Fault_Action::Noise, Form::Word, "noise=1b00ff"},
    {"bursts", Fault_Action::Bursts, Form::Two, "bursts=3:20"},
    {"silence", Fault_Action::Silence, Form::One, "silence=1000"},
    {"disconnect", Fault_Action::Disconnect, Form::One, "disconnect=2000"},
    {"restart", Fault_Action::Restart, Form::None, "restart"},
    {"jump", Fault_Action::Jump, Form::Axis, "jump=X:100"},
    {"input", Fault_Action::Input, Form::Word, "input=home-x:on"},
    {"slip", Fault_Action::Slip, Form::Axis, "slip=X:5"},
    {"capacity", Fault_Action::Capacity, Form::One, "capacity=10"},
    {"config", Fault_Action::Config, Form::Two, "config=14:9"},
    {"watchdog", Fault_Action::Watchdog, Form::One, "watchdog=3"},
};

bool Read_Trigger(const Simulated_Board& board, std::string_view word, Board_Fault& fault) {
  const auto [name, value] = Split(word, '=');
  const auto* found =
      std::find_if(std::begin(Triggers), std::end(Triggers),
                   [name = name](const auto& trigger) { return trigger.Name == name; });
  if (found == std::end(Triggers)) return false;
  fault.Trigger = found->Trigger;
  double first = 0, second = 1;
  switch (found->Trigger) {
    case Fault_Trigger::Now:
      return value.empty();
    case Fault_Trigger::Code: {
      const auto [command_name, number] = Split(value, ':');
      const Board_Command* command = Board_Command_Named(command_name);
      const auto n = number.empty() ? std::optional(1.0) : Number_Of(number);
      if (command == nullptr || !n || *n < 1) return false;
      fault.Code = command->Code;
      fault.Number = std::llround(*n);
      return true;
    }
    case Fault_Trigger::Axis:
      if (!Read_Axis_Number(value, first, second)) return false;
      fault.Trigger_Axis = static_cast<int>(first);
      fault.Number = std::llround(second);
      return true;
    case Fault_Trigger::Chance:
      if (!Read_Two(value, fault.Chance, second, 1.0)) return false;
      fault.Random = static_cast<std::uint32_t>(std::llround(std::abs(second))) * 2 + 1;
      return fault.Chance >= 0 && fault.Chance <= 1;
    default:
      break;
  }
  const auto number = Number_Of(value);
  if (!number || *number < 0 || *number > 1e9) return false;
  const bool is_time = found->Trigger == Fault_Trigger::Time;
  fault.Number = is_time ? board.Now + std::llround(*number * Ns_Of_Second) : std::llround(*number);
  return found->Trigger != Fault_Trigger::Frame || fault.Number >= 1;
}

bool Values_Are_Possible(const Simulated_Board& board, const Board_Fault& fault) {
  const auto within = [](double value, double low, double high) {
    return value >= low && value <= high && value == std::floor(value);
  };
  constexpr double longest_frame = 64, byte = 255, last_bit = 7;
  switch (fault.Action) {
    case Fault_Action::Lose:
      return within(fault.First, 1, longest_frame) && within(fault.Second, 1, longest_frame);
    case Fault_Action::Flip:
      return within(fault.First, 1, longest_frame) && within(fault.Second, 0, last_bit);
    case Fault_Action::Cut:
      return within(fault.First, 0, longest_frame);
    case Fault_Action::Bursts:
      return within(fault.First, 1, longest_frame) && fault.Second >= 0;
    case Fault_Action::Config:
      return within(fault.First, 3, 56) && within(fault.Second, 0, byte);
    case Fault_Action::Watchdog:
      return within(fault.First, 0, byte);
    case Fault_Action::Capacity:
      return within(fault.First, 0, board.Settings.Capacity);
    case Fault_Action::Slip:
      return fault.Second >= 0 && fault.Second <= 100;
    case Fault_Action::Checksum:
      return fault.Word == "low" || fault.Word == "high";
    case Fault_Action::Noise:
      return Bytes_Of_Hex(fault.Word).has_value();
    case Fault_Action::Input: {
      Simulated_Board trial;
      const auto [name, state] = Split(fault.Word, ':');
      return Set_Board_Input(trial, name, 0) &&
             (state == "on" || state == "off" || state == "auto");
    }
    default:
      return fault.First >= 0 || fault.Action == Fault_Action::Jump;
  }
}

// The empty text, or an example of what the action needs.
std::string Read_Action(const Simulated_Board& board, std::string_view word, Board_Fault& fault) {
  const auto [name, value] = Split(word, '=');
  const auto* found =
      std::find_if(std::begin(Actions), std::end(Actions),
                   [name = name](const auto& action) { return action.Name == name; });
  if (found == std::end(Actions)) {
    std::string names =
        "Nothing that can happen is named \"" + std::string(name) + "\". There are:";
    for (const Action_Word& action : Actions) names += " " + std::string(action.Name);
    return names;
  }
  fault.Action = found->Action;
  fault.Word = value;
  bool right = false;
  switch (found->Numbers) {
    case Form::None:
      right = value.empty();
      break;
    case Form::Word:
      right = !value.empty();
      break;
    case Form::One: {
      const auto number = Number_Of(value);
      right = number.has_value();
      fault.First = number.value_or(0);
      break;
    }
    case Form::Two:
      right = Read_Two(value, fault.First, fault.Second, 1.0);
      break;
    case Form::Axis:
      right = Read_Axis_Number(value, fault.First, fault.Second);
      break;
  }
  if (right && Values_Are_Possible(board, fault)) return {};
  return "\"" + std::string(word) + "\" cannot be done. Write it like " +
         std::string(found->Example) + ".";
}

std::vector<std::string_view> Words_Of(std::string_view line) {
  std::vector<std::string_view> words;
  while (!line.empty()) {
    const auto begin = line.find_first_not_of(" \t");
    if (begin == std::string_view::npos) break;
    line.remove_prefix(begin);
    const auto end = std::min(line.find_first_of(" \t"), line.size());
    words.push_back(line.substr(0, end));
    line.remove_prefix(end);
  }
  return words;
}

// --- Happening ---------------------------------------------------------------------------------

bool Is_Over(const Board_Fault& fault) {
  return fault.Times > 0 && fault.Fired >= fault.Times;
}

void Find_Next_Time(Board_Fault_List& faults) {
  faults.Next_Time = Never;
  for (const Board_Fault& fault : faults.List) {
    if (fault.Trigger != Fault_Trigger::Time || Is_Over(fault)) continue;
    faults.Next_Time = std::min(faults.Next_Time, fault.Number);
  }
}

std::int64_t Milliseconds(double value) {
  return std::llround(value * Ns_Of_Millisecond);
}

void Harm_Reply(Reply_Harm& harm, const Board_Fault& fault) {
  harm.Any = true;
  switch (fault.Action) {
    case Fault_Action::No_Reply:
      harm.Lost = true;
      return;
    case Fault_Action::Cut:
      harm.Cut_To = static_cast<std::size_t>(fault.First);
      return;
    case Fault_Action::Checksum:
      (fault.Word == "low" ? harm.Low_Wrong : harm.High_Wrong) = true;
      return;
    case Fault_Action::Delay:
      harm.Delay = Milliseconds(fault.First);
      return;
    case Fault_Action::Twice:
      harm.Twice = true;
      return;
    case Fault_Action::Noise:
      harm.Noise = Bytes_Of_Hex(fault.Word).value_or(std::vector<std::uint8_t>());
      return;
    default:
      harm.Burst = static_cast<std::size_t>(fault.First);
      harm.Burst_Gap = Milliseconds(fault.Second);
  }
}

// What changes the board or the machine and not one reply.
void Harm_Board(Simulated_Board& board, const Board_Fault& fault) {
  switch (fault.Action) {
    case Fault_Action::Silence:
      board.Faults.Mute_Until = board.Now + Milliseconds(fault.First);
      return;
    case Fault_Action::Disconnect:
      board.Faults.Unplugged_For = Milliseconds(fault.First);
      return;
    case Fault_Action::Restart:
      return Restart_Board(board);
    case Fault_Action::Jump:
      board.Axes[static_cast<int>(fault.First)].Counter += std::llround(fault.Second);
      return Plan_Again(board);
    case Fault_Action::Input: {
      const auto [name, state] = Split(fault.Word, ':');
      Set_Board_Input(board, name, state == "on" ? 1 : state == "off" ? 2 : 0);
      return;
    }
    case Fault_Action::Slip:
      Slip_From_Here(board, static_cast<int>(fault.First), fault.Second / 100);
      return;
    case Fault_Action::Capacity:
      board.Faults.True_Capacity = static_cast<std::int32_t>(fault.First);
      return;
    case Fault_Action::Config:
      board.Faults.Wrong_Config = {static_cast<std::uint8_t>(fault.First),
                                   static_cast<std::uint8_t>(fault.Second)};
      return;
    default:
      board.Watchdog_Errors =
          static_cast<std::uint8_t>(board.Watchdog_Errors + static_cast<int>(fault.First));
  }
}

bool Harms_Bytes_In(Fault_Action action) {
  return action == Fault_Action::Lose || action == Fault_Action::Flip;
}
bool Harms_Reply(Fault_Action action) {
  return action >= Fault_Action::No_Reply && action <= Fault_Action::Bursts;
}

void Count_Happening(Simulated_Board& board, Board_Fault& fault) {
  ++fault.Fired;
  if (board.Host.Event) board.Host.Event(board.Now, "fault: " + fault.Text);
}

// By place: what happens may add to the list.
void Let_Happen(Simulated_Board& board, std::size_t place) {
  Count_Happening(board, board.Faults.List[place]);
  const Board_Fault fault = board.Faults.List[place];
  if (Harms_Reply(fault.Action)) {
    Harm_Reply(board.Reply.Harm, fault);
  } else {
    Harm_Board(board, fault);
  }
}

bool Meets_Frame(Board_Fault& fault, std::uint8_t code) {
  switch (fault.Trigger) {
    case Fault_Trigger::Frame:
      return ++fault.Seen >= fault.Number;
    case Fault_Trigger::Code:
      return code == fault.Code && ++fault.Seen >= fault.Number;
    case Fault_Trigger::Chance: {
      constexpr std::uint32_t factor = 1'664'525, addend = 1'013'904'223;
      fault.Random = fault.Random * factor + addend;
      return fault.Random < fault.Chance * 4294967296.0;
    }
    default:
      return fault.Armed;  // its moment has come; it harms the first frame after it
  }
}

void Harm_Bytes(const Board_Fault& fault, std::vector<std::uint8_t>& bytes) {
  const auto place = static_cast<std::size_t>(fault.First) - 1;
  if (place >= bytes.size()) return;
  if (fault.Action == Fault_Action::Flip) {
    bytes[place] =
        static_cast<std::uint8_t>(bytes[place] ^ 1U << static_cast<unsigned>(fault.Second));
    return;
  }
  const auto begin = bytes.begin() + static_cast<std::ptrdiff_t>(place);
  const auto count = std::min(static_cast<std::size_t>(fault.Second), bytes.size() - place);
  bytes.erase(begin, begin + static_cast<std::ptrdiff_t>(count));
}

// The moment of a fault has come without a frame.
void Moment_Has_Come(Simulated_Board& board, std::size_t place) {
  Board_Fault& fault = board.Faults.List[place];
  if (Harms_Reply(fault.Action) || Harms_Bytes_In(fault.Action)) {
    fault.Armed = true;  // waits for a frame
    return;
  }
  Let_Happen(board, place);
}

}  // namespace

std::string Add_Board_Fault(Simulated_Board& board, std::string_view line) {
  const auto words = Words_Of(line);
  constexpr std::string_view how =
      "A fault is a moment and what happens then, such as \"code=MoveSteps:5 no-reply\" or "
      "\"time=2.5 disconnect=1000\"; \"times=0\" behind it lets it happen always.";
  if (words.size() < 2 || words.size() > 3) return std::string(how);
  Board_Fault fault;
  if (!Read_Trigger(board, words[0], fault)) {
    return "\"" + std::string(words[0]) +
           "\" is no moment. There are frame=N, code=NAME:N, time=SECONDS, chance=P:SEED, depth=N, "
           "axis=X:STEPS and now.";
  }
  const std::string wrong = Read_Action(board, words[1], fault);
  if (!wrong.empty()) return wrong;
  if (words.size() > 2) {
    const auto [name, value] = Split(words[2], '=');
    const auto number = Number_Of(value);
    if (name != "times" || !number || *number < 0) return std::string(how);
    fault.Times = std::llround(*number);
  }
  fault.Text = Trim(line);
  if (fault.Trigger == Fault_Trigger::Time) fault.Times = 1;
  if (fault.Trigger == Fault_Trigger::Axis) {
    fault.Seen = Counter_Of(board, fault.Trigger_Axis) < fault.Number ? 0 : 1;
  }
  board.Faults.List.push_back(std::move(fault));
  Find_Next_Time(board.Faults);
  if (board.Faults.List.back().Trigger == Fault_Trigger::Now) {
    Moment_Has_Come(board, board.Faults.List.size() - 1);
  }
  return {};
}

void Clear_Board_Faults(Simulated_Board& board) {
  board.Faults = {};
  for (int axis = 1; axis <= Axis_Count; ++axis) {
    Slip_From_Here(board, axis, 0);
    Board_Axis& a = board.Axes[axis];
    a.Low_Input = a.High_Input = a.Home_Input = Input_State::Automatic;
  }
  Plan_Again(board);
}

std::vector<std::string> Board_Faults_Text(const Simulated_Board& board) {
  std::vector<std::string> texts;
  for (const Board_Fault& fault : board.Faults.List) {
    texts.push_back(fault.Text + " (happened " + std::to_string(fault.Fired) +
                    (fault.Fired == 1 ? " time)" : " times)"));
  }
  return texts;
}

std::optional<std::vector<std::uint8_t>> Frame_Meets_Faults(Simulated_Board& board,
                                                            std::span<const std::uint8_t> frame) {
  State_Meets_Faults(board);
  std::optional<std::vector<std::uint8_t>> changed;
  const std::uint8_t code = frame[1];
  for (std::size_t i = 0; i < board.Faults.List.size(); ++i) {
    Board_Fault& fault = board.Faults.List[i];
    if (Is_Over(fault) || !Meets_Frame(fault, code)) continue;
    if (!Harms_Bytes_In(fault.Action)) {
      fault.Armed = false;
      Let_Happen(board, i);
      continue;
    }
    fault.Armed = false;
    if (!changed) changed.emplace(frame.begin(), frame.end());
    Harm_Bytes(fault, *changed);
    Count_Happening(board, fault);
  }
  return changed;
}

void Time_Meets_Faults(Simulated_Board& board) {
  for (std::size_t i = 0; i < board.Faults.List.size(); ++i) {
    Board_Fault& fault = board.Faults.List[i];
    if (fault.Trigger != Fault_Trigger::Time || Is_Over(fault) || fault.Number > board.Now)
      continue;
    fault.Number = Never;  // once
    Moment_Has_Come(board, i);
  }
  Find_Next_Time(board.Faults);
}

void State_Meets_Faults(Simulated_Board& board) {
  for (std::size_t i = 0; i < board.Faults.List.size(); ++i) {
    Board_Fault& fault = board.Faults.List[i];
    if (Is_Over(fault)) continue;
    if (fault.Trigger == Fault_Trigger::Depth) {
      const bool deep = static_cast<std::int64_t>(board.Queue_Count) > fault.Number;
      const bool fallen = fault.Seen == 1 && !deep;
      fault.Seen = deep ? 1 : 0;
      if (fallen) Moment_Has_Come(board, i);
    } else if (fault.Trigger == Fault_Trigger::Axis) {
      const bool before = Counter_Of(board, fault.Trigger_Axis) < fault.Number;
      const bool was_before = fault.Seen == 0;
      fault.Seen = before ? 0 : 1;
      if (before != was_before) Moment_Has_Come(board, i);
    }
  }
}

bool Set_Board_Input(Simulated_Board& board, std::string_view name, int state) {
  const Input_State wanted = state == 1   ? Input_State::On
                             : state == 2 ? Input_State::Off
                                          : Input_State::Automatic;
  if (name == "aux") {
    Set_Board_Aux(board, wanted == Input_State::On ? Input_State::On : Input_State::Off);
    return true;
  }
  const auto [kind, letter] = Split(name, '-');
  const int axis = Axis_Named(letter);
  if (axis == 0) return false;
  Board_Axis& a = board.Axes[axis];
  if (kind == "home") {
    a.Home_Input = wanted;
  } else if (kind == "low") {
    a.Low_Input = wanted;
  } else if (kind == "high") {
    a.High_Input = wanted;
  } else {
    return false;
  }
  Plan_Again(board);
  return true;
}

}  // namespace norvik
