#include "import/gerber/clean.h"

#include "core/application.h"
#include "core/rounding.h"
#include "import/gerber/shape_grid.h"
#include "import/pipeline/pipeline.h"
#include "platform/platform.h"

#include <numeric>
#include <tuple>

namespace norvik {

namespace {

double Slope(const Clean_Rule& rule, const std::array<Plane_Point, 2>& ends) {
  const double dx = ends[1].X - ends[0].X, dy = ends[1].Y - ends[0].Y;
  return dx == 0 ? rule.Upright_Slope : dy / dx;
}

// One round over the lines. The lines that may still meet line i wait in a heap by number: those
// that share a cell with it, and more of them as it grows.
class Clean_Round {
 public:
  Clean_Round(std::vector<Clean_Line>& lines, const Clean_Rule& rule);
  bool Clean_Line_At(std::int32_t i);  // true when it took another

 private:
  Clean_Line& Line(std::int32_t n) { return Lines[static_cast<std::size_t>(n)]; }
  void Add_Waiting(std::int32_t i, std::int32_t after);

  std::vector<Clean_Line>& Lines;
  const Clean_Rule& Rule;
  Shape_Grid Grid;
  std::vector<std::int32_t> Line_Seen_For, Cell_Seen_For;  // line i that met them last
  std::vector<std::int32_t> Cells, Waiting;
};

Clean_Round::Clean_Round(std::vector<Clean_Line>& lines, const Clean_Rule& rule)
    : Lines(lines), Rule(rule) {
  const auto total = static_cast<std::int32_t>(lines.size());
  Grid.Build(total, [&](std::int32_t n) {
    return Line(n).Deleted ? std::span<const Plane_Point>()
                           : std::span<const Plane_Point>(Line(n).Ends);
  });
  Line_Seen_For.assign(lines.size(), -1);
  Cell_Seen_For.assign(Grid.Cell_Total(), -1);
}

void Clean_Round::Add_Waiting(std::int32_t i, std::int32_t after) {
  Cells.clear();
  Grid.Cells_Along(Line(i).Ends, Cells);
  for (const std::int32_t cell : Cells) {
    std::int32_t& cell_seen = Cell_Seen_For[static_cast<std::size_t>(cell)];
    if (cell_seen == i) continue;
    cell_seen = i;
    const auto shapes = Grid.Shapes_In(cell);
    for (auto at = std::upper_bound(shapes.begin(), shapes.end(), after); at != shapes.end();
         ++at) {
      std::int32_t& seen = Line_Seen_For[static_cast<std::size_t>(*at)];
      if (seen == i || Line(*at).Deleted || Line(*at).Width != Line(i).Width) continue;
      seen = i;
      Waiting.push_back(*at);
      std::push_heap(Waiting.begin(), Waiting.end(), std::greater<>());
    }
  }
}

bool Clean_Round::Clean_Line_At(std::int32_t i) {
  bool took = false;
  Waiting.clear();
  Add_Waiting(i, i);
  while (!Waiting.empty()) {
    std::pop_heap(Waiting.begin(), Waiting.end(), std::greater<>());
    const std::int32_t j = Waiting.back();
    Waiting.pop_back();
    std::array<Plane_Point, 2> ends;
    if (!Join_Lines(Rule, Line(i), Line(j), ends)) continue;
    took = Line(j).Deleted = true;
    if (ends == Line(i).Ends) continue;
    Line(i).Ends = ends;
    Add_Waiting(i, j);
  }
  return took;
}

}  // namespace

bool Join_Lines(const Clean_Rule& rule, const Clean_Line& i, const Clean_Line& j,
                std::array<Plane_Point, 2>& ends) {
  if (!(std::abs(Slope(rule, i.Ends) - Slope(rule, j.Ends)) < rule.Slope_Limit)) return false;
  const std::array<Plane_Point, 4> all{i.Ends[0], i.Ends[1], j.Ends[0], j.Ends[1]};
  std::array<bool, 4> on_other{};
  for (std::size_t n = 0; n < 4; ++n) {
    const auto& other = n < 2 ? j.Ends : i.Ends;
    on_other[n] = Point_On_Segment(all[n], other[0], other[1]);
  }
  switch (std::count(on_other.begin(), on_other.end(), true)) {
    case 2: {
      std::size_t taken = 0;
      for (std::size_t n = 0; n < 4; ++n) {
        if (!on_other[n]) ends[taken++] = all[n];
      }
      return true;
    }
    case 3:  // the line whose end lies free covers the other
      ends = on_other[0] && on_other[1] ? j.Ends : i.Ends;
      return true;
    case 4:
      ends = i.Ends;
      return true;
    default:
      return false;
  }
}

void Clean_Lines(std::vector<Clean_Line>& lines, const Clean_Rule& rule,
                 const std::function<bool(double)>& round) {
  const auto total = static_cast<std::int32_t>(lines.size());
  bool changed = true;
  for (int n = 0; changed && n < Clean_Rounds; ++n) {
    changed = false;
    Clean_Round cleaning(lines, rule);
    for (std::int32_t i = 0; i < total; ++i) {
      if (!round(static_cast<double>(i) / total)) return;
      if (!lines[static_cast<std::size_t>(i)].Deleted) changed |= cleaning.Clean_Line_At(i);
    }
  }
}

void Clean_Pads(std::vector<Gerber_Pad>& pads) {
  std::vector<std::size_t> order(pads.size());
  std::iota(order.begin(), order.end(), 0);
  const auto key = [&](std::size_t n) { return std::tie(pads[n].X, pads[n].Y, pads[n].Shape); };
  std::stable_sort(order.begin(), order.end(),
                   [&](std::size_t a, std::size_t b) { return key(a) < key(b); });
  for (std::size_t n = 1; n < order.size(); ++n) {
    if (key(order[n]) == key(order[n - 1])) pads[order[n]].Deleted = true;
  }
}

bool Clean_Progress::operator()(double share) {
  constexpr int lines_per_text = 10;
  if (Application.EscFlag) return false;
  if (--Until_Text <= 0) {
    Until_Text = lines_per_text;
    Import_Progress(Before, share, "% Completed, press ESC to cancel");
    DoEvents();
  }
  return true;
}

void Gerber_Clean(Gerber_Table_State& artwork, int pass) {
  std::vector<Clean_Line> lines;
  lines.reserve(artwork.Lines.size());
  for (const Gerber_Line& line : artwork.Lines) {
    lines.push_back({{{{line.X1, line.Y1}, {line.X2, line.Y2}}}, line.Width, line.Deleted});
  }
  Clean_Lines(lines, Clean_Data_Rule,
              Clean_Progress("Pass #" + std::to_string(pass) +
                             "   Gerber Import: Cleaning Coordinate Data... "));
  for (std::size_t n = 0; n < lines.size(); ++n) {
    Gerber_Line& line = artwork.Lines[n];
    const auto& ends = lines[n].Ends;
    line.X1 = To_Single(ends[0].X);
    line.Y1 = To_Single(ends[0].Y);
    line.X2 = To_Single(ends[1].X);
    line.Y2 = To_Single(ends[1].Y);
    line.Deleted = lines[n].Deleted;
  }
  if (!Application.EscFlag) Clean_Pads(artwork.Pads);
}

}  // namespace norvik
