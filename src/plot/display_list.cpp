#include "plot/display_list.h"

#include "core/application.h"
#include "core/fault.h"
#include "core/rounding.h"
#include "core/setup.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <string>

namespace norvik {

namespace {

constexpr float Absent_End = std::numeric_limits<float>::quiet_NaN();
// A wire starts on the deep level when its Z is nearer than this, in units of the setup.
constexpr double Deep_Level_Tolerance = 0.01;
// More grid lines than this in one direction would fill the surface.
constexpr double Most_Grid_Lines = 2000;

bool Fits_Single(double value) {
  return std::fabs(value) <= std::numeric_limits<float>::max();
}

}  // namespace

// --- The list --------------------------------------------------------------------------------

void Display_List::Clear() {
  for (auto& column : Ends) column.clear();
  Color.clear();
  Width.clear();
  NodeMark.clear();
  NodeColor.clear();
  Leading_Absent = {};
  Has_Nodes = false;
  Too_Large = 0;
}

void Display_List::Reserve(std::size_t count) {
  for (auto& column : Ends) column.reserve(count);
  Color.reserve(count);
  Width.reserve(count);
  NodeMark.reserve(count);
  NodeColor.reserve(count);
}

void Display_List::Append(const Line_Ends& ends, std::int32_t color, std::int16_t width) {
  bool too_large = false;
  for (std::size_t place = 0; place < line_end::Count; ++place) {
    float value = Absent_End;
    if (ends[place]) {
      const bool fits = Fits_Single(*ends[place]);
      too_large |= !fits;
      // The infinity keeps such a line from being drawn.
      value = fits ? static_cast<float>(*ends[place]) : std::numeric_limits<float>::infinity();
    }
    Ends[place].push_back(value);
  }
  Too_Large += too_large ? 1 : 0;
  Color.push_back(color);
  Width.push_back(width);
  NodeMark.push_back(false);
  NodeColor.push_back(color);
}

void Display_List::Mark_Node(std::int32_t color) {
  NodeMark.back() = true;
  NodeColor.back() = color;
  Has_Nodes = true;
}

void Display_List::Close() {
  for (std::size_t place = 0; place < line_end::Count; ++place) {
    std::vector<float>& column = Ends[place];
    std::size_t& leading = Leading_Absent[place];
    while (leading < column.size() && std::isnan(column[leading])) ++leading;
    for (std::size_t i = leading + 1; i < column.size(); ++i)
      if (std::isnan(column[i])) column[i] = column[i - 1];
  }
}

void Display_List::Fill_Leading(const Line_Memory& memory) {
  for (std::size_t place = 0; place < line_end::Count; ++place) {
    const std::size_t count = Leading_Absent[place];
    if (count == 0 || Ends[place][0] == memory[place]) continue;
    std::fill_n(Ends[place].begin(), count, memory[place]);
  }
}

Line_Columns Display_List::Columns() const {
  using namespace line_end;
  return {Ends[X1].data(), Ends[Y1].data(), Ends[Z1].data(),
          Ends[X2].data(), Ends[Y2].data(), Ends[Z2].data()};
}

// --- Circles ---------------------------------------------------------------------------------

std::array<Line_Ends, Node_Strokes> Node_Circle(double x, double y, double z) {
  constexpr double pi = 3.14157;
  const auto point = [&](std::size_t k) {
    const double t = 2 * pi / 10 * static_cast<double>(k);
    return Plot_Point{x + Node_Radius * std::cos(t), y + Node_Radius * std::sin(t)};
  };
  std::array<Line_Ends, Node_Strokes> strokes;
  for (std::size_t k = 1; k <= Node_Strokes; ++k) {
    const Plot_Point from = point(k), to = point(k == Node_Strokes ? 1 : k + 1);
    strokes[k - 1] = {from.X, from.Y, z, to.X, to.Y, z};
  }
  return strokes;
}

// --- Pens of wires ---------------------------------------------------------------------------

Line_Ends Ends_Of(const Wire& wire) {
  return {wire.Start[1], wire.Start[2], wire.Start[3], wire.End[1], wire.End[2], wire.End[3]};
}

std::int16_t Wire_Pens::Width(const Wire& wire) {
  if (wire.Tool) Remembered_Tool = wire.Tool;
  double size = 0;
  if (Remembered_Tool) size = Tools.Diameter[To_Int32(*Remembered_Tool)];
  // A tool without a diameter counts as none.
  if (size == 0 || MachineSetup.Plot_Bit_Radius_Enable == 1) size = MachineSetup.Plot_Bit_Radious;
  if (!wire.FeedMove) return 1;
  constexpr double widest = std::numeric_limits<std::int16_t>::max();
  return To_Int16(std::clamp(Pixel_Factor * size, 1.0, widest));
}

std::int32_t Wire_Pens::Color(const Wire& wire) const {
  const double deep = MachineSetup.Axis_Tool_Height[2];
  if (wire.Start[3] && std::fabs(deep - *wire.Start[3]) < Deep_Level_Tolerance)
    return Palette[plot_role::Deep_Cut];
  return Palette[wire.FeedMove ? plot_role::Cut : plot_role::Travel];
}

void Wire_Pens::Append_To(Display_List& list, const Wire& wire) {
  const std::int16_t width = Width(wire);
  list.Append(Ends_Of(wire), Color(wire), width);

  const bool was_on = Spindle_On;
  const std::int16_t clockwise = wire.Out[0], counter_clockwise = wire.Out[1];
  if (clockwise == Output_On || counter_clockwise == Output_On) {
    Spindle_On = true;
  } else if (clockwise == Output_Off && counter_clockwise == Output_Off) {
    Spindle_On = false;
  }
  list.NodeColor.back() = Palette[Spindle_On ? plot_role::Cut : plot_role::Travel];
  if (MachineSetup.Gcode_LineNodes && Spindle_On != was_on) list.Mark_Node(list.NodeColor.back());
}

// --- The grid --------------------------------------------------------------------------------

void Build_Grid(const Plot_Palette& palette, double step, Display_List& list) {
  list.Clear();
  const double width = MachineSetup.Axis_Depth[1], height = MachineSetup.Axis_Depth[2];
  if (!(step > 0) || !(std::max(width, height) / step <= Most_Grid_Lines))
    throw Fault(Fault_Number::Invalid_Call,
                "The grid size " + std::to_string(step) + " does not fit a table of " +
                    std::to_string(width) + " x " + std::to_string(height) +
                    "; set a larger grid size in the table setup");
  const bool centered = MachineSetup.Plot_Centered;
  const double x_low = centered ? -width / 2 : 0, x_high = centered ? width / 2 : width;
  const double y_low = centered ? -height / 2 : 0, y_high = centered ? height / 2 : height;
  const std::int32_t color = palette[plot_role::Grid];
  // The steps add up, rounding included: a last line may miss the table's edge.
  for (double x = x_low; x <= x_high; x += step)
    list.Append({x, y_low, 0.0, x, y_high, 0.0}, color, 1);
  for (double y = y_low; y <= y_high; y += step)
    list.Append({x_low, y, 0.0, x_high, y, 0.0}, color, 1);
  list.Close();
}

}  // namespace norvik
