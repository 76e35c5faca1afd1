// report.h: the findings of one adaption, numbered as they come.
#pragma once

#include "adapt/adapt.h"

#include <set>
#include <string>
#include <string_view>
#include <utility>

namespace norvik::adapting {

class Report {
 public:
  explicit Report(Adapted& result) : Result(result) {}

  // The line that findings are of, until the next one.
  void At(std::int32_t line, std::string_view text) {
    Line = line;
    Text = text;
  }
  std::string_view Text_Now() const { return Text; }

  // Its number.
  std::int32_t Tell(Adapt_Grade grade, std::string what, std::string instead = {});
  void Note(std::string what, std::string instead = {}) {
    Tell(Adapt_Grade::Note, std::move(what), std::move(instead));
  }
  // A note that is told once, however many lines give cause for it.
  void Note_Once(const char* key, std::string what, std::string instead = {}) {
    if (Told.insert(key).second) Note(std::move(what), std::move(instead));
  }
  // Of the program as a whole.
  void Tell_Whole(Adapt_Grade grade, std::string what, std::string instead = {}) {
    At(0, {});
    Tell(grade, std::move(what), std::move(instead));
  }

 private:
  Adapted& Result;
  std::int32_t Line = 0, Count = 0;
  std::string_view Text;
  std::set<std::string> Told;
};

// What of a line is shown: short and printable.
std::string Shown_Text(std::string_view text);

}  // namespace norvik::adapting
