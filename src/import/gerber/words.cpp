#include "import/gerber/words.h"

#include "core/application.h"
#include "core/paths.h"
#include "import/pipeline/numbers.h"

#include <algorithm>

namespace norvik {

namespace {

bool Is_Digit(char c) {
  return c >= '0' && c <= '9';
}

char Upper_Letter(char c) {
  return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
}

// The number that `text` begins with: a sign, digits and points. Empty without a digit.
std::string_view Leading_Number(std::string_view text) {
  std::size_t end = !text.empty() && (text[0] == '-' || text[0] == '+') ? 1 : 0;
  bool digits = false;
  for (; end < text.size() && (Is_Digit(text[end]) || text[end] == '.'); ++end) {
    digits = digits || text[end] != '.';
  }
  return digits ? text.substr(0, end) : std::string_view();
}

std::optional<double> Number_In(std::string_view text) {
  if (text.empty()) return std::nullopt;
  return Foreign_Number(text);
}

bool Is_Signed(std::string_view text) {
  return !text.empty() && (text.front() == '-' || text.front() == '+');
}

std::size_t Format_Digit(char c) {
  return static_cast<std::size_t>(c - '0');
}

std::string_view Last(std::string_view text, std::size_t count) {
  return text.substr(text.size() - std::min(count, text.size()));
}

}  // namespace

bool Gerber_Contains(std::string_view key, std::string_view text) {
  return text.find(key) != std::string_view::npos;
}

std::string_view Gerber_Number_Text(char letter, std::string_view text) {
  for (std::size_t at = 0; at < text.size(); ++at) {
    if (Upper_Letter(text[at]) == letter) return Leading_Number(text.substr(at + 1));
  }
  return {};
}

std::optional<double> Gerber_Find_Val(char letter, std::string_view text) {
  return Number_In(Gerber_Number_Text(letter, text));
}

std::optional<double> Gerber_Find_CSV_Val(int index, std::string_view text) {
  for (; index > 0; --index) {
    const auto comma = text.find(',');
    if (comma == std::string_view::npos) return std::nullopt;
    text.remove_prefix(comma + 1);
  }
  text.remove_prefix(std::min(text.find_first_not_of(' '), text.size()));
  return Number_In(Leading_Number(text));
}

double Gerber_XY_Format(std::string_view text, std::string_view format,
                        const Gerber_Number_Format& zeros) {
  constexpr double thousandths = 1000;
  if (Gerber_Contains(".", text)) return Foreign_Number(text);
  if (format.empty()) return Foreign_Number(text) / thousandths;
  const bool negative = !text.empty() && text.front() == '-';
  if (Is_Signed(text)) text.remove_prefix(1);
  const std::size_t whole = Format_Digit(format.front()), decimals = Format_Digit(format.back());

  std::string digits(text);
  std::string_view before, behind;
  if (zeros.Omit_Leading) {
    digits.insert(0, whole, '0');
    behind = Last(digits, decimals);
    before = std::string_view(digits).substr(0, digits.size() - behind.size());
  } else if (zeros.Omit_Trailing) {
    digits.append(whole, '0');
    before = std::string_view(digits).substr(0, whole);
    behind = std::string_view(digits).substr(before.size());
  } else {
    before = std::string_view(digits).substr(0, whole);
    behind = Last(digits, decimals);
  }
  std::string number(negative ? "-0" : "0");
  number += before;
  if (!behind.empty()) (number += '.') += behind;
  return Foreign_Number(number);
}

bool Gerber_Is_Short(std::string_view text, std::string_view format,
                     const Gerber_Number_Format& zeros) {
  if (!zeros.Omit_Leading || format.empty() || Gerber_Contains(".", text)) return false;
  const std::size_t digits = text.size() - (Is_Signed(text) ? 1 : 0);
  return digits + Format_Digit(format.front()) < Format_Digit(format.back()) &&
         text.find_first_of("123456789") != std::string_view::npos;
}

bool Gerber_Words::Next(std::string& word) {
  ++Count;
  word.clear();
  Cut = false;
  const auto take = [&] {
    word = Trim(word);
    Word_In_Block = Block;
    return true;
  };
  for (int c = Source.Next_Char(); c >= 0; c = Source.Next_Char()) {
    Yields.Round();
    if (Application.EscFlag) return false;
    if (c == '*') return take();
    if (c == '\r' || c == '\n') continue;
    if (c != '%') {
      if (word.size() < Limit) {
        word += static_cast<char>(c);
      } else {
        Cut = true;
      }
      continue;
    }
    if (Rule == Percent::Parts_Blocks) {
      const bool ends_word = Block && word.find_first_not_of(' ') != std::string::npos;
      if (ends_word) take();
      Block = !Block;
      if (ends_word) return true;
    }
    word.clear();
    Cut = false;
  }
  // Some systems fill the last sector with zeros.
  Left_Over = std::any_of(word.begin(), word.end(), [](char c) { return c > ' '; });
  return false;
}

}  // namespace norvik
