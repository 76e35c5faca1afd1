#include "adapt/writer.h"

#include "core/powers_of_ten.h"

#include <algorithm>
#include <charconv>
#include <cmath>

namespace norvik::adapting {

namespace {

bool Same_Letters(std::string_view text, std::string_view upper) {
  return std::ranges::equal(text, upper, {}, [](char c) {
    return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
  });
}

bool Holds_Word(std::string_view text, std::string_view upper) {
  for (std::size_t at = 0; at + upper.size() <= text.size(); ++at) {
    if (Same_Letters(text.substr(at, upper.size()), upper)) return true;
  }
  return false;
}

// What the reader would take for the end or the beginning of a comment, or for a call of a macro.
void Add_Cleaned(std::string& out, std::string_view text) {
  for (std::size_t at = 0; at < text.size(); ++at) {
    char c = text[at];
    if (std::string_view("[{(").find(c) != std::string_view::npos) c = '<';
    if (std::string_view("]})").find(c) != std::string_view::npos) c = '>';
    if (c == '\'') c = '`';
    if (static_cast<unsigned char>(c) < ' ') c = ' ';
    out += c;
    if (Same_Letters(text.substr(at, 3), "M98")) out += ' ';
  }
}

}  // namespace

// --- Numbers -------------------------------------------------------------------------------------

Numerals::Numerals(const Adapt_Options& options)
    : Whole_Digits(std::clamp(options.Whole_Digits, 1, 9)),
      Least(std::clamp(options.Least_Decimals, 0, 9)),
      Places(std::clamp(options.Decimals, 0, 9)),
      Scale(static_cast<double>(Whole_Powers_Of_Ten[static_cast<std::size_t>(Places)])) {}

std::int64_t Numerals::Whole(double value) const {
  const double scaled = std::abs(value) * Scale;
  const double below = std::floor(scaled);
  // 1.0005 is a tie as its text says, although the nearest binary number lies below it.
  const auto whole = static_cast<std::int64_t>(below) + (scaled - below >= 0.5 - 1e-6 ? 1 : 0);
  return value < 0 ? -whole : whole;
}

char* Numerals::Write(char* out, std::int64_t whole, bool is_short) const {
  if (whole < 0) *out++ = '-';
  std::uint64_t rest = static_cast<std::uint64_t>(whole < 0 ? -whole : whole);
  char digits[24];
  int count = 0;
  const int least = Places + (is_short ? 1 : Whole_Digits), least_decimals = is_short ? 0 : Least;
  while (rest != 0 || count < least) {
    digits[count++] = static_cast<char>('0' + rest % 10);
    rest /= 10;
  }
  while (count > Places) *out++ = digits[--count];
  if (Places == 0) return out;
  char* const point = out;
  *out++ = '.';
  while (count > 0) *out++ = digits[--count];
  while (out - point - 1 > least_decimals && out[-1] == '0') --out;
  if (out == point + 1) --out;
  return out;
}

// --- Comments ------------------------------------------------------------------------------------

Writer::Writer(Adapted& result, const Adapt_Options& options)
    : Result(result), Text(result.Text), Format(options) {}

void Writer::Comment(std::string_view text) {
  const auto blank = [](char c) { return static_cast<unsigned char>(c) <= ' '; };
  while (!text.empty() && blank(text.front())) text.remove_prefix(1);
  while (!text.empty() && blank(text.back())) text.remove_suffix(1);
  if (!text.empty() && !Waiting.empty()) Waiting += "; ";
  Add_Cleaned(Waiting, text);
  Has_Comment = true;
}

void Writer::Write_Blanks() {
  for (; Blanks > 0; --Blanks) {
    if (!Text.empty()) Text += "\r\n";
  }
}

void Writer::Write_Comment() {
  (Text += '(') += Waiting;
  Text += ')';
  Waiting.clear();
  Has_Comment = false;
}

void Writer::Close() {
  Text += "\r\n";
  Result.Old_Lines.push_back(Old_Line);
}

void Writer::Finish() {
  if (Open) End_Line();
  if (!Has_Comment) return;
  Write_Blanks();
  Write_Comment();
  Close();
}

// --- Lines ---------------------------------------------------------------------------------------

void Writer::Start_Line() {
  Open = true;
  Write_Blanks();
  // The word is looked for in the whole line, unless a comment is all of it.
  if (Has_Comment && Holds_Word(Waiting, "REPEAT")) {
    Write_Comment();
    Close();
  }
  if (!Wrote && !Sequence.empty()) {
    (Text += 'N') += Sequence;
    Text += ' ';
  }
  Wrote = true;
}

void Writer::Start_Word(char letter) {
  if (Open) {
    Text += ' ';
  } else {
    Start_Line();
  }
  Text += letter;
}

void Writer::Code(char letter, int number) {
  Start_Word(letter);
  char digits[12];
  Text.append(digits, std::to_chars(digits, digits + sizeof digits, number).ptr);
}

void Writer::Word_Whole(char letter, std::int64_t whole) {
  Start_Word(letter);
  char digits[48];
  Text.append(digits, Format.Write(digits, whole));
}

void Writer::Put(char letter, double value, bool is_short) {
  const std::int64_t whole = Format.Whole(value);
  Count_Rounding(value, whole);
  Start_Word(letter);
  char digits[48];
  Text.append(digits, Format.Write(digits, whole, is_short));
}

void Writer::Word(char letter, double value) {
  Put(letter, value, false);
}

void Writer::Short_Word(char letter, double value) {
  Put(letter, value, true);
}

void Writer::End_Line() {
  if (!Open) return;
  Open = false;
  if (Has_Comment) {
    Text += ' ';
    Write_Comment();
  }
  Close();
}

void Writer::Macro_Call(int number) {
  Code('M', 98);
  Text += ' ';
  Text += std::to_string(number);
  End_Line();
}

void Writer::Copied_Line(const char* begin, const char* end) {
  if (Blanks > 0) Write_Blanks();
  Text.append(begin, end);
  Close();
}

}  // namespace norvik::adapting
