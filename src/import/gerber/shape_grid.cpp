#include "import/gerber/shape_grid.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace norvik {

namespace {

constexpr double Nowhere = std::numeric_limits<double>::infinity();

struct Box {
  double Low_X = Nowhere, Low_Y = Nowhere, High_X = -Nowhere, High_Y = -Nowhere;
};

Box Box_Of(std::span<const Plane_Point> points) {
  Box box;
  for (const Plane_Point& p : points) {
    box.Low_X = std::min(box.Low_X, p.X);
    box.Low_Y = std::min(box.Low_Y, p.Y);
    box.High_X = std::max(box.High_X, p.X);
    box.High_Y = std::max(box.High_Y, p.Y);
  }
  return box;
}

// Wider than the tolerance of points on edges and the rounding of crossings to singles.
double Margin(const Box& box) {
  constexpr double fixed = 2e-5, share = 4e-7;
  return fixed + share * std::max({std::abs(box.Low_X), std::abs(box.Low_Y), std::abs(box.High_X),
                                   std::abs(box.High_Y)});
}

// From the hundredth part of the values to the last but that.
std::pair<double, double> Bulk(std::vector<double>& values) {
  const auto outside = static_cast<std::ptrdiff_t>(values.size() / 100);
  std::nth_element(values.begin(), values.begin() + outside, values.end());
  const double low = values[static_cast<std::size_t>(outside)];
  std::nth_element(values.begin(), values.end() - 1 - outside, values.end());
  return {low, *(values.end() - 1 - outside)};
}

}  // namespace

std::int32_t Shape_Grid::Axis::Cell(double value) const {
  const double place = (value - Low) / Step;
  return static_cast<std::int32_t>(std::clamp(place, 0.0, static_cast<double>(Count - 1)));
}

double Shape_Grid::Axis::From(std::int32_t cell) const {
  if (cell <= 0) return -Nowhere;
  if (cell >= Count) return Nowhere;
  return Low + Step * cell;
}

// As many cells as shapes, unless long or large shapes would then stand in too many.
void Shape_Grid::Choose_Cells(Number shapes, const Shape_Points& points_of) {
  constexpr double entries_each = 16, entries_always = 1 << 21, most_cells = 2048;
  std::vector<double> x, y;
  for (Number n = 0; n < shapes; ++n) {
    const auto points = points_of(n);
    if (points.empty()) continue;
    const Box box = Box_Of(points);
    x.push_back(box.Low_X / 2 + box.High_X / 2);
    y.push_back(box.Low_Y / 2 + box.High_Y / 2);
  }
  Columns = Rows = {};
  if (x.empty()) return;
  const auto count = static_cast<double>(x.size());
  const auto [low_x, high_x] = Bulk(x);
  const auto [low_y, high_y] = Bulk(y);
  const double width = high_x - low_x, height = high_y - low_y;

  // A shape of width w and height h stands in about 1 + (w + h) / cell cells along its outline and
  // in area / cell^2 inside.
  double along = 0, inside = 0;
  for (Number n = 0; n < shapes; ++n) {
    const auto points = points_of(n);
    if (points.empty()) continue;
    const Box box = Box_Of(points);
    along += std::min(box.High_X - box.Low_X, width) + std::min(box.High_Y - box.Low_Y, height);
    double area = 0;
    for (std::size_t p = 1; p < points.size(); ++p) {
      const Plane_Point a = points[p - 1], b = points[p];
      area += (a.X - box.Low_X) * (b.Y - box.Low_Y) - (b.X - box.Low_X) * (a.Y - box.Low_Y);
    }
    inside += std::min(std::abs(area) / 2, width * height);
  }
  const double entries = std::max(entries_each * count, entries_always) - count;
  const double smallest = (along + std::sqrt(along * along + 4 * inside * entries)) / (2 * entries);
  const double cell = std::max(std::sqrt(width * height / count), smallest);
  const auto axis = [&](double low, double extent) {
    Axis made;
    made.Low = low;
    if (!(extent > 0)) return made;
    const double cells = cell > 0 ? extent / cell : count;
    made.Count = static_cast<std::int32_t>(std::clamp(std::ceil(cells), 1.0, most_cells));
    made.Step = extent / made.Count;
    if (!(made.Step > 0)) made = {};
    return made;
  };
  Columns = axis(low_x, width);
  Rows = axis(low_y, height);
}

void Shape_Grid::Cells_Along(std::span<const Plane_Point> points,
                             std::vector<std::int32_t>& cells) const {
  if (points.empty()) return;
  const Box box = Box_Of(points);
  const double margin = Margin(box);
  const std::int32_t first = Rows.Cell(box.Low_Y - margin), last = Rows.Cell(box.High_Y + margin);
  for (std::int32_t row = first; row <= last; ++row) {
    const double from = Rows.From(row) - margin, to = Rows.To(row) + margin;
    double low = Nowhere, high = -Nowhere;  // of the part of the shape within this row
    for (std::size_t p = 1; p < points.size(); ++p) {
      Plane_Point a = points[p - 1], b = points[p];
      if (a.Y > b.Y) std::swap(a, b);
      if (b.Y < from || a.Y > to) continue;
      const double slope = b.Y > a.Y ? (b.X - a.X) / (b.Y - a.Y) : 0;
      const double start = a.Y < from ? a.X + (from - a.Y) * slope : a.X;
      const double end = b.Y > to ? a.X + (to - a.Y) * slope : b.X;
      low = std::min({low, start, end});
      high = std::max({high, start, end});
    }
    if (low > high) continue;
    const std::int32_t left = Columns.Cell(low - margin), right = Columns.Cell(high + margin);
    for (std::int32_t column = left; column <= right; ++column) {
      cells.push_back(row * Columns.Count + column);
    }
  }
}

void Shape_Grid::Build(Number shapes, const Shape_Points& points_of) {
  Choose_Cells(shapes, points_of);
  Cells.clear();
  Shape_First.assign(1, 0);
  for (Number n = 0; n < shapes; ++n) {
    Cells_Along(points_of(n), Cells);
    Shape_First.push_back(static_cast<std::uint32_t>(Cells.size()));
  }
  const std::size_t total =
      static_cast<std::size_t>(Columns.Count) * static_cast<std::size_t>(Rows.Count);
  Cell_First.assign(total + 1, 0);
  for (const std::int32_t cell : Cells) ++Cell_First[static_cast<std::size_t>(cell) + 1];
  for (std::size_t cell = 0; cell < total; ++cell) Cell_First[cell + 1] += Cell_First[cell];
  Shapes.resize(Cells.size());
  std::vector<std::uint32_t> next(Cell_First.begin(), Cell_First.end() - 1);
  for (Number n = 0; n < shapes; ++n) {
    for (const std::int32_t cell : Cells_Of(n)) {
      Shapes[next[static_cast<std::size_t>(cell)]++] = n;
    }
  }
}

}  // namespace norvik
