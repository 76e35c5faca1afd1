#include "plot/raster.h"

#include "plot/plot_colour.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdlib>
#include <limits>

namespace norvik {

namespace {

// Ends beyond this are first cut in real numbers; within it all arithmetic of the run fits 64 bits.
constexpr double Guard_Band = 1 << 20;
constexpr std::int32_t Guard_Offset = 1 << 20;
constexpr std::int32_t Largest_Brush = 9;

struct Pixel {
  std::int32_t X, Y;
};

// Pixels from (Left, Top) up to but not including (Right, Bottom).
struct Pixel_Area {
  std::int32_t Left, Top, Right, Bottom;
  bool Holds(Pixel p) const { return p.X >= Left && p.X < Right && p.Y >= Top && p.Y < Bottom; }
};

Pixel_Area Area_Of(const Pixel_View& target, std::int32_t grown_by) {
  return {-grown_by, -grown_by, target.Width + grown_by, target.Height + grown_by};
}

// The offset makes truncation a floor; values must lie within the guard band.
inline std::int32_t Floor_In_Band(double value) {
  return static_cast<std::int32_t>(value + Guard_Offset) - Guard_Offset;
}

inline bool In_Band(double value) {
  return value > -Guard_Band && value < Guard_Band;
}

// --- The run ---------------------------------------------------------------------------------

// One step along the longer direction for each pixel; `Minor_Steps_After(k)` of them also went
// along the shorter one.
struct Run {
  Run(Pixel from, Pixel to)
      : From(from),
        Step_X(to.X < from.X ? -1 : 1),
        Step_Y(to.Y < from.Y ? -1 : 1),
        Steep(std::abs(to.Y - from.Y) > std::abs(to.X - from.X)),
        Major(std::max(std::abs(to.X - from.X), std::abs(to.Y - from.Y))),
        Minor(std::min(std::abs(to.X - from.X), std::abs(to.Y - from.Y))) {}

  std::int32_t Minor_Steps_After(std::int32_t k) const {
    if (Major == 0) return 0;
    const std::int64_t need = std::int64_t{k} * Minor - Major / 2;
    return need <= 0 ? 0 : static_cast<std::int32_t>((need + Major - 1) / Major);
  }

  Pixel From;
  std::int32_t Step_X, Step_Y;
  bool Steep;
  std::int32_t Major, Minor;
};

// First and last step of `count` whose coordinate `start + step * k` lies in low..high - 1; empty
// when first is above last.
struct Step_Range {
  std::int32_t First, Last;
};
Step_Range Steps_Within(std::int32_t start, std::int32_t step, std::int32_t count, std::int32_t low,
                        std::int32_t high) {
  const std::int32_t enter = step > 0 ? low - start : start - (high - 1);
  const std::int32_t leave = step > 0 ? high - 1 - start : start - low;
  return {std::max(0, enter), std::min(count, leave)};
}

// Calls `visit` for the pixels of the run that lie in the area, from its start to its end.
template <class Visit>
void Visit_Run(const Run& run, const Pixel_Area& area, const Visit& visit) {
  const Step_Range range =
      run.Steep ? Steps_Within(run.From.Y, run.Step_Y, run.Major, area.Top, area.Bottom)
                : Steps_Within(run.From.X, run.Step_X, run.Major, area.Left, area.Right);
  if (range.First > range.Last) return;
  std::int32_t minor = run.Minor_Steps_After(range.First);
  std::int64_t error =
      run.Major / 2 - std::int64_t{range.First} * run.Minor + std::int64_t{minor} * run.Major;
  for (std::int32_t k = range.First; k <= range.Last; ++k) {
    const Pixel p = run.Steep ? Pixel{run.From.X + run.Step_X * minor, run.From.Y + run.Step_Y * k}
                              : Pixel{run.From.X + run.Step_X * k, run.From.Y + run.Step_Y * minor};
    if (area.Holds(p)) visit(p);
    error -= run.Minor;
    if (error < 0) {
      ++minor;
      error += run.Major;
    }
  }
}

// The two middle pixels of a run of at most 3 steps, by its extents: steps along X and along Y from
// the start. Where a run is shorter, its end stands in.
constexpr std::int32_t Short_Run = 3;
struct Short_Middle {
  std::array<std::int8_t, 2> X, Y;
};
constexpr auto Short_Middles = [] {
  std::array<std::array<Short_Middle, Short_Run + 1>, Short_Run + 1> middles{};
  for (int dx = 0; dx <= Short_Run; ++dx) {
    for (int dy = 0; dy <= Short_Run; ++dy) {
      const int major = dx >= dy ? dx : dy, minor = dx >= dy ? dy : dx;
      auto& middle = middles[static_cast<std::size_t>(dx)][static_cast<std::size_t>(dy)];
      for (int k = 1; k <= 2; ++k) {
        const int along = k < major ? k : major;
        const int need = along * minor - major / 2;
        const int aside = need <= 0 ? 0 : (need + major - 1) / major;
        middle.X[static_cast<std::size_t>(k - 1)] =
            static_cast<std::int8_t>(dx >= dy ? along : aside);
        middle.Y[static_cast<std::size_t>(k - 1)] =
            static_cast<std::int8_t>(dx >= dy ? aside : along);
      }
    }
  }
  return middles;
}();

// A run that lies within the picture, from its start at `at`: calls `dot` for each pixel.
template <class Dot>
inline void Draw_Run_Inside(std::uint32_t* at, std::ptrdiff_t major_step, std::ptrdiff_t minor_step,
                            std::int32_t major, std::int32_t minor, const Dot& dot) {
  std::int32_t error = major / 2;
  dot(at);
  for (std::int32_t k = 0; k < major; ++k) {
    error -= minor;
    const bool both = error < 0;
    at += both ? major_step + minor_step : major_step;
    error += both ? major : 0;
    dot(at);
  }
}

// --- Pens ------------------------------------------------------------------------------------

inline void Draw_Thin_Inside(const Pixel_View& target, Pixel from, Pixel to, std::uint32_t argb) {
  std::uint32_t* at = target.Pixels + from.Y * target.Stride + from.X;
  const std::ptrdiff_t step_x = to.X < from.X ? -1 : 1;
  const std::ptrdiff_t step_y = to.Y < from.Y ? -target.Stride : target.Stride;
  const std::int32_t dx = std::abs(to.X - from.X), dy = std::abs(to.Y - from.Y);
  if ((dx | dy) <= Short_Run) {
    // Most lines of a full plot. Always four stores, some to the same pixel: the processor cannot
    // foretell the lengths, and a wrong guess costs more than the stores.
    const Short_Middle& middle =
        Short_Middles[static_cast<std::size_t>(dx)][static_cast<std::size_t>(dy)];
    at[0] = argb;
    at[middle.X[0] * step_x + middle.Y[0] * step_y] = argb;
    at[middle.X[1] * step_x + middle.Y[1] * step_y] = argb;
    at[dx * step_x + dy * step_y] = argb;
  } else {
    const auto dot = [argb](std::uint32_t* pixel) { *pixel = argb; };
    const bool flat = dx >= dy;
    Draw_Run_Inside(at, flat ? step_x : step_y, flat ? step_y : step_x, std::max(dx, dy),
                    std::min(dx, dy), dot);
  }
}

void Draw_Thin(const Pixel_View& target, Pixel from, Pixel to, std::uint32_t argb) {
  const Pixel_Area picture = Area_Of(target, 0);
  if (picture.Holds(from) && picture.Holds(to)) {
    Draw_Thin_Inside(target, from, to, argb);
  } else {
    Visit_Run(Run(from, to), picture,
              [&](Pixel p) { target.Pixels[p.Y * target.Stride + p.X] = argb; });
  }
}

// Rows of a round brush: for each the columns from -Left to +Right around the middle.
struct Brush {
  std::int32_t Above = 0, Below = 0;  // rows beside the middle one
  std::array<std::int32_t, Largest_Brush> Left{}, Right{};
};

Brush Round_Brush(std::int32_t width) {
  Brush brush;
  brush.Above = (width - 1) / 2;
  brush.Below = width / 2;
  // A disc around the middle of the brush's square; the small margin keeps 3 x 3 whole.
  const double middle = (width - 1) / 2.0, radius = width / 2.0;
  for (std::int32_t row = 0; row < width; ++row) {
    const double up = row - middle;
    const double half = std::sqrt(std::max(0.0, radius * radius - up * up));
    const auto first = static_cast<std::int32_t>(std::ceil(middle - half));
    brush.Left[static_cast<std::size_t>(row)] = brush.Above - first;
    brush.Right[static_cast<std::size_t>(row)] = width - 1 - first - brush.Above;
  }
  return brush;
}

const Brush& Brush_Of(std::int32_t width) {
  static const std::array<Brush, Largest_Brush + 1> brushes = [] {
    std::array<Brush, Largest_Brush + 1> made;
    for (std::int32_t w = 1; w <= Largest_Brush; ++w)
      made[static_cast<std::size_t>(w)] = Round_Brush(w);
    return made;
  }();
  return brushes[static_cast<std::size_t>(width)];
}

void Stamp_Clipped(const Pixel_View& target, const Brush& brush, Pixel p, std::uint32_t argb) {
  const std::int32_t top = std::max(0, p.Y - brush.Above);
  const std::int32_t bottom = std::min(target.Height - 1, p.Y + brush.Below);
  for (std::int32_t y = top; y <= bottom; ++y) {
    const auto row = static_cast<std::size_t>(y - p.Y + brush.Above);
    const std::int32_t left = std::max(0, p.X - brush.Left[row]);
    const std::int32_t right = std::min(target.Width - 1, p.X + brush.Right[row]);
    if (left <= right) {
      std::uint32_t* at = target.Pixels + y * target.Stride + left;
      std::fill(at, at + (right - left + 1), argb);
    }
  }
}

// The pen of three pixels, whose brush is a full square, is the usual wide pen.
inline void Stamp_Three(std::uint32_t* middle, std::ptrdiff_t stride, std::uint32_t argb) {
  for (std::ptrdiff_t row = -1; row <= 1; ++row) {
    std::uint32_t* at = middle + row * stride;
    at[-1] = argb;
    at[0] = argb;
    at[1] = argb;
  }
}

inline void Draw_Three_Inside(const Pixel_View& target, const Run& run, std::uint32_t argb) {
  const std::ptrdiff_t step_x = run.Step_X, step_y = run.Step_Y * target.Stride;
  Draw_Run_Inside(target.Pixels + run.From.Y * target.Stride + run.From.X,
                  run.Steep ? step_y : step_x, run.Steep ? step_x : step_y, run.Major, run.Minor,
                  [&](std::uint32_t* middle) { Stamp_Three(middle, target.Stride, argb); });
}

void Draw_Brushed(const Pixel_View& target, Pixel from, Pixel to, std::int32_t width,
                  std::uint32_t argb) {
  const Pixel_Area inner = Area_Of(target, -1);
  const Run run(from, to);
  if (width == 3 && inner.Holds(from) && inner.Holds(to)) {
    Draw_Three_Inside(target, run, argb);
    return;
  }
  const Brush& brush = Brush_Of(width);
  Visit_Run(run, Area_Of(target, width), [&](Pixel p) { Stamp_Clipped(target, brush, p, argb); });
}

// Widens low..high by the part of the row at `y` that lies within `radius` of (cx, cy).
void Widen_By_Disc(double cx, double cy, double radius, double y, double& low, double& high) {
  const double under_root = radius * radius - (y - cy) * (y - cy);
  if (under_root < 0) return;
  const double half = std::sqrt(under_root);
  low = std::min(low, cx - half);
  high = std::max(high, cx + half);
}

// The capsule is convex, so each of its rows is one stretch: the union of what the two end discs
// and the four edges of the body reach.
void Draw_Capsule(const Pixel_View& target, Pixel from, Pixel to, std::int32_t width,
                  std::uint32_t argb) {
  const double radius = width / 2.0;
  const double length = std::hypot(to.X - from.X, to.Y - from.Y);
  const double nx = length > 0 ? -(to.Y - from.Y) / length * radius : 0;
  const double ny = length > 0 ? (to.X - from.X) / length * radius : 0;
  const std::array<std::array<double, 2>, 4> corner{{{from.X + nx, from.Y + ny},
                                                     {to.X + nx, to.Y + ny},
                                                     {to.X - nx, to.Y - ny},
                                                     {from.X - nx, from.Y - ny}}};
  const auto reach = static_cast<std::int32_t>(std::ceil(radius));
  const std::int32_t top = std::max(0, std::min(from.Y, to.Y) - reach);
  const std::int32_t bottom = std::min(target.Height - 1, std::max(from.Y, to.Y) + reach);
  for (std::int32_t row = top; row <= bottom; ++row) {
    double low = Guard_Band, high = -Guard_Band;
    Widen_By_Disc(from.X, from.Y, radius, row, low, high);
    Widen_By_Disc(to.X, to.Y, radius, row, low, high);
    for (std::size_t i = 0; i < corner.size(); ++i) {
      const auto& a = corner[i];
      const auto& b = corner[(i + 1) % corner.size()];
      if (a[1] == b[1] || row < std::min(a[1], b[1]) || row > std::max(a[1], b[1])) continue;
      const double x = a[0] + (b[0] - a[0]) * (row - a[1]) / (b[1] - a[1]);
      low = std::min(low, x);
      high = std::max(high, x);
    }
    const auto left = static_cast<std::int32_t>(std::ceil(std::max(low, 0.0)));
    const auto right = static_cast<std::int32_t>(std::floor(std::min(high, target.Width - 1.0)));
    if (left > right) continue;
    std::uint32_t* at = target.Pixels + row * target.Stride + left;
    std::fill(at, at + (right - left + 1), argb);
  }
}

inline void Draw_Pixels(const Pixel_View& target, Pixel from, Pixel to, std::int32_t width,
                        std::uint32_t argb) {
  if (width <= 1) {
    Draw_Thin(target, from, to, argb);
  } else if (width <= Largest_Brush) {
    Draw_Brushed(target, from, to, width, argb);
  } else {
    Draw_Capsule(target, from, to, width, argb);
  }
}

// Cuts a line to the guard band (Liang and Barsky, 1984). False when nothing of it is left.
bool Cut_To_Band(double& x1, double& y1, double& x2, double& y2) {
  if (!std::isfinite(x1) || !std::isfinite(y1) || !std::isfinite(x2) || !std::isfinite(y2))
    return false;
  constexpr double edge = Guard_Band - 1;
  const double dx = x2 - x1, dy = y2 - y1;
  double enter = 0, leave = 1;
  const auto cut = [&](double slope, double room) {
    if (slope == 0) return room >= 0;
    const double at = room / slope;
    if (slope < 0) {
      enter = std::max(enter, at);
    } else {
      leave = std::min(leave, at);
    }
    return enter <= leave;
  };
  if (!std::isfinite(dx) || !std::isfinite(dy)) return false;
  if (!cut(-dx, x1 + edge) || !cut(dx, edge - x1) || !cut(-dy, y1 + edge) || !cut(dy, edge - y1))
    return false;
  x2 = x1 + leave * dx;
  y2 = y1 + leave * dy;
  x1 += enter * dx;
  y1 += enter * dy;
  return In_Band(x1) && In_Band(y1) && In_Band(x2) && In_Band(y2);
}

// From world to pixels, counted from 1 so that a truncation tells what lies before the first.
class Pixel_Mapping {
 public:
  Pixel_Mapping(const Pixel_View& view, const Plot_Scale& scale)
      : To_X(view.Width / scale.Width()),
        To_Y(view.Height / scale.Height()),
        From_X(1 - scale.Left * To_X),
        From_Y(1 - scale.Top * To_Y),
        Width(static_cast<std::uint32_t>(view.Width)),
        Height(static_cast<std::uint32_t>(view.Height)) {}
  double X(float x) const { return x * To_X + From_X; }
  double Y(float y) const { return y * To_Y + From_Y; }
  // The pixel of a point; true when it lies on the picture.
  bool Inside(float x, float y, Pixel& pixel) const {
    pixel = {Held(X(x)) - 1, Held(Y(y)) - 1};
    return (static_cast<std::uint32_t>(pixel.X) < Width) &
           (static_cast<std::uint32_t>(pixel.Y) < Height);
  }

 private:
  // What does not fit, or is no number, comes to lie outside.
  static std::int32_t Held(double pixel) {
    return static_cast<std::int32_t>(std::min(Guard_Band, std::max(-1.0, pixel)));
  }

  double To_X, To_Y, From_X, From_Y;
  std::uint32_t Width, Height;
};

}  // namespace

Pixel_View View_Of(Plot_Image& image) {
  return {image.Pixels.data(), image.Width, image.Height, image.Width};
}

void Fill_Raster(const Pixel_View& target, std::uint32_t argb) {
  for (std::int32_t y = 0; y < target.Height; ++y) {
    std::uint32_t* row = target.Pixels + y * target.Stride;
    std::fill(row, row + target.Width, argb);
  }
}

void Draw_Raster_Line(const Pixel_View& target, double x1, double y1, double x2, double y2,
                      std::int32_t width, std::uint32_t argb) {
  if (!(In_Band(x1) && In_Band(y1) && In_Band(x2) && In_Band(y2)) && !Cut_To_Band(x1, y1, x2, y2))
    return;
  Draw_Pixels(target, {Floor_In_Band(x1), Floor_In_Band(y1)},
              {Floor_In_Band(x2), Floor_In_Band(y2)}, width, argb);
}

void Draw_Raster_Lines(const Pixel_View& target, const Plot_Scale& scale,
                       std::span<const Plot_Line> lines, std::int32_t pen_scale) {
  const Pixel_View view = target;
  const Pixel_Mapping mapping(view, scale);
  // Moves of a program mostly start where the one before ended, in the same colour.
  float last_x = std::numeric_limits<float>::quiet_NaN(), last_y = last_x;
  bool last_inside = false;
  Pixel last{0, 0};
  std::int32_t color = Black;
  std::uint32_t argb = Argb(color);
  for (const Plot_Line& line : lines) {
    Pixel from = last;
    bool from_inside = last_inside;
    if (line.X1 != last_x || line.Y1 != last_y)
      from_inside = mapping.Inside(line.X1, line.Y1, from);
    last_x = line.X2;
    last_y = line.Y2;
    last_inside = mapping.Inside(line.X2, line.Y2, last);
    if (line.Color != color) {
      color = line.Color;
      argb = Argb(color);
    }
    const std::int32_t width = line.Width * pen_scale;
    if (width <= 1 && from_inside && last_inside) {
      Draw_Thin_Inside(view, from, last, argb);
    } else {
      Draw_Raster_Line(view, mapping.X(line.X1) - 1, mapping.Y(line.Y1) - 1, mapping.X(line.X2) - 1,
                       mapping.Y(line.Y2) - 1, width, argb);
    }
  }
}

}  // namespace norvik
