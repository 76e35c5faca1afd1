// plot_bench: a full redraw of the plot against the toolkit's painter.
//
//   plot_bench            prints one row for each number of lines and pen
//
// The program is a random walk of short moves in a window of 900 x 900 pixels, a colour change
// every 40 moves. In one run, in turns, on the same projected lines:
//
//   redraw    clear, projection of the list, rejection, our rasteriser: what a rotation costs
//   lines     our rasteriser alone on the projected lines, with the clear
//   painter   the toolkit on its fastest of three ways (lines of whole pixels, lines of real
//             numbers, one polyline a colour), projection not counted, with the clear
//
// Below: what a change of zoom costs on top, the lists built anew from 900,000 wires.
//
// Each figure is the median of the rounds, in milliseconds of processor time.
#include "core/setup.h"
#include "plot/display_list.h"
#include "plot/line_painter.h"
#include "plot/raster_surface.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <ctime>
#include <functional>
#include <random>
#include <vector>

#include <QImage>
#include <QPainter>

namespace norvik {
namespace {

constexpr std::int32_t side = 900;
constexpr int rounds = 11;
constexpr double half_span = 5;
constexpr Plot_Scale window{-half_span, half_span, half_span, -half_span};

Display_List Random_Walk(std::size_t count, std::int16_t width) {
  std::mt19937 random(2024);
  std::uniform_real_distribution<double> turn(-0.3, 0.3);
  Display_List list;
  list.Reserve(count);
  double x = 0, y = 0, heading = 0;
  while (list.Count() < count) {
    heading += turn(random);
    const double next_x = x + 0.02 * std::cos(heading), next_y = y + 0.02 * std::sin(heading);
    if (std::fabs(next_x) > half_span || std::fabs(next_y) > half_span) {
      heading += 2;
      continue;
    }
    const bool cut = list.Count() / 40 % 4 != 0;
    list.Append({x, y, 0.0, next_x, next_y, 0.0}, cut ? 0x005ED5 : 0xFF0000, width);
    x = next_x;
    y = next_y;
  }
  list.Close();
  return list;
}

// The surface that only keeps what it is given.
struct Keeping_Surface : Plot_Surface {
  void Set_Scale(const Plot_Scale&) override {}
  void Clear(std::int32_t) override {}
  void Draw_Lines(std::span<const Plot_Line> lines) override {
    Kept.insert(Kept.end(), lines.begin(), lines.end());
  }
  void Draw_Text(double, double, std::string_view, std::int32_t) override {}
  void Draw_Picture(double, double, const Plot_Image&) override {}
  std::vector<Plot_Line> Kept;
};

void Redraw(const Display_List& list, Plot_Surface& surface) {
  Line_Memory memory{};
  surface.Set_Scale(window);
  surface.Clear(White);
  Line_Painter painter(surface, Projection(0, 3.14159265, 3.14159265), window, memory);
  painter.Draw(list, 0, list.Count());
  painter.Flush();
}

// --- The toolkit -----------------------------------------------------------------------------

// Projected lines of one colour, prepared outside the time.
template <class Item>
struct Color_Run {
  QColor Color;
  std::vector<Item> Items;
};

QPointF Pixel(float x, float y) {
  return {(x - window.Left) / window.Width() * side, (y - window.Top) / window.Height() * side};
}

template <class Item>
std::vector<Color_Run<Item>> Prepared(
    const std::vector<Plot_Line>& lines,
    const std::function<void(std::vector<Item>&, QPointF, QPointF)>& add) {
  std::vector<Color_Run<Item>> runs;
  std::int32_t color = -1;
  for (const Plot_Line& line : lines) {
    if (line.Color != color) runs.push_back({QColor::fromRgb(Argb(line.Color)), {}});
    color = line.Color;
    add(runs.back().Items, Pixel(line.X1, line.Y1), Pixel(line.X2, line.Y2));
  }
  return runs;
}

template <class Item, class Draw>
void Paint(QImage& image, const std::vector<Color_Run<Item>>& runs, int width, const Draw& draw) {
  image.fill(Qt::white);
  QPainter painter(&image);
  for (const Color_Run<Item>& run : runs) {
    painter.setPen(QPen(run.Color, width));
    draw(painter, run.Items.data(), static_cast<int>(run.Items.size()));
  }
}

// --- The comparison --------------------------------------------------------------------------

// Processor time of this thread, so that other work on the machine counts little.
double Milliseconds(const std::function<void()>& work) {
  const auto now = [] {
    timespec time{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) * 1e3 + static_cast<double>(time.tv_nsec) / 1e6;
  };
  const double begin = now();
  work();
  return now() - begin;
}

void Compare(std::size_t count, std::int16_t width) {
  const Display_List list = Random_Walk(count, width);
  Keeping_Surface projected;
  Redraw(list, projected);
  const auto whole = Prepared<QLine>(projected.Kept, [](auto& items, QPointF a, QPointF b) {
    items.emplace_back(a.toPoint(), b.toPoint());
  });
  const auto real = Prepared<QLineF>(
      projected.Kept, [](auto& items, QPointF a, QPointF b) { items.emplace_back(a, b); });
  const auto chain = Prepared<QPoint>(projected.Kept, [](auto& items, QPointF a, QPointF b) {
    if (items.empty()) items.push_back(a.toPoint());
    items.push_back(b.toPoint());
  });

  Raster_Surface surface(side, side);
  QImage image(side, side, QImage::Format_RGB32);
  const std::function<void()> ways[] = {
      [&] { Redraw(list, surface); },
      [&] {
        surface.Clear(White);
        surface.Draw_Lines(projected.Kept);
      },
      [&] { Paint(image, whole, width, [](QPainter& p, auto* i, int n) { p.drawLines(i, n); }); },
      [&] { Paint(image, real, width, [](QPainter& p, auto* i, int n) { p.drawLines(i, n); }); },
      [&] {
        Paint(image, chain, width, [](QPainter& p, auto* i, int n) { p.drawPolyline(i, n); });
      },
  };
  std::vector<std::vector<double>> times(std::size(ways));
  for (int round = 0; round < rounds; ++round)
    for (std::size_t way = 0; way < std::size(ways); ++way)
      times[way].push_back(Milliseconds(ways[way]));
  std::vector<double> median;
  for (auto& row : times) {
    std::nth_element(row.begin(), row.begin() + rounds / 2, row.end());
    median.push_back(row[rounds / 2]);
  }
  const double painter = std::min({median[2], median[3], median[4]});
  std::printf("%8zu %4d %9.2f %9.2f %10.2f %9.2f %9.2f %8.3f %8.3f\n", count, width, median[0],
              median[1], median[2], median[3], median[4], median[0] / painter, median[1] / painter);
}

void Time_Rebuild(std::size_t count) {
  const Display_List walk = Random_Walk(count, 1);
  Record_List<Wire> wires;
  for (std::size_t i = 0; i < count; ++i) {
    Wire& wire = wires.push_back({});
    for (std::size_t place = 0; place < 3; ++place) {
      wire.Start[static_cast<int>(place) + 1] = walk.Ends[place][i];
      wire.End[static_cast<int>(place) + 1] = walk.Ends[place + 3][i];
    }
  }
  Display_List list;
  std::vector<double> times;
  for (int round = 0; round < rounds; ++round)
    times.push_back(Milliseconds([&] {
      list.Clear();
      list.Reserve(count);
      Wire_Pens pens(1e-5, MachineSetup.Plot_Color);
      for (const Wire& wire : wires) pens.Append_To(list, wire);
      list.Close();
    }));
  std::nth_element(times.begin(), times.begin() + rounds / 2, times.end());
  std::printf("lists from %zu wires: %.2f ms\n", count, times[rounds / 2]);
}

}  // namespace
}  // namespace norvik

int main() {
  std::printf("%8s %4s %9s %9s %10s %9s %9s %8s %8s\n", "lines", "pen", "redraw", "lines",
              "painter:px", "real", "polyline", "redraw/p", "lines/p");
  for (const std::size_t count : {std::size_t{100'000}, std::size_t{900'000}})
    for (const int width : {1, 3}) norvik::Compare(count, static_cast<std::int16_t>(width));
  norvik::Time_Rebuild(900'000);
}
