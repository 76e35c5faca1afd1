// trail.h: where the tool has been, for a picture of it.
//
// The model notes a point whenever the carriage has gone a thousandth of an axis's travel and
// whenever the spindle is switched: constant cost, constant memory, nothing is drawn here. A panel
// takes what is new since it looked last.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

namespace norvik {

// Units of the setup, the machine's coordinates.
struct Trail_Point {
  float X = 0, Y = 0, Z = 0;
  bool Spindle_On = false;  // on the way to this point
  bool Jump = false;        // put here by hand: no line leads to it
};

enum class Mark_Kind { Stall, Hard_Stop };
struct Trail_Mark {
  float X = 0, Y = 0, Z = 0;
  Mark_Kind Kind = Mark_Kind::Stall;
  int Axis = 0;
  bool operator==(const Trail_Mark&) const = default;
};

struct Trail_State {
  static constexpr std::size_t Most_Points = 8192, Most_Marks = 64;
  // Number n, counted from 0, stands at n modulo the size; the last of them are kept.
  std::array<Trail_Point, Most_Points> Points{};
  std::array<Trail_Mark, Most_Marks> Marks{};
  std::int64_t Point_Count = 0, Mark_Count = 0;  // noted since the start or the last clearing
  std::int64_t Clearings = 0;
  bool Jump_Next = true;
};
extern Trail_State Trail;

// Notes the place where the carriages are. Nothing happens where the last point is the same.
void Note_Trail_Point(bool spindle_on);
// Notes that steps are lost here. Further steps lost at the same place add nothing.
void Note_Trail_Mark(Mark_Kind kind, int axis);
// The next point is not reached by a move.
void Jump_Trail();
void Clear_Trail();

// First number that is still kept.
std::int64_t First_Trail_Point();
const Trail_Point& Trail_Point_At(std::int64_t number);
std::int64_t First_Trail_Mark();
const Trail_Mark& Trail_Mark_At(std::int64_t number);

}  // namespace norvik
