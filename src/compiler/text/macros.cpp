#include "compiler/text/macros.h"

#include "core/beside_machine.h"
#include "core/fault.h"
#include "core/numbers.h"
#include "core/paths.h"
#include "core/rounding.h"
#include "core/setup.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <utility>

namespace norvik {

namespace {

constexpr auto npos = std::string_view::npos;

bool Holds(std::string_view text, char c) {
  return std::memchr(text.data(), c, text.size()) != nullptr;
}

bool Is_Digit(char c) {
  return c >= '0' && c <= '9';
}

// The line is a comment or marked as left out.
bool Is_Marked_Line(char first) {
  constexpr std::string_view marks = "[({|\\?/<>";
  return marks.find(first) != npos;
}

// The count behind REPEAT at `keyword`: it ends at the second blank behind it.
std::string_view Count_Text(std::string_view line, std::size_t keyword) {
  constexpr std::size_t length = std::string_view("REPEAT").size();
  const std::size_t first = line.find(' ', keyword);
  const std::size_t second = first == npos ? npos : line.find(' ', first + 1);
  const std::size_t end = second == npos ? line.size() : second;
  return line.substr(keyword + length, end - keyword - length);
}

}  // namespace

bool HasMacroCall(std::string_view text) {
  if (text.size() < 3) return false;
  for (const char letter : {'M', 'm'}) {
    if (!Holds(text, letter)) continue;
    for (std::size_t at = text.find(letter); at != npos; at = text.find(letter, at + 1)) {
      if (text.substr(at + 1, 2) == "98") return true;
    }
  }
  return false;
}

std::optional<Macro_Call> Find_Macro_Call(std::string_view text) {
  const std::size_t begin = Upper(text).find("M98");
  if (begin == npos) return std::nullopt;
  Macro_Call call{begin, begin + 3, {}};
  for (std::size_t at = call.End; at < text.size(); ++at) {
    const char c = text[at];
    if (Is_Digit(c) || c == ',' || c == '.') {
      call.Number += c;
      call.End = at + 1;
    } else if (!call.Number.empty()) {
      break;
    }
  }
  return call;
}

std::optional<std::string> MacroNumber(std::string_view text) {
  auto call = Find_Macro_Call(text);
  if (!call || call->Number.empty()) return std::nullopt;
  return std::move(call->Number);
}

std::optional<std::string> Macro_File(const std::string& number) {
  const auto value = Try_Number(number);
  constexpr double last = decltype(MachineSetup.MacroFile)::last;
  if (!value || *value < 0 || std::nearbyint(*value) > last) return std::nullopt;
  std::string path = Beside_Machine_File(MachineSetup.MacroFile[To_Int16(*value)]);
  if (path.empty() || !FileExists(path)) return std::nullopt;
  return path;
}

bool MayHoldRepeat(std::string_view text) {
  return text.size() >= 6 && (Holds(text, 'P') || Holds(text, 'p'));
}

void ScanRepeat(std::string_view text, Repeat_State& repeat, std::int32_t index) {
  if (!MayHoldRepeat(text) || Is_Marked_Line(text.front())) return;
  const std::string line = Upper(text);
  if (line.find("ENDREPEAT") != npos) {
    repeat.End = index + 1;
    return;
  }
  const std::size_t keyword = line.find("REPEAT");
  if (keyword == npos) return;
  repeat.Start = index;
  const auto digits = NumbersOnly(Count_Text(line, keyword));
  if (digits) repeat.Count = To_Int16(To_Double(RegionalFix(*digits)));
}

Macro_Text::Macro_Text(std::string text) : Text(std::move(text)) {
  const std::string_view all = Text;
  std::size_t start = 0;
  while (start < all.size()) {
    const std::size_t end = std::min(all.find_first_of(",\r\n", start), all.size());
    Lines.push_back(all.substr(start, end - start));
    start = end + 1;
    if (end < all.size() && all[end] == '\r' && start < all.size() && all[start] == '\n') ++start;
  }
}

}  // namespace norvik
