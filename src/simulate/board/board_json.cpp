#include "simulate/board/board_json.h"

#include "core/axes.h"
#include "core/json_text.h"
#include "simulate/board/board.h"
#include "simulate/board/frame_words.h"

#include <cstdio>
#include <string>
#include <vector>

namespace norvik {

namespace {

constexpr double Second = 1e9;

std::string Number(double value, const char* format = "%.6g") {
  char text[48];
  std::snprintf(text, sizeof text, format, value);
  return text;
}

std::string Seconds(std::int64_t ns) {
  return Number(static_cast<double>(ns) / Second, "%.6f");
}

// Members of an object, in the order in which they are added.
class Object {
 public:
  Object& Raw(std::string_view name, const std::string& value) {
    if (!Members.empty()) Members += ",";
    Members += Json_Text(name) + ":" + value;
    return *this;
  }
  Object& Text(std::string_view name, std::string_view value) {
    return Raw(name, Json_Text(value));
  }
  Object& Integer(std::string_view name, std::int64_t value) {
    return Raw(name, std::to_string(value));
  }
  Object& Real(std::string_view name, double value) { return Raw(name, Number(value)); }
  Object& Flag(std::string_view name, bool value) { return Raw(name, value ? "true" : "false"); }
  std::string Closed() const { return "{" + Members + "}"; }

 private:
  std::string Members;
};

std::string List_Of(const std::vector<std::string>& items) {
  std::string text;
  for (const std::string& item : items) text += (text.empty() ? "" : ",") + item;
  return "[" + text + "]";
}

std::string Axis_Json(const Simulated_Board& board, int axis) {
  const Board_Axis& a = board.Axes[axis];
  return Object()
      .Text("axis", std::string(1, Axis_Letter(axis)))
      .Integer("counter", Counter_Of(board, axis))
      .Real("carriage", Carriage_Of(board, axis))
      .Integer("encoder", Encoder_Of(board, axis))
      .Real("error", Encoder_Error_Of(board, axis))
      .Flag("encoder_fault", a.Encoder_Fault)
      .Flag("low", Low_Switch_On(board, axis))
      .Flag("high", High_Switch_On(board, axis))
      .Flag("home", Home_Input_On(board, axis))
      .Closed();
}

std::string Entry_Json(const Board_Entry& entry) {
  std::vector<std::string> dividers;
  for (const std::uint32_t divider : entry.Dividers) {
    dividers.push_back(divider == No_Steps_Divider ? "null" : std::to_string(divider));
  }
  return Object()
      .Text("kind", entry.Dwell ? "dwell" : "move")
      .Integer("counts", entry.Major)
      .Raw("dividers", List_Of(dividers))
      .Integer("start_rate", entry.Start_Rate)
      .Integer("run_ramp", entry.Run_Ramp)
      .Integer("down_ramp", entry.Down_Ramp)
      .Integer("directions", entry.Directions)
      .Integer("index", entry.Index)
      .Closed();
}

std::string Link_Json(const Board_Line& line) {
  const Simulated_Board& board = line.Board;
  return Object()
      .Flag("plugged", line.Plugged)
      .Integer("frames", board.Counts.Frames)
      .Integer("replies", board.Counts.Replies)
      .Integer("checksum_errors", board.Receiver.Bad_Checksums)
      .Integer("unknown_codes", board.Receiver.Unknown_Codes)
      .Integer("dropped", board.Receiver.Dropped_Frames)
      .Integer("discarded_bytes", board.Receiver.Discarded_Bytes)
      .Raw("longest_gap", Seconds(board.Counts.Longest_Gap))
      .Closed();
}

}  // namespace

std::string Board_State_Json(const Board_Line& line) {
  const Simulated_Board& board = line.Board;
  Object state;
  state.Text("board", Name_Of(board.Generation))
      .Raw("t", Seconds(board.Now))
      .Raw("link", Link_Json(line))
      .Flag("moving", In_Motion(board))
      .Integer("queued", Queue_Used(board))
      .Integer("free", Queue_Free(board));
  if (board.Counts.Smallest_Queue) state.Integer("smallest_queue", *board.Counts.Smallest_Queue);
  if (board.Running.Active) {
    state.Raw("running", Entry_Json(board.Running.Entry))
        .Integer("made", Counts_Made(board))
        .Real("seconds", Entry_Seconds(board));
  }
  std::vector<std::string> axes, findings, faults;
  for (int axis = 1; axis <= Axis_Count; ++axis) axes.push_back(Axis_Json(board, axis));
  for (const std::string& text : Board_Findings_Text(board.Findings)) {
    findings.push_back(Json_Text(text));
  }
  for (const std::string& text : Board_Faults_Text(board)) faults.push_back(Json_Text(text));
  return state.Real("rate", Current_Rate(board))
      .Raw("axes", List_Of(axes))
      .Integer("latches", board.Limit_Latches)
      .Flag("limits_on", board.Limits_On)
      .Flag("aux", board.Aux == Input_State::On)
      .Flag("aux_latched", board.Aux_Flag)
      .Integer("outputs", board.Outputs)
      .Integer("pwm", Pwm_Value(board))
      .Real("throttle", board.Throttle)
      .Flag("enabled", board.Enabled)
      .Integer("ramp_rate", board.Ramp_Rate)
      .Integer("watchdog", board.Watchdog_Errors)
      .Integer("index", board.Finished_Index)
      .Integer("finished", board.Counts.Finished)
      .Raw("faults", List_Of(faults))
      .Raw("findings", List_Of(findings))
      .Closed();
}

std::string Board_Queue_Json(const Simulated_Board& board, std::size_t most) {
  std::vector<std::string> entries;
  if (board.Running.Active) entries.push_back(Entry_Json(board.Running.Entry));
  for (std::size_t i = 0; i < board.Queue_Count && entries.size() < most; ++i) {
    entries.push_back(Entry_Json(Entry_In_Queue(board, i)));
  }
  return List_Of(entries);
}

std::string Frame_Log_Line(const Simulated_Board& board, const Board_Frame_Event& event) {
  Object log;
  log.Raw("t", Seconds(event.Time))
      .Text("way", event.To_Host ? "out" : "in")
      .Text("hex", Hex_Of(event.Frame));
  // A refusal's second byte is not its code; the board knows what it answers.
  const Frame_Words words =
      event.To_Host ? Words_Of_Reply(board.Generation, board.Answers_To, event.Frame)
                    : Words_Of_Frame(board.Generation, Frame_Side::Command, event.Frame);
  if (words.Fault.empty()) log.Text("words", words.Words);
  return log.Text("verdict", event.Verdict).Closed();
}

std::string Motion_Log_Line(const Simulated_Board& board, const Board_Motion_Event& event) {
  std::vector<std::string> counters;
  for (int axis = 1; axis <= Axis_Count; ++axis) {
    counters.push_back(std::to_string(Counter_Of(board, axis)));
  }
  Object log;
  log.Raw("t", Seconds(event.Time)).Text("entry", event.Ended ? "end" : "begin");
  if (event.Ended) log.Text("why", event.Why);
  return log.Raw("entry_is", Entry_Json(board.Running.Entry))
      .Raw("counters", List_Of(counters))
      .Real("top_rate", board.Running.Profile.Top_Rate)
      .Raw("seconds", Number(board.Running.Profile.Duration, "%.9g"))
      .Integer("outputs", board.Outputs)
      .Integer("pwm", Pwm_Value(board))
      .Closed();
}

}  // namespace norvik
