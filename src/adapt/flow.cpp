#include "adapt/flow.h"

#include <algorithm>
#include <charconv>
#include <cmath>

namespace norvik::adapting {

namespace {

constexpr std::size_t Deepest_Call = 100;
constexpr std::string_view Digits = "0123456789";

std::int64_t Whole_At(std::string_view text, std::size_t at, std::int64_t otherwise) {
  std::int64_t value = otherwise;
  if (at < text.size()) std::from_chars(text.data() + at, text.data() + text.size(), value);
  return value;
}

std::size_t Behind_Sequence(std::string_view code) {
  if (!code.starts_with('N')) return 0;
  return std::min(code.find_first_not_of("0123456789.", 1), code.size());
}

}  // namespace

// --- Marks ---------------------------------------------------------------------------------------

std::optional<Flow::Mark> Flow::Read_Mark(std::string_view code, std::int32_t line) {
  std::size_t at = Behind_Sequence(code);
  if (at >= code.size() || code[at] != 'O') return std::nullopt;
  ++at;
  Mark mark{line, {}, {}, 0};
  const bool named = at < code.size() && code[at] == '<';
  std::size_t end =
      named ? code.find('>', at) : std::min(code.find_first_not_of(Digits, at), code.size());
  if (end == std::string_view::npos || end == at) return std::nullopt;
  if (named) ++end;
  mark.Label = code.substr(at, end - at);
  if (!named)
    mark.Label.erase(0, std::min(mark.Label.find_first_not_of('0'), mark.Label.size() - 1));
  std::size_t rest = end;
  while (rest < code.size() && code[rest] >= 'A' && code[rest] <= 'Z') ++rest;
  mark.Keyword = code.substr(end, rest - end);
  mark.Rest = rest;
  return mark;
}

void Flow::Read_Marks() {
  if (Marks) return;
  Marks.emplace();
  Foreign_Line line;
  for (std::int32_t number = 1; number <= Program.Line_Count(); ++number) {
    const std::string_view text = Program.Line(number);
    if (text.find_first_of("oO") == std::string_view::npos) continue;
    Take_Apart(text, line);
    if (auto mark = Read_Mark(line.Code, number)) Marks->push_back(std::move(*mark));
  }
}

const Flow::Mark* Flow::Find(std::string_view label, std::string_view keyword,
                             std::int32_t behind) const {
  const auto found = std::ranges::find_if(*Marks, [&](const Mark& mark) {
    return mark.Line > behind && mark.Label == label && mark.Keyword == keyword;
  });
  return found == Marks->end() ? nullptr : &*found;
}

void Flow::Jump_Behind(const Mark* mark, const char* what) {
  if (!mark) throw Unreadable{std::string(what) + " is missing"};
  At = mark->Line + 1;
}

double Flow::Condition(std::string_view code, std::size_t rest) const {
  Cursor cursor{code, rest};
  return Read_Bracket(cursor, All.Values);
}

// --- Lines ---------------------------------------------------------------------------------------

std::int32_t Flow::Next() {
  if (Repeat_End != 0 && At == Repeat_End && Calls.empty()) {
    At = --Repeat_Count > 0 ? Repeat_Start + 1 : Repeat_End + 1;
    if (Repeat_Count <= 0) Repeat_End = 0;
  }
  return At <= Program.Line_Count() ? At++ : 0;
}

bool Flow::Take(Foreign_Line& line, std::int32_t number) {
  const std::string_view code = line.Code;
  if (code.find_first_of("OMR") == std::string_view::npos) return false;
  if (const auto mark = Read_Mark(code, number)) {
    Uses = true;
    Read_Marks();
    Act(*mark, code);
    return true;
  }
  if (code.find("M98") != std::string_view::npos || code.find("M99") != std::string_view::npos) {
    return Take_Number_Call(line);
  }
  if (code.find("REPEAT") != std::string_view::npos) Take_Repeat(line, number);
  return false;
}

void Flow::Act(const Mark& mark, std::string_view code) {
  const std::string& word = mark.Keyword;
  if (word.empty()) return;  // the number of a program
  if (word == "SUB" || word == "ENDSUB" || word == "CALL" || word == "RETURN") {
    Act_On_Subprogram(mark, code);
  } else if (word == "IF" || word == "ELSEIF" || word == "ELSE" || word == "ENDIF") {
    Act_On_Branch(mark, code);
  } else if (word == "WHILE" || word == "ENDWHILE" || word == "DO" || word == "REPEAT" ||
             word == "ENDREPEAT" || word == "BREAK" || word == "CONTINUE") {
    Act_On_Loop(mark, code);
  } else {
    throw Unreadable{"\"" + word + "\" is no word behind O"};
  }
}

// --- Subprograms ---------------------------------------------------------------------------------

void Flow::Call_Subprogram(const Mark& mark, std::string_view code) {
  const Mark* sub = Find(mark.Label, "SUB", 0);
  if (!sub) throw Unreadable{"the subprogram O" + mark.Label + " is not in this file"};
  if (Calls.size() >= Deepest_Call) throw Unreadable{"subprograms call each other too deeply"};
  std::vector<double> arguments;
  Cursor cursor{code, mark.Rest};
  while (cursor.Now() == '[') arguments.push_back(Read_Bracket(cursor, All.Values));
  Calls.push_back({At, sub->Line + 1, 0, false, Loops.size()});
  All.Values.Enter(arguments);
  At = sub->Line + 1;
}

void Flow::Return() {
  if (Calls.empty()) throw Unreadable{"a return outside of a subprogram"};
  Call& call = Calls.back();
  Loops.resize(std::min(Loops.size(), call.Loops));
  if (call.Left-- > 0) {
    At = call.Start;
    return;
  }
  At = call.Back;
  if (!call.By_Number) All.Values.Leave();
  Calls.pop_back();
}

void Flow::Act_On_Subprogram(const Mark& mark, std::string_view code) {
  if (mark.Keyword == "SUB") return Jump_Behind(Find(mark.Label, "ENDSUB", mark.Line), "ENDSUB");
  if (mark.Keyword == "CALL") return Call_Subprogram(mark, code);
  std::optional<double> value;
  if (mark.Rest < code.size()) value = Condition(code, mark.Rest);
  Return();
  All.Values.Set({0, "_VALUE"}, value.value_or(0));
  All.Values.Set({0, "_VALUE_RETURNED"}, value ? 1 : 0);
}

// M98 P100 L3: the lines behind O100 up to M99. M98 12: a macro of this machine.
bool Flow::Take_Number_Call(const Foreign_Line& line) {
  const std::string_view code = line.Code;
  Uses = true;
  if (code.find("M99") != std::string_view::npos) {
    if (Calls.empty()) throw Unreadable{"M99 outside of a subprogram"};
    Return();
    return true;
  }
  Read_Marks();
  std::size_t at = code.find("M98") + 3;
  const bool by_p = at < code.size() && code[at] == 'P';
  if (by_p) ++at;
  const std::size_t end = std::min(code.find_first_not_of(Digits, at), code.size());
  if (end == at) throw Unreadable{"M98 needs the number of a subprogram or macro"};
  const std::int64_t number = Whole_At(code, at, 0);
  const std::size_t repeat = code.find('L', end);
  const std::int64_t times =
      repeat == std::string_view::npos
          ? 1
          : std::clamp<std::int64_t>(Whole_At(code, repeat + 1, 1), 1, 1'000'000);
  const std::string_view front = code.substr(Behind_Sequence(code));
  const std::size_t all_read =
      repeat == std::string_view::npos
          ? end
          : std::min(code.find_first_not_of(Digits, repeat + 1), code.size());
  if (!front.starts_with("M98") || all_read != code.size()) {
    throw Unreadable{"other words stand beside M98; give it a line of its own"};
  }
  if (const Mark* sub = Find(std::to_string(number), "", 0)) {
    if (Calls.size() >= Deepest_Call) throw Unreadable{"subprograms call each other too deeply"};
    Calls.push_back({At, sub->Line + 1, times - 1, true, Loops.size()});
    At = sub->Line + 1;
    return true;
  }
  if (number > 150)
    throw Unreadable{"the subprogram " + std::to_string(number) + " is not in this file"};
  All.Simple.Flush(All.Out);
  for (std::int64_t n = 0; n < std::min<std::int64_t>(times, 10'000); ++n) {
    All.Out.Macro_Call(static_cast<int>(number));
  }
  All.Findings.Note("macro " + std::to_string(number) +
                    " of this machine runs here as its file stands");
  All.Place.Lose_Position();
  return true;
}

// --- Branches ------------------------------------------------------------------------------------

void Flow::Act_On_Branch(const Mark& mark, std::string_view code) {
  if (mark.Keyword == "ENDIF") return;
  const Mark* const last = Find(mark.Label, "ENDIF", mark.Line);
  // What was run ends here.
  if (mark.Keyword != "IF") return Jump_Behind(last, "ENDIF");
  if (!last) throw Unreadable{"ENDIF is missing"};
  if (Condition(code, mark.Rest) != 0) return;
  Foreign_Line line;
  for (const Mark& each : *Marks) {
    if (each.Line <= mark.Line || each.Line >= last->Line || each.Label != mark.Label) continue;
    bool runs = each.Keyword == "ELSE";
    if (each.Keyword == "ELSEIF") {
      Take_Apart(Program.Line(each.Line), line);
      runs = Condition(line.Code, each.Rest) != 0;
    }
    if (runs) return Jump_Behind(&each, "");
  }
  Jump_Behind(last, "ENDIF");
}

// --- Loops ---------------------------------------------------------------------------------------

void Flow::Leave_Loop(const Mark& mark) {
  if (!Loops.empty() && Loops.back().Label == mark.Label) Loops.pop_back();
  const Mark* end = Find(mark.Label, "ENDWHILE", mark.Line);
  if (!end) end = Find(mark.Label, "ENDREPEAT", mark.Line);
  if (!end) end = Find(mark.Label, "WHILE", mark.Line);
  Jump_Behind(end, "the end of the loop");
}

void Flow::Act_On_Loop(const Mark& mark, std::string_view code) {
  const std::string& word = mark.Keyword;
  Loop* const inner =
      !Loops.empty() && Loops.back().Label == mark.Label && Loops.back().Depth == Calls.size()
          ? &Loops.back()
          : nullptr;
  if (word == "DO") {
    Loops.push_back({mark.Label, mark.Line, 0, Calls.size()});
  } else if (word == "REPEAT") {
    const double count = std::round(Condition(code, mark.Rest));
    if (count < 1) return Jump_Behind(Find(mark.Label, "ENDREPEAT", mark.Line), "ENDREPEAT");
    Loops.push_back(
        {mark.Label, mark.Line, static_cast<std::int64_t>(std::min(count, 1e9)), Calls.size()});
  } else if (word == "ENDREPEAT") {
    if (!inner) throw Unreadable{"ENDREPEAT without REPEAT"};
    if (--inner->Left > 0) {
      At = inner->Line + 1;
    } else {
      Loops.pop_back();
    }
  } else if (word == "WHILE" && inner && inner->Left == 0 && inner->Line < mark.Line) {
    if (Condition(code, mark.Rest) != 0) {
      At = inner->Line + 1;
    } else {
      Loops.pop_back();
    }
  } else if (word == "WHILE") {
    if (Condition(code, mark.Rest) == 0)
      Jump_Behind(Find(mark.Label, "ENDWHILE", mark.Line), "ENDWHILE");
  } else if (word == "ENDWHILE") {
    const auto begin = std::find_if(Marks->rbegin(), Marks->rend(), [&](const Mark& each) {
      return each.Line < mark.Line && each.Label == mark.Label && each.Keyword == "WHILE";
    });
    if (begin == Marks->rend()) throw Unreadable{"ENDWHILE without WHILE"};
    At = begin->Line;
  } else if (word == "BREAK") {
    Leave_Loop(mark);
  } else {
    const Mark* end = Find(mark.Label, "ENDWHILE", mark.Line);
    if (!end) end = Find(mark.Label, "ENDREPEAT", mark.Line);
    if (!end) end = Find(mark.Label, "WHILE", mark.Line);
    if (!end) throw Unreadable{"the end of the loop is missing"};
    At = end->Line;
  }
}

// --- REPEAT of this machine ----------------------------------------------------------------------

void Flow::Take_Repeat(Foreign_Line& line, std::int32_t number) {
  std::string& code = line.Code;
  const bool ends = code.find("ENDREPEAT") != std::string::npos;
  const std::size_t at = code.find(ends ? "ENDREPEAT" : "REPEAT");
  const std::size_t digits = at + (ends ? 9 : 6);
  const std::size_t end =
      ends ? digits : std::min(code.find_first_not_of(Digits, digits), code.size());
  const std::int64_t count = Whole_At(code, digits, 0);
  code.erase(at, end - at);
  if (Repeat_End != 0 || !Calls.empty()) return;  // lines that run again are not looked at
  Uses = true;
  if (!ends) {
    Repeat_Start = number;
    Repeat_Count = std::min<std::int64_t>(count, 32767);
    return;
  }
  if (Repeat_Start == 0) throw Unreadable{"ENDREPEAT without REPEAT"};
  Repeat_End = number;
  Repeat_Count = std::max<std::int64_t>(Repeat_Count, 1);
  At = Repeat_Start + 1;
}

}  // namespace norvik::adapting
