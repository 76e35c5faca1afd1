#include "core/setting_row.h"

#include "core/format.h"

#include <cmath>
#include <utility>

namespace norvik {

namespace {

constexpr std::string_view Index_Place = "<n>";

std::string With_Name(std::string_view text, const std::string& name) {
  std::string all(text);
  const auto place = all.find(Index_Place);
  if (place != std::string::npos) all.replace(place, Index_Place.size(), name);
  return all;
}

}  // namespace

std::string Setting_Key(const Setting_Row& row, int index) {
  return With_Name(row.Key, std::to_string(index));
}

std::string Setting_Entry(const Setting_Row& row, int index) {
  std::string_view names = row.Entries;
  if (names.empty() || index < row.Loaded.First) return std::to_string(index);
  for (int entry = row.Loaded.First; entry < index; ++entry) {
    const auto bar = names.find('|');
    if (bar == std::string_view::npos) return std::to_string(index);
    names.remove_prefix(bar + 1);
  }
  return std::string(names.substr(0, names.find('|')));
}

std::string Setting_Label(const Setting_Row& row, int index) {
  return With_Name(row.Label, Setting_Entry(row, index));
}

std::string Setting_Kind_Name(const Setting_Row& row) {
  switch (row.Kind) {
    case Setting_Kind::Whole_Number:
      return "whole number";
    case Setting_Kind::Number:
      return "number";
    case Setting_Kind::Yes_No:
      return "yes or no";
    case Setting_Kind::Numeral_Format:
      return "numeral format";
    case Setting_Kind::Text:
      break;
  }
  return "text";
}

std::string Setting_Values(const Setting_Row& row) {
  std::string text;
  for (const Setting_Choice& choice : row.Choices) {
    if (!text.empty()) text += ", ";
    text += choice.Value;
    if (!choice.Words.empty()) text += " " + std::string(choice.Words);
  }
  if (!text.empty()) return text;
  const bool in_words = row.Kind == Setting_Kind::Yes_No && !std::isfinite(row.Bounds.Low);
  if (row.Kind == Setting_Kind::Yes_No) return in_words ? "True, False" : "1, 0";
  const bool low = std::isfinite(row.Bounds.Low), high = std::isfinite(row.Bounds.High);
  if (low && high) return Shortest_Text(row.Bounds.Low) + " to " + Shortest_Text(row.Bounds.High);
  if (low) return "at least " + Shortest_Text(row.Bounds.Low);
  if (high) return "at most " + Shortest_Text(row.Bounds.High);
  return {};
}

std::string After_Change_Words(After_Change what) {
  constexpr std::pair<After_Change, std::string_view> words[] = {
      {After_Change::Redraw, "draw again"},
      {After_Change::Recompile, "compile again"},
      {After_Change::Reopen_Drive, "open the drive again"},
      {After_Change::Restart, "start Norvik again"}};
  std::string text;
  for (const auto& [one, name] : words) {
    if (!Needs(what, one)) continue;
    if (!text.empty()) text += ", ";
    text += name;
  }
  return text;
}

std::string Setting_Table_Head() {
  return "| Key | What it is | Takes | Default | Unit | Values | After a change | Meaning |\n"
         "|---|---|---|---|---|---|---|---|\n";
}

std::string Setting_Table_Line(const Setting_Row& row, const std::string& default_words) {
  std::string key = "`" + std::string(row.Section) + "." + std::string(row.Key) + "`";
  if (row.Is_Family) {
    const auto [first, last] = row.Loaded;
    key += ", " + std::to_string(first);
    if (last > first) key += " to " + std::to_string(last);
    if (!row.Entries.empty()) {
      for (int index = first; index <= last; ++index) {
        key += (index == first ? ": " : ", ") + Setting_Entry(row, index);
      }
    }
  }
  const std::string label = With_Name(row.Label, "`<n>`");
  return "| " + key + " | " + label + " | " + Setting_Kind_Name(row) + " | " + default_words +
         " | " + std::string(row.Unit) + " | " + Setting_Values(row) + " | " +
         After_Change_Words(row.Needed_Then) + " | " + std::string(row.Help) + " |\n";
}

}  // namespace norvik
