// guard.h: holds the finished path against the whole programmed contour.
//
// Joints look at neighbours only. A slot that is narrower than the tool, a wall that comes back
// beside an earlier one: there every corner is joined well, and yet the tool on its way along one
// element cuts into another. So each piece of the path is measured against all elements of its cut
// (the elements between two travel moves); those around it are found through a tree of boxes in the
// order of the path.
//
// A move towards the contour and a move away from it are programmed like the contour but bound no
// material: the tool passes over them when it comes round.
//
//            V1 = V5 .-------- E1 -----.  V2       A  towards the contour: V0 to V1
//              /  `.                   |           E  the contour, from the first point that is
//            D/    `A                  |              passed again (V1) to the last (V5)
//            /       V0                            D  away from it: V5 to V6
//           V6
//
// So A and D are no obstacles for each other and for E. Where no point is passed twice, all
// elements are the contour; the two ends of the whole cut count only where no other point is passed
// twice, as a tool often returns to where it came from.
#pragma once

#include "compiler/compensation/join.h"

#include <cstddef>
#include <functional>
#include <vector>

namespace norvik::compensation {

// Elements First..Last - 1.
struct Element_Range {
  std::size_t First = 0, Last = 0;
  bool Holds(std::size_t index) const { return index >= First && index < Last; }
};

// One cut and the part of it that bounds material.
struct Cut {
  Element_Range All, Contour;

  // The obstacles of an element: the contour, and the part of the cut that it belongs to.
  Element_Range Obstacles_Of(std::size_t element) const {
    if (element < Contour.First) return {All.First, Contour.Last};
    if (element >= Contour.Last) return {Contour.First, All.Last};
    return Contour;
  }
};
std::vector<Cut> Cuts_Of(const std::vector<Element>& elements);

// The tool at element `Path` comes within `Distance` of element `Obstacle`.
struct Gouge {
  std::size_t Path = 0, Obstacle = 0;
  double Distance = 0;
};

// Calls `report` once for each element along which the path comes closer to the contour than
// `radius` (beyond `Tolerance`, and beyond what the two ends of an arc differ), with the closest
// obstacle, in the order of the path. Travel moves are left out, and so are elements marked as
// reported, for themselves and as obstacles of their neighbours.
void Find_Gouges(const std::vector<Element>& elements, const std::vector<Path_Piece>& path,
                 double radius, const std::function<void(const Gouge&)>& report);

}  // namespace norvik::compensation
