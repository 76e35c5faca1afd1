// findings.h: what the check of a program can find, and how much each weighs.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace norvik {

// How much a finding weighs.
enum class Check_Grade : std::uint8_t {
  Lost,     // the block is not executed
  Wrong,    // the machine does something else than written
  Ignored,  // a word or code has no effect
  Note,     // as written, but easily taken otherwise
};

enum class Check_Kind : std::uint8_t {
  // --- Words of a line ---
  Code_Runs_Together,
  Block_Fails,
  Cut_Wrongly,
  Second_Comment,
  Comment_Not_Closed,
  Sequence_Swallows,
  Letter_Not_Read,
  Axis_Not_Moved,
  Text_Not_Read,
  Doubled_Word,
  Comma_In_Number,
  Block_Delete,
  Line_Too_Long,
  Code_Without_Effect,
  Code_Missing,
  Code_Not_Needed,
  Other_Units,
  Code_Rounded,
  Code_Read_As_Other,
  Codes_Exclude_Each_Other,
  Word_Rounded,
  Word_Not_Used,
  // --- What a block does ---
  Words_Without_Motion,
  Several_Motions,
  Bare_Start,
  Bare_After_Cycle,
  No_Feed,
  Feed_Of_Setup,
  Tool_Change_Beside_Move,
  Spindle_Left_On,
  Long_Dwell,
  Dwell_Before_Outputs,
  Stop_At_Full_Feed,
  Change_With_Spindle_On,
  Feed_Per_Turn,
  Runs_Otherwise,
  // --- Arcs ---
  Arc_Sticky_Centre,
  Arc_Sticky_End,
  Arc_Becomes_Line,
  Arc_Radii_Differ,
  Arc_Radius_Not_Used,
  Arc_Long_Way_Round,
  Arc_Absolute_Height,
  Arc_Walked_Elsewhere,
  Arc_Other_Centre,
  Arc_Other_Side,
  // --- Cycles ---
  Cycle_Lacks_Words,
  Cycle_Counts_Zero,
  Cycle_Keeps_L,
  Cycle_Takes_Old_Word,
  Cycle_Returns_To_R,
  Cycle_Returns_Low,
  Hole_Not_Drilled,
  Peck_Misses_Bottom,
  Peck_From_Raw_R,
  // --- Macros and repeats ---
  Macro_Missing,
  Macro_Calls_Itself,
  Macro_Without_Number,
  Macro_Line_Lost,
  Macro_Comma,
  Repeat_Without_Count,
  Repeat_Runs_Once_More,
  Repeat_Not_Ended,
  Repeat_Not_Begun,
  Repeat_Nested,
  Repeat_Count_Not_Read,
  Repeat_Order,
  // --- Radius compensation ---
  Comp_Without_Diameter,
  Comp_Other_Tool,
  Comp_Wrong_Plane,
  Comp_Does_Not_Fit,
  Comp_Lead_Cuts,
  Comp_Changes_Side,
  Comp_Leaves_Material,
  Comp_Passed_Over,
  // --- The program as a whole ---
  Travel_Too_Long,
  Too_Many_Records,
  Too_Many_Wires,
  Count_,
};

struct Check_Kind_Info {
  Check_Grade Grade;
  std::string_view Title;
  std::string_view Instead;  // what to write; a finding may know better
  // The key of section Corrections that answers it; empty: none.
  std::string_view Correction = {};
};
const Check_Kind_Info& Info_Of(Check_Kind kind);
std::string_view Name_Of(Check_Grade grade);

struct Check_Finding {
  Check_Kind Kind;
  std::optional<std::int16_t> Macro;  // the macro whose file it stands in; absent: the program
  std::int32_t Line = 0;              // of that file, of the program the step; 0: as a whole
  std::int32_t Column = 0;            // from 1; 0: the line as a whole
  std::string What;                   // what happens
  std::string Instead;                // what to write instead

  // As an editor counts, empty lines included; 0: the program as a whole.
  std::int32_t Text_Line() const;
};

}  // namespace norvik
