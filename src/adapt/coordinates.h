// coordinates.h: numbers of the program to points of this machine.
//
//   point = value * unit + work offset + G92 + G52 + tool length (Z)
//
// The zero of the machine's display is that of the work offset in which the program moves first;
// others count from it where their distance is known, from G10 or from the options.
#pragma once

#include "adapt/modes.h"
#include "adapt/report.h"

#include <array>
#include <optional>

namespace norvik::adapting {

inline constexpr int Axis_Count = 4;
inline constexpr char Axis_Letters[] = "XYZA";
using Axis_Words = std::array<std::optional<double>, Axis_Count>;

class Coordinates {
 public:
  Coordinates(const Adapt_Options& options, Modes& modes, Report& report);

  // --- Values ---
  double Factor() const { return Unit; }  // of lengths
  void Take_Units(bool millimetres);
  double Factor_Of(int axis) const { return axis == 3 ? 1 : Unit; }
  double Shift(int axis) const { return Sum[static_cast<std::size_t>(axis)]; }
  // No shift and no other unit in any axis.
  bool Plain() const { return Is_Plain; }
  // Where a word of an axis leads to by the distance mode.
  double Target(int axis, double value);

  // --- Position ---
  std::array<std::optional<double>, Axis_Count> At;
  double At_Or_Zero(int axis) const { return At[static_cast<std::size_t>(axis)].value_or(0); }
  // It is not known from here on: a macro of this machine has run.
  void Lose_Position();
  bool Lost = false;

  // --- Offsets ---
  // The program is about to move: the first time, the offset in force becomes the display's zero.
  void Begin_Motion();
  // False: its zero is not known, or the display may have been set to another one by hand; from
  // here on it counts as set to this one by hand.
  bool Use_System(int system);
  bool Set_System(int system, const Axis_Words& machine_values);         // G10 L2
  void Set_System_By_Position(int system, const Axis_Words& read_here);  // G10 L20
  void Set_Position(const Axis_Words& values);                           // G92
  enum class G92_Change { Clear, Suspend, Restore };
  void Change_G92(G92_Change change);
  void Set_Local(const Axis_Words& values);  // G52
  void Set_Length(double length) {
    Length = length;
    Add_Up();
  }

  // What parameters 5061 to 5070, 5220 to 5390 and 5420 to 5423 stand for.
  std::optional<double> Parameter(int number) const;

 private:
  void Add_Up();
  std::optional<Adapt_Axes> Zero_Of(int system) const;

  const Adapt_Options& Options;
  Modes& Mode;
  Report& Findings;
  double Unit = 1;
  bool Is_Plain = true;
  Adapt_Axes Sum{}, G92{}, G92_Kept{}, Local{}, System_Zero{};
  double Length = 0;
  std::optional<int> By_Hand;                 // system that the display was set to by hand
  std::optional<int> Base;                    // system of the display's zero
  std::optional<Adapt_Axes> Base_In_Machine;  // its zero by G10
  std::array<std::optional<Adapt_Axes>, 10> From_Base{}, In_Machine{};
};

}  // namespace norvik::adapting
