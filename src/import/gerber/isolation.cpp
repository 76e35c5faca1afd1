#include "import/gerber/isolation.h"

#include "core/application.h"
#include "import/gerber/lines.h"
#include "import/gerber/shape_grid.h"
#include "import/pipeline/distance.h"
#include "import/pipeline/pipeline.h"
#include "platform/platform.h"

namespace norvik {

void Edge_Crossings::Split_Edge(Plane_Point a) {
  const auto nearer = [&](const Plane_Point& p, const Plane_Point& than) {
    return Is_Closer(static_cast<float>(a.X), static_cast<float>(a.Y), static_cast<float>(than.X),
                     static_cast<float>(than.Y), static_cast<float>(p.X), static_cast<float>(p.Y));
  };
  for (std::size_t gap = Total / 2; gap > 0; gap /= 2) {
    for (std::size_t n = gap; n < Total; ++n) {
      for (std::size_t at = n; at >= gap && nearer(Points[at], Points[at - gap]); at -= gap) {
        std::swap(Points[at], Points[at - gap]);
      }
    }
  }
  Points[Total] = {Sentinel, Sentinel};
}

bool Segment_Inside_Any(const Iso_Polygon& table, std::span<const std::int32_t> others,
                        Plane_Point a, Plane_Point b) {
  const auto runs_along = [&](std::int32_t polygon) {
    for (std::size_t n = table.First(polygon) + 1; n < table.End(polygon); ++n) {
      const Plane_Point from = table.At(n - 1), to = table.At(n);
      if (Point_On_Segment(a, from, to) && Point_On_Segment(b, from, to)) return true;
    }
    return false;
  };
  return std::any_of(others.begin(), others.end(), [&](std::int32_t polygon) {
    return table.In_Bounds(a, polygon) && table.In_Bounds(b, polygon) &&
           Point_In_Polygon(table, a, polygon) && Point_In_Polygon(table, b, polygon) &&
           !runs_along(polygon);
  });
}

void Segment_Crossings(const Iso_Polygon& table, std::span<const std::int32_t> others,
                       Plane_Point a, Plane_Point b, Edge_Crossings& crossings) {
  crossings.Clear();
  for (const std::int32_t polygon : others) {
    for (std::size_t n = table.First(polygon) + 1; n < table.End(polygon); ++n) {
      const auto crossing = Segment_Cross(a, b, table.At(n - 1), table.At(n));
      if (crossing) crossings.Add(*crossing);
    }
  }
}

namespace {

class Isolation {
 public:
  Isolation(const Iso_Polygon& table, const std::string& line_file);
  void Isolate(std::int32_t polygon);
  void Close() { File.Close(); }

 private:
  void Find_Neighbours(std::int32_t polygon);
  void Find_Others(Plane_Point a, Plane_Point b);
  void Isolate_Edge(Plane_Point a, Plane_Point b);

  const Iso_Polygon& Table;
  Gerber_Line_Appender File;
  Shape_Grid Grid;
  std::vector<std::int32_t> Seen_For;    // polygon that met this one last
  std::vector<std::int32_t> Neighbours;  // of the polygon, ascending
  std::vector<std::int32_t> Others;      // whose bounds meet those of the edge, ascending
  Edge_Crossings Crossings;
};

Isolation::Isolation(const Iso_Polygon& table, const std::string& line_file)
    : Table(table), File(line_file) {
  std::vector<Plane_Point> points;
  Grid.Build(table.Polygon_Total(), [&](std::int32_t polygon) {
    points.clear();
    for (std::size_t n = table.First(polygon); n < table.End(polygon); ++n) {
      points.push_back(table.At(n));
    }
    return std::span<const Plane_Point>(points);
  });
  Seen_For.assign(static_cast<std::size_t>(table.Polygon_Total()), -1);
}

void Isolation::Find_Neighbours(std::int32_t polygon) {
  Neighbours.clear();
  Seen_For[static_cast<std::size_t>(polygon)] = polygon;
  for (const std::int32_t cell : Grid.Cells_Of(polygon)) {
    for (const std::int32_t other : Grid.Shapes_In(cell)) {
      std::int32_t& seen = Seen_For[static_cast<std::size_t>(other)];
      if (seen == polygon) continue;
      seen = polygon;
      Neighbours.push_back(other);
    }
  }
  std::sort(Neighbours.begin(), Neighbours.end());
}

void Isolation::Find_Others(Plane_Point a, Plane_Point b) {
  const auto [low_x, high_x] = std::minmax(a.X, b.X);
  const auto [low_y, high_y] = std::minmax(a.Y, b.Y);
  Others.clear();
  for (const std::int32_t other : Neighbours) {
    const auto n = static_cast<std::size_t>(other);
    if (static_cast<double>(Table.Poly_Min_X[n]) <= high_x &&
        static_cast<double>(Table.Poly_Max_X[n]) >= low_x &&
        static_cast<double>(Table.Poly_Min_Y[n]) <= high_y &&
        static_cast<double>(Table.Poly_Max_Y[n]) >= low_y) {
      Others.push_back(other);
    }
  }
}

void Isolation::Isolate_Edge(Plane_Point a, Plane_Point b) {
  Find_Others(a, b);
  if (Segment_Inside_Any(Table, Others, a, b)) return;
  Segment_Crossings(Table, Others, a, b, Crossings);
  if (Crossings.Count() == 0) {
    if (a != b) File.Write({a, b});
    return;
  }
  Crossings.Split_Edge(a);
  Plane_Point from = a;
  for (std::size_t n = 0; n <= Crossings.Count(); ++n) {
    const Plane_Point to = n < Crossings.Count() ? Crossings[n] : b;
    if (from != to && !Segment_Inside_Any(Table, Others, from, to)) File.Write({from, to});
    from = to;
  }
}

void Isolation::Isolate(std::int32_t polygon) {
  Find_Neighbours(polygon);
  for (std::size_t n = Table.First(polygon) + 1; n < Table.End(polygon); ++n) {
    Isolate_Edge(Table.At(n - 1), Table.At(n));
  }
}

}  // namespace

void Isolate_Polygons(const Iso_Polygon& table, int pass, const std::string& line_file) {
  Import_Status("Pass #" + std::to_string(pass) +
                "   Isolation Process: Analyzing Polygons...Press ESC to Cancel");
  Isolation isolation(table, line_file);
  const std::int32_t total = table.Polygon_Total();
  for (std::int32_t polygon = 0; polygon < total && !Application.EscFlag; ++polygon) {
    const std::int32_t number = polygon + 1;
    Import_Progress("   Isolation Process: Analyzing " + std::to_string(number) + " of " +
                        std::to_string(total) + " Polygons...",
                    static_cast<double>(number) / total, "% completed.  Press ESC to Cancel",
                    "##.00");
    DoEvents();
    isolation.Isolate(polygon);
  }
  isolation.Close();
}

void Write_Polygons(const Iso_Polygon& table, int pass, const std::string& line_file) {
  const std::string before =
      "Pass #" + std::to_string(pass) + "   Isolation Process: Writing Polygons...";
  Gerber_Line_Appender file(line_file);
  const std::int32_t total = table.Polygon_Total();
  for (std::int32_t polygon = 0; polygon < total && !Application.EscFlag; ++polygon) {
    Import_Progress(before, static_cast<double>(polygon + 1) / total, "% completed", "##.00");
    DoEvents();
    for (std::size_t n = table.First(polygon) + 1; n < table.End(polygon); ++n) {
      file.Write({table.At(n - 1), table.At(n)});
    }
  }
  file.Close();
}

}  // namespace norvik
