#include "import/hpgl/numbers.h"

#include "import/pipeline/numbers.h"

#include <algorithm>

namespace norvik {

namespace {

constexpr double Units_Ended = 1016, Units_At_End = 1000;

char Capital(char c) {
  return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
}

bool Is_Number_Character(char c) {
  return (c >= '0' && c <= '9') || c == '-' || c == '.';
}

}  // namespace

HPGL_Numbers::HPGL_Numbers(std::string_view command) {
  std::size_t at = 0;
  while (at < command.size()) {
    while (at < command.size() && !Is_Number_Character(command[at])) ++at;
    const std::size_t first = at;
    while (at < command.size() && Is_Number_Character(command[at])) ++at;
    if (at > first) Runs.push_back({command.substr(first, at - first), at == command.size()});
  }
}

Nullable HPGL_Numbers::Coordinate(std::size_t n) const {
  if (n < 1 || n > Runs.size()) return {};
  const Run& run = Runs[n - 1];
  return Foreign_Number(run.Text) / (run.At_End ? Units_At_End : Units_Ended);
}

Nullable HPGL_Numbers::Angle(std::size_t n) const {
  if (n < 1 || n > Runs.size()) return {};
  const Run& run = Runs[n - 1];
  return run.At_End ? Foreign_Number(run.Text) / Units_At_End : Foreign_Number(run.Text);
}

bool Contains_Word(std::string_view word, std::string_view text) {
  const auto same = [](char a, char b) { return Capital(a) == Capital(b); };
  return std::search(text.begin(), text.end(), word.begin(), word.end(), same) != text.end();
}

}  // namespace norvik
