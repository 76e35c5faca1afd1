#include "adapt/coordinates.h"

#include "adapt/expressions.h"

#include <cmath>

namespace norvik::adapting {

namespace {

std::size_t Row_Of(int system) {
  return static_cast<std::size_t>(system - 53);  // G54 is 1
}

Adapt_Axes Difference(const Adapt_Axes& a, const Adapt_Axes& b) {
  Adapt_Axes result{};
  for (std::size_t axis = 0; axis < result.size(); ++axis) result[axis] = a[axis] - b[axis];
  return result;
}

}  // namespace

Coordinates::Coordinates(const Adapt_Options& options, Modes& modes, Report& report)
    : Options(options), Mode(modes), Findings(report) {
  bool any = false;
  for (std::size_t row = 1; row < options.Work_Offsets.size(); ++row) {
    any = any || options.Work_Offsets[row].has_value();
  }
  if (!any) return;
  Base = 54;
  From_Base = options.Work_Offsets;
  From_Base[1] = Adapt_Axes{};
}

// --- Values --------------------------------------------------------------------------------------

void Coordinates::Add_Up() {
  Is_Plain = Unit == 1;
  for (std::size_t axis = 0; axis < Sum.size(); ++axis) {
    Sum[axis] = System_Zero[axis] + G92[axis] + Local[axis] + (axis == 2 ? Length : 0);
    Is_Plain = Is_Plain && Sum[axis] == 0;
  }
}

void Coordinates::Take_Units(bool millimetres) {
  Mode.Millimetres = millimetres;
  Unit = millimetres == Options.Millimetres ? 1
         : millimetres                      ? 1 / Millimetres_In_Inch
                                            : Millimetres_In_Inch;
  Add_Up();
}

double Coordinates::Target(int axis, double value) {
  const auto place = static_cast<std::size_t>(axis);
  const double length = value * Factor_Of(axis);
  if (!Mode.Incremental) return length + Sum[place];
  if (!At[place]) {
    if (Lost) {
      throw Unreadable{std::string("an incremental move from a position in ") + Axis_Letters[axis] +
                       " that is not known"};
    }
    Findings.Note_Once(axis == 0   ? "from0X"
                       : axis == 1 ? "from0Y"
                       : axis == 2 ? "from0Z"
                                   : "from0A",
                       std::string("the position in ") + Axis_Letters[axis] +
                           " is not known before this incremental move: it counts from 0",
                       "begin with the display at 0, or write an absolute move before it");
    return length;
  }
  return *At[place] + length;
}

void Coordinates::Lose_Position() {
  At.fill(std::nullopt);
  Lost = true;
}

// --- Work offsets --------------------------------------------------------------------------------

void Coordinates::Begin_Motion() {
  if (Base) return;
  Base = Mode.System;
  From_Base[Row_Of(*Base)] = Adapt_Axes{};
  Base_In_Machine = In_Machine[Row_Of(*Base)];
}

std::optional<Adapt_Axes> Coordinates::Zero_Of(int system) const {
  const std::size_t row = Row_Of(system);
  if (From_Base[row]) return From_Base[row];
  if (In_Machine[row] && Base_In_Machine) return Difference(*In_Machine[row], *Base_In_Machine);
  return std::nullopt;
}

bool Coordinates::Use_System(int system) {
  Mode.System = system;
  if (!Base) return true;
  const auto zero = By_Hand && *By_Hand != system ? std::nullopt : Zero_Of(system);
  const bool known = zero.has_value() || By_Hand == system;
  System_Zero = zero.value_or(Adapt_Axes{});
  Add_Up();
  if (!known) By_Hand = system;
  return known;
}

bool Coordinates::Set_System(int system, const Axis_Words& machine_values) {
  auto& zero = In_Machine[Row_Of(system)];
  Adapt_Axes values = zero.value_or(Adapt_Axes{});
  for (int axis = 0; axis < Axis_Count; ++axis) {
    const auto place = static_cast<std::size_t>(axis);
    if (machine_values[place]) values[place] = *machine_values[place] * Factor_Of(axis);
  }
  zero = values;
  if (!Base) return true;
  if (!Base_In_Machine) {
    // How far the display's own zero moves by this is not known; from here on it is.
    if (system == *Base) Base_In_Machine = values;
    return system != *Base;
  }
  From_Base[Row_Of(system)] = Difference(values, *Base_In_Machine);
  return system != Mode.System || Use_System(system);
}

void Coordinates::Set_System_By_Position(int system, const Axis_Words& read_here) {
  Begin_Motion();
  Adapt_Axes zero = Zero_Of(system).value_or(Adapt_Axes{});
  for (int axis = 0; axis < Axis_Count; ++axis) {
    const auto place = static_cast<std::size_t>(axis);
    if (!read_here[place] || !At[place]) continue;
    zero[place] = *At[place] - *read_here[place] * Factor_Of(axis) - G92[place] - Local[place];
  }
  From_Base[Row_Of(system)] = zero;
  if (system == Mode.System) Use_System(system);
}

// --- Offsets on top of them ----------------------------------------------------------------------

void Coordinates::Set_Position(const Axis_Words& values) {
  for (int axis = 0; axis < Axis_Count; ++axis) {
    const auto place = static_cast<std::size_t>(axis);
    if (!values[place]) continue;
    const double value = *values[place] * Factor_Of(axis);
    if (!At[place]) {
      Findings.Note(std::string("G92 says that the tool stands at ") + Axis_Letters[axis] + " " +
                        std::to_string(value) + " when the program begins",
                    "let the display show this before the run");
      continue;
    }
    G92[place] += *At[place] - value - Sum[place];
  }
  Add_Up();
}

void Coordinates::Change_G92(G92_Change change) {
  if (change == G92_Change::Suspend) G92_Kept = G92;
  G92 = change == G92_Change::Restore ? G92_Kept : Adapt_Axes{};
  Add_Up();
}

void Coordinates::Set_Local(const Axis_Words& values) {
  for (int axis = 0; axis < Axis_Count; ++axis) {
    const auto place = static_cast<std::size_t>(axis);
    if (values[place]) Local[place] = *values[place] * Factor_Of(axis);
  }
  Add_Up();
}

std::optional<double> Coordinates::Parameter(int number) const {
  if (number == 5220) return Mode.System - 53;
  if (number >= 5420 && number < 5420 + Axis_Count) {
    const int axis = number - 5420;
    return (At_Or_Zero(axis) - Sum[static_cast<std::size_t>(axis)]) / Factor_Of(axis);
  }
  return std::nullopt;
}

}  // namespace norvik::adapting
