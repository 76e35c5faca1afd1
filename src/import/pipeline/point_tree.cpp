#include "import/pipeline/point_tree.h"

#include "import/pipeline/distance.h"

#include <algorithm>
#include <numeric>

namespace norvik {

namespace {

constexpr std::int32_t Leaf_Size = 8;

// Distance of a value from a range, 0 inside.
double Outside(float value, float low, float high) {
  const double v = value;
  return std::max({static_cast<double>(low) - v, v - static_cast<double>(high), 0.0});
}

}  // namespace

void Point_Tree::Build(std::vector<Point> points) {
  Points = std::move(points);
  Order.resize(Points.size());
  std::iota(Order.begin(), Order.end(), 0);
  On.assign(Points.size(), 0);
  Leaf_Of.assign(Points.size(), 0);
  Boxes.clear();
  Boxes.reserve(Points.size() / 2 + 1);
  if (!Points.empty()) Build_Box(0, static_cast<std::int32_t>(Points.size()), -1);
}

void Point_Tree::Fit(Box& box) const {
  const Point& first = At(Order[static_cast<std::size_t>(box.First)]);
  box.Low_X = box.High_X = first.X;
  box.Low_Y = box.High_Y = first.Y;
  for (std::int32_t n = box.First; n < box.First + box.Count; ++n) {
    const Point& point = At(Order[static_cast<std::size_t>(n)]);
    box.Low_X = std::min(box.Low_X, point.X);
    box.High_X = std::max(box.High_X, point.X);
    box.Low_Y = std::min(box.Low_Y, point.Y);
    box.High_Y = std::max(box.High_Y, point.Y);
  }
}

std::int32_t Point_Tree::Build_Box(std::int32_t first, std::int32_t count, std::int32_t parent) {
  const auto number = static_cast<std::int32_t>(Boxes.size());
  Boxes.emplace_back();
  Box box;
  box.First = first;
  box.Count = count;
  box.Parent = parent;
  Fit(box);

  const auto begin = Order.begin() + first;
  if (count <= Leaf_Size) {
    for (auto at = begin; at != begin + count; ++at) {
      Leaf_Of[static_cast<std::size_t>(*at)] = number;
    }
  } else {
    const std::int32_t half = count / 2;
    const double width = static_cast<double>(box.High_X) - static_cast<double>(box.Low_X);
    const double height = static_cast<double>(box.High_Y) - static_cast<double>(box.Low_Y);
    const auto along = width >= height ? &Point::X : &Point::Y;
    std::nth_element(begin, begin + half, begin + count,
                     [&](Number a, Number b) { return At(a).*along < At(b).*along; });
    box.Left = Build_Box(first, half, number);
    box.Right = Build_Box(first + half, count - half, number);
  }
  Boxes[static_cast<std::size_t>(number)] = box;
  return number;
}

void Point_Tree::Switch(Number point, bool on) {
  auto& state = On[static_cast<std::size_t>(point)];
  if ((state != 0) == on) return;
  state = on ? 1 : 0;
  for (std::int32_t box = Leaf_Of[static_cast<std::size_t>(point)]; box >= 0;
       box = Boxes[static_cast<std::size_t>(box)].Parent) {
    Boxes[static_cast<std::size_t>(box)].Live += on ? 1 : -1;
  }
}

bool Point_Tree::Gather(float x, float y, double square, std::size_t most,
                        std::vector<Number>& found) const {
  // The exact distance is rounded to a single on each axis; a box is skipped only when it lies
  // beyond what that rounding can hide.
  constexpr double scale = 10000.0 * (1 - 1e-6);
  found.clear();
  if (Live() == 0) return true;
  To_Visit.assign(1, 0);
  while (!To_Visit.empty()) {
    const Box& box = Boxes[static_cast<std::size_t>(To_Visit.back())];
    To_Visit.pop_back();
    if (box.Live == 0) continue;
    const double dx = Outside(x, box.Low_X, box.High_X) * scale;
    const double dy = Outside(y, box.Low_Y, box.High_Y) * scale;
    if (dx * dx + dy * dy > square) continue;
    if (box.Left >= 0) {
      To_Visit.push_back(box.Left);
      To_Visit.push_back(box.Right);
      continue;
    }
    for (std::int32_t n = box.First; n < box.First + box.Count; ++n) {
      const Number number = Order[static_cast<std::size_t>(n)];
      const Point& point = At(number);
      if (!Is_On(number) || !(Distance_Square(x, y, point.X, point.Y) <= square)) continue;
      if (found.size() == most) return false;
      found.push_back(number);
    }
  }
  return true;
}

}  // namespace norvik
