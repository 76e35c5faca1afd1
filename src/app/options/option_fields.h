// option_fields.h: one setting as the window `Options` holds it: what is stored, what the operator
// has typed, and what is wrong with it.
#pragma once

#include "core/setting_row.h"

#include <string>
#include <string_view>

namespace norvik {

struct Setup_Row;

struct Option_Field {
  const Setting_Row* Row = nullptr;
  int Index = 0;
  const Setup_Row* Machine = nullptr;  // null: a setting of this computer

  std::string Stored;   // the setting as it is in force
  std::string Text;     // as it stands in the control
  std::string Default;  // the factory value, as it would be stored
  std::string In_File;  // the file's text when `Stored` was taken
  std::string Error;    // beside the control; empty: `Text` can be taken
  std::string Note;     // what the last Apply made of it; empty: what was typed
  std::string Locked;   // why it cannot be changed here; empty: it can
};

Option_Field Make_Option_Field(const Setting_Row& row, int index);

// "Axis_SPI_1"
std::string Option_Key(const Option_Field& field);
// Name of the control: the key, but for those that are known by another one.
std::string Option_Control_Name(const Option_Field& field);

// `Stored`, `In_File`, `Default` and `Locked` as they are now.
void Take_Stored(Option_Field& field);
// The operator has typed or chosen: keeps the text and says what is wrong with it. A colour may be
// given as #RRGGBB.
void Take_Typed(Option_Field& field, std::string_view text);

// Whether something was typed that is not what is stored.
bool Is_Edited(const Option_Field& field);
// Whether the text means something other than the factory value.
bool Is_Not_Default(const Option_Field& field);
// Whether two texts are one value of the setting: "0.10" and "0,1", "-1" and "True".
bool Same_Value(const Setting_Row& row, std::string_view one, std::string_view other);

// A setting that is on or off, whatever type it is stored as.
bool Is_Switch(const Setting_Row& row);
bool Switch_Is_On(const Option_Field& field);
// The text of a switch that is set; what is stored where that means the same.
std::string Switch_Text(const Option_Field& field, bool on);

bool Is_Color(const Setting_Row& row);
// "#1E90FF" of a stored colour; another text as it stands.
std::string Color_Words(std::string_view stored);

// What the text makes of an example ("12.3456 is shown as 012.346"); empty where there is none.
std::string Option_Example(const Option_Field& field);
// Default and range in words: "Default 4000 steps per unit, 0.001 to 10000000".
std::string Option_Range(const Option_Field& field);

}  // namespace norvik
