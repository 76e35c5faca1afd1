#include "import/dxf/end_index.h"

#include <algorithm>
#include <cmath>
#include <numeric>
#include <tuple>

namespace norvik {

namespace {

constexpr double Cell_Share = 0.55;  // of the tolerance

// Beyond this all cells count as one, which is slower and not wrong.
std::int64_t Cell_Number(float value, double cell_size) {
  constexpr double bound = 4e18;
  return static_cast<std::int64_t>(std::clamp(std::floor(value / cell_size), -bound, bound));
}

}  // namespace

void End_Index::Build(const std::vector<Point>& ends, float tolerance) {
  Tolerance = tolerance;
  Sites.clear();
  Cells.clear();
  Free.assign(ends.size(), 1);
  if (!(tolerance > 0) || ends.empty()) return;
  Build_Sites(ends);
  Build_Lanes();
  for (std::size_t end = 0; end < ends.size(); ++end) {
    Free[end] = Is_Connected(static_cast<End>(end)) ? 0 : 1;
  }
}

void End_Index::Build_Sites(const std::vector<Point>& ends) {
  const double cell_size = static_cast<double>(Tolerance) * Cell_Share;
  struct Keyed {
    std::int64_t Cell_Y, Cell_X;
    Point At;
    End Number;
    auto Order() const { return std::tie(Cell_Y, Cell_X, At.X, At.Y, At.Has_Z, At.Z); }
  };
  std::vector<Keyed> keyed(ends.size());
  for (std::size_t n = 0; n < ends.size(); ++n) {
    keyed[n] = {Cell_Number(ends[n].Y, cell_size), Cell_Number(ends[n].X, cell_size), ends[n],
                static_cast<End>(n)};
  }
  std::sort(keyed.begin(), keyed.end(),
            [](const Keyed& a, const Keyed& b) { return a.Order() < b.Order(); });

  Site_Of.resize(ends.size());
  Place_Of.resize(ends.size());
  Ends_In_Order.resize(ends.size());
  Sites_In_Order.clear();
  for (std::size_t n = 0; n < keyed.size(); ++n) {
    const Keyed& end = keyed[n];
    const Keyed* before = n > 0 ? &keyed[n - 1] : nullptr;
    if (!before || before->Cell_Y != end.Cell_Y || before->Cell_X != end.Cell_X) {
      Cell cell;
      cell.X = end.Cell_X;
      cell.Y = end.Cell_Y;
      cell.First_Site = static_cast<std::int32_t>(Sites.size());
      Cells.push_back(cell);
    }
    if (!before || before->Order() != end.Order()) {
      const auto number = static_cast<std::int32_t>(Sites.size());
      Sites.push_back({end.At, static_cast<std::int32_t>(Cells.size()) - 1,
                       static_cast<std::int32_t>(n), 0, number});
      Sites_In_Order.push_back(number);
      ++Cells.back().Live_Sites;
    }
    ++Sites.back().Live;
    ++Cells.back().Live_Ends;
    Site_Of[static_cast<std::size_t>(end.Number)] = static_cast<std::int32_t>(Sites.size()) - 1;
    Place_Of[static_cast<std::size_t>(end.Number)] = static_cast<std::int32_t>(n);
    Ends_In_Order[n] = end.Number;
  }
}

void End_Index::Build_Lanes() {
  const auto at = [](std::int64_t y, std::int64_t x) { return std::pair(y, x); };
  for (Cell& cell : Cells) {
    cell.Tight = Is_Tight(cell);
    for (int lane = 0; lane < Lanes; ++lane) {
      const std::int64_t y = cell.Y + lane - Reach;
      const auto first = std::lower_bound(
          Cells.begin(), Cells.end(), at(y, cell.X - Reach),
          [&](const Cell& c, const auto& wanted) { return at(c.Y, c.X) < wanted; });
      auto last = first;
      while (last != Cells.end() && last->Y == y && last->X <= cell.X + Reach) ++last;
      const auto place = static_cast<std::size_t>(lane);
      cell.Lane_First[place] = static_cast<std::int32_t>(first - Cells.begin());
      cell.Lane_Last[place] = static_cast<std::int32_t>(last - Cells.begin());
    }
  }
}

// Sites of a cell are sorted by X first; in each direction the extremes decide.
bool End_Index::Is_Tight(const Cell& cell) const {
  Point low = Sites[static_cast<std::size_t>(cell.First_Site)].At, high = low;
  for (std::int32_t s = cell.First_Site; s < cell.First_Site + cell.Live_Sites; ++s) {
    const Point& point = Sites[static_cast<std::size_t>(s)].At;
    if (point.Has_Z != low.Has_Z) return false;
    low = {std::min(low.X, point.X), std::min(low.Y, point.Y), std::min(low.Z, point.Z), low.Has_Z};
    high = {std::max(high.X, point.X), std::max(high.Y, point.Y), std::max(high.Z, point.Z),
            low.Has_Z};
  }
  return Points_Meet(low, high);
}

bool End_Index::Points_Meet(const Point& a, const Point& b) const {
  if (!(std::abs(a.X - b.X) < Tolerance) || !(std::abs(a.Y - b.Y) < Tolerance)) return false;
  if (a.Has_Z != b.Has_Z) return false;
  return !a.Has_Z || std::abs(a.Z - b.Z) < Tolerance;
}

std::int32_t End_Index::Own_Ends(std::int32_t row, std::int32_t site) const {
  const auto end = static_cast<std::size_t>(row) * 2;
  return (Site_Of[end] == site ? 1 : 0) + (Site_Of[end + 1] == site ? 1 : 0);
}

bool End_Index::Is_Connected(End end) const {
  const std::int32_t own = Site_Of[static_cast<std::size_t>(end)];
  const Site& site = Sites[static_cast<std::size_t>(own)];
  const Cell& cell = Cells[static_cast<std::size_t>(site.Cell)];
  if (cell.Tight && cell.Live_Ends > 2) return true;  // a row has two ends at most
  return Any_Cell_Near(site.Cell, [&](const Cell& near) {
    for (std::int32_t s = near.First_Site; s < near.First_Site + near.Live_Sites; ++s) {
      const std::int32_t number = Sites_In_Order[static_cast<std::size_t>(s)];
      const Site& other = Sites[static_cast<std::size_t>(number)];
      if (Points_Meet(site.At, other.At) && other.Live > Own_Ends(end / 2, number)) return true;
    }
    return false;
  });
}

std::int32_t End_Index::Crowd_At(End end) const {
  if (Sites.empty()) return 0;
  const Site& site = Sites[static_cast<std::size_t>(Site_Of[static_cast<std::size_t>(end)])];
  std::int32_t crowd = 0;
  Any_Cell_Near(site.Cell, [&](const Cell& near) {
    crowd += near.Live_Ends;
    return false;
  });
  return crowd;
}

void End_Index::Remove_End(End end) {
  Site& site = Sites[static_cast<std::size_t>(Site_Of[static_cast<std::size_t>(end)])];
  Cell& cell = Cells[static_cast<std::size_t>(site.Cell)];
  --cell.Live_Ends;

  // Live ends stand first: the last live one takes the place of this one.
  const auto exchange = [](auto& list, std::int32_t a, std::int32_t b) {
    std::swap(list[static_cast<std::size_t>(a)], list[static_cast<std::size_t>(b)]);
  };
  std::int32_t& place = Place_Of[static_cast<std::size_t>(end)];
  const std::int32_t last_end = site.First_End + --site.Live;
  Place_Of[static_cast<std::size_t>(Ends_In_Order[static_cast<std::size_t>(last_end)])] = place;
  exchange(Ends_In_Order, place, last_end);
  place = last_end;
  if (site.Live > 0) return;

  const std::int32_t last_site = cell.First_Site + --cell.Live_Sites;
  Sites[static_cast<std::size_t>(Sites_In_Order[static_cast<std::size_t>(last_site)])].Place =
      site.Place;
  exchange(Sites_In_Order, site.Place, last_site);
  site.Place = last_site;
}

// Ends near `site` that have lost the last end they met.
void End_Index::Free_Around(std::int32_t site, std::vector<End>& freed) {
  const Site& centre = Sites[static_cast<std::size_t>(site)];
  Any_Cell_Near(centre.Cell, [&](const Cell& near) {
    if (near.Tight && near.Live_Ends > 2) return false;
    for (std::int32_t s = near.First_Site; s < near.First_Site + near.Live_Sites; ++s) {
      const Site& other =
          Sites[static_cast<std::size_t>(Sites_In_Order[static_cast<std::size_t>(s)])];
      if (other.Live > 2 || !Points_Meet(centre.At, other.At)) continue;
      for (std::int32_t e = other.First_End; e < other.First_End + other.Live; ++e) {
        const End end = Ends_In_Order[static_cast<std::size_t>(e)];
        if (Is_Free(end) || Is_Connected(end)) continue;
        Free[static_cast<std::size_t>(end)] = 1;
        freed.push_back(end);
      }
    }
    return false;
  });
}

void End_Index::Remove_Row(std::int32_t row, std::vector<End>& freed) {
  if (Sites.empty()) return;
  const End first = row * 2, second = first + 1;
  Remove_End(first);
  Remove_End(second);
  Free_Around(Site_Of[static_cast<std::size_t>(first)], freed);
  Free_Around(Site_Of[static_cast<std::size_t>(second)], freed);
}

}  // namespace norvik
