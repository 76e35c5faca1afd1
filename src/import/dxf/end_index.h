// end_index.h: which ends of a drawing's rows meet, while rows are taken out one by one.
//
// Row r has the ends 2r and 2r+1. Two ends meet when X, Y and Z each differ by less than the
// tolerance, in singles; two missing Z meet, a missing and a present one do not.
//
//   end    one end of one row
//   site   all ends at exactly the same point
//   cell   a square of 0.55 tolerances; whatever meets a point lies at most two cells away
//
// Two points of one cell differ by less than the tolerance in X and Y. Where they also agree in Z
// the cell is tight: any two of its ends meet, and a crowd in one cell is answered without looking
// at its members. So drawings with thousands of ends on one spot, or with a tolerance larger than
// the whole drawing, stay affordable.
#pragma once

#include <array>
#include <cstdint>
#include <vector>

namespace norvik {

class End_Index {
 public:
  using End = std::int32_t;
  struct Point {
    float X = 0, Y = 0, Z = 0;
    bool Has_Z = false;
  };

  // Two points a row. With a tolerance of 0 or less no ends meet.
  void Build(const std::vector<Point>& ends, float tolerance);

  // True while no end of another live row meets this one.
  bool Is_Free(End end) const { return Free[static_cast<std::size_t>(end)] != 0; }

  // Takes a row out. The ends of live rows that have become free are appended to `freed`.
  void Remove_Row(std::int32_t row, std::vector<End>& freed);

  // Calls `visit(row)` for each live row with an end that meets `end`; a row may come twice.
  template <class Visit>
  void For_Rows_At(End end, Visit&& visit) const;
  // At least as many as For_Rows_At would visit; costs a few steps.
  std::int32_t Crowd_At(End end) const;

  bool Meet(End a, End b) const { return Points_Meet(Point_Of(a), Point_Of(b)); }

 private:
  static constexpr int Reach = 2;              // cells on either side
  static constexpr int Lanes = 2 * Reach + 1;  // rows of cells that a neighbourhood spans

  struct Site {
    Point At;
    std::int32_t Cell = 0;
    std::int32_t First_End = 0, Live = 0;  // range of Ends_In_Order; live ones first
    std::int32_t Place = 0;                // in Sites_In_Order
  };
  struct Cell {
    std::int64_t X = 0, Y = 0;
    std::int32_t First_Site = 0, Live_Sites = 0;  // range of Sites_In_Order; live ones first
    std::int32_t Live_Ends = 0;
    bool Tight = false;
    // Cells within reach, a range for each lane; cells are sorted by Y, then X.
    std::array<std::int32_t, Lanes> Lane_First{}, Lane_Last{};
  };

  const Point& Point_Of(End end) const {
    return Sites[static_cast<std::size_t>(Site_Of[static_cast<std::size_t>(end)])].At;
  }
  bool Points_Meet(const Point& a, const Point& b) const;
  bool Is_Connected(End end) const;
  std::int32_t Own_Ends(std::int32_t row, std::int32_t site) const;
  // `visit(cell)` for each cell within reach with live ends, until it gives true.
  template <class Visit>
  bool Any_Cell_Near(std::int32_t cell, Visit&& visit) const;
  void Build_Sites(const std::vector<Point>& ends);
  void Build_Lanes();
  bool Is_Tight(const Cell& cell) const;
  void Remove_End(End end);
  void Free_Around(std::int32_t site, std::vector<End>& freed);

  float Tolerance = 0;
  std::vector<Site> Sites;
  std::vector<Cell> Cells;
  std::vector<std::int32_t> Site_Of;         // of each end
  std::vector<std::int32_t> Sites_In_Order;  // by cell
  std::vector<End> Ends_In_Order;            // by site
  std::vector<std::int32_t> Place_Of;        // of each end in Ends_In_Order
  std::vector<std::uint8_t> Free;
};

template <class Visit>
bool End_Index::Any_Cell_Near(std::int32_t cell, Visit&& visit) const {
  const Cell& centre = Cells[static_cast<std::size_t>(cell)];
  for (std::size_t lane = 0; lane < Lanes; ++lane) {
    for (std::int32_t n = centre.Lane_First[lane]; n < centre.Lane_Last[lane]; ++n) {
      const Cell& near = Cells[static_cast<std::size_t>(n)];
      if (near.Live_Ends > 0 && visit(near)) return true;
    }
  }
  return false;
}

template <class Visit>
void End_Index::For_Rows_At(End end, Visit&& visit) const {
  if (Sites.empty()) return;
  const Site& site = Sites[static_cast<std::size_t>(Site_Of[static_cast<std::size_t>(end)])];
  Any_Cell_Near(site.Cell, [&](const Cell& near) {
    for (std::int32_t s = near.First_Site; s < near.First_Site + near.Live_Sites; ++s) {
      const Site& other =
          Sites[static_cast<std::size_t>(Sites_In_Order[static_cast<std::size_t>(s)])];
      if (!Points_Meet(site.At, other.At)) continue;
      for (std::int32_t e = other.First_End; e < other.First_End + other.Live; ++e) {
        visit(Ends_In_Order[static_cast<std::size_t>(e)] / 2);
      }
    }
    return false;
  });
}

}  // namespace norvik
