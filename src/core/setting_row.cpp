#include "core/setting_row.h"

#include "core/format.h"
#include "core/numbers.h"

#include <algorithm>
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

std::string Setting_Family_Label(const Setting_Row& row) {
  std::string_view label = row.Label;
  const auto place = label.find(Index_Place);
  if (place == std::string_view::npos) return std::string(label);
  std::string_view before = label.substr(0, place), behind = label.substr(place + 3);
  if (behind.starts_with(": ")) return std::string(behind.substr(2));
  for (const std::string_view joint : {" of ", ": ", ", ", ",", " "}) {
    if (!before.ends_with(joint)) continue;
    before.remove_suffix(joint.size());
    break;
  }
  return std::string(before) + std::string(behind);
}

bool Takes_Number_Or_Nothing(const Setting_Row& row) {
  if (row.Kind != Setting_Kind::Text || !row.Choices.empty()) return false;
  return !row.Unit.empty() || std::isfinite(row.Bounds.Low) || std::isfinite(row.Bounds.High);
}

std::string Wanted_Setting(const Setting_Row& row) {
  const std::string values = Setting_Values(row);
  const auto with_unit = [&](std::string text) {
    return row.Unit.empty() ? text : text + (values.empty() ? " in " : " ") + std::string(row.Unit);
  };
  if (!row.Choices.empty()) return with_unit("one of " + values);
  const bool optional = Takes_Number_Or_Nothing(row);
  std::string wanted = "a " + (optional ? std::string("number") : Setting_Kind_Name(row));
  if (!values.empty()) wanted += ", " + values;
  return with_unit(wanted) + (optional ? ", or nothing" : "");
}

namespace {

bool Holds_No_Character(std::string_view text) {
  return text.find_first_not_of(" \t") == std::string_view::npos;
}

// A line end, a tabulator, a character that nobody sees: pasted along with the value.
bool Holds_Control_Character(std::string_view text) {
  return std::any_of(text.begin(), text.end(),
                     [](char c) {
                       const auto code = static_cast<unsigned char>(c);
                       return code < 32 || code == 127;
                     }) ||
         text.find("\u2028") != std::string_view::npos ||
         text.find("\u2029") != std::string_view::npos;
}

std::string Takes(const Setting_Row& row) {
  return "Takes " + Wanted_Setting(row) + ".";
}

std::string Why_Not_Number(const Setting_Row& row, std::string_view text) {
  const auto number = Try_Number(text);
  if (!number || !std::isfinite(*number)) return Takes(row);
  if (*number == 0 && text.find('-') != std::string_view::npos) return "Type 0 without a sign.";
  if (row.Choices.empty()) {
    const bool within = *number >= row.Bounds.Low && *number <= row.Bounds.High;
    return within ? "" : Takes(row);
  }
  const bool known = std::any_of(
      row.Choices.begin(), row.Choices.end(),
      [&](const Setting_Choice& choice) { return NullToZero(choice.Value) == *number; });
  return known ? "" : Takes(row);
}

}  // namespace

std::string Why_Not_Setting(const Setting_Row& row, std::string_view text) {
  constexpr std::size_t longest = 255;  // of a value in the file
  if (Holds_Control_Character(text)) return "A line end or tabulator can be no part of it.";
  if (text.size() > longest) return "At most 255 characters.";
  switch (row.Kind) {
    case Setting_Kind::Whole_Number:
    case Setting_Kind::Number:
      return Holds_No_Character(text) ? Takes(row) : Why_Not_Number(row, text);
    case Setting_Kind::Yes_No:
    case Setting_Kind::Numeral_Format:
      return Holds_No_Character(text) ? Takes(row) : "";
    case Setting_Kind::Text:
      break;
  }
  if (Takes_Number_Or_Nothing(row)) {
    return Holds_No_Character(text) ? "" : Why_Not_Number(row, text);
  }
  if (row.Choices.empty()) return {};
  const bool known =
      std::any_of(row.Choices.begin(), row.Choices.end(),
                  [&](const Setting_Choice& choice) { return choice.Value == text; });
  return known ? "" : Takes(row);
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
