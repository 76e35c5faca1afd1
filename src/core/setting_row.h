// setting_row.h: what an operator reads about a setting, whatever holds its value.
//
// The rows of the machine file (setup_table.h) and those of the simulated machine build on it.
// Option windows, the companion and the reference pages show what stands here and keep no lists of
// their own.
#pragma once

#include <limits>
#include <string>
#include <string_view>
#include <vector>

namespace norvik {

enum class Setting_Kind { Whole_Number, Number, Yes_No, Text, Numeral_Format };

// What must happen before a changed value counts; several may be joined by `|`.
enum class After_Change : unsigned {
  Nothing = 0,       // counts at once, or with the next move, import or dialog
  Redraw = 1,        // the plot is drawn anew
  Recompile = 2,     // the program is compiled anew
  Reopen_Drive = 4,  // the drive's session ends and begins again
  Restart = 8,       // Norvik ends and starts again
};
constexpr After_Change operator|(After_Change a, After_Change b) {
  return static_cast<After_Change>(static_cast<unsigned>(a) | static_cast<unsigned>(b));
}
constexpr bool Needs(After_Change all, After_Change one) {
  return (static_cast<unsigned>(all) & static_cast<unsigned>(one)) != 0;
}

// A value that a setting may take, as it is stored, and what it means.
struct Setting_Choice {
  std::string_view Value, Words;
};

// A span of indices; a row without one has the single index 0 and no number in its key.
struct Index_Span {
  int First = 0, Last = 0;
};

struct Value_Bounds {
  double Low = -std::numeric_limits<double>::infinity();
  double High = std::numeric_limits<double>::infinity();
};

struct Setting_Row {
  std::string_view Section;
  std::string_view Key;  // "<n>" stands for the index
  bool Is_Family = false;
  Index_Span Loaded;

  std::string_view Group;  // the page of the settings on which it stands
  std::string_view Label;  // "<n>" stands for the entry's name
  std::string_view
      Entries;  // names from the first index on, parted by "|"; empty: the index itself
  Setting_Kind Kind = Setting_Kind::Text;
  std::string_view Unit;                // empty: none. "units": inches or millimetres
  Value_Bounds Bounds;                  // what makes sense
  std::vector<Setting_Choice> Choices;  // empty: any value within the bounds
  std::string_view Default_Words;       // where the default is no fixed value
  After_Change Needed_Then = After_Change::Nothing;
  std::string_view Help;
};

// The key with the index in the place of "<n>".
std::string Setting_Key(const Setting_Row& row, int index);
// The name of one entry of a family: "X", "Spindle CW", or the index where it has no name.
std::string Setting_Entry(const Setting_Row& row, int index);
// The label of one entry: "Steps per unit, X".
std::string Setting_Label(const Setting_Row& row, int index);
// The label of a whole family, as the head of its column or line: "Steps per unit", "Port".
std::string Setting_Family_Label(const Setting_Row& row);
// True for a text that is a number or empty: one with a unit or with bounds.
bool Takes_Number_Or_Nothing(const Setting_Row& row);
// What a value may be, in words: "a whole number, 1 to 15 hertz per step".
std::string Wanted_Setting(const Setting_Row& row);
// Why a text that somebody types cannot be the value, a sentence that says what to type instead;
// empty: it can. Stricter than a load, which makes something of every text.
std::string Why_Not_Setting(const Setting_Row& row, std::string_view text);
// "whole number", "number", "yes or no", "text" or "numeral format"
std::string Setting_Kind_Name(const Setting_Row& row);
// What the value may be: "0 inch, 1 millimetre", "True, False", "0 to 15", "at least 0", or
// nothing.
std::string Setting_Values(const Setting_Row& row);
// "compile, open the drive again", or nothing.
std::string After_Change_Words(After_Change what);

// A Markdown table of settings, line by line: what the reference pages consist of.
std::string Setting_Table_Head();
std::string Setting_Table_Line(const Setting_Row& row, const std::string& default_words);

}  // namespace norvik
