#include "tools/speed_chart.h"

#include "core/axes.h"
#include "core/setup.h"

#include <algorithm>
#include <cmath>

namespace norvik {

namespace {

double Length_Of(const Wire& wire) {
  if (wire.Motion != 1) return 0;
  const auto travel = [&](int axis) {
    return wire.End[axis].value_or(0) - wire.Start[axis].value_or(0);
  };
  return std::hypot(travel(1), travel(2), travel(3));
}

// Keeps of the points of one column what the eye would see of them.
class Column_Filter {
 public:
  Column_Filter(double from, double width) : From(from), Width(width) {}

  void Add(const Chart_Point& point) {
    const double column = Width > 0 ? std::floor((point.Way - From) / Width) : 0;
    if (Count > 0 && column != Column) Flush();
    Column = column;
    if (Count++ == 0) {
      First = Lowest = Highest = point;
    } else {
      if (point.Speed < Lowest.Speed) Lowest = point;
      if (point.Speed > Highest.Speed) Highest = point;
    }
    Last = point;
  }
  std::vector<Chart_Point> Take() {
    Flush();
    return std::move(Kept);
  }

 private:
  void Flush() {
    if (Count == 0) return;
    Kept.push_back(First);
    if (Count > 2) {
      const bool falls = Highest.Way < Lowest.Way;
      Kept.push_back(falls ? Highest : Lowest);
      Kept.push_back(falls ? Lowest : Highest);
    }
    if (Count > 1) Kept.push_back(Last);
    Count = 0;
  }

  double From, Width;
  double Column = 0;
  int Count = 0;
  Chart_Point First, Lowest, Highest, Last;
  std::vector<Chart_Point> Kept;
};

}  // namespace

void Speed_Chart::Take(const Record_List<Wire>& wires) {
  Way_Behind.clear();
  Way_Behind.reserve(wires.size());
  Top = 0;
  double way = 0;
  for (const Wire& wire : wires) {
    way += Length_Of(wire);
    Way_Behind.push_back(way);
    if (wire.Motion != 1) continue;
    Top = std::max({Top, double{wire.IPM_S}, double{wire.IPM_R}, double{wire.IPM_E}});
  }
  if (Held && Right <= Length()) return;
  Show_All();
}

void Speed_Chart::Show_All() {
  Left = 0;
  Right = Length();
}

void Speed_Chart::Set_Section(double from, double to) {
  const double span = std::min(to - from, Length());
  Left = std::clamp(from, 0.0, Length() - span);
  Right = Left + span;
}

void Speed_Chart::Zoom(double at, double factor) {
  const double least = Length() / 1e7;
  const double span = Right - Left;
  if (!(span > 0) || !(factor > 0)) return;
  const double share = std::clamp((at - Left) / span, 0.0, 1.0);
  const double wanted = std::clamp(span / factor, least, Length());
  Set_Section(at - share * wanted, at + (1 - share) * wanted);
}

void Speed_Chart::Move_By(double way) {
  Set_Section(Left + way, Right + way);
}

void Speed_Chart::Follow(std::int32_t row) {
  if (Held || row < 1 || row > static_cast<std::int32_t>(Way_Behind.size())) return;
  const double middle = (Start_Of(row) + End_Of(row)) / 2;
  if (middle >= Left && middle <= Right) return;
  const double half = (Right - Left) / 2;
  Set_Section(middle - half, middle + half);
}

std::int32_t Speed_Chart::Row_At(double way) const {
  if (Way_Behind.empty()) return 0;
  const auto at = std::lower_bound(Way_Behind.begin(), Way_Behind.end(), way);
  const auto index = std::min<std::ptrdiff_t>(at - Way_Behind.begin(),
                                              static_cast<std::ptrdiff_t>(Way_Behind.size()) - 1);
  return static_cast<std::int32_t>(index) + 1;
}

double Speed_Chart::Start_Of(std::int32_t row) const {
  return row > 1 ? Way_Behind[static_cast<std::size_t>(row - 2)] : 0;
}

double Speed_Chart::End_Of(std::int32_t row) const {
  return Way_Behind[static_cast<std::size_t>(row - 1)];
}

std::vector<Chart_Point> Speed_Chart::Points(const Record_List<Wire>& wires, Line line,
                                             int columns) const {
  Column_Filter filter(Left, (Right - Left) / std::max(columns, 1));
  const std::int32_t count = static_cast<std::int32_t>(std::min(wires.size(), Way_Behind.size()));
  for (std::int32_t row = Row_At(Left); row >= 1 && row <= count && Start_Of(row) <= Right; ++row) {
    const Wire& wire = wires[static_cast<std::size_t>(row - 1)];
    if (wire.Motion != 1) continue;
    switch (line) {
      case Line::IPM_S:
        filter.Add({Start_Of(row), wire.IPM_S});
        break;
      case Line::IPM_R:
        filter.Add({Start_Of(row), wire.IPM_R});
        filter.Add({End_Of(row), wire.IPM_R});
        break;
      case Line::IPM_E:
        filter.Add({End_Of(row), wire.IPM_E});
        break;
    }
  }
  return filter.Take();
}

std::vector<Chart_Limit> Chart_Limits() {
  std::vector<Chart_Limit> limits;
  for (int axis = 1; axis <= 3; ++axis) {
    limits.push_back(
        {std::string("limit ") + Axis_Letter(axis), MachineSetup.Axis_Max_Feed_Rate[axis]});
  }
  limits.push_back({"ramp start", MachineSetup.Axis_Ramp_Start});
  return limits;
}

}  // namespace norvik
