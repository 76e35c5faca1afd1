#include "simulate/trail.h"

#include "simulate/simulated_machine.h"

#include <algorithm>

namespace norvik {

Trail_State Trail;

namespace {

float Place(int axis) {
  return static_cast<float>(True_Position(axis));
}

std::size_t Slot(std::int64_t number, std::size_t size) {
  return static_cast<std::size_t>(number) % size;
}

std::int64_t First_Kept(std::int64_t count, std::size_t size) {
  return std::max<std::int64_t>(count - static_cast<std::int64_t>(size), 0);
}

}  // namespace

void Note_Trail_Point(bool spindle_on) {
  const Trail_Point point{Place(1), Place(2), Place(3), spindle_on, Trail.Jump_Next};
  if (Trail.Point_Count > 0 && !point.Jump) {
    const Trail_Point& last = Trail_Point_At(Trail.Point_Count - 1);
    if (point.X == last.X && point.Y == last.Y && point.Z == last.Z) return;
  }
  Trail.Points[Slot(Trail.Point_Count, Trail.Most_Points)] = point;
  ++Trail.Point_Count;
  Trail.Jump_Next = false;
}

void Note_Trail_Mark(Mark_Kind kind, int axis) {
  const Trail_Mark mark{Place(1), Place(2), Place(3), kind, axis};
  if (Trail.Mark_Count > 0 && Trail_Mark_At(Trail.Mark_Count - 1) == mark) return;
  Trail.Marks[Slot(Trail.Mark_Count, Trail.Most_Marks)] = mark;
  ++Trail.Mark_Count;
}

void Jump_Trail() {
  Trail.Jump_Next = true;
}

void Clear_Trail() {
  Trail.Point_Count = Trail.Mark_Count = 0;
  ++Trail.Clearings;
  Trail.Jump_Next = true;
}

std::int64_t First_Trail_Point() {
  return First_Kept(Trail.Point_Count, Trail.Most_Points);
}

const Trail_Point& Trail_Point_At(std::int64_t number) {
  return Trail.Points[Slot(number, Trail.Most_Points)];
}

std::int64_t First_Trail_Mark() {
  return First_Kept(Trail.Mark_Count, Trail.Most_Marks);
}

const Trail_Mark& Trail_Mark_At(std::int64_t number) {
  return Trail.Marks[Slot(number, Trail.Most_Marks)];
}

}  // namespace norvik
