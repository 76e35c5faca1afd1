#include "compiler/text/codes.h"

namespace norvik {

namespace {

using enum Code_Step;
using enum Code_Loss;
using act = Code_Action;

// The rows of an ignored code: number, group, loss, title, what to write instead.
constexpr Code Idle_G(std::int16_t number, std::int8_t group, Code_Loss loss,
                      std::string_view title, std::string_view instead) {
  return {'G', number, group, None, loss, title, instead, Code_Action::Nothing};
}
constexpr Code Idle_M(std::int16_t number, std::int8_t group, Code_Loss loss,
                      std::string_view title, std::string_view instead) {
  return {'M', number, group, None, loss, title, instead, Code_Action::Nothing};
}
constexpr Code Acting(char letter, std::int16_t number, std::int8_t group, Code_Step step,
                      std::string_view title, Code_Action action) {
  return {letter, number, group, step, Nothing, title, "", action};
}

constexpr std::string_view Write_Offsets =
    "add the offset to the coordinates, or zero the position display at the work piece";
constexpr std::string_view Write_Lengths =
    "set Z to zero with each tool, or add the length to the Z words";
constexpr std::string_view Write_Holes = "write the hole out with G1 and G0, or use G81 to G83";
constexpr std::string_view Not_Needed = "the word can go";

// clang-format off
constexpr Code Table_Of_Codes[] = {
    Acting('M', 6, 6, Outputs, "tool change: halt for the operator", act::Retool),
    Acting('M', 3, 7, Outputs, "spindle clockwise", act::Spindle_Clockwise),
    Acting('M', 4, 7, Outputs, "spindle counter-clockwise", act::Spindle_Counter_Clockwise),
    Acting('M', 5, 7, Outputs, "spindle off", act::Spindle_Off),
    Acting('M', 7, 8, Outputs, "mist on", act::Mist_On),
    Acting('M', 8, 8, Outputs, "flood on", act::Flood_On),
    Acting('M', 9, 8, Outputs, "mist and flood off", act::Coolant_Off),

    Acting('G', 4, 0, Modes, "dwell of P seconds", act::Dwell),
    Acting('G', 17, 2, Modes, "arcs in the plane of X and Y", act::Set_Mode),
    Acting('G', 18, 2, Modes, "arcs in the plane of X and Z", act::Set_Mode),
    Acting('G', 19, 2, Modes, "arcs in the plane of Z and Y", act::Set_Mode),
    Acting('G', 40, 7, Modes, "radius compensation off", act::Set_Compensation),
    Acting('G', 41, 7, Modes, "radius compensation, tool left of the contour", act::Set_Compensation),
    Acting('G', 42, 7, Modes, "radius compensation, tool right of the contour", act::Set_Compensation),
    Acting('G', 90, 3, Modes, "absolute coordinates", act::Set_Mode),
    Acting('G', 91, 3, Modes, "incremental coordinates", act::Set_Mode),

    Acting('G', 2, 1, Motion, "arc, clockwise", act::Arc),
    Acting('G', 3, 1, Motion, "arc, counter-clockwise", act::Arc),
    Acting('G', 45, 1, Motion, "cutting line at the travel feed", act::Line_Cutting_At_Travel_Feed),
    Acting('G', 80, 1, Motion, "end of the drill cycles", act::Cancel_Cycle),
    Acting('G', 81, 1, Motion, "drill", act::Drill_Cycle),
    Acting('G', 82, 1, Motion, "drill with a dwell at the bottom", act::Drill_Cycle),
    Acting('G', 83, 1, Motion, "drill in pecks of Q", act::Drill_Cycle),
    Acting('G', 0, 1, Motion, "travel", act::Line_Travel),
    Acting('G', 1, 1, Motion, "cutting line", act::Line_Cutting),

    Acting('M', 0, 4, Flow, "halt for the operator", act::Halt),
    Acting('M', 1, 4, Flow, "halt for the operator", act::Halt),
    Acting('M', 2, 4, Flow, "end: halt, clockwise spindle off", act::End_Program),
    Acting('M', 30, 4, Flow, "end: halt, spindle and coolant off", act::End_Program),
    Acting('M', 60, 4, Flow, "halt for the operator", act::Halt),
    Acting('M', 66, 0, Flow, "wait for the auxiliary input", act::Wait_For_Input),

    Idle_G(5, 1, Missing, "spline", "write the curve as G1 lines or G2 and G3 arcs"),
    Idle_G(7, 0, Missing, "diameter mode", "write radii"),
    Idle_G(8, 0, Harmless, "radius mode", Not_Needed),
    Idle_G(10, 0, Missing, "offsets by program", Write_Offsets),
    Idle_G(20, 6, Harmless, "inch", Not_Needed),
    Idle_G(21, 6, Harmless, "millimetre", Not_Needed),
    Idle_G(28, 0, Missing, "to the home position", "write G0 with the coordinates, or use Home"),
    Idle_G(30, 0, Missing, "to the second home position", "write G0 with the coordinates"),
    Idle_G(33, 1, Missing, "thread with a synchronised spindle", "this machine cannot do it"),
    Idle_G(38, 1, Missing, "probe", "this machine cannot do it"),
    Idle_G(43, 8, Missing, "tool length offset", Write_Lengths),
    Idle_G(49, 8, Harmless, "tool length offset off", Not_Needed),
    Idle_G(52, 0, Missing, "local offset", Write_Offsets),
    Idle_G(53, 0, Missing, "machine coordinates", "write the coordinates of the work piece"),
    Idle_G(54, 12, Harmless, "work offset 1", Not_Needed),
    Idle_G(55, 12, Missing, "work offset 2", Write_Offsets),
    Idle_G(56, 12, Missing, "work offset 3", Write_Offsets),
    Idle_G(57, 12, Missing, "work offset 4", Write_Offsets),
    Idle_G(58, 12, Missing, "work offset 5", Write_Offsets),
    Idle_G(59, 12, Missing, "work offset 6", Write_Offsets),
    Idle_G(61, 13, Harmless, "exact path", Not_Needed),
    Idle_G(64, 13, Harmless, "path blending", Not_Needed),
    Idle_G(68, 0, Missing, "rotation", "write the rotated coordinates"),
    Idle_G(70, 6, Harmless, "inch", Not_Needed),
    Idle_G(71, 6, Harmless, "millimetre", Not_Needed),
    Idle_G(73, 1, Missing, "drill with chip breaking", Write_Holes),
    Idle_G(76, 1, Missing, "thread cycle", "this machine cannot do it"),
    Idle_G(84, 1, Missing, "tapping", "this machine cannot do it"),
    Idle_G(85, 1, Missing, "bore, feed out", Write_Holes),
    Idle_G(86, 1, Missing, "bore, spindle stop", Write_Holes),
    Idle_G(87, 1, Missing, "back bore", Write_Holes),
    Idle_G(88, 1, Missing, "bore, manual out", Write_Holes),
    Idle_G(89, 1, Missing, "bore with dwell, feed out", Write_Holes),
    Idle_G(92, 0, Missing, "set the position", Write_Offsets),
    Idle_G(93, 5, Missing, "inverse time feed", "write F in units per minute"),
    Idle_G(94, 5, Harmless, "feed in units per minute", Not_Needed),
    Idle_G(95, 5, Missing, "feed per revolution", "write F in units per minute"),
    Idle_G(96, 14, Missing, "constant surface speed", "write S in revolutions per minute"),
    Idle_G(97, 14, Harmless, "spindle speed in revolutions per minute", Not_Needed),
    Idle_G(98, 10, Ignored, "cycles return to the height before them",
           "the tool returns to R; choose R above all clamps"),
    Idle_G(99, 10, Harmless, "cycles return to R", Not_Needed),

    Idle_M(19, 0, Missing, "oriented spindle stop", "this machine cannot do it"),
    Idle_M(48, 9, Harmless, "override on", Not_Needed),
    Idle_M(49, 9, Ignored, "override off", "leave the override alone while this runs"),
    Idle_M(61, 6, Ignored, "set the tool number", "write T with the number"),
    Idle_M(97, 0, Missing, "call of a subprogram in this file", "put it into a macro file, call it by M98"),
    Idle_M(99, 0, Ignored, "return from a subprogram", "a macro file returns at its end; the word can go"),
};
// clang-format on

constexpr int Row_Count = static_cast<int>(std::size(Table_Of_Codes));

constexpr Code_Places Places_Of_Acting_Codes() {
  Code_Places places{};
  places.G.fill(No_Code);
  places.M.fill(No_Code);
  for (int place = 0; place < Acting_Code_Count; ++place) {
    const Code& code = Table_Of_Codes[place];
    const auto number = static_cast<std::size_t>(code.Number);
    (code.Letter == 'G' ? places.G[number] : places.M[number]) = static_cast<std::int8_t>(place);
  }
  return places;
}

constexpr bool Acting_Rows_Come_First() {
  for (int place = 0; place < Row_Count; ++place) {
    if ((place < Acting_Code_Count) != (Table_Of_Codes[place].Step != None)) return false;
  }
  return true;
}
static_assert(Acting_Rows_Come_First());
static_assert(Row_Count <= 127, "places are held in eight bits");

}  // namespace

constinit const Code_Places Acting_Codes = Places_Of_Acting_Codes();

std::span<const Code> Code_Table() {
  return Table_Of_Codes;
}

std::int8_t Find_Code(char letter, std::int16_t number) {
  for (int place = 0; place < Row_Count; ++place) {
    const Code& code = Table_Of_Codes[place];
    if (code.Letter == letter && code.Number == number) return static_cast<std::int8_t>(place);
  }
  return No_Code;
}

int First_Place(Code_Step step) {
  int place = 0;
  while (place < Row_Count && Table_Of_Codes[place].Step < step) ++place;
  return place;
}

}  // namespace norvik
