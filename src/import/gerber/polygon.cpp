#include "import/gerber/polygon.h"

#include "core/application.h"
#include "core/rounding.h"
#include "import/pipeline/pipeline.h"

namespace norvik {

Iso_Outline Make_Line_Polygon(double x1, double y1, double x2, double y2, double width,
                              double extra) {
  constexpr double cap_share = 5.225, right_angle = Arc_Pi / 2;
  const double full = width + extra, half = full / 2, cap = Round16(full / cap_share);
  const double along = Motion_Angle(std::hypot(x2 - x1, y2 - y1), x2, y2, x1, y1);
  const double aside = Add_Angle(along, right_angle);
  const Plane_Point u{std::cos(along), std::sin(along)}, n{std::cos(aside), std::sin(aside)};

  Iso_Outline outline;
  const auto add = [&](double x, double y, double outward, double side) {
    outline.Add(x + outward * u.X + side * n.X, y + outward * u.Y + side * n.Y);
  };
  add(x2, y2, cap, -half);
  add(x2, y2, half, -cap);
  add(x2, y2, half, cap);
  add(x2, y2, cap, half);
  add(x1, y1, -cap, half);
  add(x1, y1, -half, cap);
  add(x1, y1, -half, -cap);
  add(x1, y1, -cap, -half);
  outline.Close();
  return outline;
}

Iso_Outline Make_Pad_Polygon(double x, double y, double size_x, double size_y, char shape,
                             double extra) {
  const double a = size_x / 2 + extra, b = size_x / 4 + extra;
  const double c = size_y / 2 + extra, d = size_y / 4 + extra;
  Iso_Outline outline;
  if (shape == 'R') {
    outline.Add(x - a, y + c);
    outline.Add(x + a, y + c);
    outline.Add(x + a, y - c);
    outline.Add(x - a, y - c);
  } else {
    outline.Add(x - a, y + d);
    outline.Add(x - b, y + c);
    outline.Add(x + b, y + c);
    outline.Add(x + a, y + d);
    outline.Add(x + a, y - d);
    outline.Add(x + b, y - c);
    outline.Add(x - b, y - c);
    outline.Add(x - a, y - d);
  }
  outline.Close();
  return outline;
}

void Iso_Polygon::Add(const Iso_Outline& outline) {
  std::array<float, 9> x{}, y{};
  for (std::size_t n = 0; n < outline.Count; ++n) {
    x[n] = To_Single(outline.Points[n].X);
    y[n] = To_Single(outline.Points[n].Y);
  }
  const auto count = static_cast<std::ptrdiff_t>(outline.Count);
  Poly_X.insert(Poly_X.end(), x.begin(), x.begin() + count);
  Poly_Y.insert(Poly_Y.end(), y.begin(), y.begin() + count);
  First_Point.push_back(static_cast<std::uint32_t>(Poly_X.size()));
}

void Iso_Polygon::Analyze_Bounds() {
  const auto total = static_cast<std::size_t>(Polygon_Total());
  for (auto* bounds : {&Poly_Min_X, &Poly_Min_Y, &Poly_Max_X, &Poly_Max_Y}) bounds->resize(total);
  for (std::size_t polygon = 0; polygon < total; ++polygon) {
    const auto first = static_cast<std::ptrdiff_t>(First_Point[polygon]);
    const auto end = static_cast<std::ptrdiff_t>(First_Point[polygon + 1]);
    const auto [low_x, high_x] = std::minmax_element(Poly_X.begin() + first, Poly_X.begin() + end);
    const auto [low_y, high_y] = std::minmax_element(Poly_Y.begin() + first, Poly_Y.begin() + end);
    Poly_Min_X[polygon] = *low_x;
    Poly_Max_X[polygon] = *high_x;
    Poly_Min_Y[polygon] = *low_y;
    Poly_Max_Y[polygon] = *high_y;
  }
}

bool Point_In_Polygon(const Iso_Polygon& table, Plane_Point p, std::int32_t polygon) {
  if (!table.In_Bounds(p, polygon)) return false;
  const double tolerance = Edge_Tolerance(p), near_square = tolerance * tolerance;
  bool odd = false;
  Plane_Point a = table.At(table.First(polygon));
  for (std::size_t n = table.First(polygon) + 1; n < table.End(polygon); ++n) {
    const Plane_Point b = table.At(n);
    if (Segment_Distance_Square(p, a, b) <= near_square) return true;
    // Each edge owns its lower end, so that a ray through a corner counts it once.
    if ((a.Y > p.Y) != (b.Y > p.Y) && p.X < a.X + (p.Y - a.Y) * (b.X - a.X) / (b.Y - a.Y)) {
      odd = !odd;
    }
    a = b;
  }
  return odd;
}

Iso_Polygon Make_Polygons(const Gerber_Table_State& artwork, double extra) {
  constexpr std::int32_t shapes_per_yield = 500;
  Iso_Polygon table;
  Import_Faults faults("Get_Gerber_DataFile_Error");
  Yield_Counter yields(shapes_per_yield);
  constexpr std::size_t points = std::tuple_size_v<decltype(Iso_Outline::Points)>;
  const std::size_t most = artwork.Lines.size() + artwork.Pads.size();
  table.Poly_X.reserve(most * points);
  table.Poly_Y.reserve(most * points);
  table.First_Point.reserve(most + 1);
  const auto add_all = [&](const auto& shapes, const auto& outline_of) {
    for (const auto& shape : shapes) {
      if (Application.EscFlag) return;
      yields.Round();
      if (!shape.Deleted) faults.Try([&] { table.Add(outline_of(shape)); });
    }
  };
  add_all(artwork.Lines, [&](const Gerber_Line& line) {
    return Make_Line_Polygon(line.X1, line.Y1, line.X2, line.Y2, line.Width, extra);
  });
  add_all(artwork.Pads, [&](const Gerber_Pad& pad) {
    return Make_Pad_Polygon(pad.X, pad.Y, pad.Size_X, pad.Size_Y, pad.Shape, extra);
  });
  return table;
}

}  // namespace norvik
