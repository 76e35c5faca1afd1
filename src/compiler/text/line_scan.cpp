#include "compiler/text/line_scan.h"

namespace norvik {

namespace {

// What a letter starts: the place of a word, or one of these.
constexpr std::int8_t No_Letter = -1, Sequence_Number = 32, M_Word = 33, G_Word = 34, Unread = 35;

constexpr std::array<std::int8_t, 256> Letter_Kinds() {
  std::array<std::int8_t, 256> kinds{};
  kinds.fill(No_Letter);
  const auto set = [&](char upper, std::int8_t kind) {
    kinds[static_cast<std::size_t>(upper)] = kind;
    kinds[static_cast<std::size_t>(upper - 'A' + 'a')] = kind;
  };
  for (const char unread : {'E', 'O', 'U', 'V', 'W'}) set(unread, Unread);
  for (int name = 0; name < word::Count; ++name) {
    set(word::Letters[name], static_cast<std::int8_t>(name));
  }
  set('N', Sequence_Number);
  set('M', M_Word);
  set('G', G_Word);
  return kinds;
}
constexpr auto Kind_Of = Letter_Kinds();

}  // namespace

bool Scan_Clean_Line(std::string_view text, Scanned_Line& line) {
  line.Code_Count = 0;
  line.Seen = 0;
  const char* at = text.data();
  const char* const end = at + text.size();
  while (true) {
    while (at != end && *at == ' ') ++at;
    if (at == end) return true;
    const std::int8_t kind = Kind_Of[static_cast<unsigned char>(*at)];
    if (kind == No_Letter) return false;
    Plain_Number number;
    at = Scan_Plain_Number(at + 1, end, number);
    if (!number.Is_Plain() || (at != end && *at != ' ')) return false;
    if (kind < word::Count) {
      const std::uint32_t bit = std::uint32_t{1} << kind;
      if ((line.Seen & bit) == 0) line.Numbers[static_cast<std::size_t>(kind)] = number;
      line.Seen |= bit;
    } else if (kind == M_Word || kind == G_Word) {
      if (line.Code_Count == Scanned_Line::Most_Codes) return false;
      line.Codes[static_cast<std::size_t>(line.Code_Count++)] = {kind == M_Word, number};
    }
  }
}

}  // namespace norvik
