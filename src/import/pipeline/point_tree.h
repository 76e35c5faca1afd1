// point_tree.h: which of many points lie within a distance, points switched off as they are used
// up.
//
// A balanced tree of boxes: the points are halved along the longer side of their box until eight
// are left in a leaf. A box counts its live points, so that used-up regions cost nothing; a query
// skips every box that lies too far away. Distances are those of import/pipeline/distance.h,
// exactly.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace norvik {

class Point_Tree {
 public:
  struct Point {
    float X = 0, Y = 0;
  };
  using Number = std::int32_t;  // of a point: its place in the list given to Build

  // All points are off at first.
  void Build(std::vector<Point> points);

  const Point& At(Number point) const { return Points[static_cast<std::size_t>(point)]; }
  bool Is_On(Number point) const { return On[static_cast<std::size_t>(point)] != 0; }
  void Switch(Number point, bool on);
  std::int32_t Live() const { return Boxes.empty() ? 0 : Boxes.front().Live; }

  // The live points whose squared distance (`Distance_Square`) from (x, y) is at most `square`, in
  // no particular order. False, with `found` of no use, when there are more than `most`.
  bool Gather(float x, float y, double square, std::size_t most, std::vector<Number>& found) const;

 private:
  struct Box {
    float Low_X = 0, Low_Y = 0, High_X = 0, High_Y = 0;
    std::int32_t Live = 0;
    std::int32_t First = 0, Count = 0;  // range of Order
    std::int32_t Left = -1, Right = -1, Parent = -1;
  };

  std::int32_t Build_Box(std::int32_t first, std::int32_t count, std::int32_t parent);
  void Fit(Box& box) const;

  std::vector<Point> Points;
  std::vector<Number> Order;          // point numbers, leaf by leaf
  std::vector<std::int32_t> Leaf_Of;  // box of each point
  std::vector<std::uint8_t> On;
  std::vector<Box> Boxes;
  mutable std::vector<std::int32_t> To_Visit;
};

}  // namespace norvik
