// gcode_process.h: the text transforms: a program's text in, another text out.
//
//   const Transformed result = Transform_Program(*GCode_Program.Text, Transform::Scale, values);
//   result.State == Transform_State::Done:  result.Text, and result.Losses to be told
//
// All transforms but three take each line apart (scanner.h), change its words and put them back in
// a fixed order of letters; a word whose letter the order does not name is lost. The numbers come
// out by `Axis_Format`. Nothing here touches the program or the setup: whoever calls decides
// whether the new text takes the place of the old one.
//
// Long texts show their progress in panel 1 and yield; ESC ends them.
#pragma once

#include "compiler/text/program_text.h"
#include "core/indexed.h"
#include "transform/losses.h"

#include <array>
#include <cstdint>
#include <string>
#include <string_view>

namespace norvik {

enum class Transform : std::uint8_t {
  Scale,
  Offset,
  Absolute,     // incremental moves become absolute ones
  Incremental,  // and the other way round
  Add_Sequence,
  Remove_Sequence,
  Decimal_Format,
  Metric,
  Imperial,
  Sort,  // reads the program and changes nothing
};
inline constexpr std::array All_Transforms{Transform::Scale,          Transform::Offset,
                                           Transform::Absolute,       Transform::Incremental,
                                           Transform::Add_Sequence,   Transform::Remove_Sequence,
                                           Transform::Decimal_Format, Transform::Metric,
                                           Transform::Imperial,       Transform::Sort};

struct Transform_Row {
  std::string_view Name;    // on a command line: "add-sequence"
  std::string_view Title;   // for menus and boxes: "Add sequence numbers"
  std::string_view Status;  // panel 1 while it works
  int Values;               // how many numbers it takes
};
const Transform_Row& Row_Of(Transform transform);

struct Transform_Values {
  Indexed<float, 1, 3> Axis{{0, 0, 0}};  // factors or offsets of X, Y, Z, units of the program
  bool Duplicate =
      false;  // of an offset: the moved lines follow the program instead of replacing it
};
// What the setup holds for a transform: the scales, the offsets; zeros for those without values.
Transform_Values Values_Of_Setup(Transform transform);

enum class Transform_State : std::uint8_t { Done, Escaped, Refused };

struct Transformed {
  Transform_State State = Transform_State::Done;
  std::string Refusal;  // for the operator
  std::string Text;     // lines ended by CR LF; of use when done
  Transform_Losses Losses;
};

inline constexpr std::string_view Incremental_Refusal =
    "This file is in incremental mode.  Add offset line in gcode";

// An empty program gives an empty text. Scale factors of 0 count as 1.
Transformed Transform_Program(const GCode_Text& program, Transform transform,
                              const Transform_Values& values);

}  // namespace norvik
