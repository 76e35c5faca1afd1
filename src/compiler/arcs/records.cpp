#include "compiler/arcs/records.h"

#include "compiler/state/record_table.h"
#include "core/fault.h"

#include <cmath>
#include <string>

namespace norvik {

namespace {

bool Incremental() {
  return Compiler.ModalGroups[modal_group::Distance] == 91;
}

double Known(Nullable value, const char* what) {
  if (!value) {
    throw Fault(Fault_Number::Type_Mismatch,
                std::string("The arc's ") + what + " is not known: move there with X and Y first");
  }
  return *value;
}

void Take_Centre_From_Radius(double r) {
  const double x0 = Known(Compiler.CurrentPosition[1], "start in X");
  const double y0 = Known(Compiler.CurrentPosition[2], "start in Y");
  double x1 = Known(Compiler.Last[word::X], "end in X");
  double y1 = Known(Compiler.Last[word::Y], "end in Y");
  if (Incremental()) {
    x1 = x0 + x1;
    y1 = y0 + y1;
  }
  const double d = std::sqrt((x0 - x1) * (x0 - x1) + (y0 - y1) * (y0 - y1));
  const double square = r * r - (d / 2) * (d / 2);
  if (square < 0) {
    throw Fault(Fault_Number::Invalid_Call, "R " + std::to_string(r) +
                                                " is less than half the way of " +
                                                std::to_string(d) + " from start to end");
  }
  if (d == 0) {
    throw Fault(Fault_Number::Division_By_Zero,
                "An arc by R needs an end other than its start; a full circle needs I and J");
  }
  const double h = std::sqrt(square);
  const double cx = (x0 + x1) / 2 - h * (y0 - y1) / d;
  const double cy = (y0 + y1) / 2 - h * (x1 - x0) / d;
  Compiler_Memory.LastI = Incremental() ? cx - x0 : cx;
  Compiler_Memory.LastJ = Incremental() ? cy - y0 : cy;
}

void Arc(Block& block, std::int16_t code, std::int16_t direction) {
  const Word_Values& words = block.Words;
  Arc_Point start;
  for (int axis = 1; axis <= 4; ++axis) {
    start[static_cast<std::size_t>(axis - 1)] = Compiler.CurrentPosition[axis];
  }
  Compiler.FeedMoveNow = true;
  Compiler.CurrentFeed = Compiler.CutFeed;
  const Nullable r = words[word::R];
  if (r.value_or(0) > 0 && !words[word::I] && !words[word::J]) Take_Centre_From_Radius(*r);

  const Nullable end_z = words[word::Z] ? words[word::Z] : start[2];
  const Word_Values& last = Compiler.Last;
  AddArcRecord(start, {last[word::X], last[word::Y], end_z, last[word::A]},
               Compiler_Memory.LastI.value_or(0), Compiler_Memory.LastJ.value_or(0),
               Compiler_Memory.LastK.value_or(0), direction);
  Compiler.ModalGroups[modal_group::Motion] = code;
  Compiler_Memory.LastArcCode = code;
}

}  // namespace

void ArcG2(Block& block) {
  Arc(block, 2, 0);
}

void ArcG3(Block& block) {
  Arc(block, 3, 1);
}

void AddArcRecord(const Arc_Point& start, const Arc_Point& end, double i, double j, double k,
                  std::int16_t direction) {
  const auto plane = Arc_Plane_Of(Compiler.ModalGroups[modal_group::Plane]);
  if (!plane) return;
  const auto at = [](int axis) { return static_cast<std::size_t>(axis - 1); };
  Known(end[0], "end in X");
  Known(end[1], "end in Y");
  const double first = Known(start[at(plane->First)], "start");
  const double second = Known(start[at(plane->Second)], "start");
  const auto centre = [&](word::Name name) {
    return name == word::I ? i : name == word::J ? j : k;
  };
  double first_centre = centre(plane->First_Word), second_centre = centre(plane->Second_Word);
  Arc_Point target = end;
  double first_end = Known(end[at(plane->First)], "end"),
         second_end = Known(end[at(plane->Second)], "end");
  if (Incremental()) {
    first_centre = first + first_centre;
    second_centre = second + second_centre;
    first_end = first + first_end;
    second_end = second + second_end;
  }
  target[at(plane->First)] = first_end;
  target[at(plane->Second)] = second_end;
  for (int axis = 1; axis <= 4; ++axis) {
    if (target[at(axis)]) Compiler.TargetPosition[axis] = target[at(axis)];
  }
  LineArc& record = AddLineArc(Record_Type::Arc);
  record.CenterI = first_centre;
  record.CenterJ = second_centre;
  record.ArcDirection = direction;
  for (int axis = 1; axis <= 6; ++axis) {
    if (Compiler.TargetPosition[axis]) {
      Compiler.CurrentPosition[axis] = Compiler.TargetPosition[axis];
    }
  }
}

}  // namespace norvik
