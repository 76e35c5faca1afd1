// setup_table.h: the one table of the machine file's keys.
//
// A row describes one key or one family of keys ("Axis_SPI_<n>"). The load walks the rows as they
// stand, the save by their `Save` place, the factory reset lets every row take its default; option
// windows, the companion's `setup` command and the reference page read the same rows. What is said
// about a key is said here and nowhere else.
#pragma once

#include "core/numbers.h"
#include "core/setting_row.h"
#include "core/setup.h"

#include <limits>
#include <span>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace norvik {

// A field of `MachineSetup` and the type that it is read and written by.
using Setup_Field =
    std::variant<std::int16_t*, std::int32_t*, float*, double*, bool*, std::string*>;

// How the text becomes the field where the field's type alone does not say it.
enum class Read_Rule {
  By_Type,
  Whole_Number,    // through the integer rule, so that fractions are dropped
  Numeral_Format,  // text of 0, # and one point; any other text gives the default
  Axis_Number,     // through the regional re-format of axis words
};

// The save's groups, in the order in which they are written; inside a group rows keep the table's
// order. Rows of `Nowhere` are written by the window that changes them.
enum class Save_Place {
  Self_Test,
  Plot_Colors,
  Plot_And_Arcs,
  Offsets,
  DXF_Layer,
  DXF_Lines,
  DXF,
  HPGL_Pen,
  HPGL,
  Gerber,
  Arc_Centers,
  Dwell_And_Insertion,
  Excellon,
  Scales,
  Bitmap,
  Log_Clearing,
  Motion_Analyzer,
  Output_Names,
  Parallel,
  Axis,
  Tool,
  Displays,
  Keyboard,
  Joystick,
  Priority,
  Time_Constant,
  Macros,
  Goto_Index,
  Goto,
  GCode_Scales,
  Sounds,
  Corrections,
  Nowhere,
};

// What happens right after a row has been loaded.
enum class After_Load { Nothing, Apply_Priority, Send_To_Controller };

struct Setup_Row : Setting_Row {
  Setup_Field (*Field)(Machine_Setup&, int index) = nullptr;
  Index_Span Saved;

  Sentinel Takes_Default = Sentinel::Empty;  // Zero: a stored 0 takes the default too
  std::string_view Default;  // entries of a family parted by "|"; one entry stands for all
  // Where the default depends on other values.
  std::string (*Default_Of)(const Machine_Setup&, int index) = nullptr;
  Read_Rule Rule = Read_Rule::By_Type;
  double Load_Limit = std::numeric_limits<double>::infinity();  // larger values are held to it

  Save_Place Save = Save_Place::Nowhere;
  After_Load After = After_Load::Nothing;
  std::string_view Save_Key;  // where the save spells the key differently

  // Of a correction (corrections.h): the value that suits every machine, empty where it depends on
  // the machine; who should switch it on; where a report names what it answers.
  std::string_view Recommended, For_Whom, Named_By;
};

// The rows in the order of the load.
std::span<const Setup_Row> Setup_Rows();
// The same in the order of the save, without those that the save does not write.
std::span<const Setup_Row* const> Setup_Rows_In_Save_Order();

// The default's text, as if it stood in the file with a point as decimal sign.
std::string Setup_Default_Text(const Setup_Row& row, int index);

// True when the text is a value of the field's type, or empty.
bool Is_Setup_Text(const Setup_Row& row, int index, std::string_view text);
// Reads a text into the field by the row's rules. False when the text is there but is no value of
// the field's type; the field then has what the rules give for that.
bool Read_Setup_Text(const Setup_Row& row, int index, std::string_view text);
// The field as the file holds it: numbers with the region's decimal sign, booleans as words.
std::string Setup_Text(const Setup_Row& row, int index);

}  // namespace norvik
