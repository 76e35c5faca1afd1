#include "app/options/option_fields.h"

#include "app/options/option_pages.h"
#include "core/computer_settings.h"
#include "core/format.h"
#include "core/numbers.h"
#include "core/paths.h"
#include "core/setup.h"
#include "core/setup_keys.h"

#include <charconv>
#include <cstdio>

namespace norvik {

namespace {

constexpr std::string_view Colors = "Plot_Color_<n>";

Setup_Key Key_Of(const Option_Field& field) {
  return {field.Machine, field.Index};
}

const Computer_Row& Computer_Of(const Option_Field& field) {
  return static_cast<const Computer_Row&>(*field.Row);
}

std::string Why_Locked(const Setting_Row& row) {
  if (row.Key == "Tool_Directory") {
    return "Each start takes the folder Tools of the working folder. \"Tool file\" names the tool "
           "file, by a path of its own.";
  }
  if (row.Key == "Recent_Folder") return "Kept for other programs; Norvik does not write it.";
  return {};
}

// The number that a colour is stored as; any other text as it stands.
std::string Color_Number(std::string_view text) {
  constexpr std::size_t hex_digits = 6;
  constexpr int sixteen = 16;
  const std::string words = Trim(text);
  if (words.size() != hex_digits + 1 || words.front() != '#') return std::string(text);
  std::uint32_t rgb = 0;
  const char* const end = words.data() + words.size();
  const auto read = std::from_chars(words.data() + 1, end, rgb, sixteen);
  if (read.ec != std::errc() || read.ptr != end) return std::string(text);
  return std::to_string((rgb & 0xFFU) << 16 | (rgb & 0xFF00U) | (rgb >> 16));
}

std::string Why_Not(const Option_Field& field, std::string_view text) {
  if (field.Machine != nullptr) {
    const std::string why_not = Why_Not_Setup_Text(Key_Of(field), text);
    if (!why_not.empty() && Is_Color(*field.Row)) return "Takes a colour such as #1E90FF.";
    return why_not;
  }
  // What reads the pointer file takes any other word for no.
  if (Is_Switch(*field.Row) && text != "True" && text != "False") return "Takes True or False.";
  return Why_Not_Setting(*field.Row, text);
}

}  // namespace

Option_Field Make_Option_Field(const Setting_Row& row, int index) {
  Option_Field field;
  field.Row = &row;
  field.Index = index;
  field.Machine = Machine_Row(row);
  field.Locked = Why_Locked(row);
  Take_Stored(field);
  field.Text = field.Stored;
  return field;
}

std::string Option_Key(const Option_Field& field) {
  return Setting_Key(*field.Row, field.Index);
}

std::string Option_Control_Name(const Option_Field& field) {
  if (field.Row->Key == "Application_Priority") return "Combo_AppPriority";
  return Option_Key(field);
}

void Take_Stored(Option_Field& field) {
  if (field.Machine == nullptr) {
    const Computer_Row& row = Computer_Of(field);
    field.Stored = field.In_File = Computer_Text(row, field.Index);
    field.Default = row.Default;
    return;
  }
  field.Stored = Setup_Text(*field.Machine, field.Index);
  field.In_File = ReadSetup(field.Row->Section, Option_Key(field));
  field.Default = Setup_Text_After(Key_Of(field), "");
}

void Take_Typed(Option_Field& field, std::string_view text) {
  field.Text = Is_Color(*field.Row) ? Color_Number(text) : std::string(text);
  field.Note.clear();
  // What is stored stays as it is, whatever wrote it.
  field.Error = Is_Edited(field) ? Why_Not(field, field.Text) : std::string();
}

bool Is_Edited(const Option_Field& field) {
  return field.Text != field.Stored;
}

bool Same_Value(const Setting_Row& row, std::string_view one, std::string_view other) {
  if (one == other) return true;
  if (Is_Switch(row)) return ToBoolean(one) == ToBoolean(other);
  if (row.Kind == Setting_Kind::Text && !Takes_Number_Or_Nothing(row)) return false;
  const auto a = Try_Number(one), b = Try_Number(other);
  return row.Kind != Setting_Kind::Numeral_Format && a && b && *a == *b;
}

bool Is_Not_Default(const Option_Field& field) {
  return !Same_Value(*field.Row, field.Text, field.Default);
}

bool Is_Switch(const Setting_Row& row) {
  if (row.Kind == Setting_Kind::Yes_No) return true;
  return row.Choices.size() == 2 && row.Choices[0].Words == "no" && row.Choices[1].Words == "yes";
}

bool Switch_Is_On(const Option_Field& field) {
  return ToBoolean(field.Text);
}

std::string Switch_Text(const Option_Field& field, bool on) {
  const Setting_Row& row = *field.Row;
  if (ToBoolean(field.Stored) == on) return field.Stored;
  if (row.Kind == Setting_Kind::Yes_No) return on ? "True" : "False";
  return std::string(row.Choices[on ? 1 : 0].Value);
}

bool Is_Color(const Setting_Row& row) {
  return row.Key == Colors;
}

std::string Color_Words(std::string_view stored) {
  const auto number = Try_Number(stored);
  if (!number || *number < 0 || *number > 0xFFFFFF) return std::string(stored);
  const auto bgr = static_cast<std::uint32_t>(*number);
  char words[8];
  std::snprintf(words, sizeof words, "#%02X%02X%02X", bgr & 0xFFU, bgr >> 8 & 0xFFU,
                bgr >> 16 & 0xFFU);
  return words;
}

std::string Option_Example(const Option_Field& field) {
  if (field.Row->Kind != Setting_Kind::Numeral_Format || !Why_Not(field, field.Text).empty()) {
    return {};
  }
  constexpr double one = 12.3456, other = -0.5;
  // Axis words have as many digits in front as they need.
  const std::string front = field.Row->Key == "Axis_Format" ? "############" : "";
  const auto shown = [&](double value) { return Format_Number(value, front + field.Text); };
  return RegionalFix(Shortest_Text(one)) + " is shown as " + shown(one) + ", " +
         RegionalFix(Shortest_Text(other)) + " as " + shown(other);
}

std::string Option_Range(const Option_Field& field) {
  const Setting_Row& row = *field.Row;
  std::string text = "Default ";
  if (!row.Default_Words.empty()) {
    text += row.Default_Words;
  } else if (Is_Switch(row)) {
    text += ToBoolean(field.Default) ? "on" : "off";
  } else if (Is_Color(row)) {
    text += Color_Words(field.Default);
  } else {
    text += field.Default.empty() ? "empty" : field.Default;
    for (const Setting_Choice& choice : row.Choices) {
      const bool is_it = Same_Value(row, choice.Value, field.Default) && !choice.Words.empty();
      if (is_it) text = "Default " + std::string(choice.Words);
    }
  }
  if (Is_Switch(row) || !row.Choices.empty() || Is_Color(row)) return text + ".";
  const std::string values = Setting_Values(row);
  return text + (values.empty() ? "" : "; " + values) + ".";
}

}  // namespace norvik
