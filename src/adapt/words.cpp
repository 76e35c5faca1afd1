#include "adapt/words.h"

#include <algorithm>

namespace norvik::adapting {

namespace {

char Upper_Case(char c) {
  return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
}

bool Is_Blank(char c) {
  return c == ' ' || c == '\t' || static_cast<unsigned char>(c) < ' ';
}

// Behind these a value follows, so that a bracket opens an expression.
bool Value_Follows(const std::string& code) {
  if (code.empty()) return false;
  const char last = code.back();
  return (last >= 'A' && last <= 'Z') ||
         std::string_view("[=#+-*/").find(last) != std::string::npos;
}

bool Is_Flow_Line(std::string_view code) {
  std::size_t at = 0;
  if (at < code.size() && code[at] == 'N') {
    ++at;
    while (at < code.size() && code[at] >= '0' && code[at] <= '9') ++at;
  }
  return at < code.size() && code[at] == 'O';
}

struct Apart {
  Foreign_Line& Line;
  int Depth = 0;  // of the brackets of an expression

  std::size_t Comment(std::string_view text, std::size_t at, char closer) {
    const std::size_t end = closer == 0 ? std::string_view::npos : text.find(closer, at + 1);
    if (closer != 0 && end == std::string_view::npos) Line.Open_Comment = true;
    const std::size_t stop = std::min(end, text.size());
    Line.Comments.push_back(text.substr(at + 1, stop - at - 1));
    return end == std::string_view::npos ? text.size() : end + 1;
  }

  // Where the next character stands.
  std::size_t Take(std::string_view text, std::size_t at) {
    const char c = text[at];
    if (c == '(') return Comment(text, at, ')');
    if (c == ';' || c == '\'') return Comment(text, at, 0);
    if (c == '{') return Comment(text, at, '}');
    if (c == '[' && Depth == 0 && !Value_Follows(Line.Code) && !Is_Flow_Line(Line.Code)) {
      return Comment(text, at, ']');
    }
    if (c == '/' && Line.Code.find_first_not_of("N0123456789") == std::string::npos) {
      Line.Deleted = true;
      return at + 1;
    }
    Depth += c == '[' ? 1 : c == ']' ? -1 : 0;
    if (!Is_Blank(c)) Line.Code += Upper_Case(c);
    return at + 1;
  }
};

}  // namespace

void Take_Apart(std::string_view text, Foreign_Line& line) {
  line.Raw = text;
  line.Code.clear();
  line.Comments.clear();
  line.Deleted = line.Open_Comment = false;
  Apart apart{line};
  for (std::size_t at = 0; at < text.size();) at = apart.Take(text, at);
  line.Tape_Mark = line.Code == "%";
}

}  // namespace norvik::adapting
