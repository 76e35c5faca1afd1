#include "core/setup_table.h"

#include "core/application.h"
#include "core/format.h"
#include "core/paths.h"
#include "core/rounding.h"
#include "core/setup_rows.h"

#include <algorithm>
#include <cmath>
#include <type_traits>

namespace norvik {

std::span<const Setup_Row> Setup_Rows() {
  static const Setup_Row_List rows = [] {
    Setup_Row_List all;
    for (const auto group : {General_Rows, Axis_Rows, Input_Rows, Parallel_Rows, Board_Rows,
                             Plot_Rows, Drawing_Rows, GCode_Rows, Bitmap_Rows, Correction_Rows}) {
      const Setup_Row_List part = group();
      all.insert(all.end(), part.begin(), part.end());
    }
    return all;
  }();
  return rows;
}

std::span<const Setup_Row* const> Setup_Rows_In_Save_Order() {
  static const std::vector<const Setup_Row*> ordered = [] {
    std::vector<const Setup_Row*> rows;
    for (const Setup_Row& row : Setup_Rows()) {
      if (row.Save != Save_Place::Nowhere) rows.push_back(&row);
    }
    std::stable_sort(rows.begin(), rows.end(),
                     [](const Setup_Row* a, const Setup_Row* b) { return a->Save < b->Save; });
    return rows;
  }();
  return ordered;
}

std::string Setup_Default_Text(const Setup_Row& row, int index) {
  if (row.Default_Of != nullptr) return row.Default_Of(MachineSetup, index);
  if (row.Is_Family && index < row.Loaded.First) return {};  // kept for other programs
  std::string_view entries = row.Default;
  for (int entry = row.Loaded.First; entry < index; ++entry) {
    const auto bar = entries.find('|');
    if (bar == std::string_view::npos) break;
    entries.remove_prefix(bar + 1);
  }
  return std::string(entries.substr(0, entries.find('|')));
}

namespace {

// The text of a number or the default's where the rules ask for it.
std::int16_t Whole(const Setup_Row& row, std::string_view text, std::string_view otherwise) {
  return GetInt(text, row.Takes_Default, GetInt(otherwise, Sentinel::Empty, 0));
}

float Single(const Setup_Row& row, std::string_view text, std::string_view otherwise) {
  return GetFloat(text, row.Takes_Default, GetFloat(otherwise, Sentinel::Empty, 0));
}

bool Is_Numeral_Format(std::string_view text) {
  return text.find_first_of("0#") != std::string_view::npos &&
         text.find_first_not_of("0#.") == std::string_view::npos &&
         text.find('.') == text.rfind('.');
}

// What each type makes of a text.
struct Field_Reader {
  const Setup_Row& Row;
  std::string_view Text, Otherwise;

  void operator()(std::int16_t* field) const {
    const double value = Whole(Row, Text, Otherwise);
    *field = To_Int16(std::min(value, Row.Load_Limit));
  }
  void operator()(std::int32_t* field) const {
    *field = GetLong(Text, Row.Takes_Default, GetLong(Otherwise, Sentinel::Empty, 0));
  }
  void operator()(float* field) const {
    switch (Row.Rule) {
      case Read_Rule::Whole_Number:
        *field = Whole(Row, Text, Otherwise);
        break;
      case Read_Rule::Axis_Number:
        *field = To_Single(NullToZero(Format_Axis_Number(Single(Row, Text, Otherwise))));
        break;
      case Read_Rule::By_Type:
      case Read_Rule::Numeral_Format:
        *field = Single(Row, Text, Otherwise);
    }
  }
  void operator()(double* field) const {
    *field = GetDouble(Text, Row.Takes_Default, GetDouble(Otherwise, Sentinel::Empty, 0));
  }
  void operator()(bool* field) const {
    const std::string_view text = Text.empty() ? Otherwise : Text;
    const bool is_whole = Row.Rule == Read_Rule::Whole_Number && Try_Number(text);
    *field = is_whole ? GetInt(text, Sentinel::Empty, 0) != 0 : ToBoolean(text);
  }
  void operator()(std::string* field) const {
    const bool unusable = Row.Rule == Read_Rule::Numeral_Format && !Is_Numeral_Format(Text);
    *field = unusable ? std::string(Otherwise) : GetString(Text, Otherwise);
  }
};

bool Is_Boolean_Text(std::string_view text) {
  const std::string word = Upper(Trim(text));
  return word == "TRUE" || word == "FALSE" || Try_Number(text).has_value();
}

// Whether a text is a value of the type.
struct Text_Judge {
  const Setup_Row& Row;
  std::string_view Text;

  bool operator()(const std::string*) const {
    return Row.Rule != Read_Rule::Numeral_Format || Text.empty() || Is_Numeral_Format(Text);
  }
  bool operator()(const bool*) const { return Text.empty() || Is_Boolean_Text(Text); }
  bool operator()(const std::int16_t*) const { return Fits(-32768, 32768); }
  bool operator()(const std::int32_t*) const { return Fits(-2147483648.0, 2147483648.0); }
  bool operator()(const float*) const {
    if (Text == "." || Text == ",") return true;
    constexpr double most = std::numeric_limits<float>::max();
    return Fits(-most, most);
  }
  bool operator()(const double*) const { return Fits(-HUGE_VAL, HUGE_VAL); }

  bool Fits(double low, double below) const {
    if (Text.empty()) return true;
    const auto number = Try_Number(Text);
    return number && *number >= low && *number < below;
  }
};

struct Field_Writer {
  const Setup_Row& Row;

  std::string operator()(const std::int16_t* field) const { return std::to_string(*field); }
  std::string operator()(const std::int32_t* field) const { return std::to_string(*field); }
  std::string operator()(const float* field) const { return RegionalFix(Shortest_Text(*field)); }
  std::string operator()(const double* field) const { return RegionalFix(Shortest_Text(*field)); }
  std::string operator()(const bool* field) const {
    if (Row.Rule == Read_Rule::Whole_Number) return std::to_string(TrueToMinusOne(*field));
    return *field ? "True" : "False";
  }
  std::string operator()(const std::string* field) const { return *field; }
};

}  // namespace

bool Is_Setup_Text(const Setup_Row& row, int index, std::string_view text) {
  return std::visit(Text_Judge{row, text}, row.Field(MachineSetup, index));
}

bool Read_Setup_Text(const Setup_Row& row, int index, std::string_view text) {
  const std::string otherwise = Setup_Default_Text(row, index);
  std::visit(Field_Reader{row, text, otherwise}, row.Field(MachineSetup, index));
  return Is_Setup_Text(row, index, text);
}

std::string Setup_Text(const Setup_Row& row, int index) {
  return std::visit(Field_Writer{row}, row.Field(MachineSetup, index));
}

}  // namespace norvik
