// setup_rows.h: how the rows of the settings table are written down.
//
//   Family<&Machine_Setup::Axis_SPI>("Axis", "Axis_SPI_<n>")
//       .Called(page::Axes, "Steps per unit, <n>").Each(Axis_Names).Star("4000")
//       .In("steps per unit").Between(0.001, 1e7).Saved(Save_Place::Axis)
//       .Changed(After_Change::Recompile | After_Change::Reopen_Drive)
//       .Says("Steps that move the axis by one unit of length."),
//
// `Plain` gives a default that only a missing or empty value takes, `Star` one that a stored 0
// takes too.
#pragma once

#include "core/setup_table.h"

#include <initializer_list>
#include <string_view>
#include <type_traits>
#include <utility>
#include <vector>

namespace norvik {

// The pages on which an operator finds the settings.
namespace page {
inline constexpr std::string_view General = "General", Units = "Units and formats", Axes = "Axes",
                                  Speeds = "Speeds and ramps", Homing = "Homing and retooling",
                                  Safety = "Safety", Levels = "Z levels", Panel = "Panel",
                                  Jog = "Jog by keys and joystick", Drive = "Drive",
                                  Pins = "Outputs and inputs", Motors = "Motor power",
                                  Board = "Serial board", Encoders = "Encoders", Plot = "Plot",
                                  Arcs = "Arcs", Text = "Functions on the program's text",
                                  Tools = "Tools and macros", Goto = "Goto lines",
                                  Inserted = "What importers insert", Dxf = "DXF import",
                                  Hpgl = "HPGL import", Gerber = "Gerber import",
                                  Excellon = "Drill file import", Pictures = "Picture import",
                                  Sounds = "Sounds", Corrections = "Corrections";
}  // namespace page

// Names of the entries of families.
inline constexpr std::string_view Axis_Names = "X|Y|Z|A";

struct Row_Builder : Setup_Row {
  Row_Builder& Plain(std::string_view text) { return With_Default(Sentinel::Empty, text); }
  Row_Builder& Star(std::string_view text) { return With_Default(Sentinel::Zero, text); }
  Row_Builder& Computed(std::string (*default_of)(const Machine_Setup&, int)) {
    Default_Of = default_of;
    return *this;
  }
  Row_Builder& Called(std::string_view group, std::string_view label) {
    Group = group;
    Label = label;
    return *this;
  }
  Row_Builder& Each(std::string_view entries) {
    Entries = entries;
    return *this;
  }
  Row_Builder& One_Of(std::vector<Setting_Choice> choices) {
    Choices = std::move(choices);
    return *this;
  }
  Row_Builder& Shown_As(std::string_view words) {
    Default_Words = words;
    return *this;
  }
  Row_Builder& Changed(After_Change what) {
    Needed_Then = what;
    return *this;
  }
  Row_Builder& By(Read_Rule rule) {
    Rule = rule;
    if (rule == Read_Rule::Numeral_Format) Kind = Setting_Kind::Numeral_Format;
    return *this;
  }
  Row_Builder& Held_To(double limit) {
    Load_Limit = limit;
    return *this;
  }
  Row_Builder& In(std::string_view unit) {
    Unit = unit;
    return *this;
  }
  Row_Builder& Between(double low, double high) {
    Bounds = {low, high};
    return *this;
  }
  Row_Builder& Loads(int first, int last) {
    Loaded = {first, last};
    return *this;
  }
  Row_Builder& Saves(int first, int last) {
    Setup_Row::Saved = {first, last};
    return *this;
  }
  Row_Builder& Saved(Save_Place place, std::string_view save_key = {}) {
    Save = place;
    Save_Key = save_key;
    return *this;
  }
  Row_Builder& Then(After_Load what) {
    After = what;
    return *this;
  }
  Row_Builder& Recommends(std::string_view value) {
    Recommended = value;
    return *this;
  }
  Row_Builder& For(std::string_view whom) {
    For_Whom = whom;
    return *this;
  }
  Row_Builder& Named(std::string_view by) {
    Named_By = by;
    return *this;
  }
  Row_Builder& Says(std::string_view help) {
    Help = help;
    return *this;
  }

 private:
  Row_Builder& With_Default(Sentinel sentinel, std::string_view text) {
    Takes_Default = sentinel;
    Default = text;
    return *this;
  }
};

template <class Field>
constexpr Setting_Kind Kind_Of_Field() {
  if constexpr (std::is_same_v<Field, bool>) return Setting_Kind::Yes_No;
  if constexpr (std::is_same_v<Field, std::string>) return Setting_Kind::Text;
  if constexpr (std::is_floating_point_v<Field>) return Setting_Kind::Number;
  return Setting_Kind::Whole_Number;
}

// A key with a field of its own.
template <auto Member>
Row_Builder Key(std::string_view section, std::string_view key) {
  Row_Builder row;
  row.Section = section;
  row.Key = key;
  row.Kind = Kind_Of_Field<std::remove_cvref_t<decltype(std::declval<Machine_Setup&>().*Member)>>();
  row.Field = [](Machine_Setup& setup, int) -> Setup_Field { return &(setup.*Member); };
  return row;
}

// A family of keys with a table, "<n>" in the key.
template <auto Member>
Row_Builder Family(std::string_view section, std::string_view key) {
  using Items = std::remove_reference_t<decltype(std::declval<Machine_Setup&>().*Member)>;
  Row_Builder row;
  row.Section = section;
  row.Key = key;
  row.Is_Family = true;
  row.Kind = Kind_Of_Field<std::remove_cvref_t<decltype(std::declval<Items&>()[Items::first])>>();
  row.Field = [](Machine_Setup& setup, int index) -> Setup_Field {
    return &(setup.*Member)[index];
  };
  return row.Loads(Items::first, Items::last).Saves(Items::first, Items::last);
}

using Setup_Row_List = std::vector<Setup_Row>;

// The rows of all parts, one behind the other.
inline Setup_Row_List Joined(std::initializer_list<Setup_Row_List> parts) {
  Setup_Row_List rows;
  for (const Setup_Row_List& part : parts) rows.insert(rows.end(), part.begin(), part.end());
  return rows;
}

// The groups, in the order of the load.
Setup_Row_List General_Rows();     // General head, tools, macros, Goto, scales, log
Setup_Row_List Axis_Rows();        // Axis, tool heights, throttle, displays
Setup_Row_List Input_Rows();       // jog, keys, joystick, priority
Setup_Row_List Parallel_Rows();    // parallel port
Setup_Row_List Board_Rows();       // serial boards
Setup_Row_List Plot_Rows();        // colours, arcs, plot, offsets
Setup_Row_List Drawing_Rows();     // DXF, HPGL, Gerber
Setup_Row_List GCode_Rows();       // arc centres, insertions, Excellon, scales
Setup_Row_List Bitmap_Rows();      // pictures, sounds
Setup_Row_List Correction_Rows();  // corrections

}  // namespace norvik
