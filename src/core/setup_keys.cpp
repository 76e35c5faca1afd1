#include "core/setup_keys.h"

#include "core/computer_settings.h"
#include "core/fault.h"
#include "core/numbers.h"
#include "core/paths.h"
#include "core/scope.h"

#include <algorithm>
#include <variant>

namespace norvik {

namespace {

[[noreturn]] void Raise_Unfit(const Setup_Key& key, std::string_view text, Fault_Number number) {
  throw Fault(number, Setup_Full_Name(key) + " takes " + Wanted_Setting(*key.Row) + ", not \"" +
                          std::string(text.substr(0, 60)) + "\"");
}

// Whether a text that is a value of the type is also one that makes sense.
bool Makes_Sense(const Setup_Row& row, std::string_view text) {
  if (text.empty()) return true;
  if (Takes_Number_Or_Nothing(row) && !Try_Number(text)) return false;
  if (row.Kind == Setting_Kind::Whole_Number || row.Kind == Setting_Kind::Number ||
      Takes_Number_Or_Nothing(row)) {
    const double number = NullToZero(text);
    if (row.Choices.empty()) return number >= row.Bounds.Low && number <= row.Bounds.High;
    return std::any_of(row.Choices.begin(), row.Choices.end(), [&](const Setting_Choice& choice) {
      return NullToZero(choice.Value) == number;
    });
  }
  return row.Choices.empty() ||
         std::any_of(row.Choices.begin(), row.Choices.end(),
                     [&](const Setting_Choice& choice) { return choice.Value == text; });
}

// The default as the page shows it: all entries of a family that differ.
std::string Page_Default(const Setup_Row& row) {
  if (!row.Default_Words.empty()) return std::string(row.Default_Words);
  std::string text(row.Default);
  for (auto bar = text.find('|'); bar != std::string::npos; bar = text.find('|', bar)) {
    text.replace(bar, 1, ", ");
  }
  if (!text.empty()) return text;
  return row.Kind == Setting_Kind::Yes_No ? "False" : "empty";
}

std::string Page_Line(const Setup_Row& row) {
  std::string text = Page_Default(row);
  if (row.Takes_Default == Sentinel::Zero && text != "0") text += "; for a stored 0 too";
  return Setting_Table_Line(row, text);
}

// Groups in the order in which the table first names them.
std::vector<std::string_view> Groups() {
  std::vector<std::string_view> groups;
  for (const Setup_Row& row : Setup_Rows()) {
    if (std::find(groups.begin(), groups.end(), row.Group) == groups.end()) {
      groups.push_back(row.Group);
    }
  }
  return groups;
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
        Upper(Setting_Key(row, candidate.Index)) == wanted_key) {
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
    if (Upper(Setting_Key(*candidate.Row, candidate.Index)) != wanted) continue;
    if (found) return std::nullopt;
    found = candidate;
  }
  return found;
}

std::string Setup_Full_Name(const Setup_Key& key) {
  return std::string(key.Row->Section) + "." + Setting_Key(*key.Row, key.Index);
}

void Change_Setup_Key(const Setup_Key& key, std::string_view text) {
  const Setup_Row& row = *key.Row;
  if (!Is_Setup_Text(row, key.Index, text)) Raise_Unfit(key, text, Fault_Number::Type_Mismatch);
  if (!Makes_Sense(row, text)) Raise_Unfit(key, text, Fault_Number::Overflow);
  Read_Setup_Text(row, key.Index, text);
}

void Reset_Setup_Key(const Setup_Key& key) {
  Read_Setup_Text(*key.Row, key.Index, "");
}

std::string Why_Not_Setup_Text(const Setup_Key& key, std::string_view text) {
  std::string why_not = Why_Not_Setting(*key.Row, text);
  if (why_not.empty() && !Is_Setup_Text(*key.Row, key.Index, text)) {
    why_not = "Takes " + Wanted_Setting(*key.Row) + ".";
  }
  return why_not;
}

std::string Setup_Text_After(const Setup_Key& key, std::string_view text) {
  const auto read = [&](auto* field) {
    const Value_In_Scope kept(*field, *field);
    Read_Setup_Text(*key.Row, key.Index, text);
    return Setup_Text(*key.Row, key.Index);
  };
  return std::visit(read, key.Row->Field(MachineSetup, key.Index));
}

std::string Setup_Reference_Page() {
  std::string page =
      "# Settings\n\n"
      "Every key of the machine file, page by page as an operator finds them. A key is written "
      "with "
      "the section of the file in which it lies, as `norvik-cli setup get` and `setup set` take "
      "it; "
      "`<n>` stands for a number. Units: lengths in inches or millimetres as "
      "`Axis.UnitsofMeasurement` says (\"units\"), speeds in units per minute (IPM). \"After a "
      "change\" says what must happen before a new value counts; where nothing is said it counts "
      "at once, or with the next move or import.\n";
  for (const std::string_view group : Groups()) {
    page += "\n## " + std::string(group) + "\n\n" + Setting_Table_Head();
    for (const Setup_Row& row : Setup_Rows()) {
      if (row.Group == group) page += Page_Line(row);
    }
  }
  return page + Computer_Reference();
}

}  // namespace norvik
