#include "transform/scanner.h"

#include "compiler/text/plain_number.h"
#include "core/numbers.h"

#include <cmath>

namespace norvik {

namespace {

enum class Kind : std::uint8_t { Comment, Letter, Number, Blank, Passed_Over };

constexpr std::array<Kind, 256> Make_Kinds() {
  std::array<Kind, 256> kinds{};  // what is named nowhere begins the comment
  kinds[' '] = Kind::Blank;
  for (std::size_t c = '+'; c <= '9'; ++c) kinds[c] = Kind::Number;
  for (std::size_t c = ':'; c <= '@'; ++c) kinds[c] = Kind::Passed_Over;
  for (std::size_t c = 'A'; c <= 'Z'; ++c) kinds[c] = kinds[c + 32] = Kind::Letter;
  return kinds;
}
constexpr std::array<Kind, 256> Kinds = Make_Kinds();

Kind Kind_Of(char c) {
  return Kinds[static_cast<unsigned char>(c)];
}

// A to Z and a to z are 0 to 25.
unsigned Slot_Of(char letter) {
  return (static_cast<unsigned char>(letter) | 32U) - unsigned{'a'};
}

}  // namespace

void GCode_Scanner::Store(unsigned slot, std::string_view text) {
  const std::uint32_t bit = 1U << slot;
  if ((Words.Seen & bit) != 0) {
    Words.Taken_Over.push_back({static_cast<char>('A' + slot), Words.Slots[slot]});
  }
  Words.Seen |= bit;
  Words.Slots[slot] = text;
}

bool GCode_Scanner::Scan(std::string_view line) {
  Words.Seen = 0;
  Words.Taken_Over.clear();
  Words.Lost_Digits = false;
  Words.Comment = {};
  const char* at = line.data();
  const char* const end = at + line.size();
  const auto skip = [&](Kind kind) {
    while (at != end && Kind_Of(*at) == kind) ++at;
  };
  while (at != end) {
    switch (Kind_Of(*at)) {
      case Kind::Letter: {
        const unsigned slot = Slot_Of(*at++);
        skip(Kind::Blank);
        const char* const number = at;
        skip(Kind::Number);
        if (at != end && Kind_Of(*at) == Kind::Passed_Over) return false;
        Store(slot, {number, static_cast<std::size_t>(at - number)});
        break;
      }
      case Kind::Blank:
        ++at;
        break;
      case Kind::Number:
        Words.Lost_Digits = true;
        skip(Kind::Number);
        break;
      case Kind::Passed_Over:
        return false;
      case Kind::Comment:
        Words.Comment = {at, static_cast<std::size_t>(end - at)};
        return true;
    }
  }
  return true;
}

GCode_Words& GCode_Scanner::Parse_GCode_Line(std::string_view line) {
  Words.Passed_Over = !Scan(line);
  if (!Words.Passed_Over) return Words;
  Cleaned.clear();
  std::size_t at = 0;
  for (; at < line.size() && Kind_Of(line[at]) != Kind::Comment; ++at) {
    if (Kind_Of(line[at]) != Kind::Passed_Over) Cleaned += line[at];
  }
  Scan(Cleaned);
  Words.Comment = line.substr(at);
  return Words;
}

double Clean_Number(std::string_view text, bool& is_number) {
  constexpr double largest = 1e15;
  Plain_Number number;
  const char* const end = text.data() + text.size();
  if (Scan_Plain_Number(text.data(), end, number) == end && number.Is_Plain()) {
    return number.Value();
  }
  const double value = Try_Number(text).value_or(std::nan(""));
  if (std::abs(value) <= largest) return value;
  is_number = false;
  return 0;
}

bool Opens_Comment(char c) {
  return c == '[' || c == '{' || c == '(' || c == '\'';
}

std::size_t End_Of_Comment(std::string_view line, std::size_t at) {
  constexpr std::string_view openers = "[{(", closers = "]})";
  const auto own = openers.find(line[at]);
  if (own == std::string_view::npos) return line.size();
  std::size_t end = line.find(closers[own], at);
  for (const char closer : closers) {
    if (end == std::string_view::npos) end = line.find(closer, at);
  }
  return end == std::string_view::npos ? line.size() : end + 1;
}

bool Has_Words_Behind_Comment(std::string_view comment) {
  for (std::size_t at = 0; at < comment.size();) {
    const char c = comment[at];
    if (Opens_Comment(c)) {
      at = End_Of_Comment(comment, at);
      continue;
    }
    ++at;
    if (Kind_Of(c) != Kind::Letter) continue;
    const std::size_t next = comment.find_first_not_of(' ', at);
    if (next != std::string_view::npos && Kind_Of(comment[next]) == Kind::Number) return true;
  }
  return false;
}

}  // namespace norvik
