#include "core/setup_keys.h"

#include "core/fault.h"
#include "core/format.h"
#include "core/paths.h"

#include <algorithm>
#include <cmath>

namespace norvik {

namespace {

bool Is_Number(const Setup_Field& field) {
  return !std::holds_alternative<bool*>(field) && !std::holds_alternative<std::string*>(field);
}

// "0 to 15", "at least 0", or nothing.
std::string Bounds_Text(const Value_Bounds& bounds) {
  const bool low = std::isfinite(bounds.Low), high = std::isfinite(bounds.High);
  if (low && high) return Shortest_Text(bounds.Low) + " to " + Shortest_Text(bounds.High);
  if (low) return "at least " + Shortest_Text(bounds.Low);
  if (high) return "at most " + Shortest_Text(bounds.High);
  return {};
}

std::string With_Unit(std::string text, std::string_view unit) {
  if (!text.empty() && !unit.empty()) text += " " + std::string(unit);
  return text;
}

[[noreturn]] void Raise_Unfit(const Setup_Key& key, std::string_view text, Fault_Number number) {
  std::string wanted = Setup_Type_Name(*key.Row);
  const std::string bounds = Bounds_Text(key.Row->Bounds);
  if (!bounds.empty()) wanted += ", " + bounds;
  throw Fault(number, Setup_Full_Name(key) + " takes a " + With_Unit(wanted, key.Row->Unit) +
                          ", not \"" + std::string(text.substr(0, 60)) + "\"");
}

// The default as the page shows it: all entries of a family that differ.
std::string Page_Default(const Setup_Row& row) {
  std::string text = row.Default_Of != nullptr ? "computed" : std::string(row.Default);
  for (auto bar = text.find('|'); bar != std::string::npos; bar = text.find('|', bar)) {
    text.replace(bar, 1, ", ");
  }
  if (text.empty()) {
    const bool is_text =
        std::holds_alternative<std::string*>(row.Field(MachineSetup, row.Loaded.First));
    return is_text ? "empty" : "False";
  }
  return text;
}

std::string Page_Key(const Setup_Row& row) {
  std::string key = "`" + std::string(row.Key) + "`";
  if (row.Is_Family) {
    key += ", " + std::to_string(row.Loaded.First);
    if (row.Loaded.Last > row.Loaded.First) key += " to " + std::to_string(row.Loaded.Last);
  }
  return key;
}

std::string Page_Line(const Setup_Row& row) {
  const std::string values = Bounds_Text(row.Bounds);
  std::string help(row.Help);
  if (row.Takes_Default == Sentinel::Zero) help += " A stored 0 takes the default.";
  return "| " + Page_Key(row) + " | " + Setup_Type_Name(row) + " | " + Page_Default(row) + " | " +
         std::string(row.Unit) + " | " + values + " | " + help + " |\n";
}

}  // namespace

std::vector<Setup_Key> Setup_Keys() {
  std::vector<Setup_Key> keys;
  for (const Setup_Row& row : Setup_Rows()) {
    const bool is_saved = row.Save != Save_Place::Nowhere;
    const int first = is_saved ? std::min(row.Loaded.First, row.Saved.First) : row.Loaded.First;
    const int last = is_saved ? std::max(row.Loaded.Last, row.Saved.Last) : row.Loaded.Last;
    for (int index = first; index <= last; ++index) keys.push_back({&row, index});
  }
  return keys;
}

std::optional<Setup_Key> Find_Setup_Key(std::string_view section, std::string_view key) {
  const std::string wanted_section = Upper(section), wanted_key = Upper(key);
  for (const Setup_Key& candidate : Setup_Keys()) {
    const Setup_Row& row = *candidate.Row;
    if (Upper(row.Section) == wanted_section &&
        Upper(Setup_Key_Name(row, candidate.Index)) == wanted_key) {
      return candidate;
    }
  }
  return std::nullopt;
}

std::optional<Setup_Key> Find_Setup_Key(std::string_view name) {
  const auto point = name.find('.');
  if (point != std::string_view::npos) {
    return Find_Setup_Key(name.substr(0, point), name.substr(point + 1));
  }
  const std::string wanted = Upper(name);
  std::optional<Setup_Key> found;
  for (const Setup_Key& candidate : Setup_Keys()) {
    if (Upper(Setup_Key_Name(*candidate.Row, candidate.Index)) != wanted) continue;
    if (found) return std::nullopt;
    found = candidate;
  }
  return found;
}

std::string Setup_Full_Name(const Setup_Key& key) {
  return std::string(key.Row->Section) + "." + Setup_Key_Name(*key.Row, key.Index);
}

std::string Setup_Type_Name(const Setup_Row& row) {
  struct Namer {
    std::string operator()(const std::int16_t*) const { return "whole number"; }
    std::string operator()(const std::int32_t*) const { return "whole number"; }
    std::string operator()(const float*) const { return "number"; }
    std::string operator()(const double*) const { return "number"; }
    std::string operator()(const bool*) const { return "yes or no (True, False)"; }
    std::string operator()(const std::string*) const { return "text"; }
  };
  if (row.Rule == Read_Rule::Numeral_Format) return "numeral format";
  return std::visit(Namer{}, row.Field(MachineSetup, row.Loaded.First));
}

void Change_Setup_Key(const Setup_Key& key, std::string_view text) {
  const Setup_Row& row = *key.Row;
  if (!Is_Setup_Text(row, key.Index, text)) Raise_Unfit(key, text, Fault_Number::Type_Mismatch);
  if (!text.empty() && Is_Number(row.Field(MachineSetup, key.Index))) {
    const double number = NullToZero(text);
    if (number < row.Bounds.Low || number > row.Bounds.High) {
      Raise_Unfit(key, text, Fault_Number::Overflow);
    }
  }
  Read_Setup_Text(row, key.Index, text);
}

void Reset_Setup_Key(const Setup_Key& key) {
  Read_Setup_Text(*key.Row, key.Index, "");
}

std::string Setup_Reference_Page() {
  std::string page =
      "# Keys of the machine file\n\n"
      "Units: lengths in inches or millimetres as `UnitsofMeasurement` says (\"units\"), speeds in "
      "units per minute (IPM). `<n>` stands for a number.\n";
  std::vector<std::string_view> sections;
  for (const Setup_Row& row : Setup_Rows()) {
    if (std::find(sections.begin(), sections.end(), row.Section) == sections.end()) {
      sections.push_back(row.Section);
    }
  }
  for (const std::string_view section : sections) {
    page += "\n## [" + std::string(section) + "]\n\n";
    page += "| Key | Takes | Default | Unit | Values | Meaning |\n|---|---|---|---|---|---|\n";
    for (const Setup_Row& row : Setup_Rows()) {
      if (row.Section == section) page += Page_Line(row);
    }
  }
  return page;
}

}  // namespace norvik
