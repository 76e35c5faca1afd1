// shape_grid.h: which of many shapes in the plane may touch one another.
//
// A grid of cells over the bulk of the shapes; the cells at its border reach to infinity, so that a
// stray shape far away makes no cell larger. Every shape, a chain of points, stands in the list of
// each cell that it passes, row by row from its leftmost to its rightmost place, with a margin that
// is wider than every tolerance and rounding of the artwork importer. Two shapes that come nearer
// than that share a cell. Long slanted shapes stand only in the cells along their way.
#pragma once

#include "import/gerber/geometry.h"

#include <cstdint>
#include <functional>
#include <span>
#include <vector>

namespace norvik {

class Shape_Grid {
 public:
  using Number = std::int32_t;
  // Points of a shape; the span lasts until the next call. An empty one leaves the shape out.
  using Shape_Points = std::function<std::span<const Plane_Point>(Number)>;

  void Build(Number shapes, const Shape_Points& points_of);

  std::size_t Cell_Total() const { return Cell_First.size() - 1; }
  std::span<const std::int32_t> Cells_Of(Number shape) const {
    return List(Cells, Shape_First, shape);
  }
  // In ascending order.
  std::span<const Number> Shapes_In(std::int32_t cell) const {
    return List(Shapes, Cell_First, cell);
  }
  // Cells of a shape that is not in the grid.
  void Cells_Along(std::span<const Plane_Point> points, std::vector<std::int32_t>& cells) const;

 private:
  struct Axis {
    double Low = 0, Step = 1;
    std::int32_t Count = 1;
    std::int32_t Cell(double value) const;
    // Borders of a cell; the outermost ones lie at infinity.
    double From(std::int32_t cell) const;
    double To(std::int32_t cell) const { return From(cell + 1); }
  };
  static std::span<const std::int32_t> List(const std::vector<std::int32_t>& all,
                                            const std::vector<std::uint32_t>& first,
                                            std::int32_t n) {
    const auto at = static_cast<std::size_t>(n);
    return std::span(all).subspan(first[at], first[at + 1] - first[at]);
  }
  void Choose_Cells(Number shapes, const Shape_Points& points_of);

  Axis Columns, Rows;
  std::vector<std::uint32_t> Shape_First, Cell_First{0};
  std::vector<std::int32_t> Cells, Shapes;
};

}  // namespace norvik
