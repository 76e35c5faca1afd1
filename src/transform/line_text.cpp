#include "transform/line_text.h"

#include "transform/scanner.h"

#include <algorithm>
#include <cstdint>

namespace norvik {

namespace {

bool Is_Digit(char c) {
  return c >= '0' && c <= '9';
}

std::string_view Without(std::string_view text, std::string_view leading) {
  text.remove_prefix(std::min(text.find_first_not_of(leading), text.size()));
  return text;
}

constexpr std::uint32_t Bits_Of(std::string_view letters) {
  std::uint32_t bits = 0;
  for (const char letter : letters) bits |= GCode_Words::Bit(letter);
  return bits;
}

}  // namespace

std::string_view Strip_Number(std::string_view line) {
  const std::string_view word = Without(line, " ");
  if (word.empty() || (word.front() | 32) != 'n') return line;
  const std::string_view number = Without(word.substr(1), " ");
  if (number.empty() || !Is_Digit(number.front())) return line;
  return Without(number, " 0123456789");
}

Word_Format::Word_Format(std::string_view pattern, char decimal_sign)
    : Pattern(pattern),
      Decimal_Sign(decimal_sign),
      Number(Formatted_Number_Limit + Pattern.Front.size() + Pattern.Back.size(), ' ') {}

void Word_Format::Append_Line(std::string& out, std::string_view line) {
  Signed.assign(line);
  for (char& c : Signed) {
    if (c == ',' || c == '.') c = Decimal_Sign;
  }
  const std::string_view text = Signed;
  std::uint32_t waiting = Bits_Of("XYZIJRABC");  // letters whose first word is still to come
  for (std::size_t at = 0; at < text.size();) {
    const char c = text[at];
    if (Opens_Comment(c)) {
      const std::size_t end = End_Of_Comment(text, at);
      out.append(text.substr(at, end - at));
      at = end;
      continue;
    }
    ++at;
    const char letter = c >= 'a' && c <= 'z' ? static_cast<char>(c - 32) : c;
    out += letter;
    if (letter < 'A' || letter > 'Z' || (waiting & GCode_Words::Bit(letter)) == 0) continue;
    waiting &= ~GCode_Words::Bit(letter);
    const std::size_t end = std::min(text.find_first_not_of("0123456789+-,.", at), text.size());
    bool is_number = true;
    const double value = Clean_Number(text.substr(at, end - at), is_number);
    if (!is_number) continue;
    out.append(Number.data(), Write_Number(Number.data(), value, Pattern, Decimal_Sign));
    at = end;
  }
}

}  // namespace norvik
